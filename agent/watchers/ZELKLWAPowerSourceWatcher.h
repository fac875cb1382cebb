#pragma once

#include "ZELKLWAPowerSupplyWatcher.h"
#include "ZELKLWAUPowerWatcher.h"
#include "ZELKLWAWatcher.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>

#include <memory>

/// Records the computer's power sources, by UPower while it is on the bus, by a regular reading from the
/// kernel while it is not. Which of them reads, shows in no event.
class ZELKLWAPowerSourceWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    /// `powerSupplyFolder` is the kernel's /sys/class/power_supply. A bus without connection is one without
    /// UPower. `names` keeps the sources' names, and outlives this; without it they are given anew.
    ZELKLWAPowerSourceWatcher(const QDBusConnection &systemBus, const QString &powerSupplyFolder,
                              ZELKLWAEventSink sink, ZELKPowerSourceNameMemory *names = nullptr,
                              QObject *parent = nullptr);

    /// Has the bus start UPower, once, where it can: who asks nothing of it would else never see it.
    void start() override;
    void stop() override;

    /// Seconds between two readings from the kernel, 60 unless set. UPower needs none.
    void setInterval(int seconds);
    /// Where UPower's settings are; the usual place unless set.
    void setConfigurationFile(const QString &file);

public Q_SLOTS:
    /// Nothing that was read before `wake` is recorded from now on.
    void systemDidWake(ZELKDate wake);
    /// The bus went away, or there is another: like UPower that leaves and comes.
    void setBus(const QDBusConnection &systemBus);

private:
    enum class Reader { None, UPower, Kernel };
    void lookForUPower();
    void startUPower();
    void use(Reader reader);

    QDBusConnection m_bus;
    std::shared_ptr<ZELKPowerSourceLedger> m_ledger;
    ZELKLWAUPowerWatcher m_uPower;
    ZELKLWAPowerSupplyWatcher m_kernel;
    QDBusServiceWatcher m_services;
    /// Receives the answers of the bus; goes with stop().
    std::unique_ptr<QObject> m_session;
    Reader m_reader = Reader::None;
};
