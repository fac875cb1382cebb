#pragma once

#include "ZELKDate.h"
#include "ZELKRawEvent.h"

#include <functional>
#include <optional>
#include <vector>

/// The times of which another agent has told, in its own words, before this one was asked. What this one
/// has found in the system's history of the same times is the same sleeps and charges in other words; for
/// everybody else on the computer it has to tell them.
class ZELKToldTimes
{
public:
    using Taker = std::function<void(const ZELKRawEventView &event)>;
    /// Shows the cached events up to a date, in their order.
    using Reader = std::function<void(ZELKDate to, const Taker &take)>;

    /// `reader` is asked once, when the first event is found that may be such a one.
    explicit ZELKToldTimes(Reader reader);

    /// `until`: when another agent last brought events; nothing when none did.
    void setUntil(std::optional<ZELKDate> until);
    /// A sleep, a wake, a charge or the like of a time between another agent's start and its end.
    bool hold(const ZELKRawEventView &event);

private:
    struct Period
    {
        double begin;
        double end;
    };
    void read();

    Reader m_reader;
    std::optional<ZELKDate> m_until;
    std::optional<std::vector<Period>> m_periods;
};
