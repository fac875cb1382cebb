#include "ZELKLWCEntriesViewMarkerInterval.h"

std::vector<ZELKLWCEntriesViewMarkerInterval> ZELKLWCEntriesViewMarkerInterval::markerIntervals()
{
    constexpr double minute = 60.0;
    constexpr double hour = 60.0 * minute;
    constexpr double day = 24.0 * hour;
    const QString timeOfDay = QStringLiteral("%I:%M %p");
    return {{364.0 * day, QStringLiteral("%Y")},
            {7.0 * day, QStringLiteral("%e %B")},
            {day, QStringLiteral("%A, %e %B")},
            {hour, timeOfDay},
            {minute, timeOfDay}};
}
