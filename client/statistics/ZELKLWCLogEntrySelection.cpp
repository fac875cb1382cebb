#include "ZELKLWCLogEntrySelection.h"

#include "ZELKBatterySamples.h"
#include "ZELKEnvironment.h"
#include "ZELKFigureText.h"
#include "ZELKFormat.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKLWCStateTracker.h"
#include "ZELKSleepCostTracker.h"
#include "ZELKSleepSurroundings.h"
#include "ZELKValue.h"

#include <algorithm>

using Entries = ZELKLWCLogEntrySelection::Entries;

namespace {

ZELKStringPool::Id powerSourceOf(const ZELKLWCLogEntry &entry)
{
    return entry.arena().properties().textId(entry.packedProperties(),
                                             ZELKPackedProperties::PowerSourceState);
}

Entries sortedByDate(const Entries &entries)
{
    Entries sorted = entries;
    std::sort(sorted.begin(), sorted.end(), ZELKSleepSurroundings::isOlder);
    return sorted;
}

bool isNumber(const QVariant &value)
{
    const int type = value.typeId();
    return type == QMetaType::Bool || type == QMetaType::QString || type == QMetaType::Int ||
           type == QMetaType::UInt || type == QMetaType::LongLong || type == QMetaType::ULongLong ||
           type == QMetaType::Double || type == QMetaType::Float;
}

ZELKDictionary totals(const ZELKLWCStateTracker &tracker, const ZELKStringPool &texts)
{
    std::vector<ZELKDictionary::Item> items;
    for (const ZELKLWCStateTracker::Interval &interval : tracker.stateIntervals())
        items.emplace_back(texts.string(interval.state), interval.seconds);
    return ZELKDictionary::fromItems(std::move(items));
}

} // namespace

/// What is computed in one walk over the entries.
struct ZELKLWCLogEntrySelection::Statistics
{
    Statistics(ZELKLWCLogEntry &first, const ZELKLWCLogEntry &last, ZELKDate start, std::size_t expected)
        : texts(first.arena().texts())
        , usage(texts.intern(ZELKLWCLogEntry::pairRepresentsAtDate(start, &first)), start)
        , powerSource(texts.intern(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(&first)), start)
        , samples(texts)
        , sleeps(texts, first.date(), last.date(), expected)
    {
    }

    void add(const ZELKLWCLogEntry &entry)
    {
        if (entry.kind() == ZELKEntryKind::Daemon)
            return;
        const ZELKStringPool::Id source = powerSourceOf(entry);
        addStates(entry, source);
        if (entry.kind() == ZELKEntryKind::PowerStatus)
            samples.add(readingOf(entry, source));
    }

    /// The same, and its part in the sleeps.
    void addWithSleeps(const ZELKLWCLogEntry &entry)
    {
        if (entry.kind() == ZELKEntryKind::Daemon)
            return sleeps.addBreak(entry.date());
        const ZELKStringPool::Id source = powerSourceOf(entry);
        addStates(entry, source);
        sleeps.addState(entry.pairRepresentsId(), entry.date());
        if (entry.kind() != ZELKEntryKind::PowerStatus)
            return;
        const ZELKBatteryReading reading = readingOf(entry, source);
        samples.add(reading);
        sleeps.addReading(reading);
    }

    /// Each battery has a group of its own, so that its name is looked up but once.
    ZELKBatteryReading readingOf(const ZELKLWCLogEntry &entry, ZELKStringPool::Id source)
    {
        const std::uint32_t group = entry.groupIndex();
        if (group >= names.size())
            names.resize(std::size_t(group) + 1);
        if (!names[group])
            names[group] =
                entry.arena().properties().textId(entry.packedProperties(), ZELKPackedProperties::Name);
        return {static_cast<const ZELKLWCLogEntryPowerStatus &>(entry), *names[group], source};
    }

    void addStates(const ZELKLWCLogEntry &entry, ZELKStringPool::Id source)
    {
        usage.addState(entry.pairRepresentsId(), entry.date());
        powerSource.addState(source, entry.date());
    }

    void addSleepsOf(const Entries &entries)
    {
        for (const ZELKLWCLogEntry *entry : entries)
            sleeps.addEntry(*entry);
    }

    /// The selected among all in one walk. False where that cannot be, as one of them is out of order.
    bool addInOrder(const Entries &selected, const Entries &all)
    {
        auto next = selected.begin();
        const ZELKLWCLogEntry *before = all.constFirst();
        for (const ZELKLWCLogEntry *entry : all) {
            if (!(before->date() < entry->date()) && ZELKSleepSurroundings::isOlder(entry, before))
                return false;
            before = entry;
            if (next == selected.end() || *next != entry) {
                sleeps.addEntry(*entry);
            } else {
                addWithSleeps(*entry);
                ++next;
            }
        }
        return next == selected.end();
    }

    ZELKStringPool &texts;
    ZELKLWCStateTracker usage;
    ZELKLWCStateTracker powerSource;
    ZELKBatterySamples samples;
    ZELKSleepCostTracker sleeps;
    std::vector<std::optional<ZELKStringPool::Id>> names; ///< of the batteries, by their groups
};

ZELKLWCLogEntrySelection::ZELKLWCLogEntrySelection(const Entries &selection, const Period &duration)
    : m_selection(selection)
    , m_duration(duration)
{
    if (selection.size() == 1 && !duration)
        m_single = selection.constFirst();
    else
        initAttributes();
}

void ZELKLWCLogEntrySelection::initAttributes()
{
    m_single = nullptr;
    if (m_selection.isEmpty())
        return;
    if (!m_duration) {
        m_duration = ZELKLWCAbsoluteDuration::absoluteDurationFromDate(m_selection.constFirst()->date(),
                                                                       m_selection.constLast()->date());
        m_duration->sortByDate();
    }
    intervals(m_selection);
}

void ZELKLWCLogEntrySelection::intervals(const Entries &entries)
{
    if (!entries.isEmpty() && m_duration && !computeInOrder(entries))
        computeSorted(sortedByDate(entries));
}

/// What most selections are: in the order of their dates, and the log too. False where that is not so.
bool ZELKLWCLogEntrySelection::computeInOrder(const Entries &entries)
{
    const ZELKSleepSurroundings around = ZELKSleepSurroundings::of(entries);
    Statistics statistics = statisticsOf(entries);
    statistics.addSleepsOf(around.before);
    if (!statistics.addInOrder(entries, around.all))
        return false;
    statistics.addSleepsOf(around.behind);
    finish(*entries.constLast(), statistics);
    return true;
}

void ZELKLWCLogEntrySelection::computeSorted(const Entries &sorted)
{
    const ZELKSleepSurroundings around = ZELKSleepSurroundings::of(sorted);
    Statistics statistics = statisticsOf(sorted);
    for (const ZELKLWCLogEntry *entry : sorted)
        statistics.add(*entry);
    statistics.addSleepsOf(around.before);
    statistics.addSleepsOf(sortedByDate(around.all));
    statistics.addSleepsOf(around.behind);
    finish(*sorted.constLast(), statistics);
}

ZELKLWCLogEntrySelection::Statistics ZELKLWCLogEntrySelection::statisticsOf(const Entries &sorted) const
{
    ZELKLWCLogEntry &first = *sorted.constFirst();
    return {first, *sorted.constLast(), std::min(first.date(), m_duration->startDate()),
            std::size_t(sorted.size())};
}

void ZELKLWCLogEntrySelection::finish(const ZELKLWCLogEntry &last, Statistics &statistics)
{
    closeTrackers(last, statistics);
    m_batteries = statistics.samples.batteries();
    m_sleepCosts = statistics.sleeps.costs();
    present(statistics);
}

/// The time behind the last entry belongs to the state in force there.
void ZELKLWCLogEntrySelection::closeTrackers(const ZELKLWCLogEntry &last, Statistics &statistics) const
{
    if (last.pairRepresentsId() == ZELKStringPool::nil)
        statistics.usage.currentStateEndsOnDate(last.date());
    if (powerSourceOf(last) == ZELKStringPool::nil)
        statistics.powerSource.currentStateEndsOnDate(last.date());
    const ZELKDate end = std::min(m_duration->endDate(), ZELKEnvironment::current().clock->now());
    statistics.usage.currentStateEndsOnDate(end);
    statistics.powerSource.currentStateEndsOnDate(end);
}

void ZELKLWCLogEntrySelection::present(const Statistics &statistics)
{
    m_summary = totals(statistics.usage, statistics.texts);
    m_powerSources = totals(statistics.powerSource, statistics.texts);
    const double seconds = m_duration->duration();
    setAttributeValue(QVariant::fromValue(presentIntervals(m_summary, seconds)), usageKey);
    setAttributeValue(QVariant::fromValue(presentIntervals(m_powerSources, seconds)), powerSourceKey);
    for (const ZELKLWCBattery &battery : m_batteries)
        setAttributeValue(QVariant::fromValue(presentPowerSource(battery.infoDictionary())), battery.name());
    const bool isTaken = std::any_of(m_batteries.begin(), m_batteries.end(),
                                     [](const auto &battery) { return battery.name() == sleepsKey; });
    if (!m_batteries.empty() && !m_sleepCosts.sleeps().empty() && !isTaken)
        setAttributeValue(QVariant::fromValue(m_sleepCosts.infoDictionary()), sleepsKey);
}

void ZELKLWCLogEntrySelection::addPowerStatusEvent(const ZELKLWCLogEntryPowerStatus &entry,
                                                   ZELKBatterySamples &samples)
{
    samples.add(ZELKBatteryReading(entry));
}

ZELKDictionary ZELKLWCLogEntrySelection::presentIntervals(const ZELKDictionary &intervals,
                                                          double timeInterval)
{
    std::vector<ZELKDictionary::Item> items;
    for (const auto &[key, value] : intervals) {
        const double number = ZELKValue::doubleValue(value);
        QVariant shown = value;
        if (timeInterval > 0.0)
            shown = QVariant::fromValue(
                ZELKFigureText(ZELKFormat("%.1f", {float(number / timeInterval * 100.0)}),
                               QStringLiteral("%  "), ZELKLWCDuration::shortStringFromDuration(number)));
        else if (isNumber(value))
            shown = QVariant::fromValue(ZELKFigureText(ZELKFormat("%.1f", {number}), QStringLiteral("%")));
        items.emplace_back(key, shown);
    }
    return ZELKDictionary::fromItems(std::move(items));
}

// MARK: attributes

QStringList ZELKLWCLogEntrySelection::attributes() const
{
    return m_single ? m_single->attributes() : m_attributes;
}

void ZELKLWCLogEntrySelection::setAttributes(const QStringList &keys)
{
    m_attributeValues = attributeValues();
    m_single = nullptr;
    m_attributes = keys;
}

ZELKDictionary ZELKLWCLogEntrySelection::attributeValues() const
{
    return m_single ? m_single->attributeValues() : m_attributeValues;
}

void ZELKLWCLogEntrySelection::setAttributeValues(const ZELKDictionary &values)
{
    m_attributes = attributes();
    m_single = nullptr;
    m_attributeValues = values;
}

void ZELKLWCLogEntrySelection::setAttributeValue(const QVariant &value, const QString &key)
{
    if (m_single)
        return m_single->setAttributeValue(value, key);
    if (!m_attributes.contains(key))
        m_attributes.append(key);
    m_attributeValues.insert(key, value);
}
