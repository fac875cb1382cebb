#include "ZELKLWCEntriesViewBatteries.h"

#include <algorithm>

int ZELKLWCEntriesViewBatteries::count() const
{
    return int(std::count_if(m_batteries.begin(), m_batteries.end(),
                             [](const Battery &battery) { return !battery.segments.empty(); }));
}

const ZELKLWCEntriesViewBatteries::Battery *ZELKLWCEntriesViewBatteries::find(const QString &name) const
{
    const auto found = std::find_if(m_batteries.begin(), m_batteries.end(),
                                    [&name](const Battery &battery) { return battery.name == name; });
    return found == m_batteries.end() ? nullptr : &*found;
}

ZELKLWCEntriesViewBatteries::Battery &ZELKLWCEntriesViewBatteries::battery(const QString &name)
{
    for (Battery &known : m_batteries)
        if (known.name == name)
            return known;
    return m_batteries.emplace_back(Battery{name, {}, nullptr});
}

ZELKLWCEntriesViewBatteries::Segments ZELKLWCEntriesViewBatteries::segments(const QString &name) const
{
    const Battery *known = find(name);
    return known ? known->segments : Segments();
}

ZELKLWCEntriesViewBatterySegment *ZELKLWCEntriesViewBatteries::currentSegmentForBattery(const QString &name)
{
    return find(name) ? battery(name).currentSegment() : nullptr;
}

void ZELKLWCEntriesViewBatteries::addSegment(const ZELKLWCEntriesViewBatterySegment &segment,
                                             const QString &name)
{
    battery(name).segments.push_back(segment);
}

void ZELKLWCEntriesViewBatteries::setLastEntry(const ZELKLWCLogEntryPowerStatus *entry, const QString &name)
{
    battery(name).lastEntry = entry;
}

const ZELKLWCLogEntryPowerStatus *ZELKLWCEntriesViewBatteries::lastEntryForBattery(const QString &name) const
{
    const Battery *known = find(name);
    return known ? known->lastEntry : nullptr;
}
