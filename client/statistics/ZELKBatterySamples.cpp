#include "ZELKBatterySamples.h"

#include "ZELKLWCLogEntryPowerStatus.h"

void ZELKBatterySamples::add(const ZELKLWCLogEntryPowerStatus &entry)
{
    const Id name = entry.arena().properties().textId(entry.packedProperties(), ZELKPackedProperties::Name);
    if (name == ZELKStringPool::nil)
        return;
    const std::size_t number = numberOf(name);
    const int percentage = entry.percentageCharged();
    addCapacity(number, percentage, entry.date());
    addLastDuplicate(number, percentage, entry);
}

std::size_t ZELKBatterySamples::numberOf(Id name)
{
    const std::size_t number = m_numbering.numberOf(name);
    if (number == m_batteries.size())
        m_batteries.emplace_back(m_texts.string(name));
    return number;
}

void ZELKBatterySamples::addLastDuplicate(std::size_t number, int percentage,
                                          const ZELKLWCLogEntryPowerStatus &entry)
{
    const ZELKDate date = entry.finalDate();
    if (date != entry.date() || !entry.duplicates().isEmpty())
        addCapacity(number, percentage, date);
}
