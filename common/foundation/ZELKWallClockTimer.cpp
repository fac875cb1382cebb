#include "ZELKWallClockTimer.h"

#include "ZELKAssertion.h"
#include "ZELKClock.h"

#include <QSocketNotifier>
#include <QTimer>

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace {

constexpr double shortestInterval = 0.001;
constexpr double secondsPerMinute = 60.0;

ZELKDate withinBounds(ZELKDate date)
{
    const double seconds = date.timeIntervalSinceReferenceDate();
    return std::isnan(seconds) ? ZELKDate::distantFuture()
                               : std::clamp(date, ZELKDate::distantPast(), ZELKDate::distantFuture());
}

/// The kernel takes no moments before 1970, and a zero would disarm.
timespec kernelTime(ZELKDate date)
{
    const double seconds = date.timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970;
    if (seconds <= 0.0)
        return {0, 1};
    const double whole = std::floor(seconds);
    return {time_t(whole), std::max(long((seconds - whole) * 1e9), 1L)};
}

} // namespace

ZELKWallClockTimer::ZELKWallClockTimer(QObject *parent)
    : QObject(parent)
    , m_descriptor(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (m_descriptor >= 0)
        followKernel();
    else
        followMinutes();
}

ZELKWallClockTimer::~ZELKWallClockTimer()
{
    if (m_notifier) {
        // The timer may be destroyed by what its own firing called.
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
    }
    if (m_minutes) {
        m_minutes->stop();
        m_minutes.release()->deleteLater();
    }
    if (m_descriptor >= 0)
        close(m_descriptor);
}

void ZELKWallClockTimer::followKernel()
{
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this,
            [this] { zelkGuard([this] { handleReady(); }); });
}

void ZELKWallClockTimer::followMinutes()
{
    m_minutes = std::make_unique<QTimer>();
    m_minutes->setSingleShot(true);
    m_minutes->setTimerType(Qt::PreciseTimer);
    connect(m_minutes.get(), &QTimer::timeout, this, [this] { zelkGuard([this] { lookAtClock(); }); });
}

void ZELKWallClockTimer::schedule(ZELKDate first, double interval)
{
    m_first = withinBounds(first);
    m_next = m_first;
    m_interval = interval > 0.0 ? std::max(interval, shortestInterval) : 0.0;
    m_scheduled = true;
    arm();
}

void ZELKWallClockTimer::invalidate()
{
    m_scheduled = false;
    arm();
}

void ZELKWallClockTimer::arm()
{
    if (m_descriptor >= 0) {
        const itimerspec setting{{0, 0}, m_scheduled ? kernelTime(m_next) : timespec{0, 0}};
        timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &setting, nullptr);
    } else if (m_scheduled) {
        const double wait = m_next.timeIntervalSinceDate(ZELKSystemClock().now());
        m_minutes->start(int(std::ceil(std::clamp(wait, 0.0, secondsPerMinute) * 1000.0)));
    } else {
        m_minutes->stop();
    }
}

void ZELKWallClockTimer::handleReady()
{
    quint64 expirations = 0;
    const ssize_t count = read(m_descriptor, &expirations, sizeof expirations);
    const bool clockWasSet = count < 0 && errno == ECANCELED;
    if (!m_scheduled)
        return;
    if (count == ssize_t(sizeof expirations))
        fire();
    else if (clockWasSet)
        lookAtClock();
}

void ZELKWallClockTimer::lookAtClock()
{
    const ZELKDate now = ZELKSystemClock().now();
    if (now >= m_next) {
        fire();
        return;
    }
    if (m_interval > 0.0)
        m_next = firingAfter(now);
    arm();
}

/// Announces last, as the receiver may schedule anew, invalidate or destroy the timer.
void ZELKWallClockTimer::fire()
{
    if (m_interval > 0.0) {
        m_next = firingAfter(std::max(m_next, ZELKSystemClock().now()));
        arm();
    } else {
        invalidate();
    }
    Q_EMIT fired();
}

ZELKDate ZELKWallClockTimer::firingAfter(ZELKDate now) const
{
    const double passed = std::floor(now.timeIntervalSinceDate(m_first) / m_interval) + 1.0;
    return withinBounds(m_first.addingTimeInterval(std::max(passed, 0.0) * m_interval));
}
