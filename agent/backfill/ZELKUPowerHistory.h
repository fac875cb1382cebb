#pragma once

#include "ZELKLWAEvent.h"

#include <QByteArray>

#include <cstddef>
#include <optional>

/// What UPower told of a battery at one moment.
struct ZELKUPowerReading
{
    enum class State { Unknown, Charging, Discharging, Empty, Full, PendingCharge, PendingDischarge };

    qint64 seconds = 0; ///< since 1970
    int percent = 0;
    State state = State::Unknown;
    /// Until it is empty, or full, as the state has it.
    std::optional<int> minutes;

    /// "Power state changed" for a battery that goes by `name`.
    ZELKLWAEvent event(const QString &name) const;

    friend bool operator==(const ZELKUPowerReading &, const ZELKUPowerReading &) = default;
};

/// What UPower keeps of one battery: files of lines "SECONDS-SINCE-1970 tab VALUE tab STATE".
///
/// Each line of the charge is a reading. The other files have lines at moments of their own; where
/// one of them has another state than the charge had last, that is told too, for the charge is not written
/// when only the charger came or went. A line "0.000 unknown" opens each run of the daemon and is no reading:
/// until the next line of the charge nothing is known. So each reading depends on lines that are near it, and
/// stays the same when older ones have been dropped.
struct ZELKUPowerHistory
{
    QByteArray charge;      ///< percent
    QByteArray rate;        ///< only its states count
    QByteArray timeToEmpty; ///< seconds
    QByteArray timeToFull;  ///< seconds

    /// In ascending order of dates. Estimates are told where they stand at the very second of a reading.
    /// Counts in `garbage` the lines that are none of UPower's.
    std::vector<ZELKUPowerReading> readings(std::size_t &garbage) const;
};
