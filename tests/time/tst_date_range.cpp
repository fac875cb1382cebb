#include "DateRangeBed.h"
#include "ZELKAssertion.h"

#include <QSignalSpy>

#include <functional>

namespace {

using Controller = ZELKLWCDateRangeController;

const QString startKey = QStringLiteral("ZELKLWCDateRangeController.duration.date");
const QString lengthKey = QStringLiteral("ZELKLWCDateRangeController.duration.interval");

} // namespace

class TestDateRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void normalises_data()
    {
        for (const char *name : {"start", "end", "range"})
            QTest::addColumn<QString>(name);
        QTest::addColumn<int>("tag");
        row("whole days", {"2024-02-10 09:00:00", "2024-02-12 17:30:00", "2024-02-10 to 2024-02-12"}) << 9;
        row("a moment", {"2024-02-10 09:00:00", "2024-02-10 09:00:00", "2024-02-10 to 2024-02-10"}) << 9;
        row("reversed", {"2024-02-12", "2024-02-10", "2024-02-12 to 2024-02-13 00:00:00"}) << 9;
        row("reversed, today", {"2024-03-05", "2024-03-04", "2024-03-05 to 2024-03-06 00:00:00"}) << 9;
        row("a preset", {"2024-03-04 01:00:00", "2024-03-04 02:00:00", "2024-03-04 to 2024-03-04"}) << 2;
        row("starts before the data", {"2023-06-01", "2024-02-01", "2024-01-10 to 2024-02-01"}) << 9;
        row("ends after the data", {"2024-02-01", "2025-02-01", "2024-02-01 to 2024-03-20"}) << 9;
        row("the data", {"2023-01-01", "2025-01-01", "2024-01-10 to 2024-03-20"}) << 8;
        row("before the data", {"2023-06-01", "2023-06-02", "2024-01-10 to 2023-06-02"}) << 9;
        row("after the data", {"2025-06-01", "2025-06-02", "2025-06-01 to 2024-03-20"}) << 9;
    }

    void normalises()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        DateRangeBed bed(QStringLiteral("2024-03-05 14:00:00"));
        bed.awake(QStringLiteral("2024-01-10 03:00:00"), QStringLiteral("2024-03-20 03:00:00"));
        bed.set(start, end);
        QTEST(bed.range(), "range");
        QTEST(bed.controller.selectionTag(), "tag");
    }

    void tellsOnceOfEachRange()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 14:00:00"));
        bed.awake(QStringLiteral("2024-01-10"), QStringLiteral("2024-03-20"));
        QSignalSpy ranges(&bed.controller, &Controller::absoluteDurationChanged);
        QSignalSpy tags(&bed.controller, &Controller::selectionTagChanged);

        const auto range =
            std::make_shared<ZELKLWCAbsoluteDuration>(LocalTime::date(QStringLiteral("2024-02-10")), 1.0);
        bed.controller.setAbsoluteDuration(range);
        QCOMPARE(bed.controller.absoluteDuration().get(), range.get());
        bed.controller.setAbsoluteDuration(range);
        QCOMPARE(ranges.size(), 1);
        QCOMPARE(tags.size(), 1);

        bed.set(QStringLiteral("2024-03-04"), QStringLiteral("2024-03-04"));
        QCOMPARE(ranges.size(), 2);
        QCOMPARE(bed.controller.absoluteDuration().get(), bed.controller.precalculatedDurations()[1].get());

        bed.controller.setSelectionTag(0);
        QCOMPARE(bed.controller.selectionTag(), 9);
        QCOMPARE(ranges.size(), 2);
        QCOMPARE(bed.range(), QStringLiteral("2024-03-04 to 2024-03-04"));
    }

    void takesTheLastOfEqualPresets()
    {
        DateRangeBed bed(QStringLiteral("2024-03-10 12:00:00"));
        bed.awake(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        QSignalSpy tags(&bed.controller, &Controller::selectionTagChanged);
        bed.controller.takeSelectionTagFrom(3);
        QCOMPARE(bed.controller.selectionTag(), 6);
        QCOMPARE(tags.last().first().toInt(), 6);
        tags.clear();
        bed.controller.takeSelectionTagFrom(6);
        QCOMPARE(tags.last().first().toInt(), 6);
        bed.bound(QStringLiteral("2024-03-10"), QStringLiteral("2024-03-10"));
        bed.controller.takeSelectionTagFrom(1);
        QCOMPARE(bed.controller.selectionTag(), 8);
    }

    void followsTheStoredTag()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 14:00:00"));
        const QString key = QStringLiteral("dateRange");
        bed.controller.awakeFromNib();
        QCOMPARE(bed.controller.selectionTag(), 0);
        QVERIFY(!bed.controller.absoluteDuration());
        bed.bound(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        bed.defaults.setValue(key, 2);
        QCOMPARE(bed.range(), QStringLiteral("2024-03-04 to 2024-03-04"));
        bed.controller.takeSelectionTagFrom(7);
        QCOMPARE(bed.defaults.integerForKey(key), 2);

        Controller next(bed.defaults);
        next.awakeFromNib();
        QCOMPARE(next.selectionTag(), 2);
        next.setDistantPastDistantFuture(LocalTime::date(QStringLiteral("2024-01-01")),
                                         LocalTime::date(QStringLiteral("2024-03-20")));
        QCOMPARE(*next.absoluteDuration(),
                 ZELKLWCAbsoluteDuration(LocalTime::date(QStringLiteral("2024-03-04")), 86399.0));
    }

    void growsWithTheData()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        bed.awake(QStringLiteral("2024-02-01"), QStringLiteral("2024-03-05"));
        bed.controller.setSelectionTag(8);
        bed.bound(QStringLiteral("2024-01-20 09:00:00"), QStringLiteral("2024-03-06 09:00:00"));
        QCOMPARE(bed.range(), QStringLiteral("2024-01-20 to 2024-03-06"));
        bed.set(QStringLiteral("2024-01-20"), QStringLiteral("2024-02-03"));
        bed.bound(QStringLiteral("2024-01-25"), QStringLiteral("2024-03-06"));
        QCOMPARE(bed.range(), QStringLiteral("2024-01-20 to 2024-02-03"));
    }

    void remembersTheRange_data()
    {
        for (const char *name : {"start", "end", "future", "range"})
            QTest::addColumn<QString>(name);
        QTest::addColumn<int>("tag");
        const auto range = [](const char *name, const char *start, const char *end, const char *future,
                              int tag, const char *text) {
            row(name, {start, end, future, text}) << tag;
        };
        range("custom", "2024-02-10", "2024-02-12", "2024-03-05", 9, "2024-02-10 to 2024-02-12");
        range("this week", "2024-03-04", "2024-03-10", "2024-03-20", 6, "2024-03-04 to 2024-03-10");
        range("today", "2024-03-05", "2024-03-05", "2024-03-20", 1, "2024-03-05 to 2024-03-05");
        range("beyond the data", "2024-02-10", "2024-03-12", "2024-03-05", 9, "2024-02-10 to 2024-03-05");
    }

    void remembersTheRange()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QString, future);
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        bed.defaults.registerDefaults({{QStringLiteral("dateRange"), 8}});
        bed.awake(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        bed.set(start, end);
        bed.controller.applicationDidNotify(Controller::ApplicationNotification::WillTerminate);
        QCOMPARE(bed.defaults.doubleForKey(startKey),
                 LocalTime::date(start).timeIntervalSinceReferenceDate());
        QCOMPARE(bed.defaults.doubleForKey(lengthKey), bed.controller.absoluteDuration()->duration());

        // Whether the log is loaded after the range is restored or before.
        for (const bool restoresFirst : {true, false}) {
            Controller next(bed.defaults);
            next.awakeFromNib();
            if (restoresFirst)
                next.applicationDidNotify(Controller::ApplicationNotification::DidFinishLaunching);
            next.setDistantPastDistantFuture(LocalTime::date(QStringLiteral("2024-01-01")),
                                             LocalTime::date(future));
            if (!restoresFirst)
                next.applicationDidNotify(Controller::ApplicationNotification::DidFinishLaunching);
            bed.controller.setAbsoluteDuration(
                std::make_shared<ZELKLWCAbsoluteDuration>(*next.absoluteDuration()));
            QTEST(bed.range(), "range");
            QTEST(next.selectionTag(), "tag");
        }
    }

    void restoresNothingUnusable_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("length");
        QTest::newRow("no length") << 700000000.0 << 0.0;
        QTest::newRow("negative length") << 700000000.0 << -86400.0;
        QTest::newRow("no start") << 0.0 << 86400.0;
        QTest::newRow("start before the reference date") << -5.0 << 86400.0;
        QTest::newRow("not a number") << std::nan("") << 86400.0;
    }

    void restoresNothingUnusable()
    {
        QFETCH(double, start);
        QFETCH(double, length);
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        bed.defaults.setValue(startKey, start);
        bed.defaults.setValue(lengthKey, length);
        bed.controller.awakeFromNib();
        bed.controller.applicationDidNotify(Controller::ApplicationNotification::DidFinishLaunching);
        QVERIFY(!bed.controller.absoluteDuration());
    }

    void forgetsTheRestoredRangeForTheNext()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        bed.defaults.setValue(startKey,
                              LocalTime::date(QStringLiteral("2024-02-10")).timeIntervalSinceReferenceDate());
        bed.defaults.setValue(lengthKey, 86399.0);
        bed.controller.awakeFromNib();
        bed.controller.restoreState();
        bed.controller.takeSelectionTagFrom(2);
        bed.bound(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        QCOMPARE(bed.range(), QStringLiteral("2024-03-04 to 2024-03-04"));
    }

    void refusesAbsentDates()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        const auto failure = [](const std::function<void()> &body) {
            try {
                body();
            } catch (const ZELKAssertionFailure &failed) {
                return QStringLiteral("%1:%2 %3").arg(failed.file()).arg(failed.line()).arg(failed.message());
            }
            return QString();
        };
        const QString text =
            QStringLiteral("client/ZELKLWCDateRangeController:%1 Invalid parameter not satisfying: aDate");
        QCOMPARE(failure([] { Controller::floorDate(std::nullopt); }), text.arg(659));
        QCOMPARE(failure([] { Controller::ceilingDate(std::nullopt); }), text.arg(674));
        QCOMPARE(failure([&] { bed.controller.setStartingDay(std::nullopt); }), text.arg(659));
        QCOMPARE(failure([&] { bed.controller.setEndingDay(std::nullopt); }), text.arg(674));
        bed.set(QStringLiteral("2024-03-05"), QStringLiteral("2024-03-05"));
        QCOMPARE(failure([&] { bed.controller.setAbsoluteDuration(nullptr); }), text.arg(659));
        QCOMPARE(bed.range(), QStringLiteral("2024-03-05 to 2024-03-05"));
    }
};

QTEST_GUILESS_MAIN(TestDateRange)
#include "tst_date_range.moc"
