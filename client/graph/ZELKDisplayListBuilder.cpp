#include "ZELKDisplayListBuilder.h"

#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryPowerStatus.h"

#include <algorithm>

using Id = ZELKStringPool::Id;

namespace {

const ZELKLWCLogEntryPowerStatus *reading(const ZELKLWCLogEntry *entry)
{
    return entry && entry->kind() == ZELKEntryKind::PowerStatus
               ? static_cast<const ZELKLWCLogEntryPowerStatus *>(entry)
               : nullptr;
}

Id textId(const ZELKLWCLogEntry &entry, ZELKPackedProperties::Key key)
{
    return entry.arena().properties().textId(entry.packedProperties(), key);
}

double percentageBetween(ZELKDate date, const ZELKLWCLogEntryPowerStatus &first,
                         const ZELKLWCLogEntryPowerStatus &second)
{
    return double(ZELKLWCLog::interpolatePercentageChargedForDate(date, first, second));
}

} // namespace

ZELKDisplayListBuilder::ZELKDisplayListBuilder(ZELKLWCEntriesViewDisplayList &list,
                                               const ZELKChartScale &scale, const ZELKLWCLog &log)
    : m_list(list)
    , m_scale(scale)
    , m_log(log)
    , m_start(scale.period.startDate())
    , m_end(scale.period.endDate())
{
}

void ZELKDisplayListBuilder::prepareDisplayList()
{
    m_list.removeAllObjects();
    m_latest.clear();
    m_groups.clear();
    m_knownBatteries.clear();
    m_knownWords.clear();
    if (m_log.count() == 0)
        return;
    addVisibleEntries();
    addStatesEndingLater();
    addStatesRunningAtEnd();
    if (m_log.supportsBatteries() && m_list.batteries().count() == 0)
        prepareBatteriesWithoutVisibleEntries();
    closeBatteries();
}

void ZELKDisplayListBuilder::addVisibleEntries()
{
    for (std::uint64_t i = 0; i < m_log.countOfVisibleEntries(); ++i) {
        const ZELKLWCLogEntry *entry = m_log.objectInVisibleEntriesAtIndex(i);
        noteLatestOfGroup(entry);
        if (entry->pairRepresentsId() != ZELKStringPool::nil && entry->pair())
            addPairBlock(*entry->pair(), entry, entry->finalDate());
        if (const ZELKLWCLogEntryPowerStatus *status = reading(entry))
            addReading(*status);
    }
}

void ZELKDisplayListBuilder::noteLatestOfGroup(const ZELKLWCLogEntry *entry)
{
    const std::uint32_t group = entry->groupIndex();
    if (group >= m_latest.size())
        m_latest.resize(group + 1, nullptr);
    if (!m_latest[group])
        m_groups.push_back(group);
    m_latest[group] = entry;
}

// MARK: blocks

void ZELKDisplayListBuilder::addState(const QString &state, const ZELKLWCLogEntry *entry, ZELKDate start,
                                      ZELKDate end)
{
    m_list.addState(ZELKLWCEntriesViewState::stateWithBounds(m_scale.blockBetween(start, end), state, entry));
}

ZELKLWCEntriesViewDisplayList::Word ZELKDisplayListBuilder::wordFor(const ZELKLWCLogEntry &opening)
{
    const Id id = opening.pairRepresentsId();
    for (const auto &[known, word] : m_knownWords)
        if (known == id)
            return word;
    return m_knownWords.emplace_back(id, m_list.wordFor(opening.pairRepresents())).second;
}

/// The state that `opening` opened, up to a date. The beginning is clipped to the period, the end is not.
void ZELKDisplayListBuilder::addPairBlock(const ZELKLWCLogEntry &opening, const ZELKLWCLogEntry *entry,
                                          ZELKDate to)
{
    if (opening.pairRepresentsId() == ZELKStringPool::nil)
        return;
    const ZELKDate from = std::max(opening.date(), m_start);
    m_list.addBlock(wordFor(opening), m_scale.blockBetween(from, to), entry);
}

/// Of every group that is visible, the state that ends with the first entry after the visible ones.
void ZELKDisplayListBuilder::addStatesEndingLater()
{
    for (const std::uint32_t group : m_groups) {
        const ZELKLWCLogEntry *entry = m_latest[group]->previous();
        if (entry && entry->pair() && entry->pairRepresentsId() != ZELKStringPool::nil)
            addPairBlock(*entry->pair(), entry, std::min(entry->date(), m_end));
    }
}

/// The states of all groups that are running at the period's end, those too that no visible entry tells of.
/// The entry that stands for such a block is the one that opened it.
void ZELKDisplayListBuilder::addStatesRunningAtEnd()
{
    const std::int64_t index = m_log.entryBeforeDate(m_end);
    if (index == ZELKLWCLog::notFound)
        return;
    std::vector<bool> awaited;
    std::size_t left = markGroupsSince(index, awaited);
    for (auto i = int(index); left > 0 && i < m_log.count(); ++i) {
        const ZELKLWCLogEntry *entry = m_log.objectAtIndex(i);
        const std::uint32_t group = entry->groupIndex();
        if (group >= awaited.size() || !awaited[group])
            continue;
        awaited[group] = false;
        --left;
        if (const ZELKLWCLogEntry *pair = entry->pair())
            addPairBlock(*pair, pair, std::min(entry->date(), m_end));
    }
}

/// Marks the groups, by index, that have an entry at this index or after it, and counts them: no other needs
/// to be looked for up to the log's end.
std::size_t ZELKDisplayListBuilder::markGroupsSince(std::int64_t index, std::vector<bool> &groups) const
{
    const ZELKEntryArena::Handle first = m_log.objectAtIndex(int(index))->handle();
    std::size_t count = 0;
    for (const ZELKLWCLogEntry *newest : m_log.finalGroupEntries()) {
        if (newest->handle() < first)
            continue;
        if (newest->groupIndex() >= groups.size())
            groups.resize(newest->groupIndex() + 1, false);
        groups[newest->groupIndex()] = true;
        ++count;
    }
    return count;
}

// MARK: curves

QString ZELKDisplayListBuilder::powerSourceOf(const ZELKLWCLogEntryPowerStatus &entry)
{
    const Id id = textId(entry, ZELKPackedProperties::PowerSourceState);
    for (const auto &[known, word] : m_knownSources)
        if (known == id)
            return word;
    return m_knownSources.emplace_back(id, entry.arena().texts().string(id)).second;
}

ZELKDisplayListBuilder::Segment ZELKDisplayListBuilder::segment(const QString &state, ZELKDate date,
                                                                double percentage) const
{
    return Segment::batterySegmentForState(state, m_scale.convertDateAndPercentageToPoint(date, percentage),
                                           m_list.curveColumnWidth());
}

ZELKDisplayListBuilder::Battery &ZELKDisplayListBuilder::batteryOf(const ZELKLWCLogEntryPowerStatus &entry,
                                                                   Id name)
{
    for (const auto &[known, battery] : m_knownBatteries)
        if (known == name)
            return *battery;
    Battery &battery = m_list.batteries().battery(entry.arena().texts().string(name));
    return *m_knownBatteries.emplace_back(name, &battery).second;
}

void ZELKDisplayListBuilder::addReading(const ZELKLWCLogEntryPowerStatus &entry)
{
    const Id name = textId(entry, ZELKPackedProperties::Name);
    if (name == ZELKStringPool::nil)
        return;
    Battery &battery = batteryOf(entry, name);
    battery.lastEntry = &entry;
    if (battery.segments.empty())
        startCurve(battery, entry);

    Segment &current = battery.segments.back();
    const int percentage = entry.percentageCharged();
    const QPointF point = m_scale.convertDateAndPercentageToPoint(entry.date(), percentage);
    const bool connected = entry.connected();
    connected ? current.addPoint(point) : current.disconnectionPoint(point);
    const ZELKDate last = entry.finalDate();
    if (last != entry.date() && m_scale.period.contains(last))
        current.addPoint(m_scale.convertDateAndPercentageToPoint(last, percentage));

    const bool disconnected = entry.change() == ZELKLWCLogEntryPowerStatus::PresenceChanged && !connected;
    if (entry.change() == ZELKLWCLogEntryPowerStatus::PresenceChanged ||
        entry.change() == ZELKLWCLogEntryPowerStatus::PowerSourceChanged)
        battery.segments.push_back(
            segment(disconnected ? Segment::disconnected() : powerSourceOf(entry), entry.date(), percentage));
}

/// The level with which a battery comes into the period, where an earlier reading tells it.
void ZELKDisplayListBuilder::startCurve(Battery &battery, const ZELKLWCLogEntryPowerStatus &entry)
{
    const ZELKLWCLogEntryPowerStatus *earlier =
        m_log.powerEventForBatteryBefore(battery.name, m_log.objectInVisibleEntriesAtIndex(0));
    battery.segments.push_back(
        earlier ? segment(powerSourceOf(*earlier), m_start, percentageBetween(m_start, *earlier, entry))
                : Segment(m_list.curveColumnWidth()));
}

void ZELKDisplayListBuilder::prepareBatteriesWithoutVisibleEntries(Presence presence)
{
    const std::int64_t index = m_log.entryBeforeDate(m_start);
    if (index == ZELKLWCLog::notFound)
        return;
    const ZELKLWCLogEntry *entry = m_log.objectAtIndex(int(index));
    for (const QString &name : m_log.batteryEnumerator()) {
        const ZELKLWCLogEntryPowerStatus *event = reading(entry);
        if (!event || event->arena().texts().string(textId(*event, ZELKPackedProperties::Name)) != name)
            event = m_log.powerEventForBatteryBefore(name, entry);
        if (!event)
            continue;
        const ZELKLWCLogEntryPowerStatus *newer = reading(event->previous());
        const double percentage =
            newer ? percentageBetween(m_start, *event, *newer) : event->percentageCharged();
        const bool away = presence == Presence::Observed && !event->connected();
        Battery &battery = m_list.batteries().battery(name);
        battery.lastEntry = event;
        battery.segments.push_back(
            segment(away ? Segment::disconnected() : powerSourceOf(*event), m_start, percentage));
    }
}

/// Draws every curve on towards the first reading after the period; where there is none, nothing is known.
void ZELKDisplayListBuilder::closeBatteries()
{
    for (Battery &battery : m_list.batteries().batteries()) {
        const ZELKLWCLogEntryPowerStatus *newer =
            battery.lastEntry ? reading(battery.lastEntry->previous()) : nullptr;
        if (!newer || battery.segments.empty())
            continue;
        const double percentage = percentageBetween(m_end, *battery.lastEntry, *newer);
        battery.segments.back().addPoint(m_scale.convertDateAndPercentageToPoint(m_end, percentage));
    }
}
