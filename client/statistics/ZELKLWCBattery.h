#pragma once

#include "ZELKChargeDelta.h"
#include "ZELKDate.h"
#include "ZELKDictionary.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <optional>

/// What a computation learns of one battery from its readings, which are added in ascending order of their
/// dates: extremes, average, and how fast the charge changed. Charges are percentages. A plain value.
///
/// Without any reading the minimum is 101 and the maximum -1, beyond what a charge can be.
class ZELKLWCBattery
{
public:
    explicit ZELKLWCBattery(const QString &name)
        : m_name(name)
    {
    }
    static ZELKLWCBattery batteryWithName(const QString &name) { return ZELKLWCBattery(name); }

    /// One reading. The first has nothing to be measured against and changes no delta; a reading that is
    /// older than the last takes time away.
    void addCapacity(int percentage, ZELKDate date);
    /// The next reading will be the first.
    bool firstCapacity() const { return m_count == 0; }
    /// 0 without readings.
    float averageCapacity() const;
    /// "maximum:average:minimum", one decimal each.
    QString description() const;
    /// "Minimum", "Average", "Maximum", and, once the charge has changed, "% Delta": a ZELKLWCDuration, the
    /// mean time that one percentage point of change took.
    ZELKDictionary infoDictionary() const;

    const QString &name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    float maximumCapacity() const { return m_maximumCapacity; }
    void setMaximumCapacity(float percentage) { m_maximumCapacity = percentage; }
    float minimumCapacity() const { return m_minimumCapacity; }
    void setMinimumCapacity(float percentage) { m_minimumCapacity = percentage; }
    qint32 count() const { return m_count; }
    void setCount(qint32 count) { m_count = count; }
    /// The sum of all readings.
    double totalCapacity() const { return m_totalCapacity; }
    void setTotalCapacity(double sum) { m_totalCapacity = sum; }
    /// Nothing before the first reading.
    std::optional<ZELKDate> lastDate() const { return m_lastDate; }
    void setLastDate(std::optional<ZELKDate> date) { m_lastDate = date; }
    /// -1 before the first reading.
    float lastCapacity() const { return m_lastCapacity; }
    void setLastCapacity(float percentage) { m_lastCapacity = percentage; }
    /// Rises alone, falls alone, and all steps by their size, those of size 0 included.
    const ZELKChargeDelta &chargeDelta() const { return m_chargeDelta; }
    void setChargeDelta(const ZELKChargeDelta &delta) { m_chargeDelta = delta; }
    const ZELKChargeDelta &dischargeDelta() const { return m_dischargeDelta; }
    void setDischargeDelta(const ZELKChargeDelta &delta) { m_dischargeDelta = delta; }
    const ZELKChargeDelta &delta() const { return m_delta; }
    void setDelta(const ZELKChargeDelta &delta) { m_delta = delta; }

    bool operator==(const ZELKLWCBattery &) const = default;

private:
    void addStep(float percentage, ZELKDate date);

    QString m_name;
    float m_maximumCapacity = -1.0F;
    float m_minimumCapacity = 101.0F;
    qint32 m_count = 0;
    double m_totalCapacity = 0.0;
    std::optional<ZELKDate> m_lastDate;
    float m_lastCapacity = -1.0F;
    ZELKChargeDelta m_chargeDelta;
    ZELKChargeDelta m_dischargeDelta;
    ZELKChargeDelta m_delta;
};

// In the header's sight, as a log has a million readings.
inline void ZELKLWCBattery::addCapacity(int percentage, ZELKDate date)
{
    const auto capacity = float(percentage);
    if (firstCapacity())
        m_maximumCapacity = m_minimumCapacity = capacity;
    else
        addStep(capacity, date);
    ++m_count;
    m_totalCapacity += double(percentage);
    m_lastCapacity = capacity;
    m_lastDate = date;
}

inline void ZELKLWCBattery::addStep(float percentage, ZELKDate date)
{
    m_maximumCapacity = std::max(m_maximumCapacity, percentage);
    m_minimumCapacity = std::min(m_minimumCapacity, percentage);
    const double seconds = date.timeIntervalSinceDate(m_lastDate.value_or(date));
    const double fall = double(m_lastCapacity) - double(percentage);
    if (fall > 0.0)
        m_dischargeDelta.addDelta(fall, seconds);
    else if (fall < 0.0)
        m_chargeDelta.addDelta(-fall, seconds);
    m_delta.addDelta(std::abs(fall), seconds);
}
