#include "FakeAgent.h"

#include <QElapsedTimer>
#include <QTimer>

using Call = ZELKFailingSQLitePort::Call;

namespace {

constexpr const char *lockedLine = "ZELKLWCStore SQL 'BEGIN IMMEDIATE' failed: database is locked (5)";

} // namespace

/// A device, or another program, that does not let the store write or read.
class StoreFailuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_agent = std::make_unique<FakeAgent>(); }
    void init() { m_agent->events = history(8); }
    void cleanupTestCase() { m_agent.reset(); }

    void everyCallMayFail_data()
    {
        const Rows<int, Call, int, bool> row;
        const auto add = [&](int code, Call call, const char *name, int times) {
            row(qPrintable(ZELKFormat("fetch, code %d, %s", {code, name})), code, call, times, true);
            row(qPrintable(ZELKFormat("cacheEvents, code %d, %s", {code, name})), code, call, times, false);
        };
        for (const int code : {SQLITE_FULL, SQLITE_IOERR, SQLITE_READONLY, SQLITE_CORRUPT, SQLITE_NOMEM,
                               SQLITE_BUSY, SQLITE_NOTADB})
            add(code, Call::Any, "once", 1);
        for (const int code : {SQLITE_FULL, SQLITE_IOERR, SQLITE_CORRUPT}) {
            add(code, Call::Exec, "scripts from then on", 1000);
            add(code, Call::Prepare, "preparing from then on", 1000);
            add(code, Call::Step, "steps from then on", 1000);
        }
    }
    /// Whichever call it is: with the device healthy again, one fetch makes cache and log complete; and
    /// nothing stays open.
    void everyCallMayFail()
    {
        const auto [code, call, times, fetches] = Rows<int, Call, int, bool>::fetch();
        const QStringList complete = dumpOf(m_agent->events);
        bool reached = true;
        const int stride = times > 1 || code == SQLITE_IOERR ? 1 : 4;
        for (int nth = 1; reached; nth += stride) {
            const ConsoleLines console;
            StoreFixture fixture(StoreFixture::sessionBus());
            fixture.port->fail(call, code, nth, times);
            zelkGuard([&] { fixture.store->syncWithLocalCache(); });
            if (fetches)
                fixture.fetch();
            else
                zelkGuard([&] { fixture.store->cacheEvents(m_agent->events); });
            reached = fixture.port->count(call) >= nth;
            fixture.port->heal();
            const QString context = ZELKFormat("call %d\n", {nth}) + console.lines().join(u'\n');
            QVERIFY2(!fixture.store->isFetching(), qPrintable(context));
            fixture.clock->advance(10.0);
            QVERIFY2(fixture.fetch(), qPrintable(context));
            QCOMPARE(fixture.other().cached(), serialised(m_agent->events));
            QVERIFY2(dump(fixture.log) == complete, qPrintable(context));
            if (fixture.filesAside().isEmpty())
                QVERIFY(!fixture.other().lastSync().isEmpty());
            else
                QVERIFY2(code == SQLITE_CORRUPT || code == SQLITE_NOTADB, qPrintable(context));
            fixture.store->applicationWillTerminate();
            QVERIFY2(fixture.port->connections() == 0 && fixture.port->statements() == 0,
                     qPrintable(context));
        }
    }

    /// A reading that fails between two rows goes on behind the last one the log was given, though they lie
    /// in one second.
    void aReadingGoesOnWhereItFailed()
    {
        for (int rows = 1; rows <= 8; ++rows) {
            const ConsoleLines console;
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
        const Rows<int, QByteArray, int> row;
        row("one transaction", 8, "BEGIN EXCLUSIVE", 200);
        row("several transactions", 20'005, "BEGIN IMMEDIATE", 2000);
    }
    /// The window stands still no longer than the busy timeout, and the next fetch brings what is missing.
    void aLockedCache()
    {
        const auto [events, lock, timeout] = Rows<int, QByteArray, int>::fetch();
        const ConsoleLines console;
        m_agent->events = history(events);
        StoreFixture fixture(StoreFixture::sessionBus(), timeout);
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
        OtherConnection other(fixture.file());
        other.run(lock.constData());
        QElapsedTimer since;
        qint64 stillness = 0;
        QTimer beat;
        connect(&beat, &QTimer::timeout, this, [&] { stillness = std::max(stillness, since.restart()); });
        since.start();
        beat.start(0);
        QVERIFY(!fixture.fetch());
        stillness = std::max(stillness, since.elapsed());
        QVERIFY(stillness >= timeout * 9 / 10 && stillness < timeout + 1500);
        QCOMPARE(console.count(lockedLine), 1);
        QCOMPARE(fixture.log.count(), 0);
        other.run("COMMIT");
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate::distantPast());
        QVERIFY(fixture.fetch());
        QCOMPARE(dump(fixture.log), dumpOf(m_agent->events));
    }

    /// Single writes give up in time too.
    void aLockedCacheAndSingleWrites()
    {
        const ConsoleLines console;
        StoreFixture fixture(StoreFixture::sessionBus());
        QVERIFY(fixture.fetch());
        OtherConnection other(fixture.file());
        other.run("BEGIN IMMEDIATE");
        QVERIFY(!fixture.store->cacheEvent(history(9).last()));
        fixture.store->addEntryForMonitor(u"x"_s, u"m"_s, fixture.clock->now());
        QCOMPARE(fixture.log.pastEntry()->event(), u"x"_s);
        fixture.store.reset();
        QCOMPARE(console.count(lockedLine), 3);
        other.run("COMMIT");
        QCOMPARE(other.cached().size(), 8);
    }

    /// A device that cannot even open a new file must not be taken for further damage.
    void noSecondFileIsBlamed()
    {
        const ConsoleLines console;
        StoreFixture fixture;
        QVERIFY(fixture.store->cacheEvents(history(3)));
        fixture.port->fail(Call::Step, SQLITE_CORRUPT);
        QVERIFY(!fixture.store->cacheEvents(history(5)));
        QCOMPARE(fixture.filesAside().size(), 1);
        fixture.port->heal();
        fixture.port->fail(Call::Exec, SQLITE_FULL, 1, 50);
        QVERIFY(!fixture.store->cacheEvents(history(5)));
        fixture.port->heal();
        QVERIFY(fixture.store->cacheEvents(history(5)));
        QCOMPARE(fixture.filesAside().size(), 1);
        QCOMPARE(console.count("damaged and could not be set aside"), 0);
    }

private:
    std::unique_ptr<FakeAgent> m_agent;
};

QTEST_GUILESS_MAIN(StoreFailuresTest)
#include "tst_failures.moc"
