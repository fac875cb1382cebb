#include "ZELKLWAEventPosition.h"

#include <cmath>
#include <limits>

namespace {

constexpr qint64 aSecond = 1000000;
constexpr qint64 lowest = std::numeric_limits<qint64>::min();
constexpr qint64 highest = std::numeric_limits<qint64>::max();

} // namespace

qint64 ZELKLWATimeOf(ZELKDate date)
{
    constexpr double bound = 9.2e18;
    const double time = date.timeIntervalSinceReferenceDate() * double(aSecond);
    if (!(time > -bound))
        return lowest;
    return time < bound ? std::llround(time) : highest;
}

ZELKLWAEventRange ZELKLWAEventRange::requested(double from, double to)
{
    if (std::isnan(from) || std::isnan(to))
        return {highest, lowest, highest};
    const qint64 begin = ZELKLWATimeOf(ZELKDate(from));
    return {begin, ZELKLWATimeOf(ZELKDate(to)), begin < lowest + aSecond ? lowest : begin - aSecond};
}
