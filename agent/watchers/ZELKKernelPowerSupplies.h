#pragma once

#include "ZELKPowerSupply.h"

/// Power supplies as the kernel describes them in /sys/class/power_supply.
namespace ZELKKernelPowerSupplies {

/// The batteries and uninterruptible supplies in `folder`, by name. Batteries of mice and the like (scope
/// "Device") are none of this computer's.
std::vector<ZELKPowerSupply> read(const QString &folder);

/// False for a battery whose folder is gone, or whose bay the kernel says to be empty.
bool isThere(const QString &path);

} // namespace ZELKKernelPowerSupplies
