// Durations in words, periods, and the range of dates with its presets, midnights, moves and limits.
#include "ConsoleLines.h"
#include "DateRangeBed.h"
#include "Rows.h"
#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKClock.h"
#include "ZELKFormat.h"

#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;
using Controller = ZELKLWCDateRangeController;
using Action = Controller::Action;
using Notification = Controller::ApplicationNotification;

namespace {

constexpr char now[] = "2024-03-05 14:00:00";
constexpr char past[] = "2024-01-10 03:00:00";
constexpr char future[] = "2024-03-20 03:00:00";
const QString startKey = u"ZELKLWCDateRangeController.duration.date"_s;
const QString lengthKey = u"ZELKLWCDateRangeController.duration.interval"_s;

} // namespace

class TestTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spells()
    {
        const LocalTime local;
        const double infinity = std::numeric_limits<double>::infinity();
        QStringList spelt;
        for (const double seconds : {59.9, -0.9, 60.0, 7260.0, 3605.0, 86405.0, 90000.0, 183841.0, -3605.0,
                                     -86400.0, infinity - infinity, infinity, -1e300})
            spelt.append(ZELKLWCDuration::stringFromDuration(seconds, u"d"_s, u"h"_s, u"m"_s, u"s"_s,
                                                             u"divider"_s, u"%d%@"_s));
        // Hours and seconds show no minutes, days and seconds skip them; minus one is a plural.
        QCOMPARE(spelt.join(u", "_s),
                 u"59ss, 0ss, 1m, 2hs 1m, 1h 0ms 5ss, 1d 5ss, 1d 1h, 2ds 3hs 4ms 1s, "
                 "-1hs 0ms -5ss, -1ds, 0ss, 579025220ds 15hs 30ms 7ss, -579025220ds -15hs -30ms -8ss"_s);
    }

    void comparesAndContainsExactly()
    {
        const ZELKLWCAbsoluteDuration period(ZELKDate(1000.0), 100.0);
        const ZELKLWCAbsoluteDuration longer(ZELKDate(1000.0), std::nextafter(100.0, 101.0));
        QVERIFY(period.equal(&period) && !period.equal(&longer));
        QVERIFY(period.contains(ZELKDate(1000.0)) && period.contains(ZELKDate(1100.0)));
        QVERIFY(!period.contains(ZELKDate(999.5)) && !period.contains(ZELKDate(1100.5)));
        const ZELKLWCAbsoluteDuration reversed(ZELKDate(1000.0), -100.0);
        QVERIFY(!reversed.contains(ZELKDate(1000.0)) && !reversed.contains(ZELKDate(950.0)));
    }

    void titlesPeriods()
    {
        const double day = 86400.0;
        const std::tuple<const char *, double, QString> titles[] = {
            {"2024-03-05", day, u"Tuesday,  5 March 2024"_s},
            {"2024-03-05", day + 1, u"Tuesday  5 - Wednesday  6, March 2024"_s},
            {"2024-03-05 18:00:00", 43201, u"Wednesday,  6 March 2024"_s}, // the middle decides
            {"2024-10-27", 25 * 3600.0 - 1, u"Sunday, 27 October 2024"_s},
            {"2024-03-06", -3600, u"Tuesday,  5 March 2024"_s},
            {"2024-02-28", 3 * day - 1, u"28 February -  1 March, 2024"_s},
            {"2023-12-31", 2 * day - 1, u"31 December 2023 -  1 January 2024"_s},
            {"2023-05-01", 366 * day, u" 1 May 2023 -  1 May 2024"_s},
        };
        const LocalTime local;
        for (const auto &[start, seconds, title] : titles)
            QCOMPARE(ZELKLWCAbsoluteDuration(LocalTime::date(start), seconds).periodDescription(), title);
    }

    void presets_data()
    {
        const Rows<int, QString, QByteArray> row;
        const auto preset = [&](int tag, const char *moment, const char *range,
                                const char *zone = "Europe/Berlin") { row(moment, tag, range, zone); };
        preset(1, "2024-03-05 00:00:00", "2024-03-05 to 2024-03-05");
        preset(1, "2024-03-05 23:59:59", "2024-03-05 to 2024-03-05");
        preset(1, "2024-10-27 12:00:00", "2024-10-27 to 2024-10-27"); // 25 hours
        preset(1, "2024-03-31 12:00:00", "2024-03-31 to 2024-03-31"); // 23 hours
        preset(2, "2024-03-01 08:00:00", "2024-02-29 to 2024-02-29");
        preset(2, "2024-01-01 00:00:01", "2023-12-31 to 2023-12-31");
        preset(2, "2024-10-28 12:00:00", "2024-10-27 to 2024-10-27");
        preset(3, "2024-04-03 12:00:00", "2024-03-28 to 2024-04-03"); // over a clock change
        preset(4, "2024-02-01 00:00:00", "2024-02-01 to 2024-02-29");
        preset(4, "2024-12-31 23:59:59", "2024-12-01 to 2024-12-31");
        preset(5, "2023-03-31 12:00:00", "2023-02-01 to 2023-02-28");
        preset(5, "2024-01-31 12:00:00", "2023-12-01 to 2023-12-31");
        for (const char *day : {"2024-03-04 00:00:00", "2024-03-06 12:00:00", "2024-03-10 23:59:59"}) {
            preset(6, day, "2024-03-04 to 2024-03-10");
            preset(7, day, "2024-02-26 to 2024-03-03");
        }
        preset(6, "2025-01-01 12:00:00", "2024-12-30 to 2025-01-05");
        preset(6, "2024-03-31 12:00:00", "2024-03-25 to 2024-03-31"); // ends on 23 hours
        preset(7, "2024-04-03 12:00:00", "2024-03-25 to 2024-03-31");
        preset(8, "2024-03-05 12:00:00", "2000-01-01 to 2049-12-31");
        // Days without their midnights.
        preset(1, "2018-11-04 12:00:00", "2018-11-04 01:00:00 to 2018-11-04", "America/Sao_Paulo");
        preset(3, "2018-11-10 12:00:00", "2018-11-04 01:00:00 to 2018-11-10", "America/Sao_Paulo");
        preset(3, "2021-03-26 12:00:00", "2021-03-20 to 2021-03-26", "Asia/Amman");
    }

    void presets()
    {
        const auto [tag, range, zone] = Rows<int, QString, QByteArray>::fetch();
        DateRangeBed bed(QTest::currentDataTag(), "2000-01-01 11:00:00", "2049-12-31 11:00:00", zone);
        bed.controller.setSelectionTag(tag);
        QCOMPARE(bed.controller.selectionTag(), tag);
        QCOMPARE(bed.range(), range);
    }

    void passesMidnight()
    {
        DateRangeBed bed("2024-03-05 23:59:59", past, future);
        bed.controller.setSelectionTag(1);
        QSignalSpy ranges(&bed.controller, &Controller::absoluteDurationChanged);
        bed.local.setNow("2024-03-06 00:00:01");
        bed.controller.passingMidnightUpdate();
        QCOMPARE(bed.range(), u"2024-03-06 to 2024-03-06"_s);
        QCOMPARE(ranges.size(), 1);
        // What was any range until midnight is today from then on.
        bed.set("2024-03-07", "2024-03-07");
        QCOMPARE(bed.controller.selectionTag(), 9);
        bed.local.setNow("2024-03-07 00:00:01");
        bed.controller.passingMidnightUpdate();
        QCOMPARE(bed.controller.selectionTag(), 1);
    }

    void waitsForMidnight()
    {
        const std::pair<const char *, const char *> firings[] = {
            {"2024-03-05 00:00:00", "2024-03-06 00:00:00"},
            {"2024-03-31 01:00:00", "2024-04-01 00:00:00"},
            {"2024-10-27 01:00:00", "2024-10-28 00:00:00"},
            {"2024-12-31 01:00:00", "2025-01-01 00:00:00"}};
        for (const auto &[moment, firing] : firings) {
            DateRangeBed bed(moment);
            bed.controller.awakeFromNib();
            QCOMPARE(bed.controller.passingMidnightTimer().nextFiring(), LocalTime::date(firing));
        }
    }

    void updatesWhenTheTimerFires()
    {
        DateRangeBed bed(now, past, future);
        bed.controller.setSelectionTag(2);
        bed.local.setNow("2024-03-06 00:00:01");
        // The midnight of that clock is long past, so the timer fires as soon as it may.
        QTRY_COMPARE(bed.range(), u"2024-03-05 to 2024-03-05"_s);
        // Whatever clock changes lie in between, the next firing is one just after a midnight.
        const ZELKDate next = bed.controller.passingMidnightTimer().nextFiring();
        QVERIFY(next > ZELKSystemClock().now());
        QVERIFY(next.timeIntervalSinceDate(ZELKCalendar::startOfDay(next)) < 1800.0);
    }

    void offersWhatLiesWithinTheData()
    {
        DateRangeBed bed(now, "2024-03-04 18:00:00", "2024-03-05 13:00:00");
        QList<int> presets;
        for (int tag = -1; tag < 11; ++tag)
            if (bed.controller.validateMenuItem(Action::TakeSelectionTagFrom, tag))
                presets.append(tag);
        QCOMPARE(presets, (QList<int>{1, 2, 8, 9}));

        bed.set("2024-03-04", "2024-03-04");
        QVERIFY(!bed.controller.validateMenuItem(Action::DayBackward, 0));
        QVERIFY(bed.controller.validateToolbarItem(Action::MonthForward));
        bed.set("2024-03-05", "2024-03-05");
        QVERIFY(bed.controller.validateAction(Action::MonthBackward));
        QVERIFY(!bed.controller.validateAction(Action::DayForward));
        const DateRangeBed asleep(now);
        for (const Action action : {Action::ZoomIn, Action::ZoomOut, Action::DayForward, Action::DayBackward})
            QVERIFY(!asleep.controller.validateAction(action));
    }

    /// What a range comes to, once set and once moved.
    void normalisesAndMoves()
    {
        const std::tuple<const char *, const char *, int, int, QString, int> cases[] = {
            {"2024-02-10 09:00:00", "2024-02-12 17:30:00", 0, 0, u"2024-02-10 to 2024-02-12"_s, 9},
            {"2024-02-10 09:00:00", "2024-02-10 09:00:00", 0, 0, u"2024-02-10 to 2024-02-10"_s, 9},
            {"2024-02-12", "2024-02-10", 0, 0, u"2024-02-12 to 2024-02-13 00:00:00"_s, 9}, // reversed
            {"2024-03-05", "2024-03-04", 0, 0, u"2024-03-05 to 2024-03-06 00:00:00"_s, 9}, // reversed, today
            {"2024-03-04 01:00:00", "2024-03-04 02:00:00", 0, 0, u"2024-03-04 to 2024-03-04"_s, 2},
            {"2022-01-01", "2025-01-02", 0, 0, u"2023-01-01 to 2024-12-31"_s, 8},
            {"2022-06-01", "2022-06-02", 0, 0, u"2023-01-01 to 2022-06-02"_s, 9}, // before the data
            {"2025-06-01", "2025-06-02", 0, 0, u"2025-06-01 to 2024-12-31"_s, 9}, // after them
            {"2024-02-28", "2024-02-28", 1, 0, u"2024-02-29 to 2024-02-29"_s, 9},
            {"2024-01-01", "2024-01-03", -1, 0, u"2023-12-31 to 2024-01-02"_s, 9},
            {"2023-03-01", "2023-03-31", 0, -1, u"2023-02-01 to 2023-03-03"_s, 9},
            {"2024-01-31", "2024-01-31", 0, 1, u"2024-02-29 to 2024-02-29"_s, 9},
            {"2024-03-30", "2024-03-30", 1, 0, u"2024-03-31 to 2024-03-31"_s, 9}, // onto 23 hours
            {"2024-10-27", "2024-10-27", 1, 0, u"2024-10-28 to 2024-10-28"_s, 9}, // off 25 hours
        };
        DateRangeBed bed(now, "2023-01-01 03:00:00", "2024-12-31 03:00:00");
        for (const auto &[start, end, days, months, range, tag] : cases) {
            bed.set(start, end);
            if (days || months)
                bed.controller.shiftDurationHours(0, days, months);
            QCOMPARE(bed.range(), range);
            QCOMPARE(bed.controller.selectionTag(), tag);
        }
    }

    void zooms()
    {
        DateRangeBed bed(now, "2020-01-01", "2026-01-01");
        const auto zoomed = [&bed](const char *start, const char *end) {
            bed.set(start, end);
            QString text = bed.controller.validateAction(Action::ZoomIn) ? u"in "_s : QString();
            text += bed.controller.validateAction(Action::ZoomOut) ? u"out: "_s : u": "_s;
            bed.controller.zoomIn();
            text += bed.range();
            bed.set(start, end);
            bed.controller.zoomOut();
            return text + u", "_s + bed.range();
        };
        QCOMPARE(zoomed("2024-02-10", "2024-02-10"),
                 u"out: 2024-02-10 to 2024-02-10, 2024-02-09 to 2024-02-11"_s);
        QCOMPARE(zoomed("2024-02-10", "2024-02-11"),
                 u"in out: 2024-02-11 to 2024-02-12 00:00:00, 2024-02-09 to 2024-02-12"_s);
        QCOMPARE(zoomed("2024-03-30", "2024-04-01"), // over a clock change
                 u"in out: 2024-03-31 to 2024-03-31, 2024-03-29 to 2024-04-02"_s);
        QCOMPARE(zoomed("2024-03-31", "2024-03-31"),
                 u"out: 2024-03-31 to 2024-03-31, 2024-03-30 to 2024-04-01"_s);
        QCOMPARE(zoomed("2021-01-29", "2023-12-31"),
                 u"in out: 2021-01-30 to 2023-12-30, 2021-01-28 to 2024-01-01"_s);
        QCOMPARE(zoomed("2021-01-28", "2024-01-01"), // 1069 days
                 u"in : 2021-01-29 to 2023-12-31, 2021-01-28 to 2024-01-01"_s);
    }

    void tellsOnceOfEachRange()
    {
        DateRangeBed bed(now, past, future);
        QSignalSpy ranges(&bed.controller, &Controller::absoluteDurationChanged);
        QSignalSpy tags(&bed.controller, &Controller::selectionTagChanged);
        const auto range = std::make_shared<ZELKLWCAbsoluteDuration>(LocalTime::date("2024-02-10"), 1.0);
        bed.controller.setAbsoluteDuration(range);
        bed.controller.setAbsoluteDuration(range);
        QCOMPARE(ranges.size(), 1);
        QCOMPARE(tags.size(), 1);
        bed.set("2024-03-04", "2024-03-04");
        QCOMPARE(ranges.size(), 2);
        QCOMPARE(bed.controller.absoluteDuration().get(), bed.controller.precalculatedDurations()[1].get());
        bed.controller.setSelectionTag(0);
        QCOMPARE(bed.controller.selectionTag(), 9);
        QCOMPARE(ranges.size(), 2);
    }

    void takesTheLastOfEqualPresets()
    {
        DateRangeBed bed("2024-03-10 12:00:00", past, future);
        bed.controller.takeSelectionTagFrom(3);
        QCOMPARE(bed.controller.selectionTag(), 6);
        QSignalSpy tags(&bed.controller, &Controller::selectionTagChanged);
        bed.controller.takeSelectionTagFrom(6);
        QCOMPARE(tags.last().first().toInt(), 6); // told although nothing changed
        bed.bound("2024-03-10", "2024-03-10");
        bed.controller.takeSelectionTagFrom(1);
        QCOMPARE(bed.controller.selectionTag(), 8);
    }

    void followsTheStoredTag()
    {
        DateRangeBed bed(now);
        bed.controller.awakeFromNib();
        QCOMPARE(bed.controller.selectionTag(), 0);
        QVERIFY(!bed.controller.absoluteDuration());
        bed.bound(past, future);
        bed.defaults.setValue(u"dateRange"_s, 2);
        QCOMPARE(bed.range(), u"2024-03-04 to 2024-03-04"_s);
        bed.controller.takeSelectionTagFrom(7);
        QCOMPARE(bed.defaults.integerForKey(u"dateRange"_s), 2);
    }

    void growsWithTheData()
    {
        DateRangeBed bed(now, "2024-02-01", "2024-03-05");
        bed.controller.setSelectionTag(8);
        bed.bound(past, future);
        QCOMPARE(bed.range(), u"2024-01-10 to 2024-03-20"_s);
        bed.set("2024-01-10", "2024-02-03");
        bed.bound("2024-01-25", future);
        QCOMPARE(bed.range(), u"2024-01-10 to 2024-02-03"_s);
    }

    void remembersTheRange()
    {
        // A preset or none, and a range; when it is restored, and on which data; what comes of it.
        using Text = const char *;
        const std::tuple<int, Text, Text, Text, Text, QString, int> cases[] = {
            {0, "2024-02-10", "2024-02-12", now, "2024-03-05", u"2024-02-10 to 2024-02-12"_s, 9},
            {0, "2024-02-10", "2024-03-12", now, "2024-03-05", u"2024-02-10 to 2024-03-05"_s, 9},
            {8, "", "", now, "2024-04-05", u"2024-01-10 to 2024-04-05"_s, 8},
            {4, "", "", "2024-03-06", "2024-04-05", u"2024-03-01 to 2024-03-31"_s, 4}, // was cut short
            {1, "", "", "2024-03-06", "2024-04-05", u"2024-03-05 to 2024-03-05"_s, 2},
        };
        for (const auto &[chosen, start, end, later, dataEnd, range, tag] : cases) {
            DateRangeBed bed(now, past, future);
            bed.defaults.registerDefaults({{u"dateRange"_s, 8}});
            chosen ? bed.controller.setSelectionTag(chosen) : bed.set(start, end);
            bed.controller.applicationDidNotify(Notification::WillTerminate);
            bed.local.setNow(later);
            // Whether the log is loaded after the range is restored or before.
            for (const bool restoresFirst : {true, false}) {
                Controller next(bed.defaults);
                next.awakeFromNib();
                if (restoresFirst)
                    next.applicationDidNotify(Notification::DidFinishLaunching);
                next.setDistantPastDistantFuture(LocalTime::date(past), LocalTime::date(dataEnd));
                if (!restoresFirst)
                    next.applicationDidNotify(Notification::DidFinishLaunching);
                QCOMPARE(DateRangeBed::text(next), range);
                QCOMPARE(next.selectionTag(), tag);
            }
        }
    }

    void restoresNothingUnusable()
    {
        for (const auto &[start, length] :
             {std::pair(7e8, 0.0), {7e8, -86400.0}, {0.0, 86400.0}, {std::nan(""), 86400.0}}) {
            DateRangeBed bed(now);
            bed.defaults.setValue(startKey, start);
            bed.defaults.setValue(lengthKey, length);
            bed.controller.awakeFromNib();
            bed.controller.applicationDidNotify(Notification::DidFinishLaunching);
            QVERIFY(!bed.controller.absoluteDuration());
        }
    }

    void forgetsTheRestoredRangeForTheNext()
    {
        DateRangeBed bed(now);
        bed.defaults.setValue(startKey, LocalTime::date("2024-02-10").timeIntervalSinceReferenceDate());
        bed.defaults.setValue(lengthKey, 86399.0);
        bed.controller.awakeFromNib();
        bed.controller.restoreState();
        bed.controller.takeSelectionTagFrom(2);
        bed.bound(past, future);
        QCOMPARE(bed.range(), u"2024-03-04 to 2024-03-04"_s);
    }

    void refusesAbsentDates()
    {
        DateRangeBed bed(now, past, future);
        bed.set("2024-03-05", "2024-03-05");
        const std::pair<int, std::function<void()>> refused[] = {
            {659, [&] { bed.controller.setStartingDay(std::nullopt); }},
            {674, [&] { bed.controller.setEndingDay(std::nullopt); }},
            {659, [&] { bed.controller.setAbsoluteDuration(nullptr); }}};
        for (const auto &[line, body] : refused) {
            const ConsoleLines console;
            zelkGuard(body);
            QCOMPARE(console.lines(), QStringList(ZELKFormat("Invalid parameter not satisfying: aDate "
                                                             "(client/ZELKLWCDateRangeController:%d)",
                                                             {line})));
        }
        QCOMPARE(bed.range(), u"2024-03-05 to 2024-03-05"_s);
    }
};

QTEST_GUILESS_MAIN(TestTime)
#include "tst_time.moc"
