#pragma once

#include "ZELKDate.h"
#include "ZELKLWAWatcher.h"
#include "ZELKPowerSourceLedger.h"
#include "ZELKUPowerDevices.h"
#include "ZELKUPowerPort.h"

#include <QTimer>

#include <memory>

/// "Power state changed" for each battery and uninterruptible supply that UPower knows of: once at start,
/// then whenever UPower tells of a change in more than the time estimates. A battery that leaves is told of
/// as not present. It sleeps while UPower says nothing.
class ZELKLWAUPowerWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    /// The kernel may show a battery a little longer than UPower does, and what it shows has not left.
    static constexpr int millisecondsToLeave = 1000;

    /// `powerSupplyFolder` is the kernel's /sys/class/power_supply.
    ZELKLWAUPowerWatcher(const QDBusConnection &systemBus, const QString &powerSupplyFolder,
                         ZELKLWAEventSink sink, std::shared_ptr<ZELKPowerSourceLedger> ledger,
                         QObject *parent = nullptr);

    /// Where UPower's settings are; ZELKUPowerLevels::usualFile unless set.
    void setConfigurationFile(const QString &file) { m_configurationFile = file; }
    /// UPower must be on the bus; whoever knows when it comes and goes starts and stops this.
    void start() override;
    void stop() override;
    /// Stops, and is to be started anew on this one.
    void setBus(const QDBusConnection &systemBus);

public Q_SLOTS:
    /// Readings from before `wake` are held back, and UPower is asked for newer ones.
    void systemDidWake(ZELKDate wake);

Q_SIGNALS:
    /// UPower is there but does not answer; the watcher has stopped.
    void didFail();

private:
    void connectPort();
    void takeDevice(const QString &path, const QVariantMap &properties);
    void tell();

    std::shared_ptr<ZELKPowerSourceLedger> m_ledger;
    QString m_configurationFile = QString::fromLatin1(ZELKUPowerLevels::usualFile);
    ZELKUPowerDevices m_devices;
    ZELKUPowerPort m_port;
    bool m_isComplete = false; ///< every device has been told
    /// When a device has left; no other time.
    QTimer m_secondLook;
};
