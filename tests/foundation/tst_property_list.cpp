#include "Rows.h"
#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKPropertyList.h"
#include "ZELKValue.h"

#include <QElapsedTimer>
#include <QtEndian>
#include <QtTest>

#include <clocale>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Result = ZELKPropertyList::Result;

Result read(const QByteArray &bytes)
{
    return ZELKPropertyList::read({bytes.constData(), std::size_t(bytes.size())});
}

QByteArray inPlist(const QByteArray &element)
{
    return "<?xml version=\"1.0\"?><plist version=\"1.0\">" + element + "</plist>";
}

/// A binary list of one-byte offsets or four-byte ones, from its objects; one-byte or four-byte references.
QByteArray binary(const QList<QByteArray> &objects, bool isWide = false, quint64 root = 0)
{
    QByteArray bytes("bplist00");
    QByteArray table;
    for (const QByteArray &object : objects) {
        const auto offset = quint32(bytes.size());
        if (isWide)
            table.append(char(offset >> 24)).append(char(offset >> 16)).append(char(offset >> 8));
        table += char(offset);
        bytes += object;
    }
    const auto start = quint64(bytes.size());
    bytes += table + QByteArray(6, '\0') + char(isWide ? 4 : 1) + char(1);
    for (const quint64 number : {quint64(objects.size()), root, start}) {
        char bigEndian[8];
        qToBigEndian(number, bigEndian);
        bytes.append(bigEndian, 8);
    }
    return bytes;
}

QVariant sample()
{
    return QVariant::fromValue(ZELKDictionary{
        {u"least"_s, std::numeric_limits<qlonglong>::min()},
        {u"most"_s, ~0ULL},
        {u"2^63"_s, 9223372036854775808ULL},
        {u"real"_s, 0.1},
        {u"tiny"_s, -5e-324},
        {u"yes"_s, true},
        {u"no"_s, false},
        {u"day"_s, QVariant::fromValue(ZELKDate(731340131.0))},
        {u"future"_s, QVariant::fromValue(ZELKDate::distantFuture())},
        {u"past"_s, QVariant::fromValue(ZELKDate::distantPast())},
        {u"data"_s, QByteArray("\x00\x01\xff", 3)},
        {u"no data"_s, QByteArray("", 0)},
        {u"text"_s, u"a <b> & \"c\" ' é 😀 ]]> \n\t end "_s},
        {u""_s, u""_s},
        {u"é😀"_s, QVariantList{1LL, QVariantList{}, QVariant::fromValue(ZELKDictionary{})}},
    });
}

} // namespace

class TestPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsBackWhatItWrote()
    {
        for (const bool isBinary : {true, false}) {
            const auto written =
                isBinary ? ZELKPropertyList::writeBinary(sample()) : ZELKPropertyList::writeXml(sample());
            QCOMPARE(written.bytes.startsWith("bplist00"), isBinary);
            const Result result = read(written.bytes);
            QCOMPARE(written.error + result.error, QString());
            QCOMPARE(ZELKValue::description(result.value), ZELKValue::description(sample())); // and its order
            QVERIFY(ZELKValue::isEqual(result.value, sample()));
        }
    }

    void xmlDrawsDatesIn()
    {
        const double future = ZELKDate::distantFuture().timeIntervalSinceReferenceDate();
        const double past = ZELKDate::distantPast().timeIntervalSinceReferenceDate();
        const std::pair<double, double> dates[] = {
            {-0.25, -1.0}, {3e9, 3e9}, {1e300, future}, {qQNaN(), past}};
        for (const auto &[seconds, kept] : dates) {
            const auto written = ZELKPropertyList::writeXml(QVariant::fromValue(ZELKDate(seconds)));
            QCOMPARE(read(written.bytes).value.value<ZELKDate>(), ZELKDate(kept));
        }
        const QVariant date = QVariant::fromValue(ZELKDate(-4e9 + 0.123456789)); // binary keeps it
        QVERIFY(ZELKValue::isEqual(read(ZELKPropertyList::writeBinary(date).bytes).value, date));
    }

    void readsTypes_data()
    {
        const Rows<QByteArray, QVariant> row;
        row("wide", "<integer>18446744073709551615</integer>", ~0ULL);
        row("hexadecimal", "<integer>0x1F</integer>", 31LL);
        row("date", "<date>2024-03-05T14:02:11Z</date>", QVariant::fromValue(ZELKDate(731340131.0)));
        row("data with blanks", QByteArray("<data>\n\tAAEC\n\t/w==\n</data>"),
            QByteArray("\x00\x01\x02\xff", 4));
        row("CDATA and comment", "<string>a<![CDATA[<array>]]><!-- <dict> -->b</string>", "a<array>b");
        row("invalid UTF-8", QByteArray("<string>\xff\xc3</string>"), "\xef\xbf\xbd\xef\xbf\xbd");
        row("last of two equal keys",
            "<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict>",
            QVariant::fromValue(ZELKDictionary{{u"a"_s, false}, {u"b"_s, true}}));
    }
    void readsTypes()
    {
        const auto [element, value] = Rows<QByteArray, QVariant>::fetch();
        const Result result = read("\xef\xbb\xbf" + inPlist(element));
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value.metaType(), value.metaType());
        QVERIFY2(ZELKValue::isEqual(result.value, value), qPrintable(ZELKValue::description(result.value)));
    }

    void refuses_data()
    {
        const Rows<QByteArray> row;
        row("nothing", QByteArray());
        row("no plist around it", "<dict/>");
        row("two values", inPlist("<true/><false/>"));
        row("not closed", "<plist><array><true/></plist>");
        row("key without value", inPlist("<dict><key>a</key></dict>"));
        row("value without key", inPlist("<dict><string>a</string></dict>"));
        row("unknown element", inPlist("<set/>"));
        row("NUL", inPlist(QByteArray("<string>a\0b</string>", 20)));
        row("NUL entity", inPlist("<string>a&#0;b</string>"));
        row("not a date", inPlist("<date>yesterday, about 5</date>"));
        row("not a number", inPlist("<integer>five</integer>"));
        row("comment in a number", inPlist("<integer>1<!-- -->2</integer>"));
        row("hidden by a quotation", inPlist("<array a=\"><array>\"/>"));
        row("internal subset", QByteArray("<!DOCTYPE p [<!ENTITY x \"y\">]><plist><true/></plist>"));

        const QByteArray key("\x51k");
        const QByteArray sound = binary({"\xd1\x01\x02", key, "\x09"});
        QVERIFY(read(sound).value.isValid());
        row("other version", QByteArray(sound).replace("bplist00", "bplist01"));
        row("root out of range", binary({"\x09"}, false, 1));
        row("reference out of range", binary({"\xa1\x05"}));
        row("holds itself", binary({QByteArray("\xa1\x00", 2)}));
        row("longer cycle", binary({"\xa1\x01", QByteArray("\xd1\x02\x00", 3), key}));
        row("array past the end", binary({QByteArray("\xaf\x13\x7f\xff\xff\xff\xff\xff\xff\xff", 10)}));
        row("dictionary past the end", binary({"\xde\x01"}));
        row("wide text past the end", binary({QByteArray("\x6f\x13\xff\xff\xff\xff\xff\xff\xff\xff", 10)}));
        row("count of a wrong type", binary({"\xaf\x51"}));
        row("date of four bytes", binary({QByteArray("\x32\x00\x00\x00\x00", 5)}));
        row("integer of 32 bytes", binary({QByteArray("\x15", 1) + QByteArray(32, '\1')}));
        row("identifier", binary({"\x80\x05"}));
        row("key that is a number", binary({"\xd1\x01\x01", "\x10\x05"}));
        row("NUL in a text", binary({QByteArray("\123a\0b", 4)}));
        row("NUL in a wide text", binary({QByteArray("\x62\0a\0\0", 5)}));
    }
    void refuses()
    {
        const auto [bytes] = Rows<QByteArray>::fetch();
        const Result result = read(bytes);
        QVERIFY(!result.value.isValid());
        QVERIFY(!result.error.isEmpty());
    }

    void boundsDepth_data()
    {
        const Rows<QByteArray, bool> row;
        const auto xml = [](int levels) {
            return inPlist(QByteArray("<array>").repeated(levels) + QByteArray("</array>").repeated(levels));
        };
        const auto nested = [](int levels) {
            QList<QByteArray> objects;
            for (int i = 1; i < levels; ++i)
                objects.append(QByteArray(1, '\xa1') + char(i));
            objects.append(QByteArray(1, '\xa0'));
            return binary(objects, true);
        };
        row("XML 128", xml(128), true);
        row("XML 129", xml(129), false);
        row("XML open only", QByteArray("<plist>") + QByteArray("<array>").repeated(1000000), false);
        row("binary 128", nested(128), true);
        row("binary 129", nested(129), false);
    }
    void boundsDepth()
    {
        const auto [bytes, isRead] = Rows<QByteArray, bool>::fetch();
        const Result result = read(bytes);
        QCOMPARE(result.value.isValid(), isRead);
        QCOMPARE(result.error.isEmpty(), result.value.isValid());
    }

    void boundsWhatReferencesUnfoldTo()
    {
        // 60 arrays that name the next one twice would be 2^60 values.
        QList<QByteArray> objects;
        for (int i = 1; i <= 60; ++i)
            objects.append(QByteArray(1, '\xa2') + char(i) + char(i));
        objects.append(QByteArray(1, '\x09'));
        QVERIFY(!read(binary(objects, true)).value.isValid());

        // 2^17 mentions of one text of a thousand bytes.
        objects.resize(17);
        objects.append(QByteArray("\x5f\x11\x04\x00", 4) + QByteArray(1024, 'x'));
        QVERIFY(!read(binary(objects, true)).value.isValid());
    }

    void takesUnpairedSurrogates()
    {
        const Result result = read(binary({QByteArray("\x63\xd8\x00\x00\x61\xdc\x00", 7)}));
        QVERIFY(result.error.isEmpty());
        QVERIFY(result.value.toString().contains(u'a'));
        const QVariant text = QString(QChar(0xd800)) + u'b';
        QVERIFY(read(ZELKPropertyList::writeBinary(text).bytes).value.toString().endsWith(u'b'));
        QVERIFY(read(ZELKPropertyList::writeXml(text).bytes).value.toString().endsWith(u'b'));
    }

    /// Shows something where that locale is installed.
    void hasDecimalPoints()
    {
        std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
        const QByteArray xml = ZELKPropertyList::writeXml(1.5).bytes;
        const QVariant value = read(xml).value;
        std::setlocale(LC_NUMERIC, "C");
        QVERIFY(xml.contains("<real>1.5</real>"));
        QCOMPARE(value, QVariant(1.5));
    }

    void isNotSlowForManyKeys()
    {
        QByteArray dictionary("<dict>");
        for (int i = 0; i < 200000; ++i)
            dictionary += "<key>" + QByteArray::number(i) + "</key><true/>";
        QElapsedTimer timer;
        timer.start();
        const Result result = read(inPlist(dictionary + "</dict>"));
        QCOMPARE(result.value.value<ZELKDictionary>().size(), 200000);
        QVERIFY(timer.elapsed() < 20000);
    }

    void refusesToWrite_data()
    {
        const Rows<QVariant> row;
        row("nil", QVariant());
        row("other type", QVariantList{QPoint(1, 2)});
        row("NUL in a text", QString(QChar(u'\0')));
        QVariant deep = 1;
        for (int i = 0; i < 128; ++i)
            deep = QVariantList{deep};
        row("too deep", deep);
    }
    void refusesToWrite()
    {
        const auto [value] = Rows<QVariant>::fetch();
        for (const auto &written :
             {ZELKPropertyList::writeBinary(value), ZELKPropertyList::writeXml(value)}) {
            QVERIFY(written.bytes.isEmpty());
            QVERIFY(!written.error.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestPropertyList)
#include "tst_property_list.moc"
