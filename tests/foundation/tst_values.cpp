#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKValue.h"

#include <QtTest>

#include <limits>

namespace {

struct Length
{
    int metres = 0;
};

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

const double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

Q_DECLARE_METATYPE(Length)

class TestValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QMetaType::registerConverter<Length, QString>(
            [](const Length &length) { return QStringLiteral("%1 m").arg(length.metres); });
    }

    void describes_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("nil") << QVariant() << s("(null)");
        QTest::newRow("boolean") << QVariant(true) << s("1");
        QTest::newRow("least integer")
            << QVariant(std::numeric_limits<qlonglong>::min()) << s("-9223372036854775808");
        QTest::newRow("greatest integer")
            << QVariant(std::numeric_limits<qulonglong>::max()) << s("18446744073709551615");
        QTest::newRow("shortest digits") << QVariant(0.1) << s("0.1");
        QTest::newRow("whole double") << QVariant(100000.0) << s("100000");
        QTest::newRow("every digit") << QVariant(731340131.12345684) << s("731340131.1234568");
        QTest::newRow("large double") << QVariant(1e300) << s("1e+300");
        QTest::newRow("float") << QVariant(0.1F) << s("0.1");
        QTest::newRow("data") << QVariant(QByteArray("\x00\xff", 2)) << s("<00ff>");
        QTest::newRow("nested") << QVariant::fromValue(ZELKDictionary({{s("z"), QVariantList({1, s("b")})},
                                                                       {s("a"), ZELKDate().description()}}))
                                << s("{z = (1, b); a = ") + ZELKDate().description() + s("}");
        QTest::newRow("registered type") << QVariant::fromValue(Length{3}) << s("3 m");
    }

    void describes()
    {
        QFETCH(QVariant, value);
        QTEST(ZELKValue::description(value), "text");
    }

    void readsNumbers_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("integer");
        QTest::addColumn<double>("real");
        constexpr double most = std::numeric_limits<double>::max();
        QTest::newRow("leading number") << QVariant(s("12abc")) << 12 << 12.0;
        QTest::newRow("blanks and sign") << QVariant(s(" \t+7.75 h")) << 7 << 7.75;
        QTest::newRow("exponent") << QVariant(s("-1.5e3x")) << -1 << -1500.0;
        QTest::newRow("exponent without digits") << QVariant(s("2e+")) << 2 << 2.0;
        QTest::newRow("two signs") << QVariant(s("+-5")) << 0 << 0.0;
        QTest::newRow("text") << QVariant(s("inf")) << 0 << 0.0;
        QTest::newRow("empty") << QVariant(s("")) << 0 << 0.0;
        QTest::newRow("above int") << QVariant(s("99999999999999999999")) << INT_MAX << 1e20;
        QTest::newRow("below int") << QVariant(s("-2147483649")) << INT_MIN << -2147483649.0;
        QTest::newRow("text beyond doubles") << QVariant(s("-1e999")) << -1 << -most;
        QTest::newRow("text below doubles") << QVariant(s("1e-999")) << 1 << 0.0;
        QTest::newRow("double beyond int") << QVariant(-1e300) << INT_MIN << -1e300;
        QTest::newRow("infinity") << QVariant(infinity) << INT_MAX << infinity;
        QTest::newRow("unsigned") << QVariant(std::numeric_limits<qulonglong>::max()) << INT_MAX
                                  << 18446744073709551615.0;
        QTest::newRow("truncation") << QVariant(-2.9) << -2 << -2.9;
        QTest::newRow("boolean") << QVariant(true) << 1 << 1.0;
        QTest::newRow("date") << QVariant::fromValue(ZELKDate(5)) << 0 << 0.0;
        QTest::newRow("nil") << QVariant() << 0 << 0.0;
    }

    void readsNumbers()
    {
        QFETCH(QVariant, value);
        QTEST(ZELKValue::intValue(value), "integer");
        QTEST(ZELKValue::doubleValue(value), "real");
    }

    void drawsNumbersIn()
    {
        QCOMPARE(ZELKValue::intValue(notANumber), 0);
        QCOMPARE(ZELKValue::floatValue(1e300), std::numeric_limits<float>::max());
        QCOMPARE(ZELKValue::floatValue(-1e300), -std::numeric_limits<float>::max());
    }

    void compares_data()
    {
        QTest::addColumn<QVariant>("a");
        QTest::addColumn<QVariant>("b");
        QTest::addColumn<bool>("equal");
        const qlonglong large = 9007199254740993; // no double is this number
        QTest::newRow("nils") << QVariant() << QVariant() << false;
        QTest::newRow("true and 1") << QVariant(true) << QVariant(1.0) << true;
        QTest::newRow("types of integer") << QVariant(5) << QVariant(5ULL) << true;
        QTest::newRow("negative and its bits") << QVariant(-1LL) << QVariant(~0ULL) << false;
        QTest::newRow("rounded to a double") << QVariant(large) << QVariant(double(large)) << false;
        QTest::newRow("2^64 as a double") << QVariant(~0ULL) << QVariant(18446744073709551616.0) << false;
        QTest::newRow("2^63 - 1 as a double")
            << QVariant(std::numeric_limits<qlonglong>::max()) << QVariant(9223372036854775808.0) << false;
        QTest::newRow("not a number") << QVariant(notANumber) << QVariant(0) << false;
        QTest::newRow("text and number") << QVariant(s("1")) << QVariant(1) << false;
        QTest::newRow("numbers within arrays")
            << QVariant(QVariantList{1, 2.0}) << QVariant(QVariantList{true, 2}) << true;
        QTest::newRow("longer array") << QVariant(QVariantList{1}) << QVariant(QVariantList{1, 2}) << false;
        const ZELKDictionary one{{s("a"), 1}, {s("b"), 2}};
        const ZELKDictionary reordered{{s("b"), 2.0}, {s("a"), true}};
        QTest::newRow("order of keys") << QVariant::fromValue(one) << QVariant::fromValue(reordered) << true;
        QTest::newRow("other keys") << QVariant::fromValue(one)
                                    << QVariant::fromValue(ZELKDictionary{{s("a"), 1}, {s("c"), 2}}) << false;
        QTest::newRow("dates") << QVariant::fromValue(ZELKDate(1)) << QVariant::fromValue(ZELKDate(1.5))
                               << false;
    }

    void compares()
    {
        QFETCH(QVariant, a);
        QFETCH(QVariant, b);
        QTEST(ZELKValue::isEqual(a, b), "equal");
        QTEST(ZELKValue::isEqual(b, a), "equal");
    }

    void dictionaryKeepsPlaces()
    {
        ZELKDictionary dictionary{{s("c"), 1}, {s("a"), 2}, {s("b"), 3}};
        dictionary.insert(s("c"), 4);
        dictionary.remove(s("a"));
        dictionary.remove(s("nothing"));
        dictionary.insert(s("a"), 5);
        QCOMPARE(dictionary.keys(), QStringList({s("c"), s("b"), s("a")}));
        QCOMPARE(dictionary.value(s("c")).toInt(), 4);
        QVERIFY(!dictionary.value(s("d")).isValid());
    }

    void dictionaryMergesItems_data()
    {
        QTest::addColumn<int>("others");
        QTest::newRow("few") << 2;
        QTest::newRow("many") << 1000;
    }

    void dictionaryMergesItems()
    {
        QFETCH(int, others);
        std::vector<ZELKDictionary::Item> items{{s("x"), 1}, {s("y"), 2}, {s("x"), 3}};
        ZELKDictionary inserted{{s("x"), 3}, {s("y"), 2}};
        for (int i = others; i > 0; --i) {
            items.emplace_back(QString::number(i), i);
            inserted.insert(QString::number(i), i);
        }
        items.emplace_back(s("y"), 4);
        inserted.insert(s("y"), 4);
        const auto merged = ZELKDictionary::fromItems(items);
        QCOMPARE(merged.keys(), inserted.keys());
        QCOMPARE(merged, inserted);
    }

    void fillsFormats_data()
    {
        QTest::addColumn<QString>("filled");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QString &filled, const char *text) {
            QTest::newRow(name) << filled << s(text);
        };
        row("nil", ZELKFormat("%@ %s %d %lf %p %c|", {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}),
            "(null) (null) 0 0.000000 0x0 |");
        row("missing", ZELKFormat("%@ %d %s"), "(null) 0 (null)");
        row("too many", ZELKFormat("%d", {1, 2, 3}), "1");
        row("an argument's percent signs", ZELKFormat("%@%%", {s("%@ %n")}), "%@ %n%");
        row("padding", ZELKFormat("[%5d|%-5d|%05d|%+d|% d|%5@|%-4s|]", {42, 42, -42, 7, 7, s("ab"), "c"}),
            "[   42|42   |-0042|+7| 7|   ab|c   |]");
        row("precision", ZELKFormat("%.2f %.0f %08.3f %.3d %.2s", {3.14159, 2.5, -3.14159, 7, "abc"}),
            "3.14 2 -003.142 007 ab");
        row("%lf", ZELKFormat("%lf", {731340131.123457}), "731340131.123457");
        row("%g", ZELKFormat("%g %g %g", {0.0001, 1e20, 100000.0}), "0.0001 1e+20 100000");
        row("no numbers", ZELKFormat("%f %5.1f", {notANumber, -infinity}), "nan  -inf");
        row("largest double", ZELKFormat("%.1f", {1e22}), "10000000000000000000000.0");
        row("hexadecimal", ZELKFormat("%x %#x %08x", {255, 255, 0xbeef}), "ff 0xff 0000beef");
        row("an int's bits", ZELKFormat("%x %u %lu", {-1, -1, -1}),
            "ffffffff 4294967295 18446744073709551615");
        row("extremes", ZELKFormat("%lld %llu %x", {std::numeric_limits<qlonglong>::min(), ~0ULL, ~0ULL}),
            "-9223372036854775808 18446744073709551615 ffffffffffffffff");
        row("a number from a text", ZELKFormat("%d %f", {s("12 h"), s("1.5")}), "12 1.500000");
        row("characters", ZELKFormat("%c%c%c", {65, 0x1f600, 0xd800}), "A\xf0\x9f\x98\x80\xef\xbf\xbd");
        row("pointer", ZELKFormat("%p", {reinterpret_cast<const void *>(quintptr(0xdead))}), "0xdead");
        row("unknown stands", ZELKFormat("%y %5.2Q %n %", {1}), "%y %5.2Q %n %");
        row("unknown takes no argument", ZELKFormat("%y %d", {1}), "%y 1");
        row("not a format", ZELKFormat("50% of é", {3}), "50% of é");
    }

    void fillsFormats()
    {
        QFETCH(QString, filled);
        QTEST(filled, "text");
    }

    void boundsWidths()
    {
        QVERIFY(ZELKFormat("%999999999999999d %.999999999999f %-99999999999@", {1, 1e308, nullptr}).size() <
                10000);
    }

    void fillsAnything()
    {
        const QString letters = s("%%%%@sdiuxcfgplhjzt0123456789.-+ #*$é\n");
        quint32 state = 1;
        for (int i = 0; i < 20000; ++i) {
            QString format;
            for (int length = 0; length < 12; ++length) {
                state = state * 1664525 + 1013904223;
                format += letters.at(qsizetype((state >> 16) % quint32(letters.size())));
            }
            ZELKFormat(format, {nullptr, 1, -1.5e300, s("x"), QVariant(QByteArray("y"))});
        }
    }
};

QTEST_GUILESS_MAIN(TestValues)
#include "tst_values.moc"
