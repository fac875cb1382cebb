#include "ZELKLWASleepWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"

#include <QCoreApplication>

#include <algorithm>

ZELKLWASleepWatcher::ZELKLWASleepWatcher(const QDBusConnection &systemBus, ZELKLWAEventSink sink,
                                         std::shared_ptr<const ZELKSuspendClock> clock, QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_clock(std::move(clock))
    , m_logind(systemBus)
    , m_jobs(systemBus)
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
            [this] { guarded([this] { tell(m_shutdown.decide(std::nullopt)); }); });
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
}

void ZELKLWASleepWatcher::stop()
{
    if (!m_running)
        return;
    m_running = false;
    m_jobLimit.stop();
    if (m_shutdown.isUndecided())
        tell(m_shutdown.decide(m_jobs.shutdownKind().kind));
    m_logind.stop();
    m_jobs.stop();
    m_clockSet.stop();
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
    m_logind.requestIdleHint([this](bool isIdle, std::optional<ZELKDate>) { m_idle.begin(isIdle); });
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
        tell(m_shutdown.cancel(moment));
        retakeLock();
        return;
    }
    const bool isNews = m_shutdown.announce(moment);
    if (isNews && kind)
        tell(m_shutdown.decide(kind));
    if (!m_shutdown.isUndecided())
        m_logind.releaseLocks();
    else if (isNews)
        m_jobs.requestShutdownKind(
            [this](const ZELKManagerJobs::Answer &answer) { shutdownKindDidArrive(answer); });
}

void ZELKLWASleepWatcher::shutdownKindDidArrive(const ZELKManagerJobs::Answer &answer)
{
    if (!m_running || !m_shutdown.isUndecided())
        return;
    if (answer.kind || !answer.isKnown)
        tell(m_shutdown.decide(answer.kind));
    else
        m_jobLimit.start();
    m_logind.releaseLocks();
}

void ZELKLWASleepWatcher::shutdownJobDidStart(ZELKShutdownKind kind)
{
    const ZELKMoment moment = now();
    tell(m_sleep.observe(moment));
    m_jobLimit.stop();
    tell(m_shutdown.jobDidStart(kind, moment));
    m_logind.releaseLocks();
}

void ZELKLWASleepWatcher::idleHintDidChange()
{
    checkClocks();
    const ZELKDate date = ZELKEnvironment::current().clock->now();
    m_logind.requestIdleHint([this, date](bool isIdle, std::optional<ZELKDate> since) {
        const auto events = m_idle.hint({isIdle, since.value_or(date), date});
        tell(events);
        if (events.empty())
            return;
        m_logind.requestInhibitors([this](const std::vector<ZELKInhibitor> &inhibitors) {
            tell(m_idle.inhibitors(inhibitors, quint32(QCoreApplication::applicationPid())));
        });
    });
}

/// Not while what the lock would delay is on its way; then it comes with the next sign of life.
void ZELKLWASleepWatcher::retakeLock()
{
    if (!m_logind.holdsLocks() && !m_sleep.isSleeping() && !m_shutdown.isComing(now()))
        m_logind.takeLocks();
}
