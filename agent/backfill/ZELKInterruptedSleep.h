#pragma once

#include "ZELKLWAEvent.h"
#include "ZELKSuspendClock.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

/// The sleep that an agent announced and may not live to see the end of. Its moment on the kernel's clocks is
/// kept in a small file while it goes on, so that the next agent of the same boot can tell of the wake.
class ZELKInterruptedSleep
{
public:
    /// `path` is the file; `bootID` the kernel's file that names the boot.
    ZELKInterruptedSleep(const QString &path, std::shared_ptr<const ZELKSuspendClock> clock,
                         const QString &bootID);

    /// What is about to be recorded: a sleep is kept, a wake is the end of it. A place that can not be
    /// written to is no matter: the journal tells of most.
    void note(const std::vector<ZELKLWAEvent> &events);
    /// Looks for what the agent before left in this boot. Once, before anything is noted.
    void recall();
    /// The announcement of the sleep that was recalled, when the machine may not have slept yet: whoever
    /// watches from now on hears of its end. It is not kept in mind any more; the file is, until the wake.
    std::optional<ZELKMoment> takeComing();

    /// What ended the sleep that was recalled, in with `sleeps`, which the journal tells of the time without
    /// agent, in ascending order: what it tells, and a wake where that tells of none, dated by the clocks.
    /// Without a sleep recalled, `sleeps` are answered.
    std::vector<ZELKLWAEvent> ended(std::vector<ZELKLWAEvent> sleeps);
    /// What ended() answered is recorded.
    void endWasRecorded() const;

private:
    std::vector<ZELKLWAEvent> endedByClocks() const;
    ZELKMoment now() const;
    QString boot() const;

    QString m_path;
    std::shared_ptr<const ZELKSuspendClock> m_clock;
    QString m_bootID;
    /// When the sleep was announced, and when that was found.
    std::optional<ZELKMoment> m_announced;
    ZELKMoment m_found;
    bool m_isOver = false;
    bool m_isAnothers = false; ///< the file, by now
};
