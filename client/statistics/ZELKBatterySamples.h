#pragma once

#include "ZELKBatteryReading.h"
#include "ZELKLWCBattery.h"
#include "ZELKTextNumbering.h"

#include <vector>

/// The batteries that a computation has met, by their names, which are texts of one pool.
class ZELKBatterySamples
{
public:
    /// `texts` outlives this object.
    explicit ZELKBatterySamples(const ZELKStringPool &texts)
        : m_texts(texts)
    {
    }

    /// One reading of the battery of that name, which is made when it is new; and the same again for the last
    /// duplicate, so that the time counts in which the charge stood still. A source without a name is none.
    void add(const ZELKBatteryReading &reading);

    /// In the order in which they were first met.
    const std::vector<ZELKLWCBattery> &batteries() const { return m_batteries; }

private:
    const ZELKStringPool &m_texts;
    ZELKTextNumbering m_numbering; ///< of the batteries
    std::vector<ZELKLWCBattery> m_batteries;
};
