#pragma once

/// Distances between weekdays, numbered 0 for Sunday to 6 for Saturday. The same weekday is a whole week
/// away.
namespace ZELKWeekday {

/// Days until the next `weekday`, standing on `from`: 1 to 7.
constexpr int daysUntil(int weekday, int from)
{
    return weekday > from ? weekday - from : weekday + 7 - from;
}

/// Days since the last `weekday`, standing on `from`, as an offset to add: -1 to -7 for a `weekday` that
/// comes earlier in the numbering or is the same. For a later one it is weekday + from - 7: only from Sunday,
/// the one day that weeks starting on Monday need it for, is that the last such day.
constexpr int daysSince(int weekday, int from)
{
    if (weekday == from)
        return -7;
    return weekday > from ? weekday + from - 7 : weekday - from;
}

} // namespace ZELKWeekday
