#include "ZELKLWAPowerSupplyWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKRawEvent.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr int secondsBetweenReadings = 60;

ZELKDictionary withoutEstimates(ZELKDictionary properties)
{
    properties.remove(ZELKPropertyTimeToEmpty);
    properties.remove(ZELKPropertyTimeToFullCharge);
    return properties;
}

ZELKDictionary named(const QString &name, const ZELKDictionary &properties)
{
    ZELKDictionary result{{ZELKPropertyName, name}};
    for (const auto &[key, value] : properties)
        result.insert(key, value);
    return result;
}

} // namespace

ZELKLWAPowerSupplyWatcher::ZELKLWAPowerSupplyWatcher(const QString &folder, ZELKLWAEventSink sink,
                                                     QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_folder(folder)
{
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    setInterval(secondsBetweenReadings);
    connect(&m_timer, &QTimer::timeout, this, [this] { zelkGuard([&] { readNow(); }); });
}

void ZELKLWAPowerSupplyWatcher::start()
{
    m_known.clear();
    readNow();
    m_timer.start();
}

void ZELKLWAPowerSupplyWatcher::stop()
{
    m_timer.stop();
}

void ZELKLWAPowerSupplyWatcher::setInterval(int seconds)
{
    m_timer.setInterval(std::chrono::seconds(seconds));
}

void ZELKLWAPowerSupplyWatcher::readNow()
{
    std::vector<ZELKPowerSupply> supplies = ZELKPowerSupply::readAll(m_folder);
    markMissing(supplies);
    const ZELKDate now = ZELKEnvironment::current().clock->now();
    std::vector<ZELKLWAEvent> events;
    for (const ZELKPowerSupply &supply : supplies) {
        const auto known = m_known.find(supply.device);
        if (!supply.isPresent && known == m_known.end())
            continue; // an empty bay
        const ZELKDictionary properties = named(nameFor(supply), supply.properties);
        const ZELKDictionary lasting = withoutEstimates(properties);
        if (known != m_known.end() && known->second == lasting)
            continue;
        m_known[supply.device] = lasting;
        events.push_back(
            {now, ZELKEventPowerStateChanged, ZELKMonitorPowerSource, ZELKPropertiesText(properties)});
    }
    record(events);
}

/// Adds, as not present, the batteries whose folders are gone.
void ZELKLWAPowerSupplyWatcher::markMissing(std::vector<ZELKPowerSupply> &supplies) const
{
    for (const auto &known : m_known) {
        const QString &device = known.first;
        const bool there = std::any_of(supplies.begin(), supplies.end(), [&](const ZELKPowerSupply &supply) {
            return supply.device == device;
        });
        if (there)
            continue;
        ZELKPowerSupply missing;
        missing.device = device;
        missing.properties = known.second;
        missing.properties.insert(ZELKPropertyIsPresent, false);
        missing.properties.insert(ZELKPropertyIsCharging, false);
        supplies.push_back(missing);
    }
}

/// A battery goes by its model, which names it to people; a second one of that model by the kernel's name as
/// well. One that left keeps the name it had.
QString ZELKLWAPowerSupplyWatcher::nameFor(const ZELKPowerSupply &supply)
{
    const QString before = m_names.value(supply.device);
    if (!supply.isPresent && !before.isEmpty())
        return before;
    const QString plain = supply.model.isEmpty() ? supply.device : supply.model;
    const QString full = QStringLiteral("%1 (%2)").arg(plain, supply.device);
    if (before == plain || before == full)
        return before;
    return m_names[supply.device] = isInUse(plain, supply.device) ? full : plain;
}

bool ZELKLWAPowerSupplyWatcher::isInUse(const QString &name, const QString &device) const
{
    for (auto other = m_names.begin(); other != m_names.end(); ++other)
        if (other.key() != device && other.value() == name)
            return true;
    return false;
}
