#pragma once

#include "ZELKDate.h"

#include <vector>

/// From `begin` to before `end`.
struct ZELKLWAPeriod
{
    ZELKDate begin;
    ZELKDate end;

    bool holds(ZELKDate date) const { return begin <= date && date < end; }
    friend bool operator==(const ZELKLWAPeriod &, const ZELKLWAPeriod &) = default;
};

/// In no order, and they may overlap.
using ZELKLWAPeriods = std::vector<ZELKLWAPeriod>;

/// What is left of `whole` when all of `taken`, their ends included, are taken out; in ascending order.
ZELKLWAPeriods ZELKLWAPeriodsWithout(const ZELKLWAPeriod &whole, ZELKLWAPeriods taken);

/// The times of which an agent is to ask what the system kept.
struct ZELKLWAUnread
{
    ZELKLWAPeriods sleeps;
    ZELKLWAPeriods charges;
    ZELKLWAPeriods accounting;

    static ZELKLWAUnread before(ZELKDate until)
    {
        const ZELKLWAPeriods all{{ZELKDate::distantPast(), until}};
        return {all, all, all};
    }
    bool isEmpty() const { return sleeps.empty() && charges.empty() && accounting.empty(); }
};
