#include "ZELKLWADeviceWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKNetlinkKernelEvents.h"
#include "ZELKRawEvent.h"

#include <optional>

namespace {

using Kind = ZELKPoweredDevices::Kind;

constexpr auto allKinds = {Kind::PowerSupply, Kind::Dock, Kind::Display};

const char *subsystemOf(Kind kind)
{
    switch (kind) {
    case Kind::PowerSupply:
        return "power_supply";
    case Kind::Dock:
        return "platform";
    case Kind::Display:
        return "drm";
    }
    return "";
}

/// What an event may have changed; batteries speak often and are nothing to this.
std::optional<Kind> kindOf(const ZELKKernelEvent &event)
{
    const bool isDock = event.devicePath.section(QLatin1Char('/'), -1).startsWith(QLatin1String("dock."));
    if (event.subsystem == QLatin1String("power_supply") &&
        event.property("POWER_SUPPLY_TYPE") != QLatin1String("Battery"))
        return Kind::PowerSupply;
    if (event.subsystem == QLatin1String("dock") || (event.subsystem == QLatin1String("platform") && isDock))
        return Kind::Dock;
    if (event.subsystem == QLatin1String("drm") &&
        (event.action != QLatin1String("change") || event.property("HOTPLUG") == QLatin1String("1")))
        return Kind::Display;
    return std::nullopt;
}

ZELKLWAEvent eventOf(Kind kind, const QString &device, const QString &name, bool isOn, ZELKDate now)
{
    const ZELKDictionary properties{{ZELKPropertyName, name},
                                    {QStringLiteral("Device ID"), device},
                                    {QStringLiteral("Subsystem"), QString::fromLatin1(subsystemOf(kind))}};
    return {now, isOn ? ZELKEventDevicePoweredOn : ZELKEventDevicePoweringOff, ZELKMonitorPowerEvents,
            ZELKPropertiesText(properties)};
}

} // namespace

ZELKLWADeviceWatcher::ZELKLWADeviceWatcher(const ZELKPoweredDevices::Folders &folders,
                                           std::unique_ptr<ZELKKernelEvents> events, ZELKLWAEventSink sink,
                                           QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_devices(folders)
    , m_events(std::move(events))
{
    connect(m_events.get(), &ZELKKernelEvents::received, this,
            [this](const ZELKKernelEvent &event) { zelkGuard([&] { take(event); }); });
    connect(m_events.get(), &ZELKKernelEvents::lost, this, [this] { zelkGuard([&] { look(allKinds); }); });
}

ZELKLWADeviceWatcher::ZELKLWADeviceWatcher(const ZELKPoweredDevices::Folders &folders, ZELKLWAEventSink sink,
                                           QObject *parent)
    : ZELKLWADeviceWatcher(folders, std::make_unique<ZELKNetlinkKernelEvents>(), std::move(sink), parent)
{
}

/// Listens before it looks, so that nothing falls in between.
void ZELKLWADeviceWatcher::start()
{
    if (m_running || !m_events->start())
        return;
    m_running = true;
    for (const Kind kind : allKinds)
        m_known[kind] = m_devices.read(kind);
}

void ZELKLWADeviceWatcher::stop()
{
    m_running = false;
    m_events->stop();
}

void ZELKLWADeviceWatcher::systemDidWake()
{
    look(allKinds);
}

void ZELKLWADeviceWatcher::take(const ZELKKernelEvent &event)
{
    if (const auto kind = kindOf(event))
        look({*kind});
}

void ZELKLWADeviceWatcher::look(std::initializer_list<Kind> kinds)
{
    if (!m_running)
        return;
    checkWake();
    const ZELKDate now = ZELKEnvironment::current().clock->now();
    std::vector<ZELKLWAEvent> events;
    for (const Kind kind : kinds)
        for (ZELKLWAEvent &event : changes(kind, now))
            events.push_back(std::move(event));
    record(events);
}

/// What is off or gone keeps the name that it had while it was on.
std::vector<ZELKLWAEvent> ZELKLWADeviceWatcher::changes(Kind kind, ZELKDate now)
{
    std::vector<ZELKLWAEvent> events;
    ZELKPoweredDevices::Devices seen = m_devices.read(kind);
    ZELKPoweredDevices::Devices &known = m_known[kind];
    for (const auto &[device, before] : known)
        if (before.isOn && !seen[device].isOn)
            events.push_back(eventOf(kind, device, before.name, false, now));
    for (const auto &[device, after] : seen)
        if (after.isOn && !known[device].isOn)
            events.push_back(eventOf(kind, device, after.name, true, now));
    known = std::move(seen);
    return events;
}
