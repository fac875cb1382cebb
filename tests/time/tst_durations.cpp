// Durations in words; periods with their ends, and their titles.
#include "DateRangeBed.h"
#include "ZELKValue.h"

#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;

class TestDurations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spells()
    {
        const LocalTime local;
        const double infinity = std::numeric_limits<double>::infinity();
        const std::pair<double, QString> spelt[] = {
            {59.9, u"59ss"_s},
            {-0.9, u"0ss"_s},
            {60, u"1m"_s},
            {7260, u"2hs 1m"_s},
            {3605, u"1h 0ms 5ss"_s}, // hours and seconds show no minutes
            {86405, u"1d 5ss"_s},    // days and seconds skip them
            {90000, u"1d 1h"_s},
            {183841, u"2ds 3hs 4ms 1s"_s},
            {-3605, u"-1hs 0ms -5ss"_s},
            {-86400, u"-1ds"_s}, // minus one is a plural
            {infinity - infinity, u"0ss"_s},
            {infinity, u"579025220ds 15hs 30ms 7ss"_s},
            {-1e300, u"-579025220ds -15hs -30ms -8ss"_s}};
        for (const auto &[seconds, keys] : spelt)
            QCOMPARE(ZELKLWCDuration::stringFromDuration(seconds, u"d"_s, u"h"_s, u"m"_s, u"s"_s,
                                                         u"divider"_s, u"%d%@"_s),
                     keys);
    }

    void spellsInTheLanguageOfTheBundle()
    {
        ZELKEnvironment english = ZELKEnvironment::system();
        english.mainBundle = std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
        const ZELKEnvironmentScope scope(english);
        const ZELKLWCDuration duration(86400.0 + 2 * 3600.0 + 5.0);
        QCOMPARE(duration.longStringValue(), u"1 day, 2 hours, 0 minutes, 5 seconds"_s);
        QCOMPARE(ZELKValue::description(duration.toVariant()), u"1d 2h 0m 5s"_s);
    }

    void movesOneEndOfAPeriod()
    {
        const LocalTime local("UTC");
        ZELKLWCAbsoluteDuration period(ZELKDate(1000.0), 500.0);
        period.setStartDate(ZELKDate(1400.0));
        QCOMPARE(period, ZELKLWCAbsoluteDuration(ZELKDate(1400.0), 100.0));
        period.setEndDate(ZELKDate(1300.0));
        QCOMPARE(period, ZELKLWCAbsoluteDuration(ZELKDate(1400.0), -100.0));
        period.sortByDate();
        QCOMPARE(period, ZELKLWCAbsoluteDuration(ZELKDate(1300.0), 100.0));
        period.sortByDate();
        QCOMPARE(ZELKValue::description(period.toVariant()),
                 u"2001-01-01 00:21:40 +0000 - 2001-01-01 00:23:20 +0000"_s);
    }

    void comparesAndContainsExactly()
    {
        const ZELKLWCAbsoluteDuration period(ZELKDate(1000.0), 100.0);
        const ZELKLWCAbsoluteDuration longer(ZELKDate(1000.0), std::nextafter(100.0, 101.0));
        QVERIFY(period.equal(&period) && !period.equal(nullptr) && !period.equal(&longer));
        QVERIFY(period.contains(ZELKDate(1000.0)) && period.contains(ZELKDate(1100.0)));
        QVERIFY(!period.contains(ZELKDate(999.5)) && !period.contains(ZELKDate(1100.5)));
        const ZELKLWCAbsoluteDuration reversed(ZELKDate(1000.0), -100.0);
        QVERIFY(!reversed.contains(ZELKDate(1000.0)) && !reversed.contains(ZELKDate(950.0)));
    }

    void titlesPeriods()
    {
        const double day = 86400.0;
        struct
        {
            const char *start;
            double seconds;
            QString title;
        } const titles[] = {
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
};

QTEST_GUILESS_MAIN(TestDurations)
#include "tst_durations.moc"
