#include "ZELKSuspendClock.h"

#include <ctime>

namespace {

/// Two readings further apart than this were interrupted, by the scheduler or by a suspend.
constexpr double secondsBetweenReadings = 0.001;
constexpr int tries = 10;

double seconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

} // namespace

ZELKMoment ZELKSystemSuspendClock::read(ZELKDate date) const
{
    ZELKMoment moment{date, seconds(CLOCK_MONOTONIC), 0.0};
    for (int left = tries; left > 0; --left) {
        const double since = seconds(CLOCK_BOOTTIME);
        const double after = seconds(CLOCK_MONOTONIC);
        moment.suspended = since - after;
        const bool together = after - moment.awake <= secondsBetweenReadings;
        moment.awake = after;
        if (together)
            break;
    }
    return moment;
}
