#include "ZELKLWAPeriods.h"

#include <algorithm>

ZELKLWAPeriods ZELKLWAPeriodsWithout(const ZELKLWAPeriod &whole, ZELKLWAPeriods taken)
{
    constexpr double smallestStep = 1e-6;
    std::sort(taken.begin(), taken.end(),
              [](const ZELKLWAPeriod &a, const ZELKLWAPeriod &b) { return a.begin < b.begin; });
    ZELKLWAPeriods left;
    ZELKDate begin = whole.begin;
    for (const ZELKLWAPeriod &period : taken) {
        if (begin < std::min(period.begin, whole.end))
            left.push_back({begin, std::min(period.begin, whole.end)});
        begin = std::max(begin, period.end.addingTimeInterval(smallestStep));
    }
    if (begin < whole.end)
        left.push_back({begin, whole.end});
    return left;
}
