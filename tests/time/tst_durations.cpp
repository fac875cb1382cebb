#include "LocalTime.h"
#include "ZELKDictionary.h"
#include "ZELKLWCAbsoluteDuration.h"
#include "ZELKValue.h"

#include <limits>

class TestDurations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spells_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("keys");
        const auto row = [](const char *name, double seconds, const char *keys) {
            QTest::newRow(name) << seconds << QString::fromLatin1(keys);
        };
        row("nothing", 0.0, "0ss");
        row("truncated", 59.9, "59ss");
        row("truncated to nothing", -0.9, "0ss");
        row("one second", 1.0, "1s");
        row("one minute", 60.0, "1m");
        row("one hour", 3600.0, "1h");
        row("hours and seconds show no minutes", 3605.0, "1h 0ms 5ss");
        row("hours and minutes", 7260.0, "2hs 1m");
        row("minutes and seconds", 61.0, "1m 1s");
        row("one day", 86400.0, "1d");
        row("days and seconds skip the minutes", 86405.0, "1d 5ss");
        row("days and hours", 90000.0, "1d 1h");
        row("days and minutes", 86460.0, "1d 1m");
        row("everything", 2 * 86400.0 + 3 * 3600.0 + 4 * 60.0 + 5.0, "2ds 3hs 4ms 5ss");
        row("negative", -90.0, "-1ms -30ss");
        row("negative hours and seconds", -3605.0, "-1hs 0ms -5ss");
        row("a count of minus one is a plural", -86400.0, "-1ds");
        row("not a number", std::numeric_limits<double>::quiet_NaN(), "0ss");
        row("longest", std::numeric_limits<double>::infinity(), "579025220ds 15hs 30ms 7ss");
        row("longest negative", -1e300, "-579025220ds -15hs -30ms -8ss");
    }

    void spells()
    {
        QFETCH(double, seconds);
        const LocalTime local;
        const auto key = [](const char *text) { return QString::fromLatin1(text); };
        QTEST(ZELKLWCDuration::stringFromDuration(seconds, key("d"), key("h"), key("m"), key("s"),
                                                  key("divider"), key("%d%@")),
              "keys");
    }

    void spellsInTheLanguageOfTheBundle()
    {
        ZELKEnvironment english = ZELKEnvironment::system();
        english.mainBundle = std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
        const ZELKEnvironmentScope scope(english);
        const ZELKLWCDuration duration(86400.0 + 2 * 3600.0 + 5.0);
        QCOMPARE(duration.stringValue(), QStringLiteral("1d 2h 0m 5s"));
        QCOMPARE(duration.longStringValue(), QStringLiteral("1 day, 2 hours, 0 minutes, 5 seconds"));
        QCOMPARE(ZELKValue::description(duration.toVariant()), QStringLiteral("1d 2h 0m 5s"));
        const ZELKDictionary properties{{QStringLiteral("Idle"), duration.toVariant()}};
        QCOMPARE(ZELKValue::description(QVariant::fromValue(properties)),
                 QStringLiteral("{Idle = 1d 2h 0m 5s}"));
    }

    void movesOneEndOfAPeriod()
    {
        const LocalTime local("UTC");
        ZELKLWCAbsoluteDuration period(ZELKDate(1000.0), 500.0);
        period.setStartDate(ZELKDate(1400.0));
        QCOMPARE(period, ZELKLWCAbsoluteDuration(ZELKDate(1400.0), 100.0));
        period.setEndDate(ZELKDate(1300.0));
        QCOMPARE(period, ZELKLWCAbsoluteDuration(ZELKDate(1400.0), -100.0));
        period.setStartDate(ZELKDate(1000.0));
        QCOMPARE(period.description(),
                 QStringLiteral("2001-01-01 00:16:40 +0000 - 2001-01-01 00:21:40 +0000"));
        QCOMPARE(ZELKValue::description(period.toVariant()), period.description());
    }

    void comparesExactly()
    {
        const ZELKLWCAbsoluteDuration period(ZELKDate(10.0), 5.0);
        const ZELKLWCAbsoluteDuration later(ZELKDate(11.0), 5.0);
        const ZELKLWCAbsoluteDuration longer(ZELKDate(10.0), std::nextafter(5.0, 6.0));
        QVERIFY(period.equal(&period));
        QVERIFY(!period.equal(nullptr));
        QVERIFY(!period.equal(&later));
        QVERIFY(!period.equal(&longer));
    }

    void containsBothEnds_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("date");
        QTest::addColumn<bool>("contained");
        QTest::newRow("before") << 100.0 << 999.5 << false;
        QTest::newRow("start") << 100.0 << 1000.0 << true;
        QTest::newRow("end") << 100.0 << 1100.0 << true;
        QTest::newRow("after") << 100.0 << 1100.5 << false;
        QTest::newRow("moment") << 0.0 << 1000.0 << true;
        QTest::newRow("start of a reversed one") << -100.0 << 1000.0 << false;
        QTest::newRow("within a reversed one") << -100.0 << 950.0 << false;
    }

    void containsBothEnds()
    {
        QFETCH(double, seconds);
        QFETCH(double, date);
        QTEST(ZELKLWCAbsoluteDuration(ZELKDate(1000.0), seconds).contains(ZELKDate(date)), "contained");
    }

    void sortsReversedPeriods()
    {
        ZELKLWCAbsoluteDuration reversed(ZELKDate(5000.0), -3600.0);
        reversed.sortByDate();
        QCOMPARE(reversed, ZELKLWCAbsoluteDuration(ZELKDate(1400.0), 3600.0));
        reversed.sortByDate();
        QCOMPARE(reversed, ZELKLWCAbsoluteDuration(ZELKDate(1400.0), 3600.0));
    }

    void titlesPeriods_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *name, const char *start, double seconds, const char *title) {
            QTest::newRow(name) << QString::fromLatin1(start) << seconds << QString::fromLatin1(title);
        };
        const double day = 86400.0;
        row("exactly a day", "2024-03-05", day, "Tuesday,  5 March 2024");
        row("a second more", "2024-03-05", day + 1.0, "Tuesday  5 - Wednesday  6, March 2024");
        row("the middle decides", "2024-03-05 18:00:00", 43201.0, "Wednesday,  6 March 2024");
        row("a day of 25 hours", "2024-10-27", 25 * 3600.0 - 1.0, "Sunday 27 - Sunday 27, October 2024");
        row("reversed", "2024-03-06", -3600.0, "Tuesday,  5 March 2024");
        row("one month", "2024-02-01", 29 * day - 1.0, "Thursday  1 - Thursday 29, February 2024");
        row("two months", "2024-02-28", 3 * day - 1.0, "28 February -  1 March, 2024");
        row("two years", "2023-12-31", 2 * day - 1.0, "31 December 2023 -  1 January 2024");
        row("the same month of another year", "2023-05-01", 366 * day, " 1 May 2023 -  1 May 2024");
    }

    void titlesPeriods()
    {
        QFETCH(QString, start);
        QFETCH(double, seconds);
        const LocalTime local;
        QTEST(ZELKLWCAbsoluteDuration(LocalTime::date(start), seconds).periodDescription(), "title");
    }
};

QTEST_GUILESS_MAIN(TestDurations)
#include "tst_durations.moc"
