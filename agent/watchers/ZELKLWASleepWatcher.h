#pragma once

#include "ZELKClockSetNotifier.h"
#include "ZELKDesktopIdleTime.h"
#include "ZELKIdleStates.h"
#include "ZELKLWAWatcher.h"
#include "ZELKLogind.h"
#include "ZELKManagerJobs.h"
#include "ZELKShutdownStates.h"
#include "ZELKSleepStates.h"
#include "ZELKSuspendClock.h"

#include <QDBusConnection>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

/// Sleep and wake, shut-down and restart, idleness and what holds sleep off. Listens to logind and the
/// service manager, neither of which need be there, and looks at the clocks whenever anything happens: a
/// suspend shows there, whoever announced it.
///
/// What is about to happen is with the sink before the lock that delays it is let go. The one exception is a
/// shut-down whose kind is not known yet: logind starts the job that tells only once nobody delays it any
/// more, so the lock goes first, and "System will power off" or "System will restart" follows with the job,
/// the cancellation, stop() or a limit, dated at the announcement. Until then the memory keeps it. The next
/// start() goes on from there while the shut-down is still on its way, and tells no second time of one that
/// is recorded. After the end of the system it records what was left, as "System will power off" unless the
/// kind is kept too.
class ZELKLWASleepWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    /// The wait for the job that tells the kind of a shut-down; other programs may delay it as well.
    static constexpr int millisecondsToTheJob = 30000;

    /// `shutdowns` outlive it. The desktop on `sessionBus` knows how long its session idles.
    ZELKLWASleepWatcher(const QDBusConnection &systemBus, ZELKLWAEventSink sink,
                        std::shared_ptr<const ZELKSuspendClock> clock, ZELKShutdownMemory &shutdowns,
                        std::optional<QDBusConnection> sessionBus = std::nullopt, QObject *parent = nullptr);

    void start() override;
    /// After start(): a sleep was announced to the agent before, at that moment, and is still to come.
    void goOnWith(const ZELKMoment &announced) { m_sleep = ZELKSleepStates::announcedAt(announced); }
    /// Lets the lock go. Records a shut-down that has no kind yet, after asking for it a last time.
    void stop() override;

    bool holdsLocks() const { return m_logind.holdsLocks(); }

public Q_SLOTS:
    /// For whatever else shows that the machine is awake.
    void checkClocks();
    /// The bus went away, or there is another. What was told and what is being waited for stands.
    void setBus(const QDBusConnection &systemBus);

Q_SIGNALS:
    /// A wake was recorded; what was measured before it is out of date.
    void didWake();

private:
    void connectSources();
    void guarded(const std::function<void()> &body);
    ZELKMoment now() const;
    void tell(const std::vector<ZELKLWAEvent> &events);
    void logindDidArrive();
    void prepareForSleep(bool begins);
    void prepareForShutdown(bool begins, std::optional<ZELKShutdownKind> kind);
    void shutdownKindDidArrive(const ZELKManagerJobs::Answer &answer);
    void shutdownJobDidStart(ZELKShutdownKind kind);
    void decideShutdown(std::optional<ZELKShutdownKind> kind);
    void requestShutdownKind();
    void tellOfShutdown(const std::vector<ZELKLWAEvent> &events);
    void recallShutdown();
    void tellOfLastShutdown();
    void idleHintDidChange();
    void tellOfIdleness(const ZELKIdleHint &hint);
    void retakeLock();

    std::shared_ptr<const ZELKSuspendClock> m_clock;
    ZELKShutdownMemory &m_shutdowns;
    ZELKLogind m_logind;
    ZELKManagerJobs m_jobs;
    ZELKClockSetNotifier m_clockSet;
    QTimer m_jobLimit;
    ZELKSleepStates m_sleep;
    ZELKShutdownStates m_shutdown;
    ZELKIdleStates m_idle;
    ZELKDesktopIdleTime m_desktop;
    bool m_running = false;
};
