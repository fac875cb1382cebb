#include "DateRangeBed.h"
#include "ZELKCalendar.h"
#include "ZELKClock.h"
#include "ZELKWeekday.h"

#include <QSignalSpy>

namespace {

using Controller = ZELKLWCDateRangeController;
using Action = Controller::Action;

static_assert(ZELKWeekday::daysUntil(0, 6) == 1 && ZELKWeekday::daysUntil(6, 0) == 6);
static_assert(ZELKWeekday::daysUntil(3, 3) == 7 && ZELKWeekday::daysSince(3, 3) == -7);
static_assert(ZELKWeekday::daysSince(1, 0) == -6 && ZELKWeekday::daysSince(1, 6) == -5);

} // namespace

class TestDatePresets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presets_data()
    {
        QTest::addColumn<QString>("now");
        QTest::addColumn<QString>("range");
        QTest::addColumn<int>("tag");
        QTest::addColumn<QByteArray>("zone");
        const auto preset = [](int tag, const char *name, const char *now, const char *range,
                               const char *zone = "Europe/Berlin") {
            row(name, {now, range}) << tag << QByteArray(zone);
        };
        preset(1, "today", "2024-03-05 14:02:11", "2024-03-05 to 2024-03-05");
        preset(1, "today, its first moment", "2024-03-05 00:00:00", "2024-03-05 to 2024-03-05");
        preset(1, "today, its last second", "2024-03-05 23:59:59", "2024-03-05 to 2024-03-05");
        preset(1, "today, 25 hours", "2024-10-27 12:00:00", "2024-10-27 to 2024-10-27");
        preset(1, "today, 23 hours", "2024-03-31 12:00:00", "2024-03-31 to 2024-04-01 00:00:00");
        preset(1, "today without its midnight", "2018-11-04 12:00:00",
               "2018-11-04 01:00:00 to 2018-11-05 00:00:00", "America/Sao_Paulo");
        preset(2, "yesterday, a leap day", "2024-03-01 08:00:00", "2024-02-29 to 2024-02-29");
        preset(2, "yesterday, last year", "2024-01-01 00:00:01", "2023-12-31 to 2023-12-31");
        preset(2, "yesterday of 25 hours", "2024-10-28 12:00:00", "2024-10-27 to 2024-10-27");
        preset(3, "seven days", "2024-03-02 12:00:00", "2024-02-25 to 2024-03-02");
        preset(3, "seven days over a clock change", "2024-04-03 12:00:00", "2024-03-28 to 2024-04-03");
        preset(3, "seven days from a day without its midnight", "2018-11-10 12:00:00",
               "2018-11-04 01:00:00 to 2018-11-10", "America/Sao_Paulo");
        preset(4, "this month", "2023-02-14 12:00:00", "2023-02-01 to 2023-02-28");
        preset(4, "this month, leap year", "2024-02-01 00:00:00", "2024-02-01 to 2024-02-29");
        preset(4, "this month, December", "2024-12-31 23:59:59", "2024-12-01 to 2024-12-31");
        preset(5, "last month on the 31st", "2023-03-31 12:00:00", "2023-02-01 to 2023-02-28");
        preset(5, "last month on the 31st, leap year", "2024-03-31 12:00:00", "2024-02-01 to 2024-02-29");
        preset(5, "last month, last year", "2024-01-31 12:00:00", "2023-12-01 to 2023-12-31");
        preset(6, "week on Monday", "2024-03-04 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week on Tuesday", "2024-03-05 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week on Wednesday", "2024-03-06 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week on Thursday", "2024-03-07 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week on Friday", "2024-03-08 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week on Saturday", "2024-03-09 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week on Sunday", "2024-03-10 12:00:00", "2024-03-04 to 2024-03-10");
        preset(6, "week of the year's end", "2025-01-01 12:00:00", "2024-12-30 to 2025-01-05");
        preset(6, "week ending on 23 hours", "2024-03-31 12:00:00", "2024-03-25 to 2024-03-31");
        preset(7, "last week on Monday", "2024-03-04 12:00:00", "2024-02-26 to 2024-03-03");
        preset(7, "last week on Sunday", "2024-03-10 12:00:00", "2024-02-26 to 2024-03-03");
        preset(7, "last week ended on 23 hours", "2024-04-03 12:00:00", "2024-03-25 to 2024-03-31");
        preset(8, "everything", "2024-03-05 12:00:00", "2000-01-01 to 2049-12-31");
    }

    void presets()
    {
        QFETCH(QString, now);
        QFETCH(QByteArray, zone);
        QFETCH(int, tag);
        DateRangeBed bed(now, zone);
        bed.awake(QStringLiteral("2000-01-01 11:00:00"), QStringLiteral("2049-12-31 11:00:00"));
        bed.controller.setSelectionTag(tag);
        QTEST(bed.range(), "range");
        QCOMPARE(bed.controller.selectionTag(), tag);
    }

    void passesMidnight()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 23:59:59"));
        bed.awake(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        bed.controller.setSelectionTag(1);
        QSignalSpy ranges(&bed.controller, &Controller::absoluteDurationChanged);
        bed.local.setNow(QStringLiteral("2024-03-06 00:00:01"));
        bed.controller.passingMidnightUpdate();
        QCOMPARE(bed.range(), QStringLiteral("2024-03-06 to 2024-03-06"));
        QCOMPARE(ranges.size(), 1);

        bed.set(QStringLiteral("2024-03-07"), QStringLiteral("2024-03-07"));
        QCOMPARE(bed.controller.selectionTag(), 9);
        bed.local.setNow(QStringLiteral("2024-03-07 00:00:01"));
        bed.controller.passingMidnightUpdate();
        QCOMPARE(bed.controller.selectionTag(), 1);
        QCOMPARE(bed.range(), QStringLiteral("2024-03-07 to 2024-03-07"));
    }

    void waitsForMidnight_data()
    {
        for (const char *name : {"now", "firing"})
            QTest::addColumn<QString>(name);
        row("any day", {"2024-03-05 14:00:00", "2024-03-06 00:00:00"});
        row("at midnight", {"2024-03-05 00:00:00", "2024-03-06 00:00:00"});
        row("23 hours", {"2024-03-31 01:00:00", "2024-04-01 00:00:00"});
        row("25 hours", {"2024-10-27 01:00:00", "2024-10-28 00:00:00"});
        row("the year's end", {"2024-12-31 01:00:00", "2025-01-01 00:00:00"});
    }

    void waitsForMidnight()
    {
        QFETCH(QString, now);
        DateRangeBed bed(now);
        bed.controller.awakeFromNib();
        QVERIFY(bed.controller.passingMidnightTimer().isScheduled());
        QTEST(LocalTime::text(bed.controller.passingMidnightTimer().nextFiring()), "firing");
    }

    void updatesWhenTheTimerFires()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        bed.awake(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        bed.controller.setSelectionTag(2);
        bed.local.setNow(QStringLiteral("2024-03-06 00:00:01"));
        // The midnight of that clock is long past, so the timer fires as soon as it may.
        QTRY_COMPARE(bed.range(), QStringLiteral("2024-03-05 to 2024-03-05"));
        // Whatever clock changes lie in between, the next firing is one just after a midnight.
        const ZELKDate next = bed.controller.passingMidnightTimer().nextFiring();
        QVERIFY(next > ZELKSystemClock().now());
        QVERIFY(next.timeIntervalSinceDate(ZELKCalendar::startOfDay(next)) < 1800.0);
    }

    void offersPresetsWithinTheData_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<bool>("offered");
        const bool offered[] = {false, false, true, true, false, false, false, false, false, true, true};
        for (int tag = -1; tag < 10; ++tag)
            QTest::addRow("tag %d", tag) << tag << offered[tag + 1];
    }

    void offersPresetsWithinTheData()
    {
        QFETCH(int, tag);
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        bed.awake(QStringLiteral("2024-03-04 18:00:00"), QStringLiteral("2024-03-05 13:00:00"));
        QTEST(bed.controller.validateMenuItem(Action::TakeSelectionTagFrom, tag), "offered");
    }
};

QTEST_GUILESS_MAIN(TestDatePresets)
#include "tst_date_presets.moc"
