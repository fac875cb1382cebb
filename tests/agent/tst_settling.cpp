#include "ClockEnvironment.h"
#include "ServedEvents.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKLWABurst.h"

#include <QSignalSpy>
#include <QTest>

namespace {

constexpr double noon = 760'000'000;

ZELKLWAEvent eventAt(double date, const QString &name)
{
    return {ZELKDate(date), name, u"monitor"_s};
}

/// Records at a time that the test sets.
struct SettlingBed
{
    QTemporaryDir folder;
    std::shared_ptr<ZELKFixedClock> clock = std::make_shared<ZELKFixedClock>(ZELKDate(noon));
    ZELKEnvironmentScope scope{environmentWith(clock)};
    std::shared_ptr<ZELKFailingSQLitePort> port = std::make_shared<ZELKFailingSQLitePort>();
    std::unique_ptr<ZELKLWAEventStore> store;

    SettlingBed() { renew(); }
    void renew()
    {
        store.reset();
        store = std::make_unique<ZELKLWAEventStore>(folder.filePath(u"events.db"_s), agentBundle(), port);
    }
    /// The names that a request brings, in the order served.
    QString asked(double from, double to)
    {
        return ServedEvents(*store, ZELKLWAEventRange::requested(from, to), 2).names.join(u' ');
    }
};

} // namespace

class TestSettling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBurstIsOverAfterASecondOfQuietOrThirtySeconds()
    {
        ZELKLWABurst burst;
        QVERIFY(!burst.isOver(0));
        burst.note(100);
        QCOMPARE(burst.millisecondsLeft(100), 1001);
        QVERIFY(!burst.isOver(1100)); // a second, not more
        QVERIFY(burst.isOver(1101));
        for (qint64 time = 1000; time < 30000; time += 900)
            burst.note(time);
        QVERIFY(!burst.isOver(30099));
        QVERIFY(burst.isOver(30100));
        burst.end();
        QVERIFY(!burst.isOver(99999));
    }

    /// With a disk that takes the events, and one that does not: those that wait are served alike.
    void servesWhatHasSettled_data()
    {
        const Rows<bool> row;
        row("from the file", false);
        row("from memory", true);
    }
    void servesWhatHasSettled()
    {
        const auto [fails] = Rows<bool>::fetch();
        const ConsoleLines console;
        SettlingBed bed;
        if (fails)
            bed.port->fail(ZELKFailingSQLitePort::Call::Step, SQLITE_FULL, 1, 1000);
        QSignalSpy settled(bed.store.get(), &ZELKLWAEventStore::settled);
        bed.store->record({eventAt(noon - 5, u"a"_s), eventAt(noon, u"b"_s)});
        bed.port->heal();
        QCOMPARE(bed.asked(0, noon + 100), QString());
        if (fails)
            bed.port->fail(ZELKFailingSQLitePort::Call::Step, SQLITE_FULL, 1, 1000);
        bed.store->settle();
        bed.port->heal();
        QCOMPARE(settled.size(), 1);
        QCOMPARE(bed.asked(0, noon + 100), u"a b"_s);
        QCOMPARE(bed.asked(noon - 5, noon - 1), u"a b"_s); // both settled since
        QCOMPARE(bed.asked(noon + 1.5, noon + 9), QString());
        QCOMPARE(bed.asked(std::nan(""), noon), QString());
        bed.clock->advance(50);
        bed.store->record({eventAt(noon - 1000, u"late"_s)});
        bed.store->settle();
        QCOMPARE(bed.asked(noon + 40, noon + 50), u"late"_s);
        QCOMPARE(bed.asked(noon - 6, noon + 50), u"late a b"_s);
    }

    void settlesAfterRequestsThoughTheClockIsSetBack()
    {
        SettlingBed bed;
        bed.store->record({eventAt(noon, u"a"_s)});
        bed.store->settle();
        bed.clock->advance(100);
        const ZELKLWAEventRange request = ZELKLWAEventRange::requested(0, noon + 100);
        bed.store->requestWillBeServed(request);
        bed.store->requestWasServed(request);
        for (const QString &name : {u"b"_s, u"c"_s}) {
            bed.clock->setNow(ZELKDate(noon - 5000));
            bed.store->record({eventAt(noon - 5000, name)});
            bed.store->settle();
            QVERIFY2(bed.asked(noon + 101, noon + 200).contains(name), qPrintable(name));
            bed.renew(); // and so does the next agent
        }
    }

    /// More than are looked up one by one.
    void findsManyThatSettledLate()
    {
        SettlingBed bed;
        std::vector<ZELKLWAEvent> events;
        for (int i = 0; i < 2500; ++i)
            events.push_back(eventAt(noon - 1e6 - i, u"late"_s));
        bed.store->record(events);
        bed.store->record({eventAt(noon, u"now"_s)});
        bed.store->settle();
        const QStringList found = bed.asked(noon - 10, noon + 10).split(u' ');
        QCOMPARE(found.size(), 2501);
        QCOMPARE(found.last(), u"now"_s);
    }

    void tellsWhenTheOneBeforeWasLastAlive()
    {
        SettlingBed bed;
        QVERIFY(!bed.store->unrecordedEnd());
        bed.store->record({{ZELKDate(noon), ZELKEventStartingMonitor, ZELKMonitorLullwatch}});
        bed.clock->advance(30);
        bed.store->record({eventAt(noon - 700, u"found late"_s)});
        bed.renew();
        QCOMPARE(bed.store->unrecordedEnd().value_or(ZELKDate()), ZELKDate(noon + 30));
        bed.clock->advance(-20); // never later than now
        QCOMPARE(bed.store->unrecordedEnd().value_or(ZELKDate()), ZELKDate(noon + 10));
        bed.store->record({{ZELKDate(noon + 10), ZELKEventStoppingMonitor, ZELKMonitorLullwatch}});
        QVERIFY(!bed.store->unrecordedEnd());
    }

    /// A guest adds while the agent records.
    void leavesSettlingToTheAgent()
    {
        SettlingBed bed;
        bed.store->record({{ZELKDate(noon), ZELKEventStartingMonitor, ZELKMonitorLullwatch}});
        bed.store->settle();
        bed.clock->advance(10);
        {
            ZELKLWAEventStore guest(bed.folder.filePath(u"events.db"_s), agentBundle(), bed.port,
                                    ZELKLWAEventStore::Keeper::Guest);
            guest.record({eventAt(noon - 900, u"past"_s)});
        }
        QVERIFY(bed.store->hasUnsettled());
        QCOMPARE(bed.store->unrecordedEnd().value_or(ZELKDate()), ZELKDate(noon));
        QCOMPARE(bed.asked(noon + 5, noon + 10), QString());
        bed.store->settle();
        QVERIFY(!bed.store->hasUnsettled());
        QCOMPARE(bed.asked(noon + 5, noon + 10), u"past"_s);
    }

    void saysOnceThatADiskIsFull()
    {
        SettlingBed bed;
        bed.store->record({eventAt(noon, u"a"_s)});
        const ConsoleLines console;
        bed.port->fail(ZELKFailingSQLitePort::Call::Step, SQLITE_FULL, 1, 1000);
        bed.store->settle();
        for (int minute = 0; minute < 3; ++minute)
            QVERIFY(!bed.store->save());
        QCOMPARE(console.count("They wait in memory"), 1);
        QCOMPARE(console.count("again; 0 were lost"), 0);
        bed.port->heal();
        const QSignalSpy settled(bed.store.get(), &ZELKLWAEventStore::settled);
        QVERIFY(bed.store->save());
        QCOMPARE(settled.size(), 1);
        QCOMPARE(console.count("again; 0 were lost"), 1);
        QCOMPARE(bed.asked(0, noon), u"a"_s);
    }

    /// All before the records began, and not again, nor where the file before was set aside. The sleeps of a
    /// time without agent, until the journal could be read.
    void readsThePastOnce()
    {
        const ConsoleLines console;
        SettlingBed bed;
        const ZELKDate begin(noon);
        const ZELKLWAPeriods before{{ZELKDate::distantPast(), begin}};
        bed.port->fail(ZELKFailingSQLitePort::Call::Any, SQLITE_BUSY, 1, 1000);
        QVERIFY(bed.store->unreadPast(begin).isEmpty());
        bed.port->heal();
        bed.store->pastWasRead(begin, true); // nothing was
        QCOMPARE(bed.store->unreadPast(begin).charges, before);
        bed.store->record({{begin, ZELKEventStartingMonitor, ZELKMonitorLullwatch},
                           {ZELKDate(noon + 50), ZELKEventStoppingMonitor, ZELKMonitorLullwatch}});
        const ZELKDate start(noon + 900);
        bed.clock->advance(900);
        bed.renew();
        QCOMPARE(bed.store->unreadPast(start).charges, before);
        bed.store->pastWasRead(start, false);
        ZELKLWAUnread unread = bed.store->unreadPast(start);
        QVERIFY(unread.charges.empty() && unread.accounting.empty());
        QCOMPARE(unread.sleeps.size(), std::size_t(2));
        QCOMPARE(unread.sleeps.front(), before.front());
        QVERIFY(!unread.sleeps.back().holds(ZELKDate(noon + 50)) &&
                unread.sleeps.back().holds(ZELKDate(noon + 51)));
        bed.store->pastWasRead(start, true);
        QVERIFY(bed.store->unreadPast(start).isEmpty());
        unread = bed.store->unreadPast(ZELKDate(noon + 901));
        const ZELKLWAPeriods since{{start, ZELKDate(noon + 901)}};
        QCOMPARE(unread.sleeps, since);
        QCOMPARE(unread.accounting, since);                  // it may be rotated since
        unread = bed.store->unreadPast(ZELKDate(noon + 60)); // the clock was ahead
        QVERIFY(unread.sleeps.back().holds(ZELKDate(noon + 55)) && !unread.accounting.empty());
        bed.store->record({{ZELKDate(noon + 5000), ZELKEventStartingMonitor, ZELKMonitorLullwatch},
                           {ZELKDate(noon + 910), ZELKEventStoppingMonitor, ZELKMonitorLullwatch}});
        const ZELKDate third(noon + 1800); // the clock was put right in the second one's life
        QCOMPARE(bed.store->unreadPast(third).sleeps, (ZELKLWAPeriods{{start, third}}));

        bed.store.reset();
        writeFile(bed.folder.filePath(u"events.db"_s), "Dear diary, no database");
        bed.renew();
        const QSignalSpy anew(bed.store.get(), &ZELKLWAEventStore::begunAnew);
        unread = bed.store->unreadPast(start);
        QVERIFY(unread.isEmpty());
        QCOMPARE(bed.store->beginning().value_or(ZELKDate()), start);
        QTRY_COMPARE(anew.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSettling)
#include "tst_settling.moc"
