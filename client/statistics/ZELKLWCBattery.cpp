#include "ZELKLWCBattery.h"

#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"

#include <algorithm>
#include <cmath>

void ZELKLWCBattery::addCapacity(int percentage, ZELKDate date)
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

void ZELKLWCBattery::addStep(float percentage, ZELKDate date)
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

float ZELKLWCBattery::averageCapacity() const
{
    return m_count < 1 ? 0.0F : float(m_totalCapacity / m_count);
}

QString ZELKLWCBattery::description() const
{
    return ZELKFormat("%.1f:%.1f:%.1f", {m_maximumCapacity, averageCapacity(), m_minimumCapacity});
}

ZELKDictionary ZELKLWCBattery::infoDictionary() const
{
    ZELKDictionary info{{QStringLiteral("Minimum"), m_minimumCapacity},
                        {QStringLiteral("Average"), averageCapacity()},
                        {QStringLiteral("Maximum"), m_maximumCapacity}};
    if (m_delta.delta() > 0.0)
        info.insert(QStringLiteral("% Delta"),
                    ZELKLWCDuration::durationWithTimeInterval(double(m_delta.deltaPerMinute())).toVariant());
    return info;
}
