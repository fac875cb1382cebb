#pragma once

#include "ZELKLWAEvent.h"

#include <QStringList>

#include <optional>
#include <vector>

/// A lock that a program holds on what the system would do by itself, as logind tells of it.
struct ZELKInhibitor
{
    /// "sleep:idle"
    QString what;
    QString who;
    QString why;
    /// "block", "block-weak" or "delay"
    QString mode;
    quint32 pid = 0;

    /// Whether it keeps an idle system from sleeping. A lock that only delays does not.
    bool holdsSleepOff() const;
    /// "rsync (2251): Copying files (sleep:idle, block)"
    QString text() const;
};

/// That the session idles.
struct ZELKIdleHint
{
    ZELKDate since;
    /// When it was heard of.
    ZELKDate date;
};

/// Makes "Can system sleep" and "System will not sleep" of the idle hint and the locks held: once each time
/// the session begins to idle.
class ZELKIdleStates
{
public:
    using Events = std::vector<ZELKLWAEvent>;

    /// Whether the session idles. True when it has begun to: idles(), then inhibitors() are to follow. What
    /// is the case when the watch begins, has not begun.
    bool change(bool isIdle);
    /// "Can system sleep". "Idle Seconds" are left out when there are none: nobody knows how long the session
    /// idles then, and a 0 would say that somebody does. The log reads both alike.
    Events idles(const ZELKIdleHint &hint);
    /// "System will not sleep" when one of the locks held at that time, our own left out, holds sleep off.
    Events inhibitors(const std::vector<ZELKInhibitor> &inhibitors, quint32 ownPid);

private:
    bool m_isIdle = false;
    /// The hint whose locks are not known yet.
    std::optional<ZELKIdleHint> m_asked;
};
