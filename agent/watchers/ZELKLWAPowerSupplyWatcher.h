#pragma once

#include "ZELKLWAWatcher.h"
#include "ZELKPowerSourceLedger.h"

#include <QTimer>

#include <memory>

/// "Power state changed" for each battery, straight from the kernel: once at start, then whenever a regular
/// reading differs in more than the time estimates. A battery that leaves is told of as not present.
class ZELKLWAPowerSupplyWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    /// `folder` is the kernel's /sys/class/power_supply.
    ZELKLWAPowerSupplyWatcher(const QString &folder, ZELKLWAEventSink sink, QObject *parent = nullptr);
    /// One that takes turns with another reader of the same batteries.
    ZELKLWAPowerSupplyWatcher(const QString &folder, ZELKLWAEventSink sink,
                              std::shared_ptr<ZELKPowerSourceLedger> ledger, QObject *parent = nullptr);

    void start() override;
    void stop() override;
    /// 60 seconds unless set.
    void setInterval(int seconds);

    void readNow();

private:
    QString m_folder;
    QTimer m_timer;
    std::shared_ptr<ZELKPowerSourceLedger> m_ledger;
};
