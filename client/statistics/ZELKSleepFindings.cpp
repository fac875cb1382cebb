#include "ZELKSleepFindings.h"

#include <algorithm>
#include <utility>

using Costs = ZELKSleepCosts;

// MARK: while entries come

bool ZELKSleepFindings::isCounted(const ZELKSleepMarks::Sleep &sleep) const
{
    return sleep.end >= m_from && sleep.end <= m_to;
}

void ZELKSleepFindings::add(const Sleeps &sleeps, Run run, std::uint32_t battery, double points)
{
    if (points == 0.0 || run.end - run.first == 1) {
        for (std::uint32_t i = run.first; i < run.end; ++i)
            addSingle(sleeps, i, battery, points);
        return;
    }
    setUnknown(Unknown::SeveralSleeps, run);
    if (!isCounted(sleeps[run.first]) || !isCounted(sleeps[run.end - 1]))
        return;
    double seconds = 0.0;
    for (std::uint32_t i = run.first; i < run.end; ++i)
        seconds += sleeps[i].end.timeIntervalSinceDate(sleeps[i].start);
    m_findings.push_back({run, battery, points, seconds});
}

void ZELKSleepFindings::addSingle(const Sleeps &sleeps, std::uint32_t sleep, std::uint32_t battery,
                                  double points)
{
    const ZELKSleepMarks::Sleep &slept = sleeps[sleep];
    if (isCounted(slept))
        m_findings.push_back(
            {{sleep, sleep + 1}, battery, points, slept.end.timeIntervalSinceDate(slept.start)});
}

void ZELKSleepFindings::set(Changes &changes, Run run)
{
    if (changes.size() <= run.end)
        changes.resize(std::size_t(run.end) + 1);
    ++changes[run.first];
    --changes[run.end];
}

// MARK: when all is known

Costs ZELKSleepFindings::costs(const Sleeps &sleeps, std::vector<Costs::Battery> batteries,
                               const std::function<bool(std::uint32_t)> &isInside)
{
    dropCharged(sleeps.size(), isInside);
    for (const Finding &finding : m_findings) {
        batteries[finding.battery].asleep.points += finding.points;
        batteries[finding.battery].asleep.seconds += finding.seconds;
    }
    const Run run = counted(sleeps);
    std::vector<Costs::Sleep> found = countedSleeps(sleeps, run);
    std::vector<Costs::Cost> known = singleCosts(run);
    for (const Costs::Cost &cost : known)
        found[cost.sleep].unknown = Unknown::No;
    return {std::move(found), std::move(known), std::move(batteries)};
}

void ZELKSleepFindings::dropCharged(std::size_t sleeps, const std::function<bool(std::uint32_t)> &isInside)
{
    if (m_charged.empty())
        return;
    std::vector<int> charged(sleeps + 1); // how many there are before each sleep
    int holding = 0;
    for (std::size_t i = 0; i < sleeps; ++i) {
        holding += i < m_charged.size() ? m_charged[i] : 0;
        charged[i + 1] = charged[i] + (holding > 0 ? 1 : 0);
    }
    std::erase_if(m_findings, [&](const Finding &finding) {
        if (charged[finding.run.first] == charged[finding.run.end] || !isInside(finding.battery))
            return false;
        setUnknown(Unknown::Charger, finding.run);
        return true;
    });
}

ZELKSleepFindings::Run ZELKSleepFindings::counted(const Sleeps &sleeps) const
{
    const auto first = std::partition_point(sleeps.begin(), sleeps.end(),
                                            [this](const auto &sleep) { return sleep.end < m_from; });
    const auto end =
        std::partition_point(first, sleeps.end(), [this](const auto &sleep) { return sleep.end <= m_to; });
    return {std::uint32_t(first - sleeps.begin()), std::uint32_t(end - sleeps.begin())};
}

std::vector<Costs::Sleep> ZELKSleepFindings::countedSleeps(const Sleeps &sleeps, Run counted) const
{
    std::vector<Costs::Sleep> found;
    found.reserve(counted.end - counted.first);
    std::array<int, Costs::unknownCount> holding{};
    for (std::uint32_t i = 0; i < counted.end; ++i) {
        Unknown unknown = Unknown::NoReading;
        for (std::size_t reason = 0; reason < holding.size(); ++reason) {
            holding[reason] += i < m_unknown[reason].size() ? m_unknown[reason][i] : 0;
            unknown = holding[reason] > 0 ? Unknown(reason) : unknown;
        }
        if (i >= counted.first)
            found.push_back({sleeps[i].start, sleeps[i].end, unknown});
    }
    return found;
}

/// In the order of the sleeps; they were found in that of the readings.
std::vector<Costs::Cost> ZELKSleepFindings::singleCosts(Run counted) const
{
    const auto isSingle = [](const Finding &finding) { return finding.run.end - finding.run.first == 1; };
    std::vector<std::uint32_t> places(std::size_t(counted.end - counted.first) + 1);
    for (const Finding &finding : m_findings)
        if (isSingle(finding))
            ++places[finding.run.first - counted.first + 1];
    for (std::size_t i = 1; i < places.size(); ++i)
        places[i] += places[i - 1];
    std::vector<Costs::Cost> costs(places.back());
    for (const Finding &finding : m_findings)
        if (isSingle(finding)) {
            const std::uint32_t sleep = finding.run.first - counted.first;
            costs[places[sleep]++] = {sleep, finding.battery, finding.points};
        }
    return costs;
}
