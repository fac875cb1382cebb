#pragma once

#include <QString>

#include <optional>

/// At what charge UPower warns, and at what charge it puts the computer to sleep or off. It tells nobody on
/// the bus; its configuration does.
struct ZELKUPowerLevels
{
    std::optional<double> lowPercent;
    std::optional<double> actionPercent;

    static constexpr char usualFile[] = "/etc/UPower/UPower.conf";

    /// Empty where the file is missing, where UPower goes by the remaining time, and, for the action, where
    /// it takes none.
    static ZELKUPowerLevels read(const QString &file);

    friend bool operator==(const ZELKUPowerLevels &, const ZELKUPowerLevels &) = default;
};
