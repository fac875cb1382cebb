#include "ZELKBatterySamples.h"

void ZELKBatterySamples::add(const ZELKBatteryReading &reading)
{
    if (reading.name == ZELKStringPool::nil)
        return;
    const std::size_t number = m_numbering.numberOf(reading.name);
    if (number == m_batteries.size())
        m_batteries.emplace_back(m_texts.string(reading.name));
    ZELKLWCBattery &battery = m_batteries[number];
    battery.addCapacity(reading.percentage, reading.date);
    if (reading.hasDuplicates)
        battery.addCapacity(reading.percentage, reading.finalDate);
}
