#include "ZELKLWCLogEntrySelection.h"

#include "ZELKBatterySamples.h"
#include "ZELKEnvironment.h"
#include "ZELKFigureText.h"
#include "ZELKFormat.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKSelectionStatistics.h"
#include "ZELKSelectionWalk.h"
#include "ZELKValue.h"

#include <algorithm>

namespace {

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

ZELKLWCLogEntrySelection::ZELKLWCLogEntrySelection(const Entries &selection, const Period &duration)
    : m_selection(selection)
    , m_duration(duration)
{
    if (selection.size() == 1 && !duration)
        m_keysOf = m_valuesOf = selection.constFirst();
    else
        initAttributes();
}

void ZELKLWCLogEntrySelection::initAttributes()
{
    m_keysOf = m_valuesOf = nullptr;
    intervals(m_selection);
}

void ZELKLWCLogEntrySelection::intervals(const Entries &entries)
{
    if (entries.isEmpty())
        return;
    if (!m_duration) {
        m_duration = ZELKLWCAbsoluteDuration::absoluteDurationFromDate(entries.constFirst()->date(),
                                                                       entries.constLast()->date());
        m_duration->sortByDate();
    }
    compute(entries);
}

void ZELKLWCLogEntrySelection::compute(const Entries &entries)
{
    const ZELKLWCLogEntry *last = nullptr;
    auto statistics = ZELKSelectionWalk(entries).play(
        [&](ZELKLWCLogEntry &oldest, const ZELKLWCLogEntry &latest, bool isAsArrived) {
            last = &latest;
            const ZELKDate start = std::min(oldest.date(), m_duration->startDate());
            return ZELKSelectionStatistics(oldest, latest, start, isAsArrived);
        });
    statistics.close(*last, std::min(m_duration->endDate(), ZELKEnvironment::current().clock->now()));
    m_summary = totals(statistics.usage(), statistics.texts());
    m_powerSources = totals(statistics.powerSource(), statistics.texts());
    m_batteries = statistics.batteries();
    m_sleepCosts = statistics.sleepCosts();
    present();
    presentSleeps(*last);
}

void ZELKLWCLogEntrySelection::present()
{
    const double seconds = m_duration->duration();
    setAttributeValue(QVariant::fromValue(presentIntervals(m_summary, seconds)), usageKey);
    setAttributeValue(QVariant::fromValue(presentIntervals(m_powerSources, seconds)), powerSourceKey);
    for (const ZELKLWCBattery &battery : m_batteries)
        setAttributeValue(QVariant::fromValue(presentPowerSource(battery.infoDictionary())), battery.name());
}

/// Also where no reading of a battery is among the entries, or near them: who asks for the cost is told that
/// it is unknown. A computer that never had a battery has none.
void ZELKLWCLogEntrySelection::presentSleeps(const ZELKLWCLogEntry &entry)
{
    const ZELKLWCLog *log = entry.arena().log();
    const bool hasBatteries = !m_sleepCosts.batteries().empty() || (log && log->supportsBatteries());
    m_showsSleeps = hasBatteries && !m_sleepCosts.sleeps().empty() &&
                    std::none_of(m_batteries.begin(), m_batteries.end(),
                                 [](const auto &battery) { return battery.name() == sleepsKey; });
    if (m_showsSleeps)
        setAttributeValue(QVariant::fromValue(m_sleepCosts.infoDictionary()), sleepsKey);
}

void ZELKLWCLogEntrySelection::addPowerStatusEvent(const ZELKLWCLogEntryPowerStatus &entry,
                                                   ZELKBatterySamples &samples)
{
    samples.add(entry);
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
    return m_keysOf ? m_keysOf->attributes() : m_attributes;
}

void ZELKLWCLogEntrySelection::setAttributes(const QStringList &keys)
{
    m_keysOf = nullptr;
    m_attributes = keys;
}

ZELKDictionary ZELKLWCLogEntrySelection::attributeValues() const
{
    return m_valuesOf ? m_valuesOf->attributeValues() : m_attributeValues;
}

void ZELKLWCLogEntrySelection::setAttributeValues(const ZELKDictionary &values)
{
    m_valuesOf = nullptr;
    m_attributeValues = values;
}

void ZELKLWCLogEntrySelection::setAttributeValue(const QVariant &value, const QString &key)
{
    if (QStringList keys = attributes(); !keys.contains(key)) {
        keys.append(key);
        m_keysOf ? m_keysOf->setAttributes(keys) : setAttributes(keys);
    }
    ZELKDictionary values = attributeValues();
    values.insert(key, value);
    m_valuesOf ? m_valuesOf->setAttributeValues(values) : setAttributeValues(values);
}
