#include "ZELKCalendar.h"

#include "ZELKEnvironment.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr double secondsPerDay = 86400.0;
/// From one distant bound beyond the other. QDate goes through the years one by one.
constexpr int mostMonths = 100000;

/// A moment as the clock on the wall shows it: a day and the seconds since its 00:00:00.
struct WallTime
{
    QDate day;
    double seconds;
};

const QDate referenceDay(2001, 1, 1);

ZELKDate withinBounds(ZELKDate date)
{
    if (date < ZELKDate::distantFuture())
        return date < ZELKDate::distantPast() ? ZELKDate::distantPast() : date;
    return date >= ZELKDate::distantFuture() ? ZELKDate::distantFuture() : ZELKDate::distantPast();
}

double offsetAt(double seconds)
{
    const QDateTime moment = ZELKDate(seconds).toDateTime(QTimeZone::utc());
    const QTimeZone &zone = ZELKEnvironment::current().zone;
    return zone.isValid() ? zone.offsetFromUtc(moment) : 0;
}

WallTime wallTime(ZELKDate date)
{
    const double seconds = withinBounds(date).timeIntervalSinceReferenceDate();
    const double shown = seconds + offsetAt(seconds);
    const double days = std::floor(shown / secondsPerDay);
    return {referenceDay.addDays(qint64(days)), shown - days * secondsPerDay};
}

/// The first whole second in (before, after] that has another offset than `before`.
double changeOfOffset(double before, double after)
{
    const double offset = offsetAt(before);
    double low = std::floor(before);
    double high = std::ceil(after);
    while (high - low > 1.0) {
        const double middle = std::floor((low + high) / 2.0);
        (offsetAt(middle) == offset ? low : high) = middle;
    }
    return high;
}

/// The first moment at which the wall shows that time, or the end of the gap that it falls in. Asked of the
/// zone's offsets, because a QDateTime within a gap is drawn to one side or the other by Qt's version.
ZELKDate moment(const WallTime &wall)
{
    const double shown = double(referenceDay.daysTo(wall.day)) * secondsPerDay + wall.seconds;
    const double before = offsetAt(shown - secondsPerDay);
    const double after = offsetAt(shown + secondsPerDay);
    if (offsetAt(shown - before) == before)
        return ZELKDate(shown - before);
    if (offsetAt(shown - after) == after)
        return ZELKDate(shown - after);
    return ZELKDate(changeOfOffset(shown - secondsPerDay, shown + secondsPerDay));
}

QString number(int value, int width = 2, char padding = '0')
{
    return QString::number(value).rightJustified(width, QLatin1Char(padding));
}

/// What the letters of a calendar format stand for at one moment.
class FormatLetters
{
public:
    explicit FormatLetters(ZELKDate date)
        : m_environment(ZELKEnvironment::current())
        , m_utc(date.toDateTime(QTimeZone::utc()))
        , m_offset(m_environment.zone.isValid() ? m_environment.zone.offsetFromUtc(m_utc) : 0)
        , m_date(m_utc.addSecs(m_offset).date())
        , m_time(m_utc.addSecs(m_offset).time())
    {
    }

    std::optional<QString> text(char16_t letter) const
    {
        const auto name = nameText(letter);
        return name ? name : numberText(letter);
    }

private:
    std::optional<QString> nameText(char16_t letter) const
    {
        const QLocale &locale = m_environment.locale;
        switch (letter) {
        case 'A':
            return locale.dayName(m_date.dayOfWeek(), QLocale::LongFormat);
        case 'a':
            return locale.dayName(m_date.dayOfWeek(), QLocale::ShortFormat);
        case 'B':
            return locale.monthName(m_date.month(), QLocale::LongFormat);
        case 'b':
            return locale.monthName(m_date.month(), QLocale::ShortFormat);
        case 'p':
            return m_time.hour() < 12 ? locale.amText() : locale.pmText();
        case 'x':
            return locale.toString(m_date, QLocale::ShortFormat);
        case 'X':
            return locale.toString(m_time, QLocale::ShortFormat);
        case 'c':
            return locale.toString(QDateTime(m_date, m_time, Qt::UTC), QLocale::ShortFormat);
        case 'Z':
            return m_environment.zone.isValid() ? m_environment.zone.abbreviation(m_utc)
                                                : QStringLiteral("UTC");
        default:
            return std::nullopt;
        }
    }

    std::optional<QString> numberText(char16_t letter) const
    {
        switch (letter) {
        case 'd':
            return number(m_date.day());
        case 'e':
            return number(m_date.day(), 2, ' ');
        case 'm':
            return number(m_date.month());
        case 'Y':
            return number(m_date.year(), 4);
        case 'y':
            return number(std::abs(m_date.year()) % 100);
        case 'j':
            return number(m_date.dayOfYear(), 3);
        case 'H':
            return number(m_time.hour());
        case 'I':
            return number((m_time.hour() + 11) % 12 + 1);
        case 'M':
            return number(m_time.minute());
        case 'S':
            return number(m_time.second());
        case 'z':
            return offsetText();
        case '%':
            return QStringLiteral("%");
        default:
            return std::nullopt;
        }
    }

    QString offsetText() const
    {
        const int minutes = std::abs(m_offset) / 60;
        return QLatin1Char(m_offset < 0 ? '-' : '+') + number(minutes / 60) + number(minutes % 60);
    }

    const ZELKEnvironment &m_environment;
    QDateTime m_utc;
    int m_offset;
    QDate m_date;
    QTime m_time;
};

} // namespace

ZELKDate ZELKCalendar::startOfDay(ZELKDate date)
{
    return moment({wallTime(date).day, 0.0});
}

ZELKDate ZELKCalendar::startOfMonth(ZELKDate date)
{
    const QDate day = wallTime(date).day;
    return moment({QDate(day.year(), day.month(), 1), 0.0});
}

ZELKDate ZELKCalendar::adding(ZELKDate date, int months, int days, int hours, double seconds)
{
    if (months != 0 || days != 0) {
        WallTime wall = wallTime(date);
        wall.day = wall.day.addMonths(std::clamp(months, -mostMonths, mostMonths)).addDays(days);
        date = moment(wall);
    }
    return date.addingTimeInterval(hours * 3600.0 + seconds);
}

QDate ZELKCalendar::day(ZELKDate date)
{
    return date.toDateTime(ZELKEnvironment::current().zone).date();
}

int ZELKCalendar::weekday(ZELKDate date)
{
    return wallTime(date).day.dayOfWeek() % 7;
}

int ZELKCalendar::year(ZELKDate date)
{
    return wallTime(date).day.year();
}

int ZELKCalendar::month(ZELKDate date)
{
    return wallTime(date).day.month();
}

QString ZELKCalendar::format(ZELKDate date, const QString &calendarFormat)
{
    const FormatLetters letters(date);
    QString text;
    for (qsizetype i = 0; i < calendarFormat.size(); ++i) {
        const QChar character = calendarFormat.at(i);
        const auto replaced = character == QLatin1Char('%') && i + 1 < calendarFormat.size()
                                  ? letters.text(calendarFormat.at(i + 1).unicode())
                                  : std::nullopt;
        if (replaced)
            ++i;
        text += replaced.value_or(character);
    }
    return text;
}
