#include "ZELKCustomRange.h"

#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCDateRangeController.h"

#include <QDateEdit>
#include <QDialog>

namespace {

QString className()
{
    return QStringLiteral("ZELKCustomRange");
}

using ZELKCalendar::day;

ZELKDate date(QDate day)
{
    return ZELKDate::fromDateTime(day.startOfDay(ZELKEnvironment::current().zone));
}

} // namespace

ZELKCustomRange::ZELKCustomRange(QWidget &window, const ZELKBundle &bundle,
                                 ZELKLWCDateRangeController &dateRange)
    : QObject(&window)
    , m_dateRange(dateRange)
    , m_dialog(ZELKInterfaceLoader::loadDialog(bundle, className(), window))
    , m_from(ZELKInterfaceLoader::outlet<QDateEdit>(*m_dialog, className(), "fromDay"))
    , m_to(ZELKInterfaceLoader::outlet<QDateEdit>(*m_dialog, className(), "toDay"))
{
    const QLocale &locale = ZELKEnvironment::current().locale;
    for (QDateEdit *edit : {m_from, m_to}) {
        edit->setLocale(locale);
        edit->setDisplayFormat(locale.dateFormat(QLocale::ShortFormat));
    }
    // The last day changed takes the other along.
    connect(m_from, &QDateEdit::dateChanged, m_to, [this](QDate from) {
        if (m_to->date() < from)
            m_to->setDate(from);
    });
    connect(m_to, &QDateEdit::dateChanged, m_from, [this](QDate to) {
        if (m_from->date() > to)
            m_from->setDate(to);
    });
    connect(m_dialog, &QDialog::accepted, this, [this] { zelkGuard([this] { accept(); }); });
}

void ZELKCustomRange::open()
{
    const auto range = m_dateRange.absoluteDuration();
    for (QDateEdit *edit : {m_from, m_to})
        edit->setDateRange(day(m_dateRange.distantPast()), day(m_dateRange.distantFuture()));
    if (range) {
        m_to->setDate(day(range->endDate()));
        m_from->setDate(day(range->startDate()));
    }
    m_from->setFocus();
    m_dialog->open();
}

void ZELKCustomRange::accept()
{
    m_dateRange.setAbsoluteDuration(
        std::make_shared<ZELKLWCAbsoluteDuration>(ZELKLWCAbsoluteDuration::absoluteDurationFromDate(
            ZELKLWCDateRangeController::floorDate(date(m_from->date())),
            ZELKLWCDateRangeController::ceilingDate(date(m_to->date())))));
}
