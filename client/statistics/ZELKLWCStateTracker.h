#pragma once

#include "ZELKDate.h"
#include "ZELKTextNumbering.h"

#include <vector>

/// Adds up how long something was in each of its states, from observations in ascending order of their dates.
/// A state is a text, by its number in some pool; nil is none. What the texts mean is nothing to the tracker.
///
/// An observation dated before the current state's start takes time away from that state.
class ZELKLWCStateTracker
{
public:
    using State = ZELKStringPool::Id;

    struct Interval
    {
        State state = ZELKStringPool::nil;
        double seconds = 0.0;

        bool operator==(const Interval &) const = default;
    };

    ZELKLWCStateTracker(State state, ZELKDate starting)
        : m_currentState(state)
        , m_currentStateStarts(starting)
    {
    }
    static ZELKLWCStateTracker stateTrackerWithState(State state, ZELKDate starting)
    {
        return {state, starting};
    }

    /// The state holds from the date on. None, and the state that holds already, change nothing.
    void addState(State state, ZELKDate starting)
    {
        if (state != ZELKStringPool::nil && state != m_currentState)
            changeState(state, starting);
    }
    /// Credits the current state with the time up to the date, and keeps it.
    void currentStateEndsOnDate(ZELKDate date);
    /// Adds seconds to a state's total. A total begins with the first seconds other than 0; none has none.
    void incrementState(State state, double seconds);

    /// The totals, in the order in which they began.
    const std::vector<Interval> &stateIntervals() const { return m_stateIntervals; }
    void setStateIntervals(const std::vector<Interval> &intervals);
    State currentState() const { return m_currentState; }
    void setCurrentState(State state) { m_currentState = state; }
    /// When the time not yet credited began.
    ZELKDate currentStateStarts() const { return m_currentStateStarts; }
    void setCurrentStateStarts(ZELKDate date) { m_currentStateStarts = date; }

private:
    void changeState(State state, ZELKDate starting);

    std::vector<Interval> m_stateIntervals;
    ZELKTextNumbering m_numbering; ///< of the totals
    State m_currentState;
    ZELKDate m_currentStateStarts;
};
