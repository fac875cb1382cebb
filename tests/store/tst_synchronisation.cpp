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

/// Notes the scripts that run and the settings that are written.
class RecordingPort : public ZELKFailingSQLitePort
{
public:
    QStringList story;

    int exec(sqlite3 *database, const char *sql, char **error) override
    {
        const QString text = QString::fromUtf8(sql);
        if (text == "COMMIT"_L1)
            story.append(QString::number(std::exchange(m_rows, 0)) + u" rows"_s);
        return ZELKFailingSQLitePort::exec(database, sql, error);
    }
    int bindText(sqlite3_stmt *statement, int index, const char *text) override
    {
        if (qstrncmp(text, "lastSync", 8) == 0 && qstrncmp(sqlite3_sql(statement), "INSERT", 6) == 0)
            story.append(QString::fromUtf8(text));
        return ZELKFailingSQLitePort::bindText(statement, index, text);
    }
    int bindBlob(sqlite3_stmt *statement, int index, const void *bytes, int size) override
    {
        ++m_rows;
        return ZELKFailingSQLitePort::bindBlob(statement, index, bytes, size);
    }

private:
    int m_rows = 0;
};

} // namespace

/// Which agent the store meets, which store the agent calls back, and what they say to each other.
class StoreSynchronisationTest : public QObject
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

    void installationsAreFollowed()
    {
        FakeAgent agent;
        StoreFixture fixture(StoreFixture::sessionBus());
        fixture.setInstalled(false);
        fixture.store->updateAgentConnection();
        QCOMPARE(fixture.log.count(), 0); // an empty log gets no entry
        fixture.setInstalled(true);
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

    void theFirstFetchAndTheNext()
    {
        const ConsoleLines console;
        FakeAgent agent;
        agent.events = history(50);
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.store->updateTimer().isActive());
        QCOMPARE(fixture.store->updateTimer().interval(), 240'000);
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());

        QVERIFY(fixture.fetch());
        const double now = fixture.clock->now().timeIntervalSinceReferenceDate();
        QCOMPARE(agent.questions[0].from, ZELKDate::distantPast().timeIntervalSinceReferenceDate() + 1.0);
        QCOMPARE(agent.questions[0].to, now);
        QCOMPARE(agent.registrations, QStringList{storeName});
        QCOMPARE(fixture.other().lastSync(), QByteArray("760000000.500000"));
        QCOMPARE(fixture.other().cached(), serialised(agent.events));
        QCOMPARE(dump(fixture.log), dumpOf(agent.events));
        QCOMPARE(console.count("agent provided 50 entries up to 2025-01-31 07:06:40 +0000."), 1);
        QCOMPARE(console.count("cache provided 50 entries."), 1);

        fixture.clock->advance(100.0);
        QVERIFY(fixture.fetch());
        QCOMPARE(agent.questions.last().from, now + 1.0);
        QCOMPARE(agent.questions.last().to, now + 100.0);
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate(now)); // nothing came

        agent.events.append(ZELKMakeRawEvent(ZELKDate(now + 150.0), u"x"_s, storeName));
        fixture.clock->advance(100.0);
        QVERIFY(fixture.fetch());
        QCOMPARE(agent.questions.last().from, now + 1.0);
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate(now + 200.0));
        QCOMPARE(console.count("cache provided 1 entries."), 1);
        QCOMPARE(fixture.log.pastEntry()->event(), u"x"_s);
    }

    void aLargeFetchIsKeptInPieces()
    {
        FakeAgent agent;
        agent.events = history(25'000);
        StoreFixture fixture(StoreFixture::sessionBus());
        const auto port = std::make_shared<RecordingPort>();
        fixture.sqlite = port;
        fixture.renewStore();
        fixture.store->lastSyncDate();
        port->story.clear();
        QVERIFY(fixture.fetch());
        const QStringList expected{u"10000 rows"_s, u"10000 rows"_s, u"lastSync"_s, u"lastSyncAgent"_s,
                                   u"5000 rows"_s};
        QCOMPARE(port->story, expected);
        QCOMPARE(fixture.other().run("SELECT count(*) FROM events").value(0), QByteArray("25000"));
        QCOMPARE(dump(fixture.log), dumpOf(agent.events));
    }

    void noAgentIsSilent()
    {
        const ConsoleLines console;
        StoreFixture fixture(StoreFixture::sessionBus());
        for (const bool installed : {false, true}) {
            fixture.setInstalled(installed);
            const qsizetype before = console.size();
            QVERIFY(!fixture.fetch());
            QCOMPARE(console.size(), before);
        }
    }

    void onlyTheProtocolIsServed()
    {
        FakeAgent agent;
        StoreFixture fixture(StoreFixture::sessionBus());
        const auto tell = [&](const char *interface, const char *method, const QVariantList &arguments = {}) {
            const auto call = agent.call("org.zelk.lullwatch._store", "/org/zelk/lullwatch/store", interface,
                                         method, arguments);
            return agent.bus().call(call, QDBus::BlockWithGui, 3000);
        };
        constexpr const char *protocol = "org.zelk.lullwatch.ZELKLWAUpdateProtocol";
        for (const char *method : {"sync", "deleteLater", "_q_reregisterSlots", "registerOn"})
            for (const char *interface : {protocol, ""})
                QCOMPARE(tell(interface, method).type(), QDBusMessage::ErrorMessage);
        const QString seen =
            tell("org.freedesktop.DBus.Introspectable", "Introspect").arguments()[0].toString();
        const QStringList ours = seen.split(u"<interface name="_s).filter(u"org.zelk"_s);
        QVERIFY(ours.size() == 1 && ours[0].count("<method "_L1) == 1 && !ours[0].contains("<property "_L1));

        QCOMPARE(agent.questions.size(), 0);
        tell(protocol, "eventsDidChange", {u"unasked"_s, 4});
        agent.bus().send(agent.call("org.zelk.lullwatch._store", "/org/zelk/lullwatch/store", protocol,
                                    "eventsDidChange"));
        QTRY_COMPARE(agent.questions.size(), 1);
        QTRY_VERIFY(!fixture.store->isFetching());

        // The bus may be quicker than the wiring.
        fixture.store.reset();
        const auto bare = fixture.bareStore();
        zelkGuard([&] { bare->eventsDidChange(); });
        QVERIFY(!bare->isFetching());
    }

    /// Whether that fetch succeeds or fails.
    void aRequestDuringAFetchIsKept()
    {
        for (const bool fails : {false, true}) {
            FakeAgent agent;
            StoreFixture fixture(StoreFixture::sessionBus());
            QDBusMessage pending;
            agent.answer = [&](const QDBusMessage &call) { pending = call; };
            fixture.store->sync();
            QTRY_COMPARE(agent.questions.size(), 1);
            fixture.store->sync();
            fixture.store->sync();
            agent.answer = nullptr;
            if (fails)
                agent.bus().send(pending.createErrorReply(QDBusError::Failed, u"not now"_s));
            else
                agent.give(pending, streamOf({}));
            QTRY_VERIFY(agent.questions.size() == 2 && !fixture.store->isFetching());
            QCOMPARE(agent.registrations.size(), 2);
        }
    }

    void quittingKeepsTheLastSynchronisation()
    {
        FakeAgent agent;
        agent.events = history(5);
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.fetch());
        fixture.store->applicationWillTerminate();
        QVERIFY(!fixture.store->updateTimer().isActive());
        fixture.store.reset();
        QCOMPARE(fixture.other().lastSync(), QByteArray("760000000.500000"));
        QCOMPARE(fixture.port->connections(), 0);

        fixture.makeStore().reset();
        QVERIFY(fixture.other().run("SELECT key FROM settings WHERE key LIKE 'lastSync%'").isEmpty());
        QCOMPARE(fixture.other().cached().size(), 5);
    }

    /// Whatever the store is waiting for when it goes, or when the agent is uninstalled.
    void goneInTheMiddle_data()
    {
        const Rows<bool, int> row;
        row("call, destroyed", false, 0);
        row("call, quit", false, 1);
        row("stream, destroyed", true, 0);
        row("stream, quit", true, 1);
        row("stream, uninstalled", true, 2);
    }
    void goneInTheMiddle()
    {
        const auto [answered, end] = Rows<bool, int>::fetch();
        FakeAgent agent;
        QDBusMessage pending;
        const QByteArray stream = streamOf(serialised(history(400))).chopped(1);
        agent.answer = [&, &isAnswered = answered](const QDBusMessage &call) {
            pending = call;
            if (isAnswered)
                agent.give(call, stream, true);
        };
        StoreFixture fixture(StoreFixture::sessionBus());
        fixture.store->sync();
        QTRY_COMPARE(agent.questions.size(), 1);

        if (end == 1)
            fixture.store->applicationWillTerminate();
        if (end == 2) {
            QSignalSpy ended(fixture.store.get(), &ZELKLWCStore::fetchFinished);
            fixture.setInstalled(false);
            QVERIFY(!fixture.awaitFetch(ended));
            QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
            QCOMPARE(fixture.log.count(), 0);
        }
        fixture.store.reset();
        if (!answered)
            agent.give(pending, stream);
        agent.bus().call(agent.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId"));
        QCoreApplication::processEvents();
    }
};

QTEST_GUILESS_MAIN(StoreSynchronisationTest)
#include "tst_synchronisation.moc"
