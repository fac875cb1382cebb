#include "ZELKSleepCostTracker.h"

#include <utility>

ZELKSleepCostTracker::ZELKSleepCostTracker(const ZELKStringPool &texts, ZELKDate from, ZELKDate to)
    : m_texts(texts)
    , m_from(from)
    , m_to(to)
    , m_findings(from, to)
{
}

std::uint32_t ZELKSleepCostTracker::batteryNumber(Id name, bool isInside)
{
    const std::size_t number = m_numbering.numberOf(name);
    if (number == m_batteries.size())
        m_batteries.emplace_back();
    m_batteries[number].isInside = isInside;
    return std::uint32_t(number);
}

/// Whatever was read at a wake's very moment is of the time awake.
void ZELKSleepCostTracker::confirmNightCharges(ZELKDate wake)
{
    for (Battery &battery : m_batteries)
        if (battery.night.date == wake)
            confirm(battery, battery.night);
}

void ZELKSleepCostTracker::confirmBehindMarks(Battery &battery, const Mark &mark, const Charge &charge)
{
    battery.endDrain();
    if (battery.isKnown && mark.sleeps != battery.mark.sleeps)
        conclude(battery, mark, charge);
    battery.isKnown = true;
    battery.last = charge;
    battery.mark = mark;
    battery.lowest.reset();
    battery.hadPower = false;
}

// MARK: sleeps between two charges

void ZELKSleepCostTracker::conclude(Battery &battery, const Mark &mark, const Charge &charge)
{
    const Unknown unknown = doubt(battery, mark, charge);
    if (unknown == Unknown::No)
        return count(battery, mark, charge);
    m_findings.setUnknown(unknown, {battery.mark.sleeps, mark.sleeps});
    if (unknown == Unknown::Charger && battery.isInside)
        notePower(battery, mark, charge);
}

ZELKSleepCosts::Unknown ZELKSleepCostTracker::doubt(const Battery &battery, const Mark &mark,
                                                    const Charge &charge) const
{
    if (!battery.last.isOnBattery || !charge.isOnBattery || battery.hadPower ||
        charge.percentage > battery.told())
        return Unknown::Charger;
    if (mark.breaks != battery.mark.breaks)
        return Unknown::Unrecorded;
    return isSilent(battery, mark, charge) ? Unknown::NoReading : Unknown::No;
}

/// For longer than can be relied on nothing was read while the computer was awake: before the sleeps, between
/// or behind them; or more was lost behind them than a watcher would have let pass.
bool ZELKSleepCostTracker::isSilent(const Battery &battery, const Mark &mark, const Charge &charge) const
{
    const double before = sleepSince(battery.mark).timeIntervalSinceDate(battery.last.date);
    const double behind = charge.date.timeIntervalSinceDate(wakeUpTo(mark));
    return before > longestSilence || secondsAwake(battery.mark, mark) > longestSilence ||
           behind > longestSilence || (behind > soon && battery.told() - charge.percentage > 1);
}

/// Between the sleeps. None for one, whatever the sums' last digits say.
double ZELKSleepCostTracker::secondsAwake(const Mark &before, const Mark &after) const
{
    if (after.sleeps - before.sleeps == 1)
        return 0.0;
    return wakeUpTo(after).timeIntervalSinceDate(sleepSince(before)) -
           (after.secondsAsleep - before.secondsAsleep);
}

/// Who is on mains long behind a wake may have been connected only then; and so may who is behind a reading
/// on battery.
void ZELKSleepCostTracker::notePower(const Battery &battery, const Mark &mark, const Charge &charge)
{
    if (!battery.last.isOnBattery || battery.hadPower || charge.percentage > battery.told())
        m_findings.setCharged({battery.mark.sleeps, mark.sleeps});
    else if (m_drainedBehind != mark.sleeps && charge.date.timeIntervalSinceDate(wakeUpTo(mark)) <= soon)
        m_findings.setCharged({mark.sleeps - 1, mark.sleeps});
}

/// Behind the wake the battery drains again.
void ZELKSleepCostTracker::count(Battery &battery, const Mark &mark, const Charge &charge)
{
    const ZELKDate start = sleepSince(battery.mark);
    const ZELKDate wake = wakeUpTo(mark);
    const bool isSoon = charge.date.timeIntervalSinceDate(wake) <= soon;
    const int atWake = isSoon ? charge.percentage : battery.told();
    m_drainedBehind = battery.isInside ? mark.sleeps : m_drainedBehind;
    m_findings.add(m_marks.sleeps(), {battery.mark.sleeps, mark.sleeps},
                   std::uint32_t(&battery - m_batteries.data()), battery.last.percentage - atWake);
    countAwake(battery, battery.last.date, start, start.timeIntervalSinceDate(battery.last.date));
    countAwake(battery, start, wake, secondsAwake(battery.mark, mark));
    battery.isDraining = wake >= m_from && charge.date <= m_to;
    battery.drainsFrom = {wake, atWake, true};
}

/// Time awake in which the charge stayed as it was.
void ZELKSleepCostTracker::countAwake(Battery &battery, ZELKDate from, ZELKDate to, double seconds) const
{
    if (from >= m_from && to <= m_to)
        battery.awake.seconds += seconds;
}

// MARK: what was found

ZELKSleepCosts ZELKSleepCostTracker::costs()
{
    std::vector<ZELKSleepCosts::Battery> batteries;
    for (std::size_t i = 0; i < m_batteries.size(); ++i) {
        m_batteries[i].endDrain();
        batteries.push_back({m_texts.string(m_numbering.texts()[i]), {}, m_batteries[i].awake});
    }
    return m_findings.costs(m_marks.sleeps(), std::move(batteries),
                            [this](std::uint32_t battery) { return m_batteries[battery].isInside; });
}
