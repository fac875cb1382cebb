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
        std::uint32_t sleeps = 0;   ///< that have ended
        std::uint32_t breaks : 31 = 0;
        std::uint32_t isAsleep : 1 = 0; ///< from here on
    };

    /// `expected` is how many marks there may be, to be quick.
    explicit ZELKSleepMarks(std::size_t expected = 0)
    {
        m_marks.reserve(expected + 1);
        m_marks.emplace_back();
    }

    /// A state begins, by its number among the entries' words. In ascending order of dates.
    void addState(ZELKStringPool::Id state, ZELKDate date);
    void addBreak(ZELKDate date);

    /// The last mark that counts for a reading of that date: all before it, and of those at the same moment
    /// the wakes, since a reading at a sleep's very end or start is one of the time awake. `from` is a mark
    /// known to count.
    std::size_t lastMarkFor(ZELKDate reading, std::size_t from) const;
    /// Whether that may be another one than `from`.
    bool isMarked(std::size_t from, ZELKDate reading) const
    {
        return from + 1 < m_marks.size() && m_marks[from + 1].date <= reading;
    }
    const Mark &at(std::size_t mark) const { return m_marks[mark]; }
    std::size_t last() const { return m_marks.size() - 1; }
    const std::vector<Sleep> &sleeps() const { return m_sleeps; }

private:
    void endSleep(Mark &mark);

    std::vector<Mark> m_marks; ///< the first is the beginning of time
    std::vector<Sleep> m_sleeps;
    ZELKDate m_fellAsleep;
};
