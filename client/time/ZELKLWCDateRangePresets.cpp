#include "ZELKLWCDateRangeController.h"

#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"
#include "ZELKWeekday.h"

namespace {

constexpr std::size_t presetCount = 9;
constexpr int sunday = 0;
constexpr int monday = 1;

/// 00:00:00 of the day so many days on. Not a plain addition of days: where a clock change skips midnight, a
/// day starts later than the others.
ZELKDate dayAfter(ZELKDate date, int days)
{
    return ZELKCalendar::startOfDay(ZELKCalendar::adding(date, 0, days));
}

ZELKDate monthAfter(ZELKDate startOfMonth, int months)
{
    return ZELKCalendar::startOfMonth(ZELKCalendar::adding(startOfMonth, months, 0));
}

} // namespace

void ZELKLWCDateRangeController::initPrecalculatedDurations()
{
    const ZELKDate now = ZELKEnvironment::current().clock->now();
    if (m_precalculatedDurations.empty())
        m_precalculatedDurations.assign(presetCount, std::make_shared<ZELKLWCAbsoluteDuration>(now, 0.0));

    const ZELKDate today = floorDate(now);
    const ZELKDate month = ZELKCalendar::startOfMonth(now);
    const ZELKDate yesterday = dayAfter(today, -1);
    setPreset(1, today, ceilingDate(today));
    setPreset(2, yesterday, ceilingDate(yesterday));
    setPreset(3, dayAfter(today, -6), dayAfter(today, 1).addingTimeInterval(-1.0));
    setPreset(4, month, dayAfter(monthAfter(month, 1), -1));
    setPreset(5, monthAfter(month, -1), month.addingTimeInterval(-1.0));
    initPrecalculatedWeeks(now, today);
    setPreset(8, distantPast(), distantFuture());
}

void ZELKLWCDateRangeController::initPrecalculatedWeeks(ZELKDate now, ZELKDate today)
{
    const int weekday = ZELKCalendar::weekday(now);
    const int daysToMonday = weekday == monday ? 0 : ZELKWeekday::daysSince(monday, weekday);
    const int daysToSunday = weekday == sunday ? 0 : ZELKWeekday::daysUntil(sunday, weekday);
    setPreset(6, dayAfter(today, daysToMonday), ceilingDate(dayAfter(today, daysToSunday)));
    setPreset(7, dayAfter(today, daysToMonday - 7), ceilingDate(dayAfter(today, daysToSunday - 7)));
}

void ZELKLWCDateRangeController::setPreset(int tag, ZELKDate start, ZELKDate end)
{
    // A new object each time: the one held as the range keeps its dates, and is seen to be another one.
    m_precalculatedDurations[std::size_t(tag - 1)] = std::make_shared<ZELKLWCAbsoluteDuration>(
        ZELKLWCAbsoluteDuration::absoluteDurationFromDate(start, end));
}
