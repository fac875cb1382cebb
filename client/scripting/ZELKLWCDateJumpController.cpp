#include "ZELKLWCDateJumpController.h"

#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogSlice.h"
#include "ZELKLWCLogTableController.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QDialog>
#include <QTextCharFormat>

#include <utility>

namespace {

QString className()
{
    return QStringLiteral("ZELKLWCDateJumpController");
}

} // namespace

ZELKLWCDateJumpController::ZELKLWCDateJumpController(QWidget &window, const ZELKBundle &bundle,
                                                     const Outlets &outlets, QObject *parent)
    : QObject(parent)
    , m_outlets(outlets)
    , m_window(ZELKInterfaceLoader::loadDialog(bundle, className(), window))
    , m_date(ZELKInterfaceLoader::outlet<QDateEdit>(*m_window, className(), "date"))
    , m_calendar(ZELKInterfaceLoader::outlet<QCalendarWidget>(*m_window, className(), "calendar"))
{
    const QLocale &locale = ZELKEnvironment::current().locale;
    m_date->setLocale(locale);
    m_date->setDisplayFormat(locale.dateFormat(QLocale::ShortFormat));
    m_calendar->setLocale(locale);
    m_calendar->setFirstDayOfWeek(locale.firstDayOfWeek());
    for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday}) // whose red cannot be read on dark
        m_calendar->setWeekdayTextFormat(day, {});
    connect(m_calendar, &QCalendarWidget::clicked, m_date, &QDateEdit::setDate);
    connect(m_calendar, &QCalendarWidget::selectionChanged, m_date,
            [this] { m_date->setDate(m_calendar->selectedDate()); });
    connect(m_calendar, &QCalendarWidget::activated, m_window, &QDialog::accept);
    connect(m_date, &QDateEdit::dateChanged, m_calendar, &QCalendarWidget::setSelectedDate);
    connect(m_window, &QDialog::accepted, this, [this] { zelkGuard([this] { ok(); }); });
}

void ZELKLWCDateJumpController::show()
{
    if (m_outlets.log.count() > 0) {
        const QDate first = ZELKCalendar::day(m_outlets.log.objectAtIndex(0)->date());
        const QDate last = ZELKCalendar::day(m_outlets.log.pastEntry()->date());
        m_date->setDateRange(first, last);
        m_calendar->setDateRange(first, last);
    }
    const QDate today = ZELKCalendar::day(ZELKEnvironment::current().clock->now());
    m_date->setDate(today);
    m_calendar->setSelectedDate(m_date->date());
    m_date->setFocus();
    m_window->open();
}

void ZELKLWCDateJumpController::ok()
{
    const auto date = ZELKDate::fromDateTime(m_date->date().startOfDay(ZELKEnvironment::current().zone));
    m_outlets.visibleSlice.setStartAndEnd(date, date);
}

void ZELKLWCDateJumpController::jumpToSelection()
{
    const ZELKLWCLogEntry *first = m_outlets.tableController.firstSelectedEntry();
    const ZELKLWCLogEntry *last = m_outlets.tableController.lastSelectedEntry();
    if (!first || !last)
        return;
    if (last->date() < first->date()) // the latest stand first
        std::swap(first, last);
    m_outlets.visibleSlice.setStartAndEnd(first->date(), last->finalDate());
}

bool ZELKLWCDateJumpController::validateMenuItem(MenuItem item) const
{
    switch (item) {
    case MenuItem::Show:
        return m_outlets.log.count() > 0;
    case MenuItem::JumpToSelection:
        return !m_outlets.tableController.selectedRows().empty();
    case MenuItem::Other:
        break;
    }
    return true;
}
