#pragma once

#include "ZELKKernelEvents.h"
#include "ZELKLWAWatcher.h"
#include "ZELKPoweredDevices.h"

#include <map>
#include <memory>

/// "Device powered on" and "Device powering off" for supplies, docks and displays, when the kernel tells of
/// them. The first look only remembers. Properties: "Name" is what people call the device, "Device ID" the
/// kernel's name for it, "Subsystem" the kernel's word for its kind.
class ZELKLWADeviceWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    ZELKLWADeviceWatcher(const ZELKPoweredDevices::Folders &folders, std::unique_ptr<ZELKKernelEvents> events,
                         ZELKLWAEventSink sink, QObject *parent = nullptr);
    /// With the kernel of this machine.
    ZELKLWADeviceWatcher(const ZELKPoweredDevices::Folders &folders, ZELKLWAEventSink sink,
                         QObject *parent = nullptr);

    void start() override;
    void stop() override;

public Q_SLOTS:
    /// What changed while the machine slept, is told now.
    void systemDidWake();

private:
    using Kind = ZELKPoweredDevices::Kind;
    void take(const ZELKKernelEvent &event);
    void look(std::initializer_list<Kind> kinds);
    std::vector<ZELKLWAEvent> changes(Kind kind, ZELKDate now);

    ZELKPoweredDevices m_devices;
    std::unique_ptr<ZELKKernelEvents> m_events;
    std::map<Kind, ZELKPoweredDevices::Devices> m_known;
    bool m_running = false;
};
