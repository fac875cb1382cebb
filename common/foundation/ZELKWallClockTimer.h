#pragma once

#include "ZELKDate.h"

#include <QObject>

#include <memory>

class QSocketNotifier;
class QTimer;

/// Fires when the wall clock reaches a date, also when the machine slept through it (then at the wake) or
/// somebody set the clock. Kept by the kernel (timerfd on CLOCK_REALTIME); where that cannot be had, a timer
/// that looks at the clock each minute.
class ZELKWallClockTimer : public QObject
{
    Q_OBJECT

public:
    explicit ZELKWallClockTimer(QObject *parent = nullptr);
    ~ZELKWallClockTimer() override;

    /// Fires at `first`, then each `interval` seconds after it (once when 0). Replaces what was scheduled
    /// before. When several firings were slept through, one is delivered. When the clock is set back, the
    /// firings go on at the next of those moments.
    void schedule(ZELKDate first, double interval = 0.0);
    void invalidate();
    bool isScheduled() const { return m_scheduled; }
    ZELKDate nextFiring() const { return m_next; }

Q_SIGNALS:
    void fired();

private:
    void followKernel();
    void followMinutes();
    void arm();
    void handleReady();
    void lookAtClock();
    void fire();
    ZELKDate firingAfter(ZELKDate now) const;

    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<QTimer> m_minutes;
    ZELKDate m_first;
    ZELKDate m_next;
    double m_interval = 0.0;
    bool m_scheduled = false;
};
