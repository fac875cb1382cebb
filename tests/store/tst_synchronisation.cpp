#include "FakeAgent.h"
#include "Rows.h"

using namespace Qt::StringLiterals;

namespace {

const QString storeName = u"org.zelk.lullwatch._store"_s;

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

/// What the store and the agent say to each other.
class StoreSynchronisationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstFetchAndTheNext()
    {
        const ConsoleLines console;
        FakeAgent agent;
        agent.events = history(50);
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.store->hasUpdateConnection());
        QVERIFY(fixture.store->updateTimer().isActive());
        QCOMPARE(fixture.store->updateTimer().interval(), 240'000);
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());

        QVERIFY(fixture.fetch());
        const double now = fixture.clock->now().timeIntervalSinceReferenceDate();
        QCOMPARE(agent.questions.size(), 1);
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
        QCOMPARE(agent.registrations.size(), 2);
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
            QVERIFY(!fixture.store->isFetching());
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
        for (const char *method : {"sync", "deleteLater", "objectName", "_q_reregisterSlots", "registerOn"}) {
            QCOMPARE(tell(protocol, method).type(), QDBusMessage::ErrorMessage);
            QCOMPARE(tell("", method).type(), QDBusMessage::ErrorMessage);
        }
        const QString seen =
            tell("org.freedesktop.DBus.Introspectable", "Introspect").arguments()[0].toString();
        const QStringList ours = seen.split(u"<interface name="_s).filter(u"org.zelk"_s);
        QCOMPARE(ours.size(), 1);
        QVERIFY(ours[0].startsWith("\"org.zelk.lullwatch.ZELKLWAUpdateProtocol\""_L1));
        QCOMPARE(ours[0].count("<method "_L1), 1);
        QVERIFY(!ours[0].contains("<property "_L1));

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

    void aRequestDuringAFetchIsKept_data()
    {
        const Rows<bool> row;
        row("the fetch succeeds", false);
        row("the fetch fails", true);
    }
    void aRequestDuringAFetchIsKept()
    {
        const auto [fails] = Rows<bool>::fetch();
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
        QTRY_COMPARE(agent.questions.size(), 2);
        QTRY_VERIFY(!fixture.store->isFetching());
        QCOMPARE(agent.questions.size(), 2);
        QCOMPARE(agent.registrations.size(), 2);
    }

    void quittingKeepsTheLastSynchronisation()
    {
        FakeAgent agent;
        agent.events = history(5);
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.fetch());
        fixture.store->applicationWillTerminate();
        QVERIFY(!fixture.store->isOpen());
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
        const auto [isAnswered, end] = Rows<bool, int>::fetch();
        const bool answered = isAnswered;
        FakeAgent agent;
        QDBusMessage pending;
        const QByteArray stream = streamOf(serialised(history(400))).chopped(1);
        agent.answer = [&](const QDBusMessage &call) {
            pending = call;
            if (answered)
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
        QVERIFY(agent.bus()
                    .call(agent.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId"))
                    .type() == QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
    }
};

QTEST_GUILESS_MAIN(StoreSynchronisationTest)
#include "tst_synchronisation.moc"
