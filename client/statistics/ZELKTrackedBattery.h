#pragma once

#include "ZELKSleepCosts.h"
#include "ZELKSleepMarks.h"

#include <algorithm>
#include <optional>

/// What is known of a battery while entries are played into a tracker of sleeps.
struct ZELKTrackedBattery
{
    /// A charge that it is known to have had at a moment.
    struct Charge
    {
        ZELKDate date;
        int percentage = 0;
        bool isOnBattery = false;
    };

    /// The latest percentage that was read.
    int told() const { return lowest.value_or(last.percentage); }
    void chargeAsleep(const Charge &charge)
    {
        hadPower = hadPower || !charge.isOnBattery || charge.percentage > told();
        lowest = std::min(told(), charge.percentage);
        night = charge;
    }
    /// The drain awake goes on to the charge.
    void drain(const Charge &charge)
    {
        if (!isDraining)
            drainsFrom = last;
        isDraining = true;
        last = charge;
    }
    /// A charge that does not go on from `last`.
    void stand(const Charge &charge)
    {
        endDrain();
        last = charge;
    }
    /// Counts the drain awake up to `last`.
    void endDrain()
    {
        if (!isDraining)
            return;
        isDraining = false;
        awake.points += double(drainsFrom.percentage) - double(last.percentage);
        awake.seconds += last.date.timeIntervalSinceDate(drainsFrom.date);
    }

    bool isInside = false; ///< the computer, where batteries are charged together or not at all
    bool isKnown = false;  ///< `last` and what follows
    bool isDraining = false;
    bool hadPower = false;                 ///< asleep, since `last`
    std::optional<int> lowest;             ///< read asleep, since `last`
    Charge last;                           ///< while awake
    Charge night{ZELKDate::distantPast()}; ///< the latest that was read asleep
    /// From here to `last` the computer was awake, and the charge fell without power from outside.
    Charge drainsFrom;
    ZELKSleepMarks::Mark mark; ///< that counts for `last`
    ZELKSleepCosts::Drain awake;
};
