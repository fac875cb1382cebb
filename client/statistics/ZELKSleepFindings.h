#pragma once

#include "ZELKSleepCosts.h"
#include "ZELKSleepMarks.h"

#include <array>
#include <functional>
#include <vector>

/// What was found of sleeps between two readings each, battery by battery, until all is known and the costs
/// of each sleep can be told. Sleeps and batteries go by their numbers.
class ZELKSleepFindings
{
public:
    using Unknown = ZELKSleepCosts::Unknown;
    using Sleeps = std::vector<ZELKSleepMarks::Sleep>;

    /// Sleeps from `first` on up to `end`.
    struct Run
    {
        std::uint32_t first;
        std::uint32_t end;
    };
    struct Finding
    {
        Run run;
        std::uint32_t battery;
        double points; ///< that all of them cost
        double seconds;
    };

    /// Counted are sleeps that end from one date to the other.
    ZELKSleepFindings(ZELKDate from, ZELKDate to)
        : m_from(from)
        , m_to(to)
    {
    }

    /// What the sleeps of a run cost together. Each cost nothing where all of them did; else several are
    /// unknown one by one. Together with one out of the time that is counted they say nothing of it.
    void add(const Sleeps &sleeps, Run run, std::uint32_t battery, double points);
    void setUnknown(Unknown reason, Run run) { set(m_unknown[std::size_t(reason)], run); }
    /// A battery inside the computer shows that there was power from outside.
    void setCharged(Run run) { set(m_charged, run); }

    /// `batteries` with the time awake; `isInside` tells of a battery whether it is inside the computer.
    /// Where one of those was charged, none of them says what a sleep cost.
    ZELKSleepCosts costs(const Sleeps &sleeps, std::vector<ZELKSleepCosts::Battery> batteries,
                         const std::function<bool(std::uint32_t)> &isInside);

private:
    /// Where something begins (+1) and ends (-1) to hold, by the number of the sleep.
    using Changes = std::vector<int>;

    static void set(Changes &changes, Run run);
    bool isCounted(const ZELKSleepMarks::Sleep &sleep) const;
    void addSingle(const Sleeps &sleeps, std::uint32_t sleep, std::uint32_t battery, double points);
    void dropCharged(std::size_t sleeps, const std::function<bool(std::uint32_t)> &isInside);
    Run counted(const Sleeps &sleeps) const;
    std::vector<ZELKSleepCosts::Sleep> countedSleeps(const Sleeps &sleeps, Run counted) const;
    std::vector<ZELKSleepCosts::Cost> singleCosts(Run counted) const;

    ZELKDate m_from;
    ZELKDate m_to;
    std::vector<Finding> m_findings;
    std::array<Changes, ZELKSleepCosts::unknownCount> m_unknown; ///< by the reason
    Changes m_charged;
};
