#pragma once

#include "ZELKStringPool.h"

/// Numbers that the state words and the event names with rules of their own have in every entry arena's pool.
namespace ZELKEntryWords {

enum Word : ZELKStringPool::Id {
    Monitored = 1,
    Unmonitored,
    Awake,
    Asleep,
    On,
    Off,
    StartingMonitor,
    StoppingMonitor,
    CanSystemSleep,
    SystemWillNotSleep,
    SystemWillSleep,
    SystemHasPoweredOn,
    Startup,
    AccountingBoot,
    AccountingShutDown,
    PowerStateChanged,
    last = PowerStateChanged
};

/// Takes the words up into a pool that is still empty.
void internAll(ZELKStringPool &pool);

} // namespace ZELKEntryWords
