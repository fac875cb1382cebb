#include "Rows.h"
#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKValue.h"

#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

struct Length
{
    int metres = 0;
};

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
            [](const Length &length) { return u"%1 m"_s.arg(length.metres); });
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
        row("text", "inf", 0, 0.0);
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
        dictionary.remove(u"nothing"_s);
        dictionary.insert(u"a"_s, 5);
        QCOMPARE(dictionary.keys(), QStringList({u"c"_s, u"b"_s, u"a"_s}));
        QCOMPARE(dictionary.value(u"c"_s).toInt(), 4);
        QVERIFY(!dictionary.value(u"d"_s).isValid());
    }

    void dictionaryMergesItems_data()
    {
        const Rows<int> row;
        row("few", 2);
        row("many", 1000);
    }
    void dictionaryMergesItems()
    {
        const auto [others] = Rows<int>::fetch();
        std::vector<ZELKDictionary::Item> items{{u"x"_s, 1}, {u"y"_s, 2}, {u"x"_s, 3}};
        ZELKDictionary inserted{{u"x"_s, 3}, {u"y"_s, 2}};
        for (int i = others; i > 0; --i) {
            items.emplace_back(QString::number(i), i);
            inserted.insert(QString::number(i), i);
        }
        items.emplace_back(u"y"_s, 4);
        inserted.insert(u"y"_s, 4);
        const auto merged = ZELKDictionary::fromItems(items);
        QCOMPARE(merged.keys(), inserted.keys());
        QCOMPARE(merged, inserted);
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
        row("%g", ZELKFormat("%g %g %g", {0.0001, 1e20, 100000.0}), "0.0001 1e+20 100000");
        row("no numbers", ZELKFormat("%f %5.1f", {notANumber, -infinity}), "nan  -inf");
        row("hexadecimal", ZELKFormat("%x %#x %08x", {255, 255, 0xbeef}), "ff 0xff 0000beef");
        row("an int's bits", ZELKFormat("%x %u %lu", {-1, -1, -1}),
            "ffffffff 4294967295 18446744073709551615");
        row("extremes", ZELKFormat("%lld %llu %x", {std::numeric_limits<qlonglong>::min(), ~0ULL, ~0ULL}),
            "-9223372036854775808 18446744073709551615 ffffffffffffffff");
        row("a number from a text", ZELKFormat("%d %f", {u"12 h"_s, u"1.5"_s}), "12 1.500000");
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
};

QTEST_GUILESS_MAIN(TestValues)
#include "tst_values.moc"
