#pragma once

#include "ZELKDictionary.h"

#include <QString>

#include <optional>
#include <vector>

/// One reading of a battery or uninterruptible supply of this computer, whoever read it. What a reader could
/// not tell stays empty.
struct ZELKPowerSupply
{
    enum class Status { Unknown, Charging, Discharging, Resting };

    /// The kernel's name, by which every reader knows it: "BAT0".
    QString device;
    /// Where the kernel shows it.
    QString path;
    /// As the kernel or the daemon gives it; may hold anything.
    QString model;
    bool isPresent = false;
    /// False for one that is there, but whose reading is too old to be believed.
    bool isCurrent = true;
    Status status = Status::Unknown;
    /// Of one that is not present, a reader can not tell: what was known last, or nothing.
    std::optional<double> percent;
    std::optional<double> secondsToEmpty;
    std::optional<double> secondsToFull;
    std::optional<double> lowWarnPercent;
    std::optional<double> shutdownPercent;
    /// What the computer runs on: a value of "Power Source State".
    QString sourceState;

    /// The property keys of a power source but for its name; what is not known is left out. Percentages are
    /// whole and within 0 and 100, times are in minutes.
    ZELKDictionary properties() const;
    /// Its model, which names it to people; without one the kernel's name.
    QString plainName() const;

    /// Tells each of the computer's supplies what it runs on: what the mains say (nothing, when no mains is
    /// known), else what the batteries do.
    static void setSourceStates(std::vector<ZELKPowerSupply> &supplies, std::optional<bool> mains);
};
