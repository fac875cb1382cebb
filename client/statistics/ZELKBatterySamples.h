#pragma once

#include "ZELKLWCBattery.h"
#include "ZELKTextNumbering.h"

#include <vector>

class ZELKLWCLogEntryPowerStatus;

/// The batteries that a computation has met, by their names, which are texts of one pool.
class ZELKBatterySamples
{
public:
    using Id = ZELKStringPool::Id;

    /// `texts` outlives this object.
    explicit ZELKBatterySamples(const ZELKStringPool &texts)
        : m_texts(texts)
    {
    }

    /// One reading of the battery that the entry names, a source without a name being none; and the same
    /// again for the last duplicate, so that the time counts in which the charge stood still.
    void add(const ZELKLWCLogEntryPowerStatus &entry);
    /// Number of the battery of that name, which is made when it is new.
    std::size_t numberOf(Id name);
    void addCapacity(std::size_t number, int percentage, ZELKDate date)
    {
        m_batteries[number].addCapacity(percentage, date);
    }
    /// The second reading of an entry, where it has duplicates.
    void addLastDuplicate(std::size_t number, int percentage, const ZELKLWCLogEntryPowerStatus &entry);

    /// In the order in which they were first met.
    const std::vector<ZELKLWCBattery> &batteries() const { return m_batteries; }

private:
    const ZELKStringPool &m_texts;
    ZELKTextNumbering m_numbering; ///< of the batteries
    std::vector<ZELKLWCBattery> m_batteries;
};
