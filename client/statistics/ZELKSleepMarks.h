#pragma once

#include "ZELKDate.h"
#include "ZELKStringPool.h"

#include <cstdint>
#include <vector>

/// When a computer fell asleep and woke, and where its record is not to be relied on ("breaks"): starts,
/// shutdowns, the recorder's own comings and goings, a wake from no sleep, a second sleep without a wake.
/// Kept as sums, so that what lies between two moments is found without a walk.
class ZELKSleepMarks
{
public:
    struct Sleep
    {
        ZELKDate start;
        ZELKDate end;
    };
    /// All that was up to a mark, itself included.
    struct Mark
    {
        ZELKDate date = ZELKDate::distantPast();
        double secondsAsleep = 0.0; ///< in those sleeps that have ended
        std::uint32_t number = 0;   ///< of the mark
        std::uint32_t sleeps = 0;   ///< that have ended
        std::uint32_t breaks = 0;
        bool isAsleep = false; ///< from here on
    };

    /// A state begins, by its number among the entries' words. In ascending order of dates.
    void addState(ZELKStringPool::Id state, ZELKDate date);
    void addBreak(ZELKDate date);

    /// The mark that counts for a reading of that date, which is not older than the last: the last of all
    /// before it, and of those at the same moment the wakes, since a reading at a sleep's very end or start
    /// is one of the time awake.
    const Mark &markFor(ZELKDate reading) const { return m_last.date < reading ? m_last : m_atItsMoment; }
    bool isAsleep() const { return m_last.isAsleep; }
    const std::vector<Sleep> &sleeps() const { return m_sleeps; }

private:
    void add(Mark mark, ZELKDate date);
    void endSleep(Mark &mark, ZELKDate date);

    Mark m_last; ///< at first the beginning of time
    Mark m_atItsMoment;
    std::vector<Sleep> m_sleeps;
    ZELKDate m_fellAsleep;
};
