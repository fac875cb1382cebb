#include "ZELKLWCBattery.h"

#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"

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
