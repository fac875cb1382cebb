#pragma once

#include "ZELKDate.h"
#include "ZELKStringPool.h"

class ZELKLWCLogEntryPowerStatus;

/// What statistics take from a power-status entry, read once.
struct ZELKBatteryReading
{
    using Id = ZELKStringPool::Id;

    /// The entry must outlive the reading. Name and power source are the entry's, read already.
    ZELKBatteryReading(const ZELKLWCLogEntryPowerStatus &power, Id batteryName, Id powerSource);
    explicit ZELKBatteryReading(const ZELKLWCLogEntryPowerStatus &power);

    const ZELKLWCLogEntryPowerStatus *entry;
    Id name; ///< nil for a source without a name
    Id source;
    int percentage;
    ZELKDate date;
    ZELKDate finalDate; ///< of the last duplicate
    bool hasDuplicates;
};
