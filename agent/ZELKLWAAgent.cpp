#include "ZELKLWAAgent.h"

#include "ZELKAgentServiceProtocolAdaptor.h"
#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKLWAServiceProtocolAdaptor.h"
#include "ZELKSQLitePort.h"
#include "ZELKServiceNames.h"

#include <QDBusError>

ZELKLWAAgent::ZELKLWAAgent(std::shared_ptr<const ZELKBundle> bundle, const Buses &buses,
                           const ZELKLWAOptions &options, const ZELKLWAMachine &machine, QObject *parent)
    : QObject(parent)
    , m_bundle(std::move(bundle))
    , m_bus(buses.serving)
    , m_settings(options.settings)
    , m_defaults(m_settings)
    , m_store(options.database, m_bundle, std::make_shared<ZELKSQLitePort>())
    , m_settler(m_store)
    , m_announcer(m_bus)
    , m_service(version(), m_store, m_announcer)
    , m_controlService(version(), m_defaults, m_bus, options.forAllUsers)
    , m_sleep(options.database + QStringLiteral("-sleep"), machine.suspendClock, machine.kernel.bootID)
    , m_watchers(
          {buses.system, options.forAllUsers ? std::nullopt : std::optional(buses.serving)}, options,
          m_settings, m_defaults, [this](const std::vector<ZELKLWAEvent> &events) { record(events); },
          machine)
    , m_pastPlaces(options.past())
    , m_idleMemory([this] { return isQuiet(); })
{
    connect(&m_store, &ZELKLWAEventStore::settled, &m_announcer, [this] {
        if (m_phase == Phase::Recording)
            m_announcer.eventsDidChange();
    });
    m_lastFetch.setSingleShot(true);
    connect(&m_lastFetch, &QTimer::timeout, this, [this] { zelkGuard([&] { finish(); }); });
    connect(&m_store, &ZELKLWAEventStore::begunAnew, this, [this] {
        zelkGuard([&] {
            if (m_phase == Phase::Recording)
                recordOwn(ZELKEventStartingMonitor, ZELKEnvironment::current().clock->now());
        });
    });
    connect(&m_service, &ZELKLWAService::streamAsked, &m_watchers, &ZELKLWAWatchers::checkClocks);
    connect(&m_service, &ZELKLWAService::streamAsked, &m_settler, &ZELKLWASettler::lookForStrays);
    // Its start ends with a settling too: that of "Starting monitor".
    connect(&m_store, &ZELKLWAEventStore::settled, &m_idleMemory, &ZELKIdleMemory::workDidEnd);
    connect(&m_service, &ZELKLWAService::streamFinished, &m_idleMemory, &ZELKIdleMemory::workDidEnd);
}

ZELKLWAAgent::~ZELKLWAAgent() = default;

QString ZELKLWAAgent::version() const
{
    return m_bundle->objectForInfoDictionaryKey(QStringLiteral("CFBundleVersion")).toString();
}

bool ZELKLWAAgent::start()
{
    if (!serve() || !takeNames())
        return false;
    m_phase = Phase::Recording;
    m_sleep.recall();
    const ZELKDate start = recordStart();
    m_watchers.start();
    goOnWithSleep();
    readPast(start);
    return true;
}

/// The objects stand before the names are taken, so that no call finds a name without its object.
bool ZELKLWAAgent::serve()
{
    new ZELKLWAServiceProtocolAdaptor(&m_service);
    new ZELKAgentServiceProtocolAdaptor(&m_controlService);
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(busDidDisconnect()));
    const bool served = m_bus.registerObject(ZELKServiceNames::eventServicePath(), &m_service,
                                             QDBusConnection::ExportAdaptors) &&
                        m_bus.registerObject(ZELKServiceNames::controlServicePath(), &m_controlService,
                                             QDBusConnection::ExportAdaptors);
    if (!served)
        ZELKConsole::log(ZELKFormat("The bus can not be used: %@", {m_bus.lastError().message()}));
    return served;
}

bool ZELKLWAAgent::takeNames()
{
    const QString name = m_bundle->bundleIdentifier();
    QStringList taken;
    for (const QString &wanted : {name, ZELKServiceNames::controlServiceName(name)}) {
        if (m_bus.registerService(wanted)) {
            taken.append(wanted);
            continue;
        }
        ZELKConsole::log(
            ZELKFormat("'%@' could not be had on the bus; another agent may be running.", {wanted}));
        for (const QString &other : taken)
            m_bus.unregisterService(other);
        return false;
    }
    return true;
}

/// An agent that died left no word of it; its successor records the end, so that the gap is told of.
ZELKDate ZELKLWAAgent::recordStart()
{
    if (const auto end = m_store.unrecordedEnd())
        recordOwn(ZELKEventStoppingMonitor, *end);
    const ZELKDate start = ZELKEnvironment::current().clock->now();
    recordOwn(ZELKEventStartingMonitor, start);
    return start;
}

/// Of one that is still to come, the agent before may have died with the record in hand.
void ZELKLWAAgent::goOnWithSleep()
{
    const auto announced = m_sleep.takeComing();
    if (!announced)
        return;
    m_store.record({{announced->date, ZELKEventSystemWillSleep, ZELKMonitorPowerEvents}});
    m_watchers.goOnWith(*announced);
}

/// A sleep is kept in mind before anything can happen to its record.
void ZELKLWAAgent::record(const std::vector<ZELKLWAEvent> &events)
{
    m_sleep.note(events);
    m_store.record(events);
}

void ZELKLWAAgent::readPast(ZELKDate start)
{
    m_past = std::make_unique<ZELKLWABackfill>(
        m_pastPlaces, m_store.unreadPast(start),
        [this](const std::vector<ZELKLWAEvent> &events) { m_store.record(events); });
    m_past->setSleepFilter([this](const std::vector<ZELKLWAEvent> &sleeps) {
        return m_sleep.ended(m_store.unlikeRecorded(sleeps));
    });
    connect(m_past.get(), &ZELKLWABackfill::finished, this,
            [this, start](bool complete) { zelkGuard([&] { pastWasRead(start, complete); }); });
    ZELKSettingsPowerSourceNames names(m_settings);
    m_past->setNames(&names);
    m_past->start();
}

void ZELKLWAAgent::pastWasRead(ZELKDate start, bool complete)
{
    m_store.pastWasRead(start, complete);
    m_sleep.endWasRecorded();
    m_past.release()->deleteLater();
    m_idleMemory.workDidEnd();
}

bool ZELKLWAAgent::isQuiet() const
{
    return m_phase == Phase::Recording && m_service.streams() == 0 && !m_past;
}

void ZELKLWAAgent::setSystemBus(const QDBusConnection &bus)
{
    zelkGuard([&] {
        m_watchers.setSystemBus(bus);
        m_idleMemory.workDidEnd();
    });
}

void ZELKLWAAgent::recordOwn(QLatin1String event, ZELKDate date)
{
    m_store.record({{date, event, ZELKMonitorLullwatch, ZELKEventNoProperties}});
}

void ZELKLWAAgent::stopRecording()
{
    m_watchers.stop();
    m_past.reset(); // the next agent begins it anew
    m_phase = Phase::Ending;
    recordOwn(ZELKEventStoppingMonitor, ZELKEnvironment::current().clock->now());
    m_settler.settleNow(); // nothing will follow
}

void ZELKLWAAgent::terminate()
{
    zelkGuard([&] {
        if (m_phase != Phase::Recording)
            return;
        stopRecording();
        if (!m_announcer.eventsDidChange() && m_service.streams() == 0) {
            finish();
            return;
        }
        m_lastFetch.start(millisecondsToFetchTheEnd);
        connect(&m_service, &ZELKLWAService::streamFinished, this, [this] {
            if (m_service.streams() == 0)
                finish();
        });
    });
}

/// The session is over.
void ZELKLWAAgent::busDidDisconnect()
{
    zelkGuard([&] {
        m_lostBus = true;
        if (m_phase == Phase::Recording)
            stopRecording();
        finish();
    });
}

void ZELKLWAAgent::finish()
{
    if (m_phase == Phase::Finished)
        return;
    m_phase = Phase::Finished;
    m_lastFetch.stop();
    Q_EMIT finished();
}
