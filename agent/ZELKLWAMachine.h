#pragma once

#include "ZELKLWAStartupWatcher.h"
#include "ZELKSuspendClock.h"

#include <memory>

/// What the agent asks the kernel itself, beside the sources that options name: how long the machine slept,
/// and when it started. This computer's, unless a test makes up another.
struct ZELKLWAMachine
{
    std::shared_ptr<const ZELKSuspendClock> suspendClock = std::make_shared<ZELKSystemSuspendClock>();
    /// The accounting file is the options' all the same.
    ZELKLWAStartupWatcher::Places kernel = {};
};
