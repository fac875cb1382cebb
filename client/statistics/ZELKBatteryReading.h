#pragma once

#include "ZELKDate.h"
#include "ZELKStringPool.h"

class ZELKLWCLogEntryPowerStatus;

/// What statistics take from a power-status entry, read once.
struct ZELKBatteryReading
{
    using Id = ZELKStringPool::Id;

    /// `entry` must outlive the reading. `source` is the entry's "Power Source State".
    ZELKBatteryReading(const ZELKLWCLogEntryPowerStatus &power, Id powerSource);
    explicit ZELKBatteryReading(const ZELKLWCLogEntryPowerStatus &power);

    const ZELKLWCLogEntryPowerStatus *entry;
    Id name; ///< nil for a source without a name
    Id source;
    int percentage;
    ZELKDate date;
    ZELKDate finalDate; ///< of the last duplicate
    bool hasDuplicates;
};
