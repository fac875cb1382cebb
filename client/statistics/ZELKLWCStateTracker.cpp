#include "ZELKLWCStateTracker.h"

void ZELKLWCStateTracker::changeState(State state, ZELKDate starting)
{
    currentStateEndsOnDate(starting);
    m_currentState = state;
}

void ZELKLWCStateTracker::currentStateEndsOnDate(ZELKDate date)
{
    incrementState(m_currentState, date.timeIntervalSinceDate(m_currentStateStarts));
    m_currentStateStarts = date;
}

void ZELKLWCStateTracker::incrementState(State state, double seconds)
{
    if (seconds == 0.0 || state == ZELKStringPool::nil)
        return;
    const std::size_t number = m_numbering.numberOf(state);
    if (number == m_stateIntervals.size())
        m_stateIntervals.push_back({state, 0.0});
    m_stateIntervals[number].seconds += seconds;
}

void ZELKLWCStateTracker::setStateIntervals(const std::vector<Interval> &intervals)
{
    m_stateIntervals.clear();
    m_numbering = {};
    for (const Interval &interval : intervals) {
        m_numbering.numberOf(interval.state);
        m_stateIntervals.push_back(interval);
    }
}
