#pragma once

#include "ZELKSleepCostTracker.h"

#include <utility>
#include <vector>

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// What a log had, when statistics of some of its entries were computed, that bears on them beyond those
/// entries. It tells whether they still hold, without computing them again over what may be a million.
class ZELKStatisticsBasis
{
public:
    /// Seconds behind the last of the entries up to which others bear on the statistics.
    static constexpr double reach = ZELKSleepCostTracker::longestSilence;

    /// Of the log as it is now, which is to outlive this object, and the latest of the entries.
    ZELKStatisticsBasis(const ZELKLWCLog &log, ZELKDate latest);

    /// Since then no entry within reach arrived, no reading there was repeated, and no battery was the first
    /// of all.
    bool holds() const;

private:
    const ZELKLWCLog *m_log;
    ZELKDate m_end;
    int m_count;
    bool m_supportsBatteries;
    /// The newest reading of each source, which alone can be repeated, and how often it was.
    std::vector<std::pair<const ZELKLWCLogEntry *, qsizetype>> m_readings;
};
