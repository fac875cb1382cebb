#include "FakeAgent.h"

#include <QElapsedTimer>

using Call = ZELKFailingSQLitePort::Call;

namespace {

/// The longest time in which the event loop did not turn.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        m_since.start();
        startTimer(5, Qt::PreciseTimer);
    }
    qint64 longest() { return std::max(m_longest, m_since.elapsed()); }

protected:
    void timerEvent(QTimerEvent *) override { m_longest = std::max(m_longest, m_since.restart()); }

private:
    QElapsedTimer m_since;
    qint64 m_longest = 0;
};

/// Opens what is there for reading alone.
class ReadOnlyPort : public ZELKFailingSQLitePort
{
public:
    bool isReadOnly = true;

    int open(const char *path, sqlite3 **database) override
    {
        if (!isReadOnly)
            return ZELKFailingSQLitePort::open(path, database);
        return sqlite3_open_v2(path, database, SQLITE_OPEN_READONLY, nullptr);
    }
    int close(sqlite3 *database) override { return ZELKFailingSQLitePort::close(database); }
    void free(void *memory) override { ZELKFailingSQLitePort::free(memory); }
};

} // namespace

/// A device, or another program, that does not let the store write or read.
class StoreFailuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_agent = std::make_unique<FakeAgent>();
        m_agent->events = history(8);
    }
    void cleanupTestCase() { m_agent.reset(); }

    void everyCallMayFail_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<Call>("call");
        QTest::addColumn<int>("times");
        QTest::addColumn<bool>("fetches");
        const auto add = [](const char *name, int code, Call call, int times) {
            QTest::addRow("fetch, code %d, %s", code, name) << code << call << times << true;
            QTest::addRow("cacheEvents, code %d, %s", code, name) << code << call << times << false;
        };
        for (const int code : {SQLITE_FULL, SQLITE_IOERR, SQLITE_READONLY, SQLITE_CORRUPT, SQLITE_NOMEM,
                               SQLITE_BUSY, SQLITE_NOTADB})
            add("once", code, Call::Any, 1);
        for (const int code : {SQLITE_FULL, SQLITE_IOERR, SQLITE_CORRUPT}) {
            add("scripts from then on", code, Call::Exec, 1000);
            add("preparing from then on", code, Call::Prepare, 1000);
            add("steps from then on", code, Call::Step, 1000);
        }
    }
    /// Whichever call it is: with the device healthy again, one fetch makes cache and log complete.
    void everyCallMayFail()
    {
        QFETCH(int, code);
        QFETCH(Call, call);
        QFETCH(int, times);
        QFETCH(bool, fetches);
        const QStringList complete = dumpOf(m_agent->events);
        bool reached = true;
        const int stride = times > 1 || code == SQLITE_IOERR ? 1 : 4;
        for (int nth = 1; reached; nth += stride) {
            const Console console;
            StoreFixture fixture(StoreFixture::sessionBus());
            fixture.port->fail(call, code, nth, times);
            zelkGuard([&] { fixture.store->syncWithLocalCache(); });
            if (fetches)
                fixture.fetch();
            else
                zelkGuard([&] { fixture.store->cacheEvents(m_agent->events); });
            reached = fixture.port->count(call) >= nth;
            fixture.port->heal();
            const QString context = ZELKFormat("call %d\n", {nth}) + console.lines().join(QLatin1Char('\n'));
            QVERIFY2(!fixture.store->isFetching(), qPrintable(context));
            fixture.clock->advance(10.0);
            QVERIFY2(fixture.fetch(), qPrintable(context));
            QCOMPARE(fixture.other().cached(), serialised(m_agent->events));
            QVERIFY2(dump(fixture.log) == complete, qPrintable(context));
            if (fixture.filesAside().isEmpty())
                QVERIFY(!fixture.other().lastSync().isEmpty());
        }
    }

    /// A reading that fails between two rows goes on behind the last one the log was given, though they lie
    /// in one second.
    void aReadingGoesOnWhereItFailed()
    {
        for (int rows = 1; rows <= 8; ++rows) {
            const Console console;
            StoreFixture fixture(StoreFixture::sessionBus());
            QVERIFY(fixture.store->cacheEvents(m_agent->events));
            fixture.port->fail(Call::Step, SQLITE_IOERR, rows);
            zelkGuard([&] { fixture.store->syncWithLocalCache(); });
            QVERIFY(fixture.log.count() < rows);
            fixture.store->updateLogEvents();
            QCOMPARE(dump(fixture.log), dumpOf(m_agent->events));
        }
    }

    void aLockedCache_data()
    {
        QTest::addColumn<int>("events");
        QTest::addColumn<QByteArray>("lock");
        QTest::newRow("one transaction") << 8 << QByteArray("BEGIN EXCLUSIVE");
        QTest::newRow("several transactions") << 20'005 << QByteArray("BEGIN IMMEDIATE");
    }
    /// The window stands still no longer than the busy timeout, and the next fetch brings what is missing.
    void aLockedCache()
    {
        QFETCH(int, events);
        QFETCH(QByteArray, lock);
        const Console console;
        m_agent->events = history(events);
        StoreFixture fixture(StoreFixture::sessionBus(), 2000);
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
        OtherConnection other(fixture.file());
        other.run(lock.constData());
        Heartbeat heartbeat;
        QVERIFY(!fixture.fetch());
        QVERIFY(heartbeat.longest() >= 1900);
        QVERIFY(heartbeat.longest() < 3500);
        QCOMPARE(console.count("ZELKLWCStore SQL 'BEGIN IMMEDIATE' failed: database is locked (5)"), 1);
        QCOMPARE(fixture.log.count(), 0);
        other.run("COMMIT");
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
        QVERIFY(fixture.fetch());
        QCOMPARE(dump(fixture.log), dumpOf(m_agent->events));
        m_agent->events = history(8);
    }

    /// Single writes give up in time too.
    void aLockedCacheAndSingleWrites()
    {
        const Console console;
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.fetch());
        OtherConnection other(fixture.file());
        other.run("BEGIN IMMEDIATE");
        QVERIFY(!fixture.store->cacheEvent(history(9).last()));
        fixture.store->addEntryForMonitor(QStringLiteral("x"), QStringLiteral("m"), fixture.clock->now());
        QCOMPARE(fixture.log.pastEntry()->event(), QStringLiteral("x"));
        fixture.store.reset();
        QCOMPARE(console.count("ZELKLWCStore SQL 'BEGIN IMMEDIATE' failed: database is locked (5)"), 3);
        other.run("COMMIT");
        QCOMPARE(other.cached().size(), 8);
    }

    void aReadOnlyCache()
    {
        const Console console;
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.store->cacheEvents(history(4)));
        fixture.store->applicationWillTerminate();
        const auto port = std::make_shared<ReadOnlyPort>();
        fixture.port = port;
        fixture.store = fixture.makeStore();
        fixture.store->syncWithLocalCache();
        QCOMPARE(dump(fixture.log), dumpOf(history(4)));
        QVERIFY(!fixture.fetch());
        QCOMPARE(console.count("failed: attempt to write a readonly database (8)"), 1);
        QVERIFY(fixture.filesAside().isEmpty());
        fixture.store->applicationWillTerminate();
        port->isReadOnly = false;
        fixture.store = fixture.makeStore();
        QVERIFY(fixture.fetch());
        QCOMPARE(fixture.other().cached(), serialised(m_agent->events));
    }

private:
    std::unique_ptr<FakeAgent> m_agent;
};

QTEST_GUILESS_MAIN(StoreFailuresTest)
#include "tst_failures.moc"
