#pragma once

#include "ZELKDate.h"
#include "ZELKPowerSupply.h"
#include "ZELKUPowerLevels.h"

#include <QString>
#include <QVariantMap>

#include <map>
#include <optional>
#include <vector>

/// What UPower has told of its devices, and the readings of this computer's batteries and uninterruptible
/// supplies that follow from it. Knows nothing of the bus.
class ZELKUPowerDevices
{
public:
    /// `powerSupplyFolder` is where the kernel shows the batteries of which UPower gives only the name.
    explicit ZELKUPowerDevices(const QString &powerSupplyFolder)
        : m_folder(powerSupplyFolder)
    {
    }

    /// Forgets everything but the wake.
    void clear();
    void setLevels(const ZELKUPowerLevels &levels) { m_levels = levels; }
    /// All properties of a device, by its object path. False when it is none of the computer's supplies, as
    /// the battery of a mouse: it is left out.
    bool setDevice(const QString &path, const QVariantMap &properties);
    /// Some of them. False, and nothing done, for a device that is not known.
    bool changeDevice(const QString &path, const QVariantMap &changes);
    /// False for a device that was not known.
    bool removeDevice(const QString &path);
    /// What the daemon says of the computer; counts where no mains is known. True when that is new.
    bool setOnBattery(std::optional<bool> onBattery);

    /// From now on readings that UPower took before `wake` are not current. `now` before it means that the
    /// clock was set back: then the ages of readings say nothing.
    void systemDidWake(ZELKDate wake) { m_wake = wake; }

    /// By the kernel's names.
    std::vector<ZELKPowerSupply> supplies(ZELKDate now) const;
    std::vector<QString> paths() const;

private:
    /// How long after the wake a battery was read, for mains that were not read since to be taken as they
    /// are: UPower reads all of them at once when it learns of a wake, and the kernel tells of changes.
    static constexpr double secondsToReadMains = 10.0;

    struct Mains
    {
        std::optional<bool> online;
        bool isCurrent = true; ///< each has been read since the wake
    };
    ZELKPowerSupply supplyOf(const QVariantMap &properties) const;
    Mains mains() const;
    bool wasReadSince(const QVariantMap &properties, double secondsAfterWake) const;

    QString m_folder;
    ZELKUPowerLevels m_levels;
    std::map<QString, QVariantMap> m_devices; ///< by object path
    std::optional<bool> m_onBattery;
    std::optional<ZELKDate> m_wake;
};
