#include "ZELKSleepCosts.h"

#include "ZELKCalendar.h"
#include "ZELKDateFormatter.h"
#include "ZELKFigureText.h"
#include "ZELKFormat.h"
#include "ZELKLWCDuration.h"
#include "ZELKLWCLogEntry.h"

#include <QHash>

#include <algorithm>

namespace {

constexpr double secondsInHour = 3600.0;

QString general(QLatin1String key)
{
    return ZELKLWCLogEntry::localizedStringForKey(key, key, QStringLiteral("General"));
}

std::optional<double> rate(double points, double seconds)
{
    return seconds > 0.0 ? std::optional(points / seconds * secondsInHour) : std::nullopt;
}

/// "5 Mar 2024 23:00:00 - 6 Mar 2024 07:00:00"; the day once where it is the same.
QString times(const ZELKSleepCosts::Sleep &sleep)
{
    using Style = ZELKDateFormatter::Style;
    const bool isOneDay = ZELKCalendar::startOfDay(sleep.start) == ZELKCalendar::startOfDay(sleep.end);
    const ZELKDateFormatter start(Style::Short, Style::Short);
    const ZELKDateFormatter end(isOneDay ? Style::None : Style::Short, Style::Short);
    return ZELKFormat(general(QLatin1String("%@ - %@")),
                      {start.stringFromDate(sleep.start), end.stringFromDate(sleep.end)});
}

ZELKDictionary::Item itemOfDrain(QLatin1String key, const QString &name, const ZELKSleepCosts::Drain &drain)
{
    const QString total = ZELKFormat(general(QLatin1String("%.1f%% in %@")),
                                     {drain.points, ZELKLWCDuration::shortStringFromDuration(drain.seconds)});
    const ZELKAttributedString text =
        ZELKFigureText(ZELKFormat("%.1f", {drain.percentPerHour().value_or(0.0)}),
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

std::optional<double> ZELKSleepCosts::Drain::percentPerHour() const
{
    return rate(points, seconds);
}

std::optional<double> ZELKSleepCosts::percentPerHour(const Cost &cost) const
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

/// Sleeps may bear the same times when the clock is set back.
ZELKDictionary ZELKSleepCosts::infoDictionary(std::size_t mostSleeps) const
{
    std::vector<ZELKDictionary::Item> items;
    addSums(items);
    const std::size_t shown = std::min(m_sleeps.size(), mostSleeps);
    QHash<QString, std::uint64_t> named;
    for (std::size_t i = 0; i < shown; ++i) {
        ZELKDictionary::Item item = itemOfSleep(m_sleeps.size() - 1 - i);
        if (const std::uint64_t number = ++named[item.first]; number > 1)
            item.first += ZELKFormat(" (%lu)", {number});
        items.push_back(std::move(item));
    }
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
    const Sleep &found = m_sleeps[sleep];
    const QString length = ZELKLWCDuration::shortStringFromDuration(found.seconds());
    ZELKAttributedString text;
    for (const Cost &cost : costsOfSleep(sleep)) {
        const QString name =
            m_batteries.size() > 1 ? m_batteries[cost.battery].name + QLatin1Char(' ') : QString();
        const std::optional<double> rate = percentPerHour(cost);
        const QString qualifier =
            rate ? ZELKFormat(general(QLatin1String("%.1f%% an hour, %@")), {*rate, length}) : length;
        text.append(ZELKFigureText(name + ZELKFormat("%.0f", {cost.points}), QStringLiteral("%  "),
                                   qualifier + QLatin1String("  ")));
    }
    if (found.unknown != Unknown::No)
        text = ZELKFigureText({}, general(QLatin1String("Unknown")) + QLatin1String("  "),
                              ZELKFormat("%@, %@", {reason(found.unknown), length}));
    return {times(found), QVariant::fromValue(text)};
}
