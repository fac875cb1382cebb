#include "ConsoleLines.h"
#include "FakeAgentLookup.h"
#include "FakeServiceManagement.h"
#include "FakeWorkspace.h"
#include "Files.h"
#include "ZELKAgentController.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKLWABurst.h"
#include "ZELKLWAEventStore.h"
#include "ZELKLWAService.h"
#include "ZELKLWAServiceProtocolAdaptor.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCStore.h"
#include "ZELKSQLitePort.h"
#include "ZELKServiceNames.h"
#include "ZELKUserDefaults.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString agentName = u"org.zelk.lullwatch.agent"_s;
constexpr double beginningOf2025 = 757'382'400.0; // after the reference date

/// A program's own configuration, which does not wait for the disk.
std::shared_ptr<const ZELKBundle> bundleIn(const QString &folder, const char *infoPlist)
{
    QByteArray bytes = readFile(QString::fromUtf8(infoPlist));
    writeFile(folder + u"/Info.plist"_s, bytes.replace("synchronous = FULL", "synchronous = OFF"));
    return std::make_shared<ZELKBundle>(folder);
}

/// From one start of the application to the next.
struct Application
{
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    std::shared_ptr<FakeAgentLookup> lookup = std::make_shared<FakeAgentLookup>();
    ZELKAgentController controller{{std::make_shared<FakeServiceManagement>(), workspace, lookup}};
    ZELKUserDefaults defaults;
    ZELKLWCDateRangeController range{defaults};
    ZELKLWCLog log;
    ZELKLWCStore store;

    Application(const std::shared_ptr<const ZELKBundle> &bundle, const QDBusConnection &bus,
                const QString &folder, const QDBusConnection &system = QDBusConnection(QString()))
        : defaults(folder + u"/defaults.ini"_s)
        , store(worldOf(bundle, bus, folder, system))
    {
        workspace->instances[agentName] = 1;
        lookup->serviceName = agentName + u"._service"_s;
        lookup->version = u"1"_s;
        controller.updateState();
        log.setDateRange(&range);
        log.awakeFromNib();
        store.setAgentController(&controller);
        store.setLogController(&log);
        store.awakeFromNib();
        store.syncWithLocalCache();
    }
    ~Application() { store.applicationWillTerminate(); }

    static ZELKLWCStore::World worldOf(const std::shared_ptr<const ZELKBundle> &bundle,
                                       const QDBusConnection &bus, const QString &folder,
                                       const QDBusConnection &system)
    {
        ZELKLWCStore::World world{bundle, std::make_shared<ZELKSQLitePort>(), bus, folder + u"/cache.db"_s};
        world.systemBus = system;
        return world;
    }

    bool fetch()
    {
        QSignalSpy ended(&store, &ZELKLWCStore::fetchFinished);
        store.fetchAgentEvents();
        while (store.isFetching() && ended.wait(8000)) {
        }
        return !ended.isEmpty() && ended.last().first().toBool();
    }
};

/// The agent's records and its event service, from one start to the next.
struct Agent
{
    QDBusConnection bus;
    ZELKLWAEventStore store;
    ZELKLWAUpdateAnnouncer announcer{bus};
    ZELKLWAService service{u"1"_s, store, announcer};

    Agent(const std::shared_ptr<const ZELKBundle> &bundle, const QDBusConnection &connection,
          const QString &folder)
        : bus(connection)
        , store(folder + u"/agent.db"_s, bundle, std::make_shared<ZELKSQLitePort>())
    {
        new ZELKLWAServiceProtocolAdaptor(&service);
        bus.registerObject(ZELKServiceNames::eventServicePath(), &service, QDBusConnection::ExportAdaptors);
        bus.registerService(agentName);
    }
    ~Agent()
    {
        bus.unregisterObject(ZELKServiceNames::eventServicePath());
        bus.unregisterService(agentName);
    }
};

/// "sleep 100, wake 500.3": what happens so many seconds after the beginning of 2025.
std::vector<ZELKLWAEvent> eventsOf(const QString &story)
{
    static const QMap<QString, ZELKLWAEvent> kinds{
        {u"sleep"_s, {{}, ZELKEventSystemWillSleep, ZELKMonitorPowerEvents}},
        {u"wake"_s, {{}, ZELKEventSystemHasPoweredOn, ZELKMonitorPowerEvents}},
        {u"charge"_s, {{}, ZELKEventPowerStateChanged, ZELKMonitorPowerSource}},
        {u"start"_s, {{}, ZELKEventStartingMonitor, ZELKMonitorLullwatch}},
        {u"stop"_s, {{}, ZELKEventStoppingMonitor, ZELKMonitorLullwatch}}};
    std::vector<ZELKLWAEvent> events;
    for (const QString &part : story.split(u", "_s)) {
        events.push_back(kinds.value(part.section(u' ', 0, 0)));
        events.back().date = ZELKDate(beginningOf2025 + part.section(u' ', 1).toDouble());
    }
    return events;
}

/// A random life of both, by one clock that is also set now and then.
class Life
{
public:
    explicit Life(quint32 seed)
        : m_random(seed)
        , m_agentBundle(bundleIn(m_folder.filePath(u"agent"_s), ZELK_AGENT_INFO_PLIST))
        , m_bundle(bundleIn(m_folder.filePath(u"client"_s), ZELK_INFO_PLIST))
        , m_scope(environment())
    {
        startAgent();
        startApplication();
    }

    void step()
    {
        switch (m_random.bounded(12)) {
        case 0:
            return record(m_random.bounded(30), 1e6); // history that is found later
        case 1:
            return startAgent();
        case 2:
            return startApplication();
        case 3:
            return setClock(m_random.bounded(3) == 0 ? uniform(-4e7, 4e7) : uniform(-4000, 4000));
        case 4:
            return pass(uniform(0, 3000));
        case 5:
        case 6:
            return fetch();
        default:
            for (int events = m_random.bounded(1, 6); events > 0; --events) {
                record(1, m_random.bounded(8) == 0 ? 20 : 0);
                pass(uniform(0, m_random.bounded(3) == 0 ? 1.5 : 0.4));
                if (m_random.bounded(4) == 0)
                    fetch();
            }
        }
    }

    /// The next start of the application, with all settled.
    void end()
    {
        startAgent();
        pass(2);
        fetch();
        startApplication();
    }
    QStringList recorded() const { return m_recorded; }
    QStringList inCache()
    {
        QStringList names;
        for (const ZELKRawEvent &event : m_application->store.sortedCachedEventsFromDate({}, {}))
            names.append(event.string(ZELKEventKeyDescription));
        return names;
    }
    QStringList inLog() const
    {
        QStringList names;
        for (const ZELKLWCLogEntry *entry : m_application->log.entry())
            names.append(entry->event());
        return names;
    }

private:
    ZELKEnvironment environment() const
    {
        ZELKEnvironment made = ZELKEnvironment::system();
        made.clock = m_clock;
        made.zone = QTimeZone::utc();
        made.mainBundle = m_bundle;
        return made;
    }
    double uniform(double low, double high) { return low + m_random.generateDouble() * (high - low); }

    /// Unsettled events are left as by a kill; the successor's first event settles them.
    void startAgent()
    {
        m_agent.reset();
        m_agent.emplace(m_agentBundle, QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"agent"_s),
                        m_folder.path());
        m_burst.end();
        record(1, 0);
    }
    void startApplication()
    {
        m_application.reset();
        m_application.emplace(m_bundle,
                              QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"client"_s),
                              m_folder.path());
        if (m_random.bounded(2) == 0)
            fetch();
    }
    void fetch()
    {
        if (!m_application->fetch())
            QFAIL("a fetch failed");
    }
    void record(int count, double age)
    {
        std::vector<ZELKLWAEvent> events;
        for (int i = 0; i < count; ++i) {
            m_recorded.append(u"event %1"_s.arg(m_recorded.size()));
            events.push_back(
                {m_clock->now().addingTimeInterval(-uniform(0, age)), m_recorded.last(), u"monitor"_s});
        }
        m_agent->store.record(events);
        if (count > 0)
            m_burst.note(m_milliseconds);
    }
    /// Lets time go by, in which bursts end and the application is called, or is not.
    void pass(double seconds)
    {
        while (seconds > 0) {
            const double left = double(m_burst.millisecondsLeft(m_milliseconds)) / 1000;
            const double part = left > 0 ? std::min(seconds, left) : seconds;
            m_milliseconds += std::llround(std::ceil(part * 1000));
            setClock(part);
            seconds -= part;
            if (!m_burst.isOver(m_milliseconds))
                continue;
            m_burst.end();
            m_agent->store.settle();
            if (m_random.bounded(3) > 0)
                fetch();
        }
    }
    void setClock(double by) { m_clock->advance(by); }

    QTemporaryDir m_folder;
    QRandomGenerator m_random;
    std::shared_ptr<ZELKFixedClock> m_clock = std::make_shared<ZELKFixedClock>(ZELKDate(760'000'000.5));
    std::shared_ptr<const ZELKBundle> m_agentBundle;
    std::shared_ptr<const ZELKBundle> m_bundle;
    ZELKEnvironmentScope m_scope;
    ZELKLWABurst m_burst;
    qint64 m_milliseconds = 0;
    std::optional<Agent> m_agent;
    std::optional<Application> m_application;
    QStringList m_recorded;
};

} // namespace

/// Bursts, fetches in the middle of them, calls that are missed, history found later, restarts of both sides
/// and a clock that is set: whatever was recorded is in the cache once, and in the log once at the next
/// start.
class NothingIsLost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The agent for all users tells the past to everybody; who had an agent of his own knows it already,
    /// but for the times in which that one was not there.
    void noTwiceWhenInstalledAnotherWay()
    {
        ConsoleLines console;
        const QTemporaryDir folder;
        const auto bundle = bundleIn(folder.filePath(u"client"_s), ZELK_INFO_PLIST);
        const auto agentBundle = bundleIn(folder.filePath(u"agent"_s), ZELK_AGENT_INFO_PLIST);
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.mainBundle = bundle;
        const ZELKEnvironmentScope scope(environment);
        const auto connect = [](QDBusConnection::BusType type, const char *name) {
            return QDBusConnection::connectToBus(type, QLatin1String(name));
        };
        const QDBusConnection session = connect(QDBusConnection::SessionBus, "agent");
        const QDBusConnection system = connect(QDBusConnection::SystemBus, "agent of all");
        std::optional<Application> application;
        const auto start = [&] {
            application.reset();
            application.emplace(bundle, connect(QDBusConnection::SessionBus, "client"), folder.path(),
                                connect(QDBusConnection::SystemBus, "client's other"));
        };
        {
            Agent agent(agentBundle, session, folder.path());
            agent.store.record(eventsOf(u"start 1000, sleep 1100, wake 4000, charge 5000.3, stop 5500"_s));
            agent.store.settle();
            start();
            QVERIFY(application->fetch());
        }
        QDir(folder.path()).mkpath(u"system"_s);
        Agent agent(agentBundle, system, folder.filePath(u"system"_s));
        agent.store.record(eventsOf(u"sleep 100, wake 500, sleep 1106, wake 4006, charge 5000, sleep 6000, "
                                    "wake 7000, start 9000"_s));
        agent.store.settle();
        QVERIFY(application->fetch());
        agent.store.record(eventsOf(u"charge 4500, charge 9500"_s)); // found late, and now
        agent.store.settle();
        QVERIFY(application->fetch());
        start();
        QStringList known;
        for (const ZELKRawEvent &event : application->store.sortedCachedEventsFromDate({}, {}))
            known.append(QString::number(event.string(ZELKEventKeyDate).toDouble() - beginningOf2025));
        QCOMPARE(known.join(u' '), u"100 500 1000 1100 4000 5000.3 5500 6000 7000 9000 9500"_s);
    }

    void inARandomLife_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 40; ++seed)
            QTest::addRow("life %u", seed) << seed;
    }
    void inARandomLife()
    {
        QFETCH(const quint32, seed);
        ConsoleLines console;
        Life life(seed);
        for (int i = 0; i < 60 && !QTest::currentTestFailed(); ++i)
            life.step();
        life.end();
        QStringList recorded = life.recorded();
        QStringList cached = life.inCache();
        QStringList logged = life.inLog();
        for (QStringList *names : {&recorded, &cached, &logged})
            names->sort();
        QCOMPARE(cached, recorded);
        QCOMPARE(logged, recorded);
    }
};

QTEST_GUILESS_MAIN(NothingIsLost)
#include "tst_nothing_is_lost.moc"
