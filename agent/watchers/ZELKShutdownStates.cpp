#include "ZELKShutdownStates.h"

#include <QStringList>

#include <algorithm>

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

ZELKLWAEvent ZELKPendingShutdown::event() const
{
    const bool restart = kind == ZELKShutdownKind::Restart;
    return {date, restart ? ZELKEventSystemWillRestart : ZELKEventSystemWillPowerOff, ZELKMonitorPowerEvents};
}

ZELKShutdownStates::Events ZELKShutdownStates::decide(std::optional<ZELKShutdownKind> kind)
{
    if (m_phase != Phase::Announced)
        return {};
    m_phase = Phase::Recorded;
    return {ZELKPendingShutdown{m_announced.date, kind}.event()};
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
