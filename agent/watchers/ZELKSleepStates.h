#pragma once

#include "ZELKLWAEvent.h"
#include "ZELKSuspendClock.h"

#include <optional>
#include <vector>

/// Makes "System will sleep", "System has powered on" and "System will not sleep" of what is heard about
/// sleeping, however often, late or little that is. A plain state machine: each operation answers the events
/// to record, in ascending order; each first looks at the clocks, so that anything heard serves as a sign of
/// life.
///
/// - Doubled announcements change nothing.
/// - A suspend that nobody announced, or whose announcement is late, shows in the growth of
///   ZELKMoment::suspended. It ended now, when it is noticed, and took as long as the growth says.
/// - An announced sleep ends with its own signal, with growth, or when the machine is still at work a minute
///   later: there are machines whose clocks run on while they sleep.
/// - A sleep that failed gives "System will not sleep", and "System has powered on" as what it had announced
/// is
///   over.
class ZELKSleepStates
{
public:
    using Events = std::vector<ZELKLWAEvent>;

    /// Less growth than this many seconds is noise: clocks that count suspended time by the second err by as
    /// much, and a suspend that short was given up by the kernel.
    static constexpr double shortestSuspend = 1.0;
    /// Seconds awake, between the announcement and the notice of the wake, that preparing and thawing may
    /// take (others may hold sleep off for 5, hooks come on top). When there were more, the notice is late:
    /// the wake is then dated by the length of the sleep instead.
    static constexpr double longestPreparation = 30.0;
    /// Seconds awake after which an announced sleep that shows nowhere is over, and an announcement is a new
    /// one.
    static constexpr double announcementLasts = 60.0;
    /// Seconds awake in which an announcement that follows a noticed sleep is that sleep's own, come late:
    /// what waited on the bus is there at once. Should it be another sleep, its growth tells of it all the
    /// same.
    static constexpr double announcementsComeWithin = 5.0;

    explicit ZELKSleepStates(const ZELKMoment &start = {});
    /// Goes on from an announcement that another agent heard and recorded.
    static ZELKSleepStates announcedAt(const ZELKMoment &moment);

    /// Anything that happened.
    Events observe(const ZELKMoment &moment);
    /// `begins` before the sleep, else after it, successful or not.
    Events prepareForSleep(bool begins, const ZELKMoment &moment);
    /// The service manager is through with the job that sends the machine to sleep.
    Events sleepJobDidFinish(bool succeeded, const ZELKMoment &moment);

    /// Whether the service manager's jobs are heard of at all. When they are, an announced sleep that ends
    /// without job and without growth was refused.
    void setHearsJobs(bool hears) { m_hearsJobs = hears; }
    /// A sleep was announced and is not over.
    bool isSleeping() const { return m_announced.has_value(); }

private:
    void look(const ZELKMoment &moment, Events &events);
    void close(ZELKDate wake, Events &events);
    void closeAfter(double growth, const ZELKMoment &moment, Events &events);
    void closeFailed(const ZELKMoment &moment, Events &events);
    bool announcementsMayBeLate(const ZELKMoment &moment) const;

    double m_suspended;
    /// When the sleep that goes on was announced.
    std::optional<ZELKMoment> m_announced;
    /// Seconds awake when something else than its signal ended a sleep.
    std::optional<double> m_noticed;
    bool m_hearsJobs = false;
    bool m_jobDone = false;
};
