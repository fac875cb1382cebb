#pragma once

#include "ZELKDate.h"

/// One moment on the three clocks that tell a sleep from the time awake.
struct ZELKMoment
{
    /// The wall clock, which anybody may set.
    ZELKDate date;
    /// Seconds the machine was awake since its boot (CLOCK_MONOTONIC).
    double awake = 0.0;
    /// Seconds it was suspended since its boot (CLOCK_BOOTTIME less CLOCK_MONOTONIC). Grows with a suspend
    /// and with nothing else; no setting of the wall clock touches it.
    double suspended = 0.0;
};

/// The kernel's two clocks. Injected, so that a test can let a machine sleep.
class ZELKSuspendClock
{
public:
    virtual ~ZELKSuspendClock() = default;
    /// Fills in `awake` and `suspended` at `date`.
    virtual ZELKMoment read(ZELKDate date) const = 0;
};

class ZELKSystemSuspendClock final : public ZELKSuspendClock
{
public:
    ZELKMoment read(ZELKDate date) const override;
};
