#include "ZELKSleepStates.h"

#include <algorithm>

namespace {

constexpr double smallestStep = 1e-6;

/// Adds an event that is later than the one before it.
void add(ZELKSleepStates::Events &events, ZELKDate date, QLatin1String name)
{
    if (!events.empty())
        date = std::max(date, events.back().date.addingTimeInterval(smallestStep));
    events.push_back({date, name, ZELKMonitorPowerEvents});
}

} // namespace

ZELKSleepStates::ZELKSleepStates(const ZELKMoment &start)
    : m_suspended(start.suspended)
{
}

ZELKSleepStates ZELKSleepStates::announcedAt(const ZELKMoment &moment)
{
    ZELKSleepStates states(moment);
    states.m_announced = moment;
    return states;
}

ZELKSleepStates::Events ZELKSleepStates::observe(const ZELKMoment &moment)
{
    Events events;
    look(moment, events);
    return events;
}

ZELKSleepStates::Events ZELKSleepStates::prepareForSleep(bool begins, const ZELKMoment &moment)
{
    Events events;
    look(moment, events);
    if (!begins) {
        if (m_announced && m_hearsJobs && !m_jobDone)
            closeFailed(moment, events);
        else if (m_announced)
            close(moment.date, events);
        m_noticed.reset();
    } else if (!m_announced && !announcementsMayBeLate(moment)) {
        add(events, moment.date, ZELKEventSystemWillSleep);
        m_announced = moment;
        m_announced->date = events.back().date;
        m_noticed.reset();
        m_jobDone = false;
    }
    return events;
}

ZELKSleepStates::Events ZELKSleepStates::sleepJobDidFinish(bool succeeded, const ZELKMoment &moment)
{
    Events events;
    look(moment, events);
    if (succeeded) {
        m_jobDone = true;
    } else if (!announcementsMayBeLate(moment)) {
        closeFailed(moment, events);
        m_noticed = moment.awake;
    }
    return events;
}

void ZELKSleepStates::look(const ZELKMoment &moment, Events &events)
{
    const double growth = moment.suspended - m_suspended;
    m_suspended = moment.suspended;
    if (growth >= shortestSuspend)
        closeAfter(growth, moment, events);
    else if (m_announced && moment.awake - m_announced->awake > announcementLasts)
        close(moment.date, events);
}

/// The machine was suspended since the last look.
void ZELKSleepStates::closeAfter(double growth, const ZELKMoment &moment, Events &events)
{
    ZELKDate wake = moment.date;
    if (m_announced) {
        const double awake = moment.awake - m_announced->awake;
        if (awake > longestPreparation)
            wake = wake.addingTimeInterval(-awake);
    } else {
        add(events, moment.date.addingTimeInterval(-growth), ZELKEventSystemWillSleep);
    }
    close(wake, events);
    m_noticed = moment.awake;
}

/// A wall clock that was set back meanwhile does not put the wake before the sleep.
void ZELKSleepStates::close(ZELKDate wake, Events &events)
{
    if (m_announced)
        wake = std::max(wake, m_announced->date.addingTimeInterval(smallestStep));
    add(events, wake, ZELKEventSystemHasPoweredOn);
    m_announced.reset();
}

void ZELKSleepStates::closeFailed(const ZELKMoment &moment, Events &events)
{
    add(events, moment.date, ZELKEventSystemWillNotSleep);
    if (m_announced)
        close(moment.date, events);
}

bool ZELKSleepStates::announcementsMayBeLate(const ZELKMoment &moment) const
{
    return m_noticed && moment.awake - *m_noticed <= announcementsComeWithin;
}
