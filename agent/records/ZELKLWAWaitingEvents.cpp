#include "ZELKLWAWaitingEvents.h"

#include <algorithm>

namespace {

/// Rows of events that wait are counted from here, so that they stand after those in the file.
constexpr qint64 firstWaitingRow = qint64(1) << 62;

} // namespace

void ZELKLWAWaitingEvents::append(const ZELKLWAEvent &event)
{
    m_events.push_back({{ZELKLWATimeOf(event.date), firstWaitingRow + m_arrivals++}, {}, event});
}

bool ZELKLWAWaitingEvents::settle(qint64 time)
{
    bool any = false;
    for (Waiting &waiting : m_events) {
        any = any || !waiting.settled;
        waiting.settled = waiting.settled.value_or(time);
    }
    return any;
}

bool ZELKLWAWaitingEvents::hasUnsettled() const
{
    return std::any_of(m_events.begin(), m_events.end(),
                       [](const Waiting &waiting) { return !waiting.settled; });
}

std::vector<const ZELKLWAWaitingEvents::Waiting *>
ZELKLWAWaitingEvents::eventsAfter(ZELKLWAEventPosition after, const ZELKLWAEventRange &range) const
{
    std::vector<const Waiting *> result;
    for (const Waiting &waiting : m_events)
        if (waiting.position > after && waiting.settled &&
            range.holds(waiting.position.time, *waiting.settled))
            result.push_back(&waiting);
    std::sort(result.begin(), result.end(),
              [](const Waiting *a, const Waiting *b) { return a->position < b->position; });
    return result;
}
