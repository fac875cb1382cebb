#include "ZELKPowerSourceLedger.h"

#include "ZELKKernelPowerSupplies.h"
#include "ZELKRawEvent.h"

#include <algorithm>

namespace {

ZELKDictionary withoutEstimates(ZELKDictionary properties)
{
    properties.remove(ZELKPropertyTimeToEmpty);
    properties.remove(ZELKPropertyTimeToFullCharge);
    return properties;
}

bool agree(const ZELKDictionary &one, const ZELKDictionary &other)
{
    const auto keys = {ZELKPropertyIsPresent, ZELKPropertyIsCharging, ZELKPropertyCurrentCapacity,
                       ZELKPropertyPowerSourceState};
    return std::all_of(keys.begin(), keys.end(),
                       [&](QLatin1String key) { return one.value(key) == other.value(key); });
}

bool contains(const std::vector<ZELKPowerSupply> &supplies, const QString &device)
{
    return std::any_of(supplies.begin(), supplies.end(),
                       [&](const ZELKPowerSupply &supply) { return supply.device == device; });
}

ZELKLWAEvent eventOf(const ZELKDictionary &properties, ZELKDate now)
{
    return {now, ZELKEventPowerStateChanged, ZELKMonitorPowerSource, ZELKPropertiesText(properties)};
}

} // namespace

ZELKPowerSourceLedger::ZELKPowerSourceLedger(ZELKPowerSourceNameMemory *names)
    : m_names(names)
{
}

void ZELKPowerSourceLedger::readerDidChange()
{
    for (auto &entry : m_known)
        entry.second.byOtherReader = true;
}

std::vector<ZELKLWAEvent> ZELKPowerSourceLedger::eventsFor(const std::vector<ZELKPowerSupply> &supplies,
                                                           ZELKDate now)
{
    std::vector<ZELKLWAEvent> events;
    for (const ZELKPowerSupply &supply : supplies)
        if (supply.isCurrent)
            if (const auto properties = news(supply))
                events.push_back(eventOf(*properties, now));
    for (auto &[device, known] : m_known)
        if (known.isPresent && !contains(supplies, device) && !ZELKKernelPowerSupplies::isThere(known.path))
            events.push_back(eventOf(leave(known), now));
    return events;
}

/// Nothing when the reading adds nothing to what was told: as for an empty bay.
std::optional<ZELKDictionary> ZELKPowerSourceLedger::news(const ZELKPowerSupply &supply)
{
    const auto before = m_known.find(supply.device);
    const bool known = before != m_known.end();
    if (!supply.isPresent && (!known || !before->second.isPresent))
        return std::nullopt;
    const bool otherReader = known && before->second.byOtherReader;
    const ZELKDictionary properties = named(supply.isPresent ? supply : leaving(supply), otherReader);
    const ZELKDictionary lasting = withoutEstimates(properties);
    const bool old =
        known && (otherReader ? agree(before->second.told, lasting) : before->second.told == lasting);
    m_known[supply.device] = {lasting, supply.path, supply.isPresent};
    return old ? std::nullopt : std::optional(properties);
}

ZELKDictionary ZELKPowerSourceLedger::named(const ZELKPowerSupply &supply, bool otherReader)
{
    ZELKDictionary result{{ZELKPropertyName, m_names.nameFor(supply, otherReader)}};
    for (const auto &[key, value] : supply.properties())
        result.insert(key, value);
    return result;
}

/// It leaves with the charge that it was known to have: an empty bay has none.
ZELKPowerSupply ZELKPowerSourceLedger::leaving(ZELKPowerSupply supply) const
{
    const ZELKDictionary &told = m_known.at(supply.device).told;
    supply.percent = told.contains(ZELKPropertyCurrentCapacity)
                         ? std::optional(told.value(ZELKPropertyCurrentCapacity).toDouble())
                         : std::nullopt;
    return supply;
}

ZELKDictionary ZELKPowerSourceLedger::leave(Known &known)
{
    known.isPresent = false;
    known.told.insert(ZELKPropertyIsPresent, false);
    known.told.insert(ZELKPropertyIsCharging, false);
    return known.told;
}
