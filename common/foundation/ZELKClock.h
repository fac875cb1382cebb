#pragma once

#include "ZELKDate.h"

/// Where "now" comes from. Injected, so that a test can stand at any moment.
class ZELKClock
{
public:
    virtual ~ZELKClock() = default;
    virtual ZELKDate now() const = 0;
};

/// The wall clock of the machine.
class ZELKSystemClock final : public ZELKClock
{
public:
    ZELKDate now() const override;
};

/// A clock that stands where it is put.
class ZELKFixedClock final : public ZELKClock
{
public:
    explicit ZELKFixedClock(ZELKDate now = {})
        : m_now(now)
    {
    }
    ZELKDate now() const override { return m_now; }
    void setNow(ZELKDate now) { m_now = now; }
    void advance(double seconds) { m_now = m_now.addingTimeInterval(seconds); }

private:
    ZELKDate m_now;
};
