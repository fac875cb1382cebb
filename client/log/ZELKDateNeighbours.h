#pragma once

#include "ZELKDate.h"

#include <array>
#include <compare>
#include <functional>
#include <optional>

/// What a date lies between among listed entries, and which of them is nearest: a date chosen in one view
/// stands for that entry in all others. A plain value.
class ZELKDateNeighbours
{
public:
    /// Of the list: rising and falling ones are looked into at a few places, others walked through once.
    enum class Order { None, Rising, Falling };
    struct Neighbour
    {
        ZELKDate date;
        int index = 0; ///< in the list; of entries of one date those with higher ones count as later

        auto operator<=>(const Neighbour &) const = default;
    };

    /// `dateAt` gives the date of the entry at each index below `count`.
    template <typename DateAt>
    ZELKDateNeighbours(ZELKDate date, int count, Order order, DateAt &&dateAt)
        : m_date(date)
    {
        if (order == Order::None)
            walk(count, dateAt);
        else
            lookAround(count, [&](int place) {
                const int index = order == Order::Falling ? count - 1 - place : place;
                return Neighbour{dateAt(index), index};
            });
    }

    /// Before the first entry that is the first, after the last the last; in between it is the first one
    /// later than the date or the last one that is not, the later one when both are as far. Nothing in an
    /// empty list, and where entries of that very date are the last.
    std::optional<Neighbour> nearest() const
    {
        if (isLaterNearer())
            return m_later[0];
        return m_later[0] || (m_earlier[0] && m_earlier[0]->date < m_date) ? m_earlier[0] : std::nullopt;
    }
    /// The dates next to that of the nearest entry, or to the date itself where entries have it.
    std::optional<ZELKDate> next() const { return dateOf(m_later[isLaterNearer() ? 1 : 0]); }
    std::optional<ZELKDate> previous() const { return dateOf(m_earlier[isLaterNearer() ? 0 : 1]); }

private:
    static std::optional<ZELKDate> dateOf(const std::optional<Neighbour> &neighbour)
    {
        return neighbour ? std::optional(neighbour->date) : std::nullopt;
    }
    bool isLaterNearer() const
    {
        return m_later[0] && (!m_earlier[0] || m_later[0]->date.timeIntervalSinceDate(m_date) <=
                                                   m_date.timeIntervalSinceDate(m_earlier[0]->date));
    }
    template <typename DateAt>
    void walk(int count, DateAt &&dateAt)
    {
        for (int index = 0; index < count; ++index) {
            const Neighbour met{dateAt(index), index};
            if (met.date > m_date)
                meet(m_later, met, std::less<>());
            else
                meet(m_earlier, met, std::greater<>());
        }
    }
    template <typename IsCloser>
    static void meet(std::array<std::optional<Neighbour>, 2> &side, const Neighbour &met, IsCloser isCloser)
    {
        const bool isOtherDate = side[0] && met.date != side[0]->date;
        if (!side[0] || isCloser(met, *side[0])) {
            side[1] = isOtherDate ? side[0] : side[1];
            side[0] = met;
        } else if (isOtherDate && (!side[1] || isCloser(met, *side[1]))) {
            side[1] = met;
        }
    }
    /// `at` gives them in the order of dates.
    template <typename At>
    void lookAround(int count, At &&at)
    {
        int low = 0;
        for (int high = count; low < high;) {
            const int middle = low + (high - low) / 2;
            if (at(middle).date > m_date)
                high = middle;
            else
                low = middle + 1;
        }
        for (int place = low; place < count && !m_later[1]; ++place)
            meet(m_later, at(place), std::less<>());
        for (int place = low - 1; place >= 0 && !m_earlier[1]; --place)
            meet(m_earlier, at(place), std::greater<>());
    }

    ZELKDate m_date;
    std::array<std::optional<Neighbour>, 2> m_later;   ///< of two dates, the closer one first
    std::array<std::optional<Neighbour>, 2> m_earlier; ///< not later than the date itself
};
