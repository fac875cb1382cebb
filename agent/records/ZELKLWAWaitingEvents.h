#pragma once

#include "ZELKLWAEvent.h"
#include "ZELKLWAEventPosition.h"

#include <deque>
#include <optional>
#include <vector>

/// Events that are not in the file yet, in the order of arrival. They can be served from here.
class ZELKLWAWaitingEvents
{
public:
    struct Waiting
    {
        ZELKLWAEventPosition position;
        /// Microseconds since 2001-01-01 UTC; none while its burst goes on.
        std::optional<qint64> settled;
        ZELKLWAEvent event;
    };

    void append(const ZELKLWAEvent &event);
    /// Drops the first `count`.
    void drop(std::size_t count)
    {
        m_events.erase(m_events.begin(), m_events.begin() + std::ptrdiff_t(count));
    }
    /// Settles what has not; false when there was nothing.
    bool settle(qint64 time);

    bool hasUnsettled() const;

    bool empty() const { return m_events.empty(); }
    std::size_t size() const { return m_events.size(); }
    const Waiting &operator[](std::size_t index) const { return m_events[index]; }
    /// The settled ones of the range that stand after `after`, in ascending order; valid until the next
    /// change.
    std::vector<const Waiting *> eventsAfter(ZELKLWAEventPosition after,
                                             const ZELKLWAEventRange &range) const;

private:
    std::deque<Waiting> m_events;
    qint64 m_arrivals = 0;
};
