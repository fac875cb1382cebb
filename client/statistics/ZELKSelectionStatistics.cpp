#include "ZELKSelectionStatistics.h"

#include "ZELKEventVocabulary.h"

#include <string_view>

using Id = ZELKStringPool::Id;
using Key = ZELKPackedProperties::Key;
using Charge = ZELKSleepCostTracker::Charge;

namespace {

constexpr std::string_view insideTheComputer = "Internal"; // a "Transport Type"

Id textOf(const ZELKLWCLogEntry &entry, Key key)
{
    return entry.arena().properties().textId(entry.packedProperties(), key);
}

/// "Awake", too, where the log begins with an entry that says nothing: a state without a name is none.
QString usageAt(ZELKDate date, ZELKLWCLogEntry &first)
{
    const QString word = ZELKLWCLogEntry::pairRepresentsAtDate(date, &first);
    return word.isEmpty() ? QString(ZELKStateAwake) : word;
}

} // namespace

ZELKSelectionStatistics::ZELKSelectionStatistics(ZELKLWCLogEntry &first, const ZELKLWCLogEntry &last,
                                                 ZELKDate start, bool isAsArrived)
    : m_texts(first.arena().texts())
    , m_batteryPower(
          m_texts.find({ZELKPowerSourceBattery.data(), std::size_t(ZELKPowerSourceBattery.size())}))
    , m_inside(m_texts.find(insideTheComputer))
    , m_isAsArrived(isAsArrived)
    , m_usage(m_texts.intern(usageAt(start, first)), start)
    , m_powerSource(m_texts.intern(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(&first)), start)
    , m_samples(m_texts)
    , m_sleeps(m_texts, first.date(), last.date())
{
}

Id ZELKSelectionStatistics::powerSourceOf(const ZELKLWCLogEntry &entry)
{
    const bool isTold = entry.arena().properties().contains(entry.packedProperties(), Key::PowerSourceState);
    return isTold ? textOf(entry, Key::PowerSourceState) : ZELKStringPool::nil;
}

void ZELKSelectionStatistics::begin(Source &source, const ZELKLWCLogEntryPowerStatus &entry)
{
    source.name = textOf(entry, Key::Name);
    const Id transport = textOf(entry, Key::TransportType);
    if (source.name != ZELKStringPool::nil)
        source.battery =
            m_sleeps.batteryNumber(source.name, transport == m_inside && m_inside != ZELKStringPool::nil);
    readState(source, entry);
}

/// A reading that says nothing of the battery's presence is of one that is there.
void ZELKSelectionStatistics::readState(Source &source, const ZELKLWCLogEntryPowerStatus &entry)
{
    source.state = powerSourceOf(entry);
    source.isOnBattery = isOnBattery(entry, source.state);
    if (source.battery != none && entry.change() == ZELKLWCLogEntryPowerStatus::PresenceChanged &&
        entry.arena().properties().contains(entry.packedProperties(), Key::IsPresent))
        m_sleeps.forget(source.battery);
}

bool ZELKSelectionStatistics::isOnBattery(const ZELKLWCLogEntryPowerStatus &entry, Id state) const
{
    return state == m_batteryPower && m_batteryPower != ZELKStringPool::nil && !entry.charging();
}

/// The same charge again, later.
void ZELKSelectionStatistics::addRepetition(const ZELKLWCLogEntryPowerStatus &entry, ZELKDate date)
{
    Source &source = sourceOf(entry);
    if (!source.latest) {
        begin(source, entry);
        source.latest = &entry;
        source.percentage = entry.percentageCharged();
    }
    if (source.battery == none)
        return;
    const bool isOfLatest = source.latest == &entry;
    if (isOfLatest) {
        source.isRepeated = true;
        source.repetition = date;
    }
    m_sleeps.addCharge(source.battery, isOfLatest ? Charge{date, source.percentage, source.isOnBattery}
                                                  : Charge{date, entry.percentageCharged(),
                                                           isOnBattery(entry, powerSourceOf(entry))});
}

void ZELKSelectionStatistics::addSecondSample(const Source &source)
{
    if (source.isSelected && source.sample != none)
        m_samples.addLastDuplicate(source.sample, source.percentage, *source.latest);
}

void ZELKSelectionStatistics::finish(ZELKEntryArena::Handle reached, ZELKDate date)
{
    for (const Source &source : m_sources) {
        if (!source.latest)
            continue;
        for (const ZELKLWCLogEntry *duplicate : source.latest->duplicates())
            if (duplicate->handle() > reached && duplicate->date() >= date)
                addRepetition(*source.latest, duplicate->date());
        addSecondSample(source);
    }
}

void ZELKSelectionStatistics::close(const ZELKLWCLogEntry &last, ZELKDate end)
{
    if (last.pairRepresentsId() == ZELKStringPool::nil)
        m_usage.currentStateEndsOnDate(last.date());
    if (powerSourceOf(last) == ZELKStringPool::nil)
        m_powerSource.currentStateEndsOnDate(last.date());
    m_usage.currentStateEndsOnDate(end);
    m_powerSource.currentStateEndsOnDate(end);
}
