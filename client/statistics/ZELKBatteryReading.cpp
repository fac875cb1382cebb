#include "ZELKBatteryReading.h"

#include "ZELKLWCLogEntryPowerStatus.h"

namespace {

ZELKStringPool::Id textId(const ZELKLWCLogEntry &entry, ZELKPackedProperties::Key key)
{
    return entry.arena().properties().textId(entry.packedProperties(), key);
}

} // namespace

ZELKBatteryReading::ZELKBatteryReading(const ZELKLWCLogEntryPowerStatus &power, Id batteryName,
                                       Id powerSource)
    : entry(&power)
    , name(batteryName)
    , source(powerSource)
    , percentage(power.percentageCharged())
    , date(power.date())
    , finalDate(power.finalDate())
    , hasDuplicates(finalDate != date || !power.duplicates().isEmpty())
{
}

ZELKBatteryReading::ZELKBatteryReading(const ZELKLWCLogEntryPowerStatus &power)
    : ZELKBatteryReading(power, textId(power, ZELKPackedProperties::Name),
                         textId(power, ZELKPackedProperties::PowerSourceState))
{
}
