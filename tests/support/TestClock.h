#pragma once

#include "ZELKClock.h"
#include "ZELKSuspendClock.h"

/// A machine whose sleep the test tells.
class TestClock : public ZELKClock, public ZELKSuspendClock
{
public:
    /// Starts at `seconds` since 1970.
    explicit TestClock(double seconds = 1700000000.0)
        : m_now{ZELKDate::fromSecondsSince1970(seconds), 50.0, 5.0}
    {
    }
    ZELKDate now() const override { return m_now.date; }
    ZELKMoment read(ZELKDate date) const override { return {date, m_now.awake, m_now.suspended}; }
    void pass(double awake, double suspended)
    {
        m_now.date = m_now.date.addingTimeInterval(awake + suspended);
        m_now.awake += awake;
        m_now.suspended += suspended;
    }

    void boot() { m_now.awake = m_now.suspended = 0.0; }

private:
    ZELKMoment m_now;
};
