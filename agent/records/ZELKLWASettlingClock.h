#pragma once

#include <QtGlobal>

#include <algorithm>

/// Gives the times at which events settle, in microseconds since 2001-01-01 UTC. They follow the clock as
/// long as it goes forward, and never go back: each lies after those before, and after the requests that were
/// served, since that is what the next requests compare with.
class ZELKLWASettlingClock
{
public:
    /// Larger than what a request loses by way of a double and six decimals.
    static constexpr qint64 smallestStep = 1000;

    qint64 next(qint64 now)
    {
        m_latest = std::max(now, m_latest + smallestStep);
        return m_latest;
    }
    void passed(qint64 time) { m_latest = std::max(m_latest, time); }
    qint64 latest() const { return m_latest; }

private:
    qint64 m_latest = -(qint64(1) << 62);
};
