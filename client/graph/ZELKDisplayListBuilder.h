#pragma once

#include "ZELKChartScale.h"
#include "ZELKLWCEntriesViewDisplayList.h"
#include "ZELKStringPool.h"

#include <cstdint>
#include <utility>
#include <vector>

class ZELKLWCLog;
class ZELKLWCLogEntry;
class ZELKLWCLogEntryPowerStatus;

/// Makes the display list of a log's visible entries, in one pass over them and a look at what is left and
/// right of them. Lives for one drawing; nothing is carried from one to the next.
class ZELKDisplayListBuilder
{
public:
    /// How a battery that has no reading in the period is told to be away.
    enum class Presence { Observed, Ignored };

    /// All three must outlive the builder. `scale` has the period whose entries the log shows.
    ZELKDisplayListBuilder(ZELKLWCEntriesViewDisplayList &list, const ZELKChartScale &scale,
                           const ZELKLWCLog &log);

    /// Empties the list and fills it.
    void prepareDisplayList();
    /// The batteries' levels at the beginning of the period, from the readings before it. A battery that is
    /// away is disconnected only where presence is observed.
    void prepareBatteriesWithoutVisibleEntries(Presence presence = Presence::Observed);
    /// Adds the block between two dates.
    void addState(const QString &state, const ZELKLWCLogEntry *entry, ZELKDate start, ZELKDate end);

private:
    using Id = ZELKStringPool::Id;
    using Word = ZELKLWCEntriesViewDisplayList::Word;
    using Battery = ZELKLWCEntriesViewBatteries::Battery;
    using Segment = ZELKLWCEntriesViewBatterySegment;

    void addVisibleEntries();
    void noteLatestOfGroup(const ZELKLWCLogEntry *entry);
    Word wordFor(const ZELKLWCLogEntry &opening);
    void addPairBlock(const ZELKLWCLogEntry &opening, const ZELKLWCLogEntry *entry, ZELKDate to);
    void addStatesEndingLater();
    void addStatesRunningAtEnd();
    std::size_t markGroupsSince(std::int64_t index, std::vector<bool> &groups) const;
    QString powerSourceOf(const ZELKLWCLogEntryPowerStatus &entry);
    Segment segment(const QString &state, ZELKDate date, double percentage) const;
    Battery &batteryOf(const ZELKLWCLogEntryPowerStatus &entry, Id name);
    void addReading(const ZELKLWCLogEntryPowerStatus &entry);
    void startCurve(Battery &battery, const ZELKLWCLogEntryPowerStatus &entry);
    void closeBatteries();

    ZELKLWCEntriesViewDisplayList &m_list;
    const ZELKChartScale &m_scale;
    const ZELKLWCLog &m_log;
    ZELKDate m_start;
    ZELKDate m_end;
    std::vector<const ZELKLWCLogEntry *> m_latest; // visible, by the group's index
    std::vector<std::uint32_t> m_groups;           // of visible entries, as they are first seen
    // Few of each, by the number of their text: a walk finds them sooner than a hash.
    std::vector<std::pair<Id, Word>> m_knownWords;
    std::vector<std::pair<Id, Battery *>> m_knownBatteries;
    std::vector<std::pair<Id, QString>> m_knownSources;
};
