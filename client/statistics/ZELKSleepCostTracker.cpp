#include "ZELKSleepCostTracker.h"

#include "ZELKEventVocabulary.h"
#include "ZELKLWCLogEntryPowerStatus.h"

#include <algorithm>
#include <utility>

using Costs = ZELKSleepCosts;

namespace {

/// A reading that says nothing of the battery's presence is of one that is there.
bool cameOrWent(const ZELKLWCLogEntryPowerStatus &entry)
{
    return entry.change() == ZELKLWCLogEntryPowerStatus::PresenceChanged &&
           entry.arena().properties().contains(entry.packedProperties(), ZELKPackedProperties::IsPresent);
}

} // namespace

ZELKSleepCostTracker::ZELKSleepCostTracker(const ZELKStringPool &texts, ZELKDate from, ZELKDate to,
                                           std::size_t expected)
    : m_texts(texts)
    , m_from(from)
    , m_to(to)
    , m_batteryPower(texts.find({ZELKPowerSourceBattery.data(), std::size_t(ZELKPowerSourceBattery.size())}))
    , m_marks(expected / 4)
{
}

void ZELKSleepCostTracker::addEntry(const ZELKLWCLogEntry &entry)
{
    if (entry.kind() == ZELKEntryKind::Daemon)
        return addBreak(entry.date());
    addState(entry.pairRepresentsId(), entry.date());
    if (entry.kind() == ZELKEntryKind::PowerStatus)
        addReading(ZELKBatteryReading(static_cast<const ZELKLWCLogEntryPowerStatus &>(entry)));
}

void ZELKSleepCostTracker::addReading(const ZELKBatteryReading &reading)
{
    if (reading.name == ZELKStringPool::nil)
        return;
    const std::size_t number = m_numbering.numberOf(reading.name);
    if (number == m_batteries.size())
        m_batteries.emplace_back();
    Battery &battery = m_batteries[number];
    if (battery.isRepeated)
        countDuplicates(battery);
    const Charge charge{reading.date, reading.percentage, isOnBattery(battery, reading)};
    if (charge.date < battery.last.date || cameOrWent(*reading.entry))
        battery.isKnown = false;
    confirm(battery, charge);
    battery.entry = reading.entry;
    battery.entryIsOnBattery = charge.isOnBattery;
    battery.entryPercentage = reading.percentage;
    battery.entryFinalDate = reading.finalDate;
    battery.isRepeated = reading.hasDuplicates;
}

/// Where only the level changed, it is as it was before.
bool ZELKSleepCostTracker::isOnBattery(const Battery &battery, const ZELKBatteryReading &reading) const
{
    const ZELKLWCLogEntryPowerStatus &entry = *reading.entry;
    if (entry.change() == ZELKLWCLogEntryPowerStatus::LevelChanged && battery.entry &&
        entry.next() == battery.entry)
        return battery.entryIsOnBattery;
    return reading.source == m_batteryPower && m_batteryPower != ZELKStringPool::nil && !entry.charging();
}

// MARK: charges

/// The last one says it all where no mark came before it.
void ZELKSleepCostTracker::countDuplicates(Battery &battery)
{
    const ZELKLWCLogEntryPowerStatus &entry = *battery.entry;
    battery.isRepeated = false;
    Charge charge{std::max(entry.date(), battery.entryFinalDate), battery.entryPercentage,
                  battery.entryIsOnBattery};
    if (!m_marks.isMarked(battery.mark, charge.date))
        return confirm(battery, charge);
    charge.date = entry.date();
    for (const ZELKLWCLogEntry *duplicate : entry.duplicates()) {
        charge.date = std::max(charge.date, duplicate->date());
        confirm(battery, charge);
    }
}

void ZELKSleepCostTracker::confirm(Battery &battery, const Charge &charge)
{
    if (!battery.isKnown || m_marks.isMarked(battery.mark, charge.date))
        return confirmBehindMarks(battery, charge);
    const bool isDrain = goesOn(battery, charge);
    if (!isDrain)
        endAwake(battery);
    battery.last = charge;
    battery.lowest = charge.percentage;
    if (!isDrain)
        battery.awakeFrom = charge;
}

void ZELKSleepCostTracker::confirmBehindMarks(Battery &battery, const Charge &charge)
{
    const std::size_t mark = m_marks.lastMarkFor(charge.date, battery.mark);
    if (m_marks.at(mark).isAsleep)
        return chargeAsleep(battery, charge);
    if (battery.isKnown)
        conclude(battery, mark, charge);
    endAwake(battery);
    battery.isKnown = true;
    battery.last = charge;
    battery.awakeFrom = charge;
    battery.mark = mark;
    battery.lowest = charge.percentage;
    battery.hadPower = false;
}

void ZELKSleepCostTracker::chargeAsleep(Battery &battery, const Charge &charge)
{
    battery.hadPower = battery.hadPower || !charge.isOnBattery || charge.percentage > battery.lowest;
    battery.lowest = std::min(battery.lowest, charge.percentage);
    if (!m_nightCharges.empty() && m_nightCharges.front().charge.date != charge.date)
        m_nightCharges.clear();
    m_nightCharges.push_back({std::size_t(&battery - m_batteries.data()), charge});
}

/// Whatever was read at a wake's very moment is of the time awake.
void ZELKSleepCostTracker::beginState(Id state, ZELKDate date)
{
    m_marks.addState(state, date);
    if (m_nightCharges.empty())
        return;
    for (const NightCharge &night : std::exchange(m_nightCharges, {}))
        if (night.charge.date == date && !m_marks.at(m_marks.last()).isAsleep)
            confirm(m_batteries[night.battery], night.charge);
}

void ZELKSleepCostTracker::conclude(Battery &battery, std::size_t mark, const Charge &charge)
{
    const std::uint32_t first = m_marks.at(battery.mark).sleeps;
    const std::uint32_t end = m_marks.at(mark).sleeps;
    if (first == end)
        return;
    const Unknown unknown = doubt(battery, mark, charge);
    if (unknown == Unknown::No)
        count(battery, mark, charge);
    else
        setUnknown(unknown, first, end);
}

void ZELKSleepCostTracker::endAwake(Battery &battery)
{
    battery.awake.points += double(battery.awakeFrom.percentage) - double(battery.last.percentage);
    battery.awake.seconds += battery.last.date.timeIntervalSinceDate(battery.awakeFrom.date);
    battery.awakeFrom = battery.last;
}

/// Whether the drain awake that is under way, and is counted, extends to another charge.
bool ZELKSleepCostTracker::goesOn(const Battery &battery, const Charge &charge) const
{
    return battery.last.isOnBattery && charge.isOnBattery && charge.percentage <= battery.last.percentage &&
           battery.last.date >= m_from && charge.date <= m_to;
}

ZELKSleepCosts::Unknown ZELKSleepCostTracker::doubt(const Battery &battery, std::size_t mark,
                                                    const Charge &charge) const
{
    if (!battery.last.isOnBattery || !charge.isOnBattery || battery.hadPower ||
        charge.percentage > battery.lowest)
        return Unknown::Charger;
    if (m_marks.at(mark).breaks != m_marks.at(battery.mark).breaks)
        return Unknown::Unrecorded;
    return isSilent(battery, mark, charge.date) ? Unknown::NoReading : Unknown::No;
}

/// For longer than can be relied on nothing was read while the computer was awake: before the sleeps, between
/// or behind them.
bool ZELKSleepCostTracker::isSilent(const Battery &battery, std::size_t mark, ZELKDate date) const
{
    const ZELKSleepMarks::Mark &before = m_marks.at(battery.mark);
    const ZELKSleepMarks::Mark &after = m_marks.at(mark);
    const ZELKDate start = m_marks.sleeps()[before.sleeps].start;
    const ZELKDate end = m_marks.sleeps()[after.sleeps - 1].end;
    const double between = end.timeIntervalSinceDate(start) - (after.secondsAsleep - before.secondsAsleep);
    return start.timeIntervalSinceDate(battery.last.date) > longestSilence || between > longestSilence ||
           date.timeIntervalSinceDate(end) > longestSilence;
}

/// Sleeps together with one out of the time that is counted say nothing of it.
void ZELKSleepCostTracker::count(Battery &battery, std::size_t mark, const Charge &charge)
{
    const ZELKSleepMarks::Mark &before = m_marks.at(battery.mark);
    const ZELKSleepMarks::Mark &after = m_marks.at(mark);
    const ZELKSleepMarks::Sleep &first = m_marks.sleeps()[before.sleeps];
    const ZELKSleepMarks::Sleep &last = m_marks.sleeps()[after.sleeps - 1];
    const bool isOne = after.sleeps - before.sleeps == 1;
    if (!isOne)
        setUnknown(Unknown::SeveralSleeps, before.sleeps, after.sleeps);
    if (first.end < m_from || last.end > m_to)
        return;
    const double points = double(battery.last.percentage) - double(charge.percentage);
    battery.asleep.points += points;
    battery.asleep.seconds +=
        isOne ? first.end.timeIntervalSinceDate(first.start) : after.secondsAsleep - before.secondsAsleep;
    if (isOne)
        m_costs.push_back({before.sleeps, std::uint32_t(&battery - m_batteries.data()), points});
}

void ZELKSleepCostTracker::setUnknown(Unknown unknown, std::uint32_t first, std::uint32_t end)
{
    std::vector<int> &changes = m_unknown[std::size_t(unknown)];
    if (changes.size() <= end)
        changes.resize(std::size_t(end) + 1);
    ++changes[first];
    --changes[end];
}

// MARK: what was found

std::uint32_t ZELKSleepCostTracker::firstCounted() const
{
    const auto isBefore = [this](const ZELKSleepMarks::Sleep &sleep) { return sleep.end < m_from; };
    const auto &sleeps = m_marks.sleeps();
    return std::uint32_t(std::partition_point(sleeps.begin(), sleeps.end(), isBefore) - sleeps.begin());
}

std::uint32_t ZELKSleepCostTracker::countedEnd() const
{
    const auto isCounted = [this](const ZELKSleepMarks::Sleep &sleep) { return sleep.end <= m_to; };
    const auto &sleeps = m_marks.sleeps();
    return std::uint32_t(std::partition_point(sleeps.begin(), sleeps.end(), isCounted) - sleeps.begin());
}

ZELKSleepCosts ZELKSleepCostTracker::costs()
{
    for (Battery &battery : m_batteries) {
        if (battery.isRepeated)
            countDuplicates(battery);
        endAwake(battery);
    }
    const std::uint32_t first = firstCounted();
    const std::uint32_t end = countedEnd();
    std::vector<Costs::Sleep> sleeps;
    std::array<int, Costs::unknownCount> holding{};
    for (std::uint32_t i = 0; i < end; ++i) {
        const ZELKSleepMarks::Sleep &sleep = m_marks.sleeps()[i];
        Costs::Sleep found{sleep.start, sleep.end, Unknown::NoReading};
        for (std::size_t reason = 0; reason < holding.size(); ++reason) {
            holding[reason] += i < m_unknown[reason].size() ? m_unknown[reason][i] : 0;
            if (holding[reason] > 0)
                found.unknown = Unknown(reason);
        }
        if (i >= first)
            sleeps.push_back(found);
    }
    std::stable_sort(m_costs.begin(), m_costs.end(),
                     [](const Costs::Cost &a, const Costs::Cost &b) { return a.sleep < b.sleep; });
    for (Costs::Cost &cost : m_costs) {
        cost.sleep -= first;
        sleeps[cost.sleep].unknown = Unknown::No;
    }
    std::vector<Costs::Battery> batteries;
    for (std::size_t i = 0; i < m_batteries.size(); ++i)
        batteries.push_back(
            {m_texts.string(m_numbering.texts()[i]), m_batteries[i].asleep, m_batteries[i].awake});
    return {std::move(sleeps), std::move(m_costs), std::move(batteries)};
}
