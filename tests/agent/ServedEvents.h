#pragma once

#include "AgentFixture.h"
#include "ZELKLWAEventStore.h"

#include <limits>

/// What a store serves of a range, in its order, read in pages of `page` events.
struct ServedEvents
{
    QStringList dates, names, properties;
    bool failed = false;

    explicit ServedEvents(ZELKLWAEventStore &store,
                          const ZELKLWAEventRange &range = ZELKLWAEventRange::requested(0, 9e9),
                          int page = 1000)
    {
        using End = ZELKLWAEventPage::End;
        constexpr qint64 first = std::numeric_limits<qint64>::min();
        ZELKLWAEventPosition at{first, first};
        const auto take = [&](ZELKLWAEventPosition position, const ZELKRawEventView &event) {
            at = position;
            dates.append(text(event.date));
            names.append(text(event.description));
            properties.append(text(event.properties));
            return true;
        };
        End end = End::Stopped;
        while (end == End::Stopped)
            end = store.eventsAfter(at, range, page, take);
        failed = end == End::Failed;
    }
};
