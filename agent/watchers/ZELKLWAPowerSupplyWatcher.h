#pragma once

#include "ZELKLWAWatcher.h"
#include "ZELKPowerSupply.h"

#include <QHash>
#include <QTimer>

#include <map>

/// "Power state changed" for each battery: once at start, then whenever a regular reading differs in more
/// than the time estimates. A battery that leaves is told of as not present.
class ZELKLWAPowerSupplyWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    /// `folder` is the kernel's /sys/class/power_supply.
    ZELKLWAPowerSupplyWatcher(const QString &folder, ZELKLWAEventSink sink, QObject *parent = nullptr);

    void start() override;
    void stop() override;
    /// 60 seconds unless set.
    void setInterval(int seconds);

    void readNow();

private:
    QString nameFor(const ZELKPowerSupply &supply);
    bool isInUse(const QString &name, const QString &device) const;
    void markMissing(std::vector<ZELKPowerSupply> &supplies) const;

    QString m_folder;
    QTimer m_timer;
    /// The last reading told of, by the kernel's name; an entry is made when a battery is first seen present.
    std::map<QString, ZELKDictionary> m_known;
    QHash<QString, QString> m_names;
};
