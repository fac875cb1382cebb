#include "FakeAgent.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>

#include <sys/socket.h>
#include <sys/un.h>

namespace {

const QString storeName = u"org.zelk.lullwatch._store"_s;

/// Takes connections, and never says a word.
class SilentBus
{
public:
    explicit SilentBus(const QString &path)
        : m_listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
        , m_address(u"unix:path="_s + path)
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, qPrintable(path), sizeof address.sun_path);
        if (bind(m_listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
            listen(m_listener, 1) != 0)
            qFatal("Nobody can be silent at %s", qPrintable(path));
    }
    ~SilentBus()
    {
        QDBusConnection::disconnectFromPeer(m_address);
        close(m_listener);
    }
    SilentBus(const SilentBus &) = delete;
    SilentBus &operator=(const SilentBus &) = delete;

    QDBusConnection connection() const { return QDBusConnection::connectToPeer(m_address, m_address); }

private:
    int m_listener;
    QString m_address;
};

} // namespace

/// Which agent the store meets, and which store the agent calls back.
class StoreAgentsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// As soon as it is there. It is given the connection's own name, since one on the system bus is for the
    /// whole machine; and it is asked for all it has, of which the other's synchronisation says nothing.
    void theAgentForAllUsersComesFirst()
    {
        const ConsoleLines console;
        FakeAgent own;
        own.events = history(20);
        StoreFixture fixture(StoreFixture::sessionBus());
        fixture.systemBus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, u"system"_s);
        fixture.renewStore();
        const double first = ZELKDate::distantPast().timeIntervalSinceReferenceDate() + 1.0;
        const double next = fixture.clock->now().timeIntervalSinceReferenceDate() + 1.0;
        QVERIFY(fixture.fetch());
        QCOMPARE(own.questions.last().from, first);
        const auto whose = [&] {
            return fixture.other().run("SELECT value FROM settings WHERE key = 'lastSyncAgent'").value(0);
        };
        QCOMPARE(whose(), QByteArray("session"));

        auto all = std::make_unique<FakeAgent>(QDBusConnection::SystemBus);
        all->events = history(25);
        for (const double from : {first, next}) {
            QVERIFY(fixture.fetch());
            QCOMPARE(all->questions.last().from, from);
            QCOMPARE(whose(), QByteArray("system"));
        }
        QCOMPARE(own.questions.size(), 1);
        QCOMPARE(own.registrations, QStringList{storeName});
        QCOMPARE(all->registrations, QStringList(2, fixture.systemBus.baseService()));
        QCOMPARE(fixture.other().cached(), serialised(history(25)));
        all->bus().send(all->call(qPrintable(fixture.systemBus.baseService()),
                                  qPrintable(ZELKServiceNames::storeServicePath()),
                                  "org.zelk.lullwatch.ZELKLWAUpdateProtocol", "eventsDidChange"));
        QTRY_VERIFY(all->questions.size() == 3 && !fixture.store->isFetching());

        all.reset();
        for (const double from : {first, next}) {
            QVERIFY(fixture.fetch());
            QCOMPARE(own.questions.last().from, from);
        }
        // A cache from when there was no other agent.
        fixture.other().run("DELETE FROM settings WHERE key = 'lastSyncAgent'");
        QVERIFY(fixture.fetch());
        QCOMPARE(own.questions.last().from, next);
        QCOMPARE(fixture.other().cached().size(), 25);
        fixture.store.reset();
        QDBusConnection::disconnectFromBus(u"system"_s);
    }

    /// It holds up a fetch until the limit, and nothing else.
    void aBusThatIsSilent()
    {
        FakeAgent agent;
        agent.events = history(5);
        StoreFixture fixture(StoreFixture::sessionBus());
        const SilentBus silent(fixture.folder.filePath(u"bus"_s));
        fixture.systemBus = silent.connection();
        QVERIFY(fixture.systemBus.isConnected());
        fixture.agentLimit = 1000;
        fixture.renewStore();
        QSignalSpy ended(fixture.store.get(), &ZELKLWCStore::fetchFinished);
        QElapsedTimer elapsed;
        elapsed.start();
        fixture.store->sync();
        QVERIFY(elapsed.elapsed() < fixture.agentLimit / 2);
        QVERIFY(fixture.awaitFetch(ended));
        QCOMPARE(dump(fixture.log), dumpOf(agent.events));
        fixture.store->sync(); // and goes
        fixture.store.reset();
    }

    void aSecondStoreHasNoServiceAndNoPoll()
    {
        FakeAgent agent;
        agent.events = history(5);
        StoreFixture first(StoreFixture::sessionBus());
        {
            StoreFixture second(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"second"_s));
            QVERIFY(!second.store->hasUpdateConnection());
            QVERIFY(!second.store->updateTimer().isActive());
            QVERIFY(second.fetch());
            QCOMPARE(second.log.count(), first.fetch() ? first.log.count() : -1);
            QCOMPARE(agent.registrations, QStringList{storeName}); // the first one's, by the first
        }
        QCOMPARE(StoreFixture::sessionBus().interface()->serviceOwner(storeName).value(),
                 StoreFixture::sessionBus().baseService());
        // A store on the very connection must not take the first one's name away either.
        StoreFixture third(StoreFixture::sessionBus());
        QVERIFY(!third.store->hasUpdateConnection());
        third.store.reset();
        QVERIFY(StoreFixture::sessionBus().interface()->isServiceRegistered(storeName));
        first.store->applicationWillTerminate();
        QVERIFY(!StoreFixture::sessionBus().interface()->isServiceRegistered(storeName));
    }

    void aCommandsStoreFetchesWithoutService()
    {
        FakeAgent agent;
        agent.events = history(5);
        StoreFixture fixture(StoreFixture::sessionBus());
        fixture.servesUpdates = false;
        fixture.renewStore();
        QVERIFY(fixture.fetch() && fixture.log.count() > 0);
        QVERIFY(!StoreFixture::sessionBus().interface()->isServiceRegistered(storeName));
        QCOMPARE(agent.registrations, QStringList());
    }

    void installationsAreFollowed()
    {
        FakeAgent agent;
        StoreFixture fixture(StoreFixture::sessionBus());
        fixture.setInstalled(false);
        fixture.store->updateAgentConnection();
        QCOMPARE(fixture.log.count(), 0); // an empty log gets no entry
        fixture.setInstalled(true);
        QVERIFY(!fixture.store->isFetching()); // not at once
        agent.events = history(3);
        // Both changes lead to a look, and both find it installed.
        QTRY_VERIFY(agent.questions.size() == 2 && !fixture.store->isFetching());
        const int before = fixture.log.count();
        QVERIFY(before > 0);

        fixture.setInstalled(false);
        QTRY_COMPARE(fixture.log.count(), before + 1);
        QCOMPARE(fixture.log.pastEntry()->event(), QString(ZELKEventStoppingMonitor));
        QCOMPARE(fixture.log.pastEntry()->monitor(), QString(ZELKMonitorLullwatch));
        QCOMPARE(fixture.log.pastEntry()->date(), fixture.clock->now());
        // A fetch that is scheduled later: whatever else the change had led to would have come before it.
        const qsizetype questions = agent.questions.size();
        fixture.setInstalled(true);
        QTRY_VERIFY(agent.questions.size() > questions && !fixture.store->isFetching());
        QCOMPARE(fixture.log.count(), before + 1);
        const auto cached = fixture.store->sortedCachedEventsFromDate(fixture.clock->now(), std::nullopt);
        QCOMPARE(cached, QList{ZELKMakeRawEvent(fixture.clock->now(), u"Stopping monitor"_s,
                                                u"org.zelk.lullwatch"_s)});
    }
};

QTEST_GUILESS_MAIN(StoreAgentsTest)
#include "tst_agents.moc"
