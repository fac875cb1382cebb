#include "ZELKSleepCosts.h"

#include "ZELKDateFormatter.h"
#include "ZELKFigureText.h"
#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"
#include "ZELKLWCLogEntry.h"

#include <algorithm>

namespace {

constexpr double secondsInHour = 3600.0;

QString general(QLatin1String key)
{
    return ZELKLWCLogEntry::localizedStringForKey(key, key, QStringLiteral("General"));
}

double rate(double points, double seconds)
{
    return seconds > 0.0 ? points / seconds * secondsInHour : 0.0;
}

ZELKDictionary::Item itemOfDrain(QLatin1String key, const QString &name, const ZELKSleepCosts::Drain &drain)
{
    const QString total = ZELKFormat(general(QLatin1String("%.1f%% in %@")),
                                     {drain.points, ZELKLWCDuration::shortStringFromDuration(drain.seconds)});
    const ZELKAttributedString text =
        ZELKFigureText(ZELKFormat("%.1f", {drain.percentPerHour()}),
                       general(QLatin1String("% an hour")) + QLatin1String("  "), total);
    return {ZELKFormat(general(key), {name}), QVariant::fromValue(text)};
}

} // namespace

ZELKSleepCosts::ZELKSleepCosts(std::vector<Sleep> sleeps, std::vector<Cost> costs,
                               std::vector<Battery> batteries)
    : m_sleeps(std::move(sleeps))
    , m_costs(std::move(costs))
    , m_batteries(std::move(batteries))
{
}

double ZELKSleepCosts::Drain::percentPerHour() const
{
    return rate(points, seconds);
}

double ZELKSleepCosts::percentPerHour(const Cost &cost) const
{
    return rate(cost.points, m_sleeps[cost.sleep].seconds());
}

std::span<const ZELKSleepCosts::Cost> ZELKSleepCosts::costsOfSleep(std::size_t sleep) const
{
    const auto begin = std::partition_point(m_costs.begin(), m_costs.end(),
                                            [&](const Cost &cost) { return cost.sleep < sleep; });
    const auto end =
        std::find_if_not(begin, m_costs.end(), [&](const Cost &cost) { return cost.sleep == sleep; });
    return {begin, end};
}

std::size_t ZELKSleepCosts::unknownSleeps() const
{
    return std::size_t(std::count_if(m_sleeps.begin(), m_sleeps.end(),
                                     [](const Sleep &sleep) { return sleep.unknown != Unknown::No; }));
}

QString ZELKSleepCosts::reason(Unknown unknown)
{
    switch (unknown) {
    case Unknown::No:
        break;
    case Unknown::NoReading:
        return general(QLatin1String("no charge was read shortly before and after"));
    case Unknown::SeveralSleeps:
        return general(QLatin1String("the charge was read only around several sleeps"));
    case Unknown::Unrecorded:
        return general(QLatin1String("not everything in between was recorded"));
    case Unknown::Charger:
        return general(QLatin1String("there was power from outside"));
    }
    return {};
}

ZELKDictionary ZELKSleepCosts::infoDictionary() const
{
    std::vector<ZELKDictionary::Item> items;
    addSums(items);
    const std::size_t shown = std::min(m_sleeps.size(), mostSleepsInInfo);
    for (std::size_t i = 0; i < shown; ++i)
        items.push_back(itemOfSleep(m_sleeps.size() - 1 - i));
    if (shown < m_sleeps.size())
        items.emplace_back(
            general(QLatin1String("Earlier")),
            QVariant::fromValue(ZELKFigureText(
                {}, {}, ZELKFormat(general(QLatin1String("%lu more sleeps")), {m_sleeps.size() - shown}))));
    return ZELKDictionary::fromItems(std::move(items));
}

void ZELKSleepCosts::addSums(std::vector<ZELKDictionary::Item> &items) const
{
    for (const Battery &battery : m_batteries) {
        if (battery.asleep.seconds > 0.0)
            items.push_back(itemOfDrain(QLatin1String("%@ asleep"), battery.name, battery.asleep));
        if (battery.awake.seconds > 0.0)
            items.push_back(itemOfDrain(QLatin1String("%@ awake"), battery.name, battery.awake));
    }
    if (const std::size_t unknown = unknownSleeps())
        items.emplace_back(
            general(QLatin1String("Unknown")),
            QVariant::fromValue(ZELKFigureText(
                {}, ZELKFormat(general(QLatin1String("%lu of %lu sleeps")), {unknown, m_sleeps.size()}))));
}

/// Named by its times; the batteries' names only where there are several.
ZELKDictionary::Item ZELKSleepCosts::itemOfSleep(std::size_t sleep) const
{
    using Style = ZELKDateFormatter::Style;
    const Sleep &found = m_sleeps[sleep];
    const QString key = ZELKFormat(general(QLatin1String("%@ - %@")),
                                   {ZELKDateFormatter(Style::Short, Style::Short).stringFromDate(found.start),
                                    ZELKDateFormatter(Style::None, Style::Short).stringFromDate(found.end)});
    const QString length = ZELKLWCDuration::shortStringFromDuration(found.seconds());
    ZELKAttributedString text;
    for (const Cost &cost : costsOfSleep(sleep)) {
        const QString name =
            m_batteries.size() > 1 ? m_batteries[cost.battery].name + QLatin1Char(' ') : QString();
        const QString qualifier =
            ZELKFormat(general(QLatin1String("%.1f%% an hour, %@")), {percentPerHour(cost), length});
        text.append(ZELKFigureText(name + ZELKFormat("%.0f", {cost.points}), QStringLiteral("%  "),
                                   qualifier + QLatin1String("  ")));
    }
    if (found.unknown != Unknown::No)
        text = ZELKFigureText({}, general(QLatin1String("Unknown")) + QLatin1String("  "),
                              ZELKFormat("%@, %@", {reason(found.unknown), length}));
    return {key, QVariant::fromValue(text)};
}
