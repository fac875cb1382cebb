#include "ZELKClock.h"

#include <chrono>

ZELKDate ZELKSystemClock::now() const
{
    const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
    return ZELKDate::fromSecondsSince1970(since1970.count());
}
