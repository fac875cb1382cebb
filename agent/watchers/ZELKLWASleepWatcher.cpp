#include "ZELKLWASleepWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

ZELKLWASleepWatcher::ZELKLWASleepWatcher(const QDBusConnection &systemBus, ZELKLWAEventSink sink,
                                         std::shared_ptr<const ZELKSuspendClock> clock,
                                         ZELKShutdownMemory &shutdowns,
                                         std::optional<QDBusConnection> sessionBus, QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_clock(std::move(clock))
    , m_shutdowns(shutdowns)
    , m_logind(systemBus)
    , m_jobs(systemBus)
    , m_desktop(std::move(sessionBus))
{
    m_jobLimit.setSingleShot(true);
    m_jobLimit.setInterval(millisecondsToTheJob);
    connectSources();
}

/// Each source is guarded here, also those that guard themselves: their signals are ours to answer for.
void ZELKLWASleepWatcher::connectSources()
{
    const auto checks = [this] { guarded([this] { checkClocks(); }); };
    connect(&m_clockSet, &ZELKClockSetNotifier::clockWasSet, this, checks);
    connect(&m_logind, &ZELKLogind::somethingChanged, this, checks);
    connect(&m_logind, &ZELKLogind::arrived, this, [this] { guarded([this] { logindDidArrive(); }); });
    connect(&m_logind, &ZELKLogind::preparesForSleep, this,
            [this](bool begins) { guarded([&] { prepareForSleep(begins); }); });
    connect(&m_logind, &ZELKLogind::preparesForShutdown, this,
            [this](bool begins, std::optional<ZELKShutdownKind> kind) {
                guarded([&] { prepareForShutdown(begins, kind); });
            });
    connect(&m_logind, &ZELKLogind::idleHintChanged, this,
            [this] { guarded([this] { idleHintDidChange(); }); });
    connect(&m_jobs, &ZELKManagerJobs::presenceChanged, this,
            [this](bool isThere) { m_sleep.setHearsJobs(isThere); });
    connect(&m_jobs, &ZELKManagerJobs::sleepJobDidFinish, this,
            [this](bool done) { guarded([&] { tell(m_sleep.sleepJobDidFinish(done, now())); }); });
    connect(&m_jobs, &ZELKManagerJobs::shutdownJobDidStart, this,
            [this](ZELKShutdownKind kind) { guarded([&] { shutdownJobDidStart(kind); }); });
    connect(&m_jobLimit, &QTimer::timeout, this,
            [this] { guarded([this] { decideShutdown(std::nullopt); }); });
}

void ZELKLWASleepWatcher::guarded(const std::function<void()> &body)
{
    if (m_running)
        zelkGuard(body);
}

void ZELKLWASleepWatcher::start()
{
    if (m_running)
        return;
    m_running = true;
    m_sleep = ZELKSleepStates(now());
    m_shutdown = {};
    m_idle = {};
    m_clockSet.start();
    m_jobs.start();
    m_logind.start();
    recallShutdown();
}

void ZELKLWASleepWatcher::stop()
{
    if (!m_running)
        return;
    m_running = false;
    m_jobLimit.stop();
    tellOfLastShutdown();
    m_logind.stop();
    m_jobs.stop();
    m_clockSet.stop();
}

/// Announced or not, what is asked for now would be answered too late.
void ZELKLWASleepWatcher::tellOfLastShutdown()
{
    if (!m_shutdown.isUndecided() && !m_jobs.isAsking())
        return;
    const auto kind = m_jobs.shutdownKind().kind;
    if (m_shutdown.isUndecided())
        decideShutdown(kind);
    else if (kind)
        tellOfShutdown(m_shutdown.jobDidStart(*kind, now()));
}

void ZELKLWASleepWatcher::setBus(const QDBusConnection &systemBus)
{
    guarded([this] { checkClocks(); });
    m_jobs.setBus(systemBus);
    m_logind.setBus(systemBus);
}

ZELKMoment ZELKLWASleepWatcher::now() const
{
    return m_clock->read(ZELKEnvironment::current().clock->now());
}

void ZELKLWASleepWatcher::tell(const std::vector<ZELKLWAEvent> &events)
{
    record(events);
    const bool woke = std::any_of(events.begin(), events.end(), [](const ZELKLWAEvent &event) {
        return event.event == ZELKEventSystemHasPoweredOn;
    });
    if (woke)
        Q_EMIT didWake();
}

void ZELKLWASleepWatcher::checkClocks()
{
    if (!m_running)
        return;
    tell(m_sleep.observe(now()));
    retakeLock();
}

/// The hint it comes with is no news: nobody saw it begin.
void ZELKLWASleepWatcher::logindDidArrive()
{
    checkClocks();
    m_logind.takeLocks();
    m_logind.requestIdleHint([this](bool isIdle, std::optional<ZELKDate>) { m_idle.change(isIdle); });
}

void ZELKLWASleepWatcher::prepareForSleep(bool begins)
{
    tell(m_sleep.prepareForSleep(begins, now()));
    if (begins)
        m_logind.releaseLocks();
    else
        retakeLock();
}

void ZELKLWASleepWatcher::prepareForShutdown(bool begins, std::optional<ZELKShutdownKind> kind)
{
    const ZELKMoment moment = now();
    tell(m_sleep.observe(moment));
    if (!begins) {
        m_jobLimit.stop();
        decideShutdown(std::nullopt);
        tell(m_shutdown.cancel(moment));
        m_shutdowns.forget();
        retakeLock();
        return;
    }
    const bool isNews = m_shutdown.announce(moment);
    if (isNews && kind)
        tellOfShutdown(m_shutdown.decide(kind));
    else if (isNews)
        m_shutdowns.remember(m_shutdown.announced());
    if (!m_shutdown.isUndecided())
        m_logind.releaseLocks();
    else if (isNews)
        requestShutdownKind();
}

void ZELKLWASleepWatcher::requestShutdownKind()
{
    m_jobs.requestShutdownKind(
        [this](const ZELKManagerJobs::Answer &answer) { shutdownKindDidArrive(answer); });
}

void ZELKLWASleepWatcher::shutdownKindDidArrive(const ZELKManagerJobs::Answer &answer)
{
    if (!m_running || !m_shutdown.isUndecided())
        return;
    if (answer.kind || !answer.isKnown)
        decideShutdown(answer.kind);
    else
        m_jobLimit.start();
    m_logind.releaseLocks();
}

void ZELKLWASleepWatcher::shutdownJobDidStart(ZELKShutdownKind kind)
{
    const ZELKMoment moment = now();
    tell(m_sleep.observe(moment));
    m_jobLimit.stop();
    if (m_shutdown.isUndecided())
        decideShutdown(kind);
    else
        tellOfShutdown(m_shutdown.jobDidStart(kind, moment));
    m_logind.releaseLocks();
}

/// The memory has the kind before the record does: whoever finds it there tells the same, which is then told
/// once.
void ZELKLWASleepWatcher::decideShutdown(std::optional<ZELKShutdownKind> kind)
{
    if (!m_shutdown.isUndecided())
        return;
    if (kind == ZELKShutdownKind::Restart)
        m_shutdowns.remember(m_shutdown.announced(kind));
    tellOfShutdown(m_shutdown.decide(kind));
}

/// The system may take its time to end, and another agent our place.
void ZELKLWASleepWatcher::tellOfShutdown(const std::vector<ZELKLWAEvent> &events)
{
    if (events.empty())
        return;
    tell(events);
    m_shutdowns.remember(m_shutdown.announced());
}

void ZELKLWASleepWatcher::recallShutdown()
{
    const auto left = m_shutdowns.recall();
    if (!left || !m_shutdown.resume(*left, now())) {
        if (left && !left->isRecorded)
            tell({left->event()});
        m_shutdowns.forget();
    } else if (left->kind) {
        decideShutdown(left->kind);
    } else if (m_shutdown.isUndecided()) {
        requestShutdownKind();
    }
}

void ZELKLWASleepWatcher::idleHintDidChange()
{
    checkClocks();
    m_logind.requestIdleHint([this, moment = now()](bool isIdle, std::optional<ZELKDate> since) {
        if (!m_idle.change(isIdle))
            return;
        const ZELKDate date = moment.date;
        const double longest = moment.awake + moment.suspended;
        // A clock that was put right since may have that before the machine was started.
        const bool fits = since && date.timeIntervalSinceDate(*since) <= longest;
        const auto tells = [this, date, begin = fits ? *since : date](std::optional<double> seconds) {
            if (m_running)
                tellOfIdleness({seconds ? date.addingTimeInterval(-*seconds) : begin, date});
        };
        m_desktop.request(longest, tells);
    });
}

void ZELKLWASleepWatcher::tellOfIdleness(const ZELKIdleHint &hint)
{
    tell(m_idle.idles(hint));
    m_logind.requestInhibitors([this](const std::vector<ZELKInhibitor> &inhibitors) {
        tell(m_idle.inhibitors(inhibitors, quint32(QCoreApplication::applicationPid())));
    });
}

/// Not while what the lock would delay is on its way; then it comes with the next sign of life.
void ZELKLWASleepWatcher::retakeLock()
{
    if (!m_logind.holdsLocks() && !m_sleep.isSleeping() && !m_shutdown.isComing(now()))
        m_logind.takeLocks();
}
