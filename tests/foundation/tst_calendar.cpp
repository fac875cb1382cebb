#include "Rows.h"
#include "ZELKCalendar.h"
#include "ZELKEnvironment.h"

#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

ZELKEnvironment environmentIn(const char *zone, const QLocale &locale = QLocale::c())
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.zone = QTimeZone(zone);
    environment.locale = locale;
    return environment;
}

ZELKDate utc(const QString &iso)
{
    return ZELKDate::fromDateTime(QDateTime::fromString(iso + u'Z', Qt::ISODateWithMs));
}

} // namespace

class TestCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // The results shall follow the environment's zone and not the process's.
        qputenv("TZ", "Asia/Tokyo");
        tzset();
    }

    void describesDates_data()
    {
        const Rows<QByteArray, double, QString> row;
        row("winter", "Europe/Berlin", utc(u"2024-03-05T13:02:11"_s).timeIntervalSinceReferenceDate(),
            "2024-03-05 14:02:11 +0100");
        row("west of Greenwich, half an hour", "America/St_Johns", 0.0, "2000-12-31 20:30:00 -0330");
        row("last half millisecond of a day", "UTC", 86399.9997, "2001-01-01 23:59:59 +0000");
        row("before the reference date", "UTC", -0.25, "2000-12-31 23:59:59 +0000");
        row("infinite past", "UTC", -std::numeric_limits<double>::infinity(), "0001-01-01 00:00:00 +0000");
        row("invalid zone", "No/Such_Place", 0.0, "2001-01-01 00:00:00 +0000");
    }
    void describesDates()
    {
        const auto [zone, seconds, text] = Rows<QByteArray, double, QString>::fetch();
        const ZELKEnvironmentScope scope(environmentIn(zone.constData()));
        QCOMPARE(ZELKDate(seconds).description(), text);
    }

    void keepsMillisecondsThroughDateTimes()
    {
        for (qint64 milliseconds = 1709643731000; milliseconds < 1709643732000; ++milliseconds) {
            const QDateTime moment = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
            QCOMPARE(ZELKDate::fromDateTime(moment).toDateTime(QTimeZone::utc()).toMSecsSinceEpoch(),
                     milliseconds);
            const auto fromUnix = ZELKDate::fromSecondsSince1970(double(milliseconds) / 1000.0);
            QCOMPARE(fromUnix.toDateTime(QTimeZone::utc()).toMSecsSinceEpoch(), milliseconds);
        }
    }

    void findsStarts_data()
    {
        const Rows<QByteArray, QString, QString, QString> row;
        row("day of 23 hours", "Europe/Berlin", "2024-03-31T21:59:59.500", "2024-03-30T23:00",
            "2024-02-29T23:00");
        row("day of 25 hours", "Europe/Berlin", "2024-10-27T22:59:59", "2024-10-26T22:00",
            "2024-09-30T22:00");
        row("second 02:30 of a day", "Europe/Berlin", "2024-10-27T01:30", "2024-10-26T22:00",
            "2024-09-30T22:00");
        row("midnight is skipped", "America/Sao_Paulo", "2018-11-04T12:00", "2018-11-04T03:00",
            "2018-11-01T03:00");
        row("repeated hour before midnight", "America/Sao_Paulo", "2018-02-18T02:30", "2018-02-17T02:00",
            "2018-02-01T02:00");
        row("midnight happens twice", "America/Havana", "2024-11-03T05:30", "2024-11-03T04:00",
            "2024-11-01T04:00");
        row("first of the month is skipped whole", "Pacific/Kwajalein", "1993-08-22T12:00",
            "1993-08-22T12:00", "1993-08-01T12:00");
        row("rules of the far future", "Europe/Berlin", "2090-07-01T12:00", "2090-06-30T22:00",
            "2090-06-30T22:00");
    }
    void findsStarts()
    {
        const auto [zone, moment, day, month] = Rows<QByteArray, QString, QString, QString>::fetch();
        const ZELKEnvironmentScope scope(environmentIn(zone.constData()));
        QCOMPARE(ZELKCalendar::startOfDay(utc(moment)), utc(day));
        QCOMPARE(ZELKCalendar::startOfDay(utc(day)), utc(day));
        QCOMPARE(ZELKCalendar::startOfMonth(utc(moment)), utc(month));
    }

    void addsFields_data()
    {
        const Rows<QByteArray, QString, int, int, int, QString> row;
        row("over a day of 23 hours", "Europe/Berlin", "2024-03-30T11:00:00.250", 0, 1, 0,
            "2024-03-31T10:00:00.250");
        row("hours are elapsed time", "Europe/Berlin", "2024-03-30T11:00", 0, 0, 24, "2024-03-31T11:00");
        row("back over a day of 25 hours", "Europe/Berlin", "2024-10-27T12:00", 0, -1, 0, "2024-10-26T11:00");
        row("into the gap", "Europe/Berlin", "2024-03-30T01:30:00.750", 0, 1, 0, "2024-03-31T01:00");
        row("into the repeated hour: the first", "Europe/Berlin", "2024-10-26T00:30", 0, 1, 0,
            "2024-10-27T00:30");
        row("into a skipped midnight", "America/Sao_Paulo", "2018-11-03T03:00", 0, 1, 0, "2018-11-04T03:00");
        row("months before days", "UTC", "2024-01-31T10:00", 1, 1, 0, "2024-03-01T10:00");
        row("back a year from the leap day", "UTC", "2024-02-29T00:00", -12, 0, 0, "2023-02-28T00:00");
    }
    void addsFields()
    {
        const auto [zone, moment, months, days, hours, sum] =
            Rows<QByteArray, QString, int, int, int, QString>::fetch();
        const ZELKEnvironmentScope scope(environmentIn(zone.constData()));
        QCOMPARE(ZELKCalendar::adding(utc(moment), months, days, hours), utc(sum));
    }

    void survivesAnyDate()
    {
        const ZELKEnvironmentScope scope(environmentIn("Europe/Berlin"));
        const double infinity = std::numeric_limits<double>::infinity();
        for (const double seconds :
             {0.0, 1e300, -1e300, infinity, -infinity, std::numeric_limits<double>::quiet_NaN(),
              ZELKDate::distantPast().timeIntervalSinceReferenceDate()}) {
            const ZELKDate date(seconds);
            for (const int amount : {0, 1, INT_MAX, INT_MIN}) {
                ZELKCalendar::startOfDay(ZELKCalendar::adding(date, amount, 0));
                ZELKCalendar::startOfMonth(ZELKCalendar::adding(date, 0, amount, amount));
                ZELKCalendar::adding(date, amount, amount, amount, seconds);
            }
            QVERIFY(ZELKCalendar::weekday(date) >= 0 && ZELKCalendar::weekday(date) <= 6);
            QVERIFY(!ZELKCalendar::format(date, u"%c %Z %z %j"_s).isEmpty());
        }
    }

    void countsWeekdaysFromSunday()
    {
        const ZELKEnvironmentScope scope(environmentIn("Asia/Tokyo"));
        QCOMPARE(ZELKCalendar::weekday(utc(u"2024-03-09T15:00"_s)), 0);
        QCOMPARE(ZELKCalendar::weekday(utc(u"2024-03-09T14:59:59"_s)), 6);
    }

    void formats_data()
    {
        const Rows<QLocale, QString, QString, QString> row;
        const QLocale english(QLocale::English, QLocale::UnitedStates);
        row("the locale's names", QLocale(QLocale::German), "2024-03-05T13:02:11", "%A, %e. %B %Y",
            "Dienstag,  5. März 2024");
        row("numbers", english, "2024-03-05T13:02:11", "%d|%e|%m|%Y|%y|%j|%H|%I|%M|%S|%p",
            "05| 5|03|2024|24|065|14|02|02|11|PM");
        row("midnight of twelve hours", english, "2024-03-04T23:00", "%I %p", "12 AM");
        row("summer's zone", english, "2024-07-05T13:02:11", "%z %Z", "+0200 CEST");
        row("stands as it is", english, "2024-03-05T13:02:11", "100%% %Q %é %", "100% %Q %é %");
    }
    void formats()
    {
        const auto [locale, moment, format, text] = Rows<QLocale, QString, QString, QString>::fetch();
        const ZELKEnvironmentScope scope(environmentIn("Europe/Berlin", locale));
        QCOMPARE(ZELKCalendar::format(utc(moment), format), text);
    }
};

QTEST_GUILESS_MAIN(TestCalendar)
#include "tst_calendar.moc"
