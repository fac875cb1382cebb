#pragma once

#include "ZELKLWAEvent.h"

#include <cstddef>
#include <string_view>

/// What UPower keeps of one battery: files of lines "SECONDS-SINCE-1970 tab VALUE tab STATE".
///
/// Each line of the charge is told as a reading. The other files have lines at moments of their own; where
/// one of them has another state than the charge had last, that is told too, for the charge is not written
/// when only the charger came or went. A line "0.000 unknown" opens each run of the daemon and is no reading:
/// until the next line of the charge nothing is known. So each event depends on lines that are near it, and
/// stays the same when older ones have been dropped.
struct ZELKUPowerHistory
{
    QByteArray charge;      ///< percent
    QByteArray rate;        ///< only its states count
    QByteArray timeToEmpty; ///< seconds
    QByteArray timeToFull;  ///< seconds

    struct Told
    {
        /// In ascending order of dates.
        std::vector<ZELKLWAEvent> events;
        /// Lines that are none of UPower's.
        std::size_t garbage = 0;
    };
    /// "Power state changed" for a battery that goes by `name`. Estimates are told where they stand at the
    /// very second of a reading.
    Told told(const QString &name) const;
};
