#include "ZELKShutdownStates.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

/// By the clocks of two moments of one boot this is the same date, as long as nobody sets the wall clock.
ZELKDate bootOf(const ZELKMoment &moment)
{
    return moment.date.addingTimeInterval(-moment.awake - moment.suspended);
}

} // namespace

std::optional<ZELKShutdownKind> ZELKShutdownKindOfTarget(const QString &target)
{
    static const QStringList offs{QStringLiteral("poweroff.target"), QStringLiteral("halt.target")};
    static const QStringList restarts{QStringLiteral("reboot.target"), QStringLiteral("kexec.target"),
                                      QStringLiteral("soft-reboot.target")};
    if (restarts.contains(target))
        return ZELKShutdownKind::Restart;
    return offs.contains(target) ? std::optional(ZELKShutdownKind::PowerOff) : std::nullopt;
}

bool ZELKShutdownStates::announce(const ZELKMoment &moment)
{
    if (m_phase == Phase::Announced || isComing(moment))
        return false;
    m_phase = Phase::Announced;
    m_announced = moment;
    return true;
}

bool ZELKShutdownStates::isComing(const ZELKMoment &moment) const
{
    return m_phase != Phase::None && moment.awake - m_announced.awake <= announcementLasts;
}

bool ZELKShutdownStates::resume(const ZELKAnnouncedShutdown &left, const ZELKMoment &moment)
{
    constexpr double mostDrift = 2.0;
    const double awake = moment.awake - left.moment.awake;
    const double drift = bootOf(moment).timeIntervalSinceDate(bootOf(left.moment));
    if (awake < 0.0 || awake > announcementLasts || std::abs(drift) > mostDrift)
        return false;
    m_phase = left.isRecorded ? Phase::Recorded : Phase::Announced;
    m_announced = left.moment;
    return true;
}

ZELKLWAEvent ZELKAnnouncedShutdown::event() const
{
    const bool restart = kind == ZELKShutdownKind::Restart;
    return {moment.date, restart ? ZELKEventSystemWillRestart : ZELKEventSystemWillPowerOff,
            ZELKMonitorPowerEvents};
}

ZELKShutdownStates::Events ZELKShutdownStates::decide(std::optional<ZELKShutdownKind> kind)
{
    if (m_phase != Phase::Announced)
        return {};
    m_phase = Phase::Recorded;
    return {ZELKAnnouncedShutdown{m_announced, kind}.event()};
}

ZELKShutdownStates::Events ZELKShutdownStates::jobDidStart(ZELKShutdownKind kind, const ZELKMoment &moment)
{
    announce(moment);
    return decide(kind);
}

ZELKShutdownStates::Events ZELKShutdownStates::cancel(const ZELKMoment &moment)
{
    Events events = decide(std::nullopt);
    if (m_phase == Phase::None)
        return events;
    m_phase = Phase::None;
    const ZELKDate date = std::max(moment.date, m_announced.date.addingTimeInterval(1e-6));
    events.push_back({date, ZELKEventSystemWillNotPowerOff, ZELKMonitorPowerEvents});
    return events;
}
