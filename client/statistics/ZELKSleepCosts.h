#pragma once

#include "ZELKDate.h"
#include "ZELKDictionary.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// What the sleeps of a time cost, in percentage points of each battery's charge. A plain value.
///
/// A cost is known only where readings of the battery stand before and behind the sleep and nothing between
/// them casts a doubt; all others are unknown, and no figure is made up for them.
class ZELKSleepCosts
{
public:
    /// Why a sleep has no cost; where batteries differ in this, the last of these that is true of one.
    enum class Unknown : std::uint8_t {
        No,            ///< the cost of at least one battery is known
        NoReading,     ///< no reading is near enough on both sides
        SeveralSleeps, ///< readings stand only around several sleeps: together they count, each is unknown
        Unrecorded,    ///< for a time in between nothing was recorded, or a start or shutdown intervened
        Charger        ///< there was power from outside, or the charge grew
    };
    static constexpr int unknownCount = 5;

    struct Sleep
    {
        ZELKDate start;
        ZELKDate end;
        Unknown unknown = Unknown::NoReading;

        double seconds() const { return end.timeIntervalSinceDate(start); }
        bool operator==(const Sleep &) const = default;
    };
    struct Cost
    {
        std::uint32_t sleep = 0;   ///< index of it
        std::uint32_t battery = 0; ///< index of it
        double points = 0.0;

        bool operator==(const Cost &) const = default;
    };
    /// Charge that went, and the time it took.
    struct Drain
    {
        double points = 0.0;
        double seconds = 0.0;

        /// None without any time.
        std::optional<double> percentPerHour() const;
        bool operator==(const Drain &) const = default;
    };
    struct Battery
    {
        QString name;
        Drain asleep; ///< over all sleeps whose cost is known, singly or together
        Drain awake;  ///< from reading to reading, of those with no sleep and no doubt between them

        bool isKnown() const { return asleep.seconds > 0.0 || awake.seconds > 0.0; }
        bool operator==(const Battery &) const = default;
    };

    ZELKSleepCosts() = default;
    /// `costs` in the order of the sleeps.
    ZELKSleepCosts(std::vector<Sleep> sleeps, std::vector<Cost> costs, std::vector<Battery> batteries);

    /// In the order of time.
    const std::vector<Sleep> &sleeps() const { return m_sleeps; }
    const std::vector<Battery> &batteries() const { return m_batteries; }
    /// Those of one sleep, a battery each.
    std::span<const Cost> costsOfSleep(std::size_t sleep) const;
    /// How many sleeps have no cost of their own.
    std::size_t unknownSleeps() const;
    /// A sleep's cost with its length, as a rate; none for a sleep of no length.
    std::optional<double> percentPerHour(const Cost &cost) const;
    /// Why a cost is unknown, in words.
    static QString reason(Unknown unknown);

    static constexpr std::size_t mostSleepsInPanel = 25;
    /// The sums of each battery, asleep and awake, how many sleeps are unknown, and each of the latest
    /// sleeps, the last one first, up to so many. Values are attributed texts.
    ZELKDictionary infoDictionary(std::size_t mostSleeps = mostSleepsInPanel) const;

    bool operator==(const ZELKSleepCosts &) const = default;

private:
    void addSums(std::vector<ZELKDictionary::Item> &items) const;
    ZELKDictionary::Item itemOfSleep(std::size_t sleep) const;

    std::vector<Sleep> m_sleeps;
    std::vector<Cost> m_costs;
    std::vector<Battery> m_batteries;
};
