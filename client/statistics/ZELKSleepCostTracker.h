#pragma once

#include "ZELKBatteryReading.h"
#include "ZELKSleepCosts.h"
#include "ZELKSleepMarks.h"
#include "ZELKTextNumbering.h"

#include <array>
#include <vector>

class ZELKLWCLogEntry;

/// Finds what each sleep cost, while the entries of a log are played into it in ascending order of their
/// dates. It needs all entries of the time, and some of the time before and behind: a charger or a gap that
/// it is not shown cannot stop it.
///
/// A battery's charge is recorded when it changes, so that its last reading holds up to the next; but no
/// longer than `longestSilence` before and behind a sleep, in case it does not.
class ZELKSleepCostTracker
{
public:
    using Id = ZELKStringPool::Id;

    static constexpr double longestSilence = 3600.0; ///< seconds

    /// Counted are the sleeps that end, and the drains that begin and end, from one date to the other.
    /// `texts` is the entries' pool, and outlives this object. `expected` is how many entries there may be.
    ZELKSleepCostTracker(const ZELKStringPool &texts, ZELKDate from, ZELKDate to, std::size_t expected = 0);

    void addEntry(const ZELKLWCLogEntry &entry);
    /// The same for one whose values have been read already. A daemon's entry is a break; `state` may be nil.
    void addBreak(ZELKDate date) { m_marks.addBreak(date); }
    void addState(Id state, ZELKDate date)
    {
        if (state != ZELKStringPool::nil)
            beginState(state, date);
    }
    void addReading(const ZELKBatteryReading &reading);

    /// What was found. Nothing can be added afterwards.
    ZELKSleepCosts costs();

private:
    using Unknown = ZELKSleepCosts::Unknown;

    /// A charge that a battery is known to have had at a moment.
    struct Charge
    {
        ZELKDate date;
        int percentage = 0;
        bool isOnBattery = false;
    };
    struct Battery
    {
        const ZELKLWCLogEntryPowerStatus *entry = nullptr; ///< the latest
        ZELKDate entryFinalDate;
        int entryPercentage = 0;
        bool entryIsOnBattery = false;
        /// The latest entry has duplicates that are not counted yet: the marks up to them come first.
        bool isRepeated = false;
        bool isKnown = false;                 ///< `last` and what follows
        bool hadPower = false;                ///< since `last`
        int lowest = 0;                       ///< since `last`
        Charge last{ZELKDate::distantPast()}; ///< while awake
        /// From here to `last` the computer was awake, and the charge fell without power from outside.
        Charge awakeFrom{ZELKDate::distantPast()};
        std::size_t mark = 0; ///< the last one that counts for it
        ZELKSleepCosts::Drain asleep;
        ZELKSleepCosts::Drain awake;
    };
    struct NightCharge
    {
        std::size_t battery;
        Charge charge;
    };

    void beginState(Id state, ZELKDate date);
    bool isOnBattery(const Battery &battery, const ZELKBatteryReading &reading) const;
    void countDuplicates(Battery &battery);
    void confirm(Battery &battery, const Charge &charge);
    void confirmBehindMarks(Battery &battery, const Charge &charge);
    void chargeAsleep(Battery &battery, const Charge &charge);
    void conclude(Battery &battery, std::size_t mark, const Charge &charge);
    static void endAwake(Battery &battery);
    bool goesOn(const Battery &battery, const Charge &charge) const;
    Unknown doubt(const Battery &battery, std::size_t mark, const Charge &charge) const;
    bool isSilent(const Battery &battery, std::size_t mark, ZELKDate date) const;
    void count(Battery &battery, std::size_t mark, const Charge &charge);
    void setUnknown(Unknown unknown, std::uint32_t first, std::uint32_t end);
    std::uint32_t firstCounted() const;
    std::uint32_t countedEnd() const;

    const ZELKStringPool &m_texts;
    ZELKDate m_from;
    ZELKDate m_to;
    Id m_batteryPower;
    ZELKSleepMarks m_marks;
    ZELKTextNumbering m_numbering; ///< of the batteries
    std::vector<Battery> m_batteries;
    /// Read in a sleep at its latest moment, which may turn out to be that of the wake.
    std::vector<NightCharge> m_nightCharges;
    std::vector<ZELKSleepCosts::Cost> m_costs;
    /// For each reason where it begins (+1) and ends (-1) to hold, by the number of the sleep.
    std::array<std::vector<int>, ZELKSleepCosts::unknownCount> m_unknown;
};
