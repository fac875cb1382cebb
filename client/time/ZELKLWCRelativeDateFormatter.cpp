#include "ZELKLWCRelativeDateFormatter.h"

#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKSystemFonts.h"
#include "ZELKUserDefaults.h"

namespace {

constexpr QLatin1String relativeDatesKey("relativeDates");

/// A moment and the number of its day.
struct CalendarDate
{
    ZELKDate date;
    qint64 day;
};

CalendarDate calendarDate(ZELKDate date)
{
    return {date, ZELKCalendar::day(date).toJulianDay()};
}

std::optional<CalendarDate> calendarDateOf(const QVariant &object)
{
    if (object.metaType() == QMetaType::fromType<ZELKDate>())
        return calendarDate(object.value<ZELKDate>());
    const QDateTime moment =
        object.metaType() == QMetaType::fromType<QDateTime>() ? object.toDateTime() : QDateTime();
    if (!moment.isValid())
        return std::nullopt;
    return CalendarDate{ZELKDate::fromDateTime(moment), moment.date().toJulianDay()};
}

/// The first letter of each word in capitals, all others small. White space alone divides words.
QString capitalized(const QString &text)
{
    QString result = text.toLower();
    for (qsizetype i = 0; i < result.size(); ++i)
        if (i == 0 || result.at(i - 1).isSpace())
            result[i] = result.at(i).toTitleCase();
    return result;
}

/// Key of the name of a day that is `daysAhead` of today; empty for days without one.
QString relativeKey(qint64 daysAhead)
{
    switch (daysAhead) {
    case 0:
        return QStringLiteral("today");
    case 1:
        return QStringLiteral("tomorrow");
    case -1:
        return QStringLiteral("yesterday");
    default:
        return {};
    }
}

} // namespace

ZELKLWCRelativeDateFormatter::ZELKLWCRelativeDateFormatter(ZELKUserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_defaults(defaults)
{
}

void ZELKLWCRelativeDateFormatter::awakeFromNib()
{
    const auto follow = [this] { setRelativeDates(m_defaults.boolForKey(relativeDatesKey)); };
    connect(&m_defaults, &ZELKUserDefaults::valueChanged, this, [follow](const QString &key) {
        if (key == relativeDatesKey)
            zelkGuard(follow);
    });
    follow();
}

void ZELKLWCRelativeDateFormatter::setRelativeDates(bool relativeDates)
{
    if (relativeDates == m_relativeDates)
        return;
    m_relativeDates = relativeDates;
    Q_EMIT relativeDatesChanged(relativeDates);
}

const ZELKDateFormatter &ZELKLWCRelativeDateFormatter::dateFormatter() const
{
    if (!m_dateFormatter)
        m_dateFormatter.emplace(ZELKDateFormatter::Style::Short, ZELKDateFormatter::Style::None);
    return *m_dateFormatter;
}

const ZELKDateFormatter &ZELKLWCRelativeDateFormatter::timeFormatter() const
{
    if (!m_timeFormatter)
        m_timeFormatter.emplace(ZELKDateFormatter::Style::None, ZELKDateFormatter::Style::Short);
    return *m_timeFormatter;
}

QString ZELKLWCRelativeDateFormatter::stringForObjectValue(const QVariant &object) const
{
    const std::optional<CalendarDate> moment = calendarDateOf(object);
    if (!moment)
        return QStringLiteral("");
    return ZELKFormat("%@, %@",
                      {dateText(moment->date, moment->day), timeFormatter().stringFromDate(moment->date)});
}

QString ZELKLWCRelativeDateFormatter::dateText(ZELKDate date, qint64 day) const
{
    if (!m_relativeDates)
        return dateFormatter().stringFromDate(date);
    const ZELKEnvironment &environment = ZELKEnvironment::current();
    const QString key = relativeKey(day - calendarDate(environment.clock->now()).day);
    return capitalized(key.isEmpty() ? dateFormatter().stringFromDate(date)
                                     : environment.mainBundle->localizedStringForKey(
                                           key, {}, QStringLiteral("Localizable")));
}

ZELKAttributedString
ZELKLWCRelativeDateFormatter::attributedStringForObjectValue(const QVariant &object,
                                                             const ZELKTextAttributes &defaults) const
{
    ZELKTextAttributes attributes = defaults;
    if (!attributes.hasFont()) {
        attributes.family = ZELKSystemFonts::family();
        attributes.pointSize = ZELKSystemFonts::systemFontSize();
    }
    attributes.colour = ZELKTextColour::of(ZELKTextColour::Role::ControlText);
    attributes.paragraph = {};
    attributes.paragraph.lineBreak = ZELKParagraphStyle::LineBreak::TruncateTail;
    return ZELKAttributedString(stringForObjectValue(object), attributes);
}

bool ZELKLWCRelativeDateFormatter::getObjectValue(QVariant &, const QString &, QString *error) const
{
    if (error)
        *error = QStringLiteral("Unsupported conversion from string to object.");
    return false;
}
