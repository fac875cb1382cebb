// Which run of entries is visible, and who is told.
#include "LogFixture.h"

#include <QSignalSpy>
#include <QtTest>

#include <random>

using namespace Qt::StringLiterals;

namespace {

ZELKRawEvent plainAt(double seconds)
{
    return rawEvent(seconds, ZELKEventSystemWillRestart);
}

/// The run as it is defined: a walk over all entries.
ZELKVisibleRange walked(const ZELKLWCLog &log, const ZELKLWCAbsoluteDuration &period)
{
    ZELKVisibleRange range;
    for (int i = 0; i < log.count(); ++i) {
        if (period.contains(log.objectAtIndex(i)->date())) {
            if (range.length++ == 0)
                range.location = std::uint64_t(i);
        } else if (range.length > 0) {
            break;
        }
    }
    return range;
}

} // namespace

class TestVisible : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesTheFirstRunAlone()
    {
        LogFixture fixture;
        // On day 5 stand the entries 3 to 7 and, out of order, 9.
        QList<ZELKRawEvent> events;
        for (const double day : {1.0, 2.0, 3.0, 5.0, 5.1, 5.2, 5.3, 5.4, 8.0, 5.5, 9.0})
            events.append(plainAt(day * oneDay));
        fixture.log.addExternalEntries(events);
        fixture.show(ZELKDate(5 * oneDay), ZELKDate(6 * oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), (ZELKVisibleRange{3, 5}));
        QCOMPARE(fixture.log.countOfVisibleEntries(), 5U);
        QCOMPARE(fixture.log.objectInVisibleEntriesAtIndex(4), fixture.at(7));
        QCOMPARE(fixture.log.visibleEntriesArray(), fixture.log.entry().mid(3, 5));
        fixture.show(ZELKDate(6 * oneDay), ZELKDate(7 * oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), ZELKVisibleRange());
        QVERIFY(fixture.log.visibleEntriesArray().isEmpty());
    }

    void bothEndsBelongToIt()
    {
        LogFixture fixture;
        fixture.log.addExternalEntries({plainAt(oneDay - 0.000001), plainAt(oneDay), plainAt(2 * oneDay - 1),
                                        plainAt(2 * oneDay - 0.999999), plainAt(2 * oneDay)});
        fixture.show(ZELKDate(oneDay), ZELKDate(2 * oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), (ZELKVisibleRange{1, 2}));
    }

    void isToldAlsoWhenNothingChanged()
    {
        LogFixture fixture;
        QSignalSpy before(&fixture.log, &ZELKLWCLog::visibleEntriesWillChange);
        QSignalSpy after(&fixture.log, &ZELKLWCLog::visibleEntriesDidChange);
        ZELKVisibleRange duringWill{9, 9};
        connect(&fixture.log, &ZELKLWCLog::visibleEntriesWillChange, this,
                [&] { duringWill = fixture.log.visibleRange(); });
        fixture.log.addExternalEntries({plainAt(0), plainAt(60)});
        fixture.show(ZELKDate(0), ZELKDate(oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), (ZELKVisibleRange{0, 2}));
        QCOMPARE(duringWill, ZELKVisibleRange());
        QCOMPARE(after.last().at(1).value<ZELKVisibleRange>(), (ZELKVisibleRange{0, 2}));
        before.clear();
        after.clear();
        fixture.log.updateVisibleEntries();
        QCOMPARE(before.count(), 1);
        QCOMPARE(after.count(), 1);
        QCOMPARE(after.last().at(0), after.last().at(1));
        // A batch of duplicates or of nothing tells, too.
        fixture.log.addExternalEntries({});
        QVERIFY(after.count() >= 2);
    }

    void followsTheDateRange()
    {
        LogFixture fixture;
        fixture.log.addExternalEntries({plainAt(0), plainAt(oneDay), plainAt(2 * oneDay)});
        fixture.show(ZELKDate(oneDay), ZELKDate(3 * oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), (ZELKVisibleRange{1, 2}));
        fixture.log.addExternalEntries({plainAt(2 * oneDay + 60), plainAt(3 * oneDay)});
        QCOMPARE(fixture.log.visibleRange(), (ZELKVisibleRange{1, 3}));
    }

    /// In order and out of order, the run is what a walk finds.
    void isWhatAWalkFinds_data()
    {
        QTest::addColumn<int>("disorder"); // of ten events, so many are put anywhere
        for (const int disorder : {0, 1, 5, 10})
            QTest::addRow("%d of ten", disorder) << disorder;
    }

    void isWhatAWalkFinds()
    {
        QFETCH(int, disorder);
        std::mt19937 random(20240305U + unsigned(disorder));
        const auto upTo = [&](int most) { return int(random() % unsigned(most + 1)); };
        for (int round = 0; round < 40; ++round) {
            LogFixture fixture;
            double now = 0;
            for (int batch = 0; batch < 3; ++batch) {
                QList<ZELKRawEvent> events;
                for (int i = upTo(12); i > 0; --i) {
                    now += upTo(2) * oneDay / 4;
                    events.append(plainAt(upTo(9) < disorder ? upTo(40) * oneDay / 4 - 5 * oneDay : now));
                }
                fixture.log.addExternalEntries(events);
            }
            if (fixture.log.count() == 0)
                continue;
            for (int i = 0; i < 10; ++i) {
                const int from = upTo(12) - 6;
                fixture.show(ZELKDate(from * oneDay), ZELKDate((from + 1 + upTo(4)) * oneDay - 1));
                QCOMPARE(fixture.log.visibleRange(), walked(fixture.log, *fixture.range.absoluteDuration()));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestVisible)
#include "tst_visible.moc"
