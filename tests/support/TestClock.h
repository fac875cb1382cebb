#pragma once

#include "ZELKClock.h"
#include "ZELKSuspendClock.h"

/// A machine whose sleep the test tells.
class TestClock : public ZELKClock, public ZELKSuspendClock
{
public:
    ZELKDate now() const override { return m_now.date; }
    ZELKMoment read(ZELKDate date) const override { return {date, m_now.awake, m_now.suspended}; }
    void pass(double awake, double suspended)
    {
        m_now.date = m_now.date.addingTimeInterval(awake + suspended);
        m_now.awake += awake;
        m_now.suspended += suspended;
    }

private:
    ZELKMoment m_now{ZELKDate::fromSecondsSince1970(1700000000.0), 50.0, 5.0};
};
