#include "Rows.h"
#include "ZELKCalendar.h"
#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKStringPool.h"
#include "ZELKValue.h"

#include <QtTest>

#include <limits>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::literals;

namespace {

struct Length
{
    int metres = 0;
};

const double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

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

Q_DECLARE_METATYPE(Length)

class TestValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QMetaType::registerConverter<Length, QString>(
            [](const Length &length) { return u"%1 m"_s.arg(length.metres); });
        // The results shall follow the environment's zone and not the process's.
        qputenv("TZ", "Asia/Tokyo");
        tzset();
    }

    void describes_data()
    {
        const Rows<QVariant, QString> row;
        row("nil", QVariant(), "(null)");
        row("least integer", std::numeric_limits<qlonglong>::min(), "-9223372036854775808");
        row("greatest integer", std::numeric_limits<qulonglong>::max(), "18446744073709551615");
        row("every digit", 731340131.12345684, "731340131.1234568");
        row("data", QByteArray("\x00\xff", 2), "<00ff>");
        row("nested",
            QVariant::fromValue(
                ZELKDictionary({{u"z"_s, QVariantList({1, u"b"_s})}, {u"a"_s, ZELKDate().description()}})),
            u"{z = (1, b); a = "_s + ZELKDate().description() + u"}"_s);
        row("registered type", QVariant::fromValue(Length{3}), "3 m");
    }
    void describes()
    {
        const auto [value, text] = Rows<QVariant, QString>::fetch();
        QCOMPARE(ZELKValue::description(value), text);
    }

    void readsNumbers_data()
    {
        const Rows<QVariant, int, double> row;
        row("leading number", "12abc", 12, 12.0);
        row("blanks and sign", " \t+7.75 h", 7, 7.75);
        row("exponent", "-1.5e3x", -1, -1500.0);
        row("two signs", "+-5", 0, 0.0);
        row("above int", "99999999999999999999", INT_MAX, 1e20);
        row("below int", "-2147483649", INT_MIN, -2147483649.0);
        row("text below doubles", "1e-999", 1, 0.0);
        row("double beyond int", -1e300, INT_MIN, -1e300);
        row("infinity", infinity, INT_MAX, infinity);
        row("boolean", true, 1, 1.0);
        row("nil", QVariant(), 0, 0.0);
    }
    void readsNumbers()
    {
        const auto [value, integer, real] = Rows<QVariant, int, double>::fetch();
        QCOMPARE(ZELKValue::intValue(value), integer);
        QCOMPARE(ZELKValue::doubleValue(value), real);
    }

    void compares_data()
    {
        const Rows<QVariant, QVariant, bool> row;
        const qlonglong large = 9007199254740993; // no double is this number
        row("nils", QVariant(), QVariant(), false);
        row("true and 1", true, 1.0, true);
        row("negative and its bits", -1LL, ~0ULL, false);
        row("rounded to a double", large, double(large), false);
        row("2^64 as a double", ~0ULL, 18446744073709551616.0, false);
        row("2^63 - 1 as a double", std::numeric_limits<qlonglong>::max(), 9223372036854775808.0, false);
        row("not a number", notANumber, 0, false);
        row("text and number", "1", 1, false);
        row("numbers within arrays", QVariantList{1, 2.0}, QVariantList{true, 2}, true);
        const ZELKDictionary one{{u"a"_s, 1}, {u"b"_s, 2}};
        const ZELKDictionary reordered{{u"b"_s, 2.0}, {u"a"_s, true}};
        row("order of keys", QVariant::fromValue(one), QVariant::fromValue(reordered), true);
        row("other keys", QVariant::fromValue(one),
            QVariant::fromValue(ZELKDictionary{{u"a"_s, 1}, {u"c"_s, 2}}), false);
    }
    void compares()
    {
        const auto [a, b, equal] = Rows<QVariant, QVariant, bool>::fetch();
        QCOMPARE(ZELKValue::isEqual(a, b), equal);
        QCOMPARE(ZELKValue::isEqual(b, a), equal);
    }

    void dictionaryKeepsPlaces()
    {
        ZELKDictionary dictionary{{u"c"_s, 1}, {u"a"_s, 2}, {u"b"_s, 3}};
        dictionary.insert(u"c"_s, 4);
        dictionary.remove(u"a"_s);
        dictionary.insert(u"a"_s, 5);
        QCOMPARE(dictionary.keys(), QStringList({u"c"_s, u"b"_s, u"a"_s}));
        QCOMPARE(dictionary.value(u"c"_s).toInt(), 4);
    }

    void dictionaryMergesItems()
    {
        for (const int others : {2, 1000}) { // two ways
            std::vector<ZELKDictionary::Item> items{{u"x"_s, 1}, {u"y"_s, 2}, {u"x"_s, 3}};
            for (int i = others; i > 0; --i)
                items.emplace_back(QString::number(i), i);
            items.emplace_back(u"y"_s, 4);
            ZELKDictionary inserted;
            for (const auto &[key, value] : items)
                inserted.insert(key, value);
            const auto merged = ZELKDictionary::fromItems(items);
            QCOMPARE(merged.keys(), inserted.keys());
            QCOMPARE(merged, inserted);
        }
    }

    void fillsFormats_data()
    {
        const Rows<QString, QString> row;
        row("nil", ZELKFormat("%@ %s %d %lf %p %c|", {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}),
            "(null) (null) 0 0.000000 0x0 |");
        row("missing", ZELKFormat("%@ %d %s"), "(null) 0 (null)");
        row("an argument's percent signs", ZELKFormat("%@%%", {u"%@ %n"_s}), "%@ %n%");
        row("padding", ZELKFormat("[%5d|%-5d|%05d|%+d|% d|%5@|%-4s|]", {42, 42, -42, 7, 7, u"ab"_s, "c"}),
            "[   42|42   |-0042|+7| 7|   ab|c   |]");
        row("precision", ZELKFormat("%.2f %.0f %08.3f %.3d %.2s", {3.14159, 2.5, -3.14159, 7, "abc"}),
            "3.14 2 -003.142 007 ab");
        row("no numbers", ZELKFormat("%f %5.1f", {notANumber, -infinity}), "nan  -inf");
        row("hexadecimal", ZELKFormat("%x %#x %08x", {255, 255, 0xbeef}), "ff 0xff 0000beef");
        row("an int's bits", ZELKFormat("%x %u %lu", {-1, -1, -1}),
            "ffffffff 4294967295 18446744073709551615");
        row("extremes", ZELKFormat("%lld %llu %x", {std::numeric_limits<qlonglong>::min(), ~0ULL, ~0ULL}),
            "-9223372036854775808 18446744073709551615 ffffffffffffffff");
        row("characters", ZELKFormat("%c%c%c", {65, 0x1f600, 0xd800}), "A\xf0\x9f\x98\x80\xef\xbf\xbd");
        row("unknown stands", ZELKFormat("%y %5.2Q %n %", {1}), "%y %5.2Q %n %");
    }
    void fillsFormats()
    {
        const auto [filled, text] = Rows<QString, QString>::fetch();
        QCOMPARE(filled, text);
    }

    void fillsAnything()
    {
        QVERIFY(ZELKFormat("%999999999999999d %.999999999999f %-99999999999@", {1, 1e308, nullptr}).size() <
                10000);
        const QString letters = u"%%%%@sdiuxcfgplhjzt0123456789.-+ #*$é\n"_s;
        quint32 state = 1;
        for (int i = 0; i < 20000; ++i) {
            QString format;
            for (int length = 0; length < 12; ++length) {
                state = state * 1664525 + 1013904223;
                format += letters.at(qsizetype((state >> 16) % quint32(letters.size())));
            }
            ZELKFormat(format, {nullptr, 1, -1.5e300, u"x"_s, QVariant(QByteArray("y"))});
        }
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
            const QDateTime moment = QDateTime::fromMSecsSinceEpoch(milliseconds, QTimeZone::utc());
            QCOMPARE(ZELKDate::fromDateTime(moment).toDateTime(QTimeZone::utc()), moment);
            const auto fromUnix = ZELKDate::fromSecondsSince1970(double(milliseconds) / 1000.0);
            QCOMPARE(fromUnix.toDateTime(QTimeZone::utc()), moment);
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

    void keepsOneNumberForOneText()
    {
        ZELKStringPool pool;
        QCOMPARE(pool.find("a"), ZELKStringPool::nil);
        QVERIFY(pool.string(ZELKStringPool::nil).isNull());
        const std::string texts[] = {"a", "\xc3\xa4", "", std::string(1, '\0'), std::string(9, '\0')};
        for (int round = 0; round < 2; ++round)
            for (ZELKStringPool::Id i = 0; i < std::size(texts); ++i) {
                QCOMPARE(pool.intern(texts[i]), i + 1);
                QCOMPARE(pool.find(texts[i]), i + 1);
                QCOMPARE(pool.view(i + 1), std::string_view(texts[i]));
            }
        QCOMPARE(pool.intern(u"ä"_s), 2U);
        QCOMPARE(pool.string(2), u"ä"_s);
        for (const QString &marked : {u"\uFEFF"_s, u"\uFEFFa"_s, u"\uFEFF\uFEFFä\uFEFF"_s})
            QCOMPARE(pool.string(pool.intern(marked)), marked);
        QCOMPARE(pool.intern(QString()), 3U);
        QVERIFY(!pool.string(3).isNull());
    }

    void textsStayInPlaceWhileThePoolGrows()
    {
        ZELKStringPool pool;
        constexpr ZELKStringPool::Id count = 200000;
        std::vector<const char *> places;
        const auto text = [](ZELKStringPool::Id i) {
            // Some that are longer than a share of a block, and one that is longer than a block.
            return std::to_string(i) + std::string(i % 5000 == 0 ? 10000 + i : 0, 'x');
        };
        for (ZELKStringPool::Id i = 1; i <= count; ++i) {
            QCOMPARE(pool.intern(text(i)), i);
            places.push_back(pool.view(i).data());
        }
        for (ZELKStringPool::Id i = 1; i <= count; ++i) {
            const std::string expected = text(i);
            QCOMPARE(pool.find(expected), i);
            QVERIFY(pool.view(i) == expected);
            QVERIFY(pool.view(i).data() == places[i - 1]);
        }
    }
};

QTEST_GUILESS_MAIN(TestValues)
#include "tst_values.moc"
