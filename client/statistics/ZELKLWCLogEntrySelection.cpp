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
    const auto isOlder = [](const ZELKLWCLogEntry *a, const ZELKLWCLogEntry *b) {
        return a->date() < b->date();
    };
    if (std::is_sorted(entries.begin(), entries.end(), isOlder))
        return entries;
    Entries sorted = entries;
    std::stable_sort(sorted.begin(), sorted.end(), isOlder);
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
    Statistics(ZELKLWCLogEntry &first, ZELKLWCLogEntry &last, ZELKDate start)
        : texts(first.arena().texts())
        , usage(texts.intern(ZELKLWCLogEntry::pairRepresentsAtDate(start, &first)), start)
        , powerSource(texts.intern(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(&first)), start)
        , samples(texts)
        , sleeps(texts, first.date(), last.date())
    {
    }

    /// `countsSleeps` unless the log's other entries, too, must be shown to that tracker.
    template <bool countsSleeps>
    void add(const Entries &entries)
    {
        for (const ZELKLWCLogEntry *entry : entries) {
            if (entry->kind() != ZELKEntryKind::Daemon)
                add<countsSleeps>(*entry);
            else if (countsSleeps)
                sleeps.addBreak(entry->date());
        }
    }

    template <bool countsSleeps>
    void add(const ZELKLWCLogEntry &entry)
    {
        const ZELKStringPool::Id state = entry.pairRepresentsId();
        const ZELKStringPool::Id source = powerSourceOf(entry);
        usage.addState(state, entry.date());
        powerSource.addState(source, entry.date());
        if (countsSleeps)
            sleeps.addState(state, entry.date());
        if (entry.kind() != ZELKEntryKind::PowerStatus)
            return;
        const ZELKBatteryReading reading(static_cast<const ZELKLWCLogEntryPowerStatus &>(entry), source);
        samples.add(reading);
        if (countsSleeps)
            sleeps.addReading(reading);
    }

    void addSleepsOf(const Entries &entries)
    {
        for (const ZELKLWCLogEntry *entry : entries)
            sleeps.addEntry(*entry);
    }

    ZELKStringPool &texts;
    ZELKLWCStateTracker usage;
    ZELKLWCStateTracker powerSource;
    ZELKBatterySamples samples;
    ZELKSleepCostTracker sleeps;
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
    const Entries sorted = sortedByDate(entries);
    if (sorted.isEmpty() || !m_duration)
        return;
    ZELKLWCLogEntry &first = *sorted.constFirst();
    ZELKLWCLogEntry &last = *sorted.constLast();
    Statistics statistics(first, last, std::min(first.date(), m_duration->startDate()));
    const ZELKSleepSurroundings around = ZELKSleepSurroundings::of(sorted);
    statistics.addSleepsOf(around.before);
    if (around.isComplete) {
        statistics.add<true>(sorted);
    } else {
        statistics.add<false>(sorted);
        statistics.addSleepsOf(around.all);
    }
    statistics.addSleepsOf(around.behind);
    closeTrackers(last, statistics);
    m_batteries = statistics.samples.batteries();
    m_sleepCosts = statistics.sleeps.costs();
    present(statistics, first.arena().texts());
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

void ZELKLWCLogEntrySelection::present(const Statistics &statistics, const ZELKStringPool &texts)
{
    m_summary = totals(statistics.usage, texts);
    m_powerSources = totals(statistics.powerSource, texts);
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
