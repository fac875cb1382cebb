#include "ZELKLWCAbsoluteDuration.h"

#include "ZELKCalendar.h"
#include "ZELKFormat.h"

namespace {

constexpr double longestDay = 86400.0;

QString span(const QString &dates, ZELKDate start, ZELKDate end)
{
    return ZELKFormat("%@ - %@", {ZELKCalendar::format(start, dates), ZELKCalendar::format(end, dates)});
}

QString span(const QString &dates, const QString &shared, ZELKDate start, ZELKDate end)
{
    return ZELKFormat("%@, %@", {span(dates, start, end), ZELKCalendar::format(end, shared)});
}

/// Within one day, also one of 25 hours.
bool isWithinOneDay(ZELKDate start, ZELKDate end)
{
    return ZELKCalendar::startOfDay(start) == ZELKCalendar::startOfDay(end);
}

} // namespace

void ZELKLWCAbsoluteDuration::setStartDate(ZELKDate start)
{
    if (start == m_startDate)
        return;
    const ZELKDate end = endDate();
    m_startDate = start;
    setEndDate(end);
}

void ZELKLWCAbsoluteDuration::setEndDate(ZELKDate end)
{
    setDuration(end.timeIntervalSinceDate(m_startDate));
}

void ZELKLWCAbsoluteDuration::sortByDate()
{
    if (!(duration() < 0.0))
        return;
    const ZELKDate start = m_startDate;
    setStartDate(endDate());
    setEndDate(start);
}

QString ZELKLWCAbsoluteDuration::description() const
{
    return ZELKFormat("%@ - %@", {m_startDate, endDate()});
}

QString ZELKLWCAbsoluteDuration::periodDescription() const
{
    const ZELKDate start = m_startDate;
    const ZELKDate end = endDate();
    if (duration() <= longestDay || isWithinOneDay(start, end))
        return ZELKCalendar::format(start.addingTimeInterval(duration() * 0.5),
                                    QStringLiteral("%A, %e %B %Y"));
    if (ZELKCalendar::year(start) != ZELKCalendar::year(end))
        return span(QStringLiteral("%e %B %Y"), start, end);
    if (ZELKCalendar::month(start) != ZELKCalendar::month(end))
        return span(QStringLiteral("%e %B"), QStringLiteral("%Y"), start, end);
    return span(QStringLiteral("%A %e"), QStringLiteral("%B %Y"), start, end);
}
