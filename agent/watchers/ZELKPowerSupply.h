#pragma once

#include "ZELKDictionary.h"

#include <QString>

#include <vector>

/// A battery or uninterruptible supply of this computer, as the kernel describes it in a folder of
/// /sys/class/power_supply. Batteries of mice and the like (scope "Device") are none of ours.
struct ZELKPowerSupply
{
    /// The kernel's name: "BAT0".
    QString device;
    /// Empty when the kernel does not know it, as for a bay without a battery.
    QString model;
    bool isPresent = false;
    /// The property keys of a power source but for its name; what cannot be told is left out.
    ZELKDictionary properties;

    /// Those in `folder`, by name. Attributes that are missing, unreadable or no numbers count as not given.
    static std::vector<ZELKPowerSupply> readAll(const QString &folder);
};
