#pragma once

#include <QString>

#include <map>

/// The devices of whose power the kernel tells: supplies that feed the computer from outside, docks, and
/// displays at the connectors of graphics cards.
class ZELKPoweredDevices
{
public:
    /// Where the kernel shows them.
    struct Folders
    {
        QString powerSupply = QStringLiteral("/sys/class/power_supply");
        QString graphics = QStringLiteral("/sys/class/drm");
        QString platform = QStringLiteral("/sys/devices/platform");
    };
    enum class Kind { PowerSupply, Dock, Display };
    struct Device
    {
        QString name; ///< what people call it; else the kernel's name
        bool isOn = false;

        friend bool operator==(const Device &, const Device &) = default;
    };
    using Devices = std::map<QString, Device>; ///< by the kernel's name

    explicit ZELKPoweredDevices(const Folders &folders)
        : m_folders(folders)
    {
    }

    /// A supply is on while it is online, a dock while the computer is in it, a display while it is
    /// connected: whether a connected one shows anything, the kernel does not announce, and it is not guessed
    /// from what a file says at some later moment.
    Devices read(Kind kind) const;

    /// The product's name from a display's identification (EDID); empty when it has none.
    static QString displayName(const QByteArray &identification);

private:
    Devices readSupplies() const;
    Devices readDocks() const;
    Devices readDisplays() const;

    Folders m_folders;
};
