#pragma once

#include "ZELKLWAEvent.h"
#include "ZELKSuspendClock.h"

#include <optional>
#include <vector>

enum class ZELKShutdownKind { PowerOff, Restart };
/// Of the service manager's target that ends the system so: "reboot.target".
std::optional<ZELKShutdownKind> ZELKShutdownKindOfTarget(const QString &target);

/// A shut-down that was announced.
struct ZELKAnnouncedShutdown
{
    /// Of the announcement.
    ZELKMoment moment;
    /// Kept only from just before it is recorded until it is.
    std::optional<ZELKShutdownKind> kind;
    bool isRecorded = false;

    ZELKLWAEvent event() const;
};

/// Makes "System will power off", "System will restart" and "System will not power off" of what is heard
/// about the end of the system: its announcement, which does not tell the kind, and the service manager's
/// jobs, which do. Each operation answers the events to record.
class ZELKShutdownStates
{
public:
    using Events = std::vector<ZELKLWAEvent>;

    /// Seconds awake after which another announcement is another shut-down: the one before came to nothing
    /// and nobody said so.
    static constexpr double announcementLasts = 60.0;

    /// An announcement. True when it is news: the kind is to be found out, then decide().
    bool announce(const ZELKMoment &moment);
    /// Announced lately, and not cancelled.
    bool isComing(const ZELKMoment &moment) const;
    bool isUndecided() const { return m_phase == Phase::Announced; }
    /// The last announcement; `kind` is what is about to be decided.
    ZELKAnnouncedShutdown announced(std::optional<ZELKShutdownKind> kind = std::nullopt) const
    {
        return {m_announced, kind, m_phase == Phase::Recorded};
    }
    /// Goes on from what another agent heard. False, and nothing changes, when that is over: the system was
    /// started since, or it came to nothing.
    bool resume(const ZELKAnnouncedShutdown &left, const ZELKMoment &moment);
    /// The kind of the announced shut-down; when nobody knows, it is a power-off. Dated at the announcement.
    Events decide(std::optional<ZELKShutdownKind> kind);
    /// A job that ends the system, announced or not.
    Events jobDidStart(ZELKShutdownKind kind, const ZELKMoment &moment);
    /// What was announced will not be.
    Events cancel(const ZELKMoment &moment);

private:
    enum class Phase { None, Announced, Recorded };

    Phase m_phase = Phase::None;
    ZELKMoment m_announced;
};

/// Keeps the announced shut-down for the next agent: should this one never come to record it, that one does;
/// when it takes over before the system has ended, it does not record it again. What was remembered is on
/// the disk when remember() returns.
class ZELKShutdownMemory
{
public:
    virtual ~ZELKShutdownMemory() = default;
    virtual std::optional<ZELKAnnouncedShutdown> recall() const = 0;
    virtual void remember(const ZELKAnnouncedShutdown &shutdown) = 0;
    virtual void forget() = 0;
};
