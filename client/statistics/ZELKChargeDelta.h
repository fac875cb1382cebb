#pragma once

/// How much a charge changed, and how long that took: two sums. A plain value.
class ZELKChargeDelta
{
public:
    /// Nothing yet.
    static constexpr ZELKChargeDelta chargeDelta() { return {}; }

    /// Percentage points, and the seconds over which they came or went.
    constexpr void addDelta(double points, double seconds)
    {
        m_delta += points;
        m_timeInterval += seconds;
    }
    /// Seconds for each percentage point, whatever the name says: those who ask make a duration of it. Not a
    /// number, or infinite, while nothing changed: ask only when something did.
    constexpr float deltaPerMinute() const { return float(m_timeInterval / m_delta); }

    constexpr double delta() const { return m_delta; }
    constexpr void setDelta(double points) { m_delta = points; }
    constexpr double timeInterval() const { return m_timeInterval; }
    constexpr void setTimeInterval(double seconds) { m_timeInterval = seconds; }

    friend constexpr bool operator==(const ZELKChargeDelta &, const ZELKChargeDelta &) = default;

private:
    double m_delta = 0.0;
    double m_timeInterval = 0.0;
};
