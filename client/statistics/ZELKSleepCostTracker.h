#pragma once

#include "ZELKSleepFindings.h"
#include "ZELKSleepMarks.h"
#include "ZELKTextNumbering.h"
#include "ZELKTrackedBattery.h"

#include <vector>

/// Finds what each sleep cost, while states and readings are played into it in ascending order of their
/// dates. It needs all of the time, and some of the time before and behind: a charger or a gap that it is not
/// shown cannot stop it.
///
/// A battery's charge is recorded when it changes, and at a wake it is asked for anew. So the last reading
/// before a sleep is the charge that the sleep began with; a reading soon behind the wake is the one that it
/// ended with; and where there is none, nothing was lost asleep, and what the next reading is short of was
/// lost awake. That reading has to bear this out: more than a point less, and somebody was not watching.
class ZELKSleepCostTracker
{
public:
    using Id = ZELKStringPool::Id;
    using Charge = ZELKTrackedBattery::Charge;

    /// Seconds without a reading before, between and behind sleeps that are believed.
    static constexpr double longestSilence = 3600.0;
    /// Seconds behind a wake in which a changed charge is told: twice what the slowest watcher takes.
    static constexpr double soon = 120.0;

    /// Counted are the sleeps that end, and the drains that begin and end, from one date to the other.
    /// `texts` outlives this object; the batteries' names are of this pool.
    ZELKSleepCostTracker(const ZELKStringPool &texts, ZELKDate from, ZELKDate to);

    /// The recorder came or went.
    void addBreak(ZELKDate date) { m_marks.addBreak(date); }
    void addState(Id state, ZELKDate date);
    /// Number of the battery of that name. Batteries inside the computer are charged together or not at all.
    std::uint32_t batteryNumber(Id name, bool isInside);
    void addCharge(std::uint32_t battery, const Charge &charge) { confirm(m_batteries[battery], charge); }
    /// The battery came or went: what it had before says nothing of what it has next.
    void forget(std::uint32_t battery) { m_batteries[battery].isKnown = false; }

    /// What was found. Nothing can be added afterwards.
    ZELKSleepCosts costs();

private:
    using Unknown = ZELKSleepCosts::Unknown;
    using Battery = ZELKTrackedBattery;
    using Mark = ZELKSleepMarks::Mark;

    bool goesOn(const Battery &battery, const Charge &charge) const;
    void confirm(Battery &battery, const Charge &charge);
    void confirmNightCharges(ZELKDate wake);
    void confirmBehindMarks(Battery &battery, const Mark &mark, const Charge &charge);
    void conclude(Battery &battery, const Mark &mark, const Charge &charge);
    Unknown doubt(const Battery &battery, const Mark &mark, const Charge &charge) const;
    bool isSilent(const Battery &battery, const Mark &mark, const Charge &charge) const;
    void notePower(const Battery &battery, const Mark &mark, const Charge &charge);
    void count(Battery &battery, const Mark &mark, const Charge &charge);
    void countAwake(Battery &battery, ZELKDate from, ZELKDate to, double seconds) const;
    ZELKDate sleepSince(const Mark &mark) const { return m_marks.sleeps()[mark.sleeps].start; }
    ZELKDate wakeUpTo(const Mark &mark) const { return m_marks.sleeps()[mark.sleeps - 1].end; }
    double secondsAwake(const Mark &before, const Mark &after) const;

    const ZELKStringPool &m_texts;
    ZELKDate m_from;
    ZELKDate m_to;
    ZELKSleepMarks m_marks;
    ZELKTextNumbering m_numbering; ///< of the batteries
    std::vector<Battery> m_batteries;
    ZELKSleepFindings m_findings;
    /// How many sleeps there were when a battery inside was last found on battery behind one.
    std::uint32_t m_drainedBehind = 0;
};

// In the header's sight, as a log has a million readings.

inline void ZELKSleepCostTracker::addState(Id state, ZELKDate date)
{
    const bool wasAsleep = m_marks.isAsleep();
    m_marks.addState(state, date);
    if (wasAsleep && !m_marks.isAsleep())
        confirmNightCharges(date);
}

inline void ZELKSleepCostTracker::confirm(Battery &battery, const Charge &charge)
{
    const Mark &mark = m_marks.markFor(charge.date);
    if (mark.isAsleep)
        battery.chargeAsleep(charge);
    else if (!battery.isKnown || mark.number != battery.mark.number)
        confirmBehindMarks(battery, mark, charge);
    else if (goesOn(battery, charge))
        battery.drain(charge);
    else
        battery.stand(charge);
}

/// Whether the drain awake that is under way, and is counted, extends to another charge. Several points at
/// once behind a long silence are not what a watcher tells who is there.
inline bool ZELKSleepCostTracker::goesOn(const Battery &battery, const Charge &charge) const
{
    const int fall = battery.last.percentage - charge.percentage;
    return battery.last.isOnBattery && charge.isOnBattery && fall >= 0 && battery.last.date >= m_from &&
           charge.date <= m_to &&
           (fall <= 2 || charge.date.timeIntervalSinceDate(battery.last.date) <= longestSilence);
}
