#pragma once

#include "ZELKUPowerHistory.h"

#include <QStringList>

class ZELKPowerSourceNameMemory;

/// UPower's folder of history files, "history-KIND-BATTERY.dat" where BATTERY is "MODEL-DESIGN-SERIAL" with a
/// "_" for what a file's name should not have. Other devices, a mouse for one, have no design capacity in
/// their names and are left out.
class ZELKUPowerFolder
{
public:
    static constexpr qint64 longestFile = 1 << 20;

    /// `powerSupply` is the kernel's /sys/class/power_supply: a battery that is there goes by the name that
    /// `names` has for it. One that has none yet gets it here: the model that the kernel tells, a second one
    /// of the model with its device. Others go by what the file's name has of their model. Without `names`,
    /// which need not outlive this, all are named anew.
    ZELKUPowerFolder(const QString &path, const QString &powerSupply,
                     ZELKPowerSourceNameMemory *names = nullptr);

    /// As the files' names have them, in their order.
    QStringList batteries() const;
    QString nameOf(const QString &battery) const;
    /// The history of one battery, of files that are too long their end. Lines that are none of UPower's are
    /// one console line.
    std::vector<ZELKUPowerReading> readings(const QString &battery) const;

private:
    struct Known
    {
        QString model;
        QString serial;
        QString name;

        bool isBattery(const QString &battery) const;
    };

    QByteArray file(const char *kind, const QString &battery) const;

    QString m_path;
    std::vector<Known> m_known;
};
