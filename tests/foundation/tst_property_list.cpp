#include "ZELKDate.h"
#include "ZELKDictionary.h"
#include "ZELKPropertyList.h"
#include "ZELKValue.h"

#include <QElapsedTimer>
#include <QtEndian>
#include <QtTest>

#include <limits>

namespace {

using Result = ZELKPropertyList::Result;

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

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
        table +=
            isWide
                ? QByteArray().append(char(offset >> 24)).append(char(offset >> 16)).append(char(offset >> 8))
                : QByteArray();
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
        {s("zero"), 0LL},
        {s("least"), std::numeric_limits<qlonglong>::min()},
        {s("minus one"), -1LL},
        {s("most"), ~0ULL},
        {s("2^63"), 9223372036854775808ULL},
        {s("real"), 0.1},
        {s("large"), 1e300},
        {s("tiny"), -5e-324},
        {s("yes"), true},
        {s("no"), false},
        {s("day"), QVariant::fromValue(ZELKDate(731340131.0))},
        {s("future"), QVariant::fromValue(ZELKDate::distantFuture())},
        {s("past"), QVariant::fromValue(ZELKDate::distantPast())},
        {s("data"), QByteArray("\x00\x01\xff", 3)},
        {s("no data"), QByteArray("", 0)},
        {s("text"), s("a <b> & \"c\" ' é 😀 ]]> \n\t end ")},
        {s(""), s("")},
        {s("é😀"), QVariantList{1LL, QVariantList{}, QVariant::fromValue(ZELKDictionary{})}},
    });
}

} // namespace

class TestPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsBackWhatItWrote_data()
    {
        QTest::addColumn<bool>("isBinary");
        QTest::newRow("binary") << true;
        QTest::newRow("XML") << false;
    }

    void readsBackWhatItWrote()
    {
        QFETCH(bool, isBinary);
        const auto written =
            isBinary ? ZELKPropertyList::writeBinary(sample()) : ZELKPropertyList::writeXml(sample());
        QCOMPARE(written.error, QString());
        QCOMPARE(written.bytes.startsWith("bplist00"), isBinary);
        const Result result = read(written.bytes);
        QCOMPARE(result.error, QString());
        QCOMPARE(ZELKValue::description(result.value), ZELKValue::description(sample()));
        QVERIFY(ZELKValue::isEqual(result.value, sample()));
        QCOMPARE(result.value.value<ZELKDictionary>().keys(), sample().value<ZELKDictionary>().keys());
    }

    void binaryKeepsADatesFraction()
    {
        const QVariant date = QVariant::fromValue(ZELKDate(-4e9 + 0.123456789));
        QVERIFY(ZELKValue::isEqual(read(ZELKPropertyList::writeBinary(date).bytes).value, date));
    }

    void xmlDrawsDatesIn_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("kept");
        const double future = ZELKDate::distantFuture().timeIntervalSinceReferenceDate();
        QTest::newRow("fraction") << 731340131.999 << 731340131.0;
        QTest::newRow("before the reference date") << -0.25 << -1.0;
        QTest::newRow("beyond 32 bits") << 3e9 << 3e9;
        QTest::newRow("beyond calendars") << 1e300 << future;
        QTest::newRow("infinite") << qInf() << future;
        QTest::newRow("not a number") << qQNaN() << ZELKDate::distantPast().timeIntervalSinceReferenceDate();
    }

    void xmlDrawsDatesIn()
    {
        QFETCH(double, seconds);
        QFETCH(double, kept);
        const auto written = ZELKPropertyList::writeXml(QVariant::fromValue(ZELKDate(seconds)));
        QCOMPARE(read(written.bytes).value.value<ZELKDate>(), ZELKDate(kept));
    }

    void readsTypes_data()
    {
        QTest::addColumn<QByteArray>("element");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("negative") << QByteArray("<integer>-5</integer>") << QVariant(-5LL);
        QTest::newRow("wide") << QByteArray("<integer>18446744073709551615</integer>") << QVariant(~0ULL);
        QTest::newRow("hexadecimal") << QByteArray("<integer>0x1F</integer>") << QVariant(31LL);
        QTest::newRow("real") << QByteArray("<real>1.5</real>") << QVariant(1.5);
        QTest::newRow("date") << QByteArray("<date>2024-03-05T14:02:11Z</date>")
                              << QVariant::fromValue(ZELKDate(731340131.0));
        QTest::newRow("data with blanks")
            << QByteArray("<data>\n\tAAEC\n\t/w==\n</data>") << QVariant(QByteArray("\x00\x01\x02\xff", 4));
        QTest::newRow("entities") << QByteArray("<string>&lt;&amp;amp;&#x1F600;&quot;</string>")
                                  << QVariant(s("<&amp;😀\""));
        QTest::newRow("CDATA and comment")
            << QByteArray("<string>a<![CDATA[<array>]]><!-- <dict> -->b</string>")
            << QVariant(s("a<array>b"));
        QTest::newRow("empty text") << QByteArray("<string/>") << QVariant(s(""));
        QTest::newRow("invalid UTF-8")
            << QByteArray("<string>\xff\xc3</string>") << QVariant(s("\xef\xbf\xbd\xef\xbf\xbd"));
        QTest::newRow("last of two equal keys")
            << QByteArray("<dict><key>a</key><true/><key>b</key><true/><key>a</key><false/></dict>")
            << QVariant::fromValue(ZELKDictionary{{s("a"), false}, {s("b"), true}});
    }

    void readsTypes()
    {
        QFETCH(QByteArray, element);
        QFETCH(QVariant, value);
        const Result result = read("\xef\xbb\xbf" + inPlist(element));
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value.metaType(), value.metaType());
        QVERIFY2(ZELKValue::isEqual(result.value, value), qPrintable(ZELKValue::description(result.value)));
    }

    void refusesXml_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("no element") << QByteArray("<?xml version=\"1.0\"?>");
        QTest::newRow("other text") << QByteArray("NULL");
        QTest::newRow("no plist around it") << QByteArray("<dict/>");
        QTest::newRow("empty plist") << inPlist("");
        QTest::newRow("two values") << inPlist("<true/><false/>");
        QTest::newRow("not closed") << QByteArray("<plist><array><true/></plist>");
        QTest::newRow("cut off") << QByteArray("<plist><dict><key>a</key><str");
        QTest::newRow("key without value") << inPlist("<dict><key>a</key></dict>");
        QTest::newRow("value without key") << inPlist("<dict><string>a</string></dict>");
        QTest::newRow("unknown element") << inPlist("<set/>");
        QTest::newRow("NUL") << inPlist(QByteArray("<string>a\0b</string>", 20));
        QTest::newRow("NUL entity") << inPlist("<string>a&#0;b</string>");
        QTest::newRow("not a date") << inPlist("<date>yesterday, about 5</date>");
        QTest::newRow("long date") << inPlist("<date>99999-03-05T14:02:11Z</date>");
        QTest::newRow("not a number") << inPlist("<integer>five</integer>");
        QTest::newRow("empty date") << inPlist("<date/>");
        QTest::newRow("empty number") << inPlist("<integer></integer>");
        QTest::newRow("comment in a number") << inPlist("<integer>1<!-- -->2</integer>");
        QTest::newRow("hidden by a quotation") << inPlist("<array a=\"><array>\"/>");
        QTest::newRow("internal subset")
            << QByteArray("<!DOCTYPE p [<!ENTITY x \"y\">]><plist><true/></plist>");
    }

    void refusesXml()
    {
        QFETCH(QByteArray, bytes);
        const Result result = read(bytes);
        QVERIFY(!result.value.isValid());
        QVERIFY(!result.error.isEmpty());
    }

    void boundsDepth_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isRead");
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
        QTest::newRow("XML 128") << xml(128) << true;
        QTest::newRow("XML 129") << xml(129) << false;
        QTest::newRow("XML 1000000") << xml(1000000) << false;
        QTest::newRow("XML open only")
            << QByteArray("<plist>") + QByteArray("<array>").repeated(1000000) << false;
        QTest::newRow("binary 128") << nested(128) << true;
        QTest::newRow("binary 129") << nested(129) << false;
        QTest::newRow("many comments")
            << inPlist(QByteArray("<!--<array>-->").repeated(1000) + "<true/>") << true;
    }

    void boundsDepth()
    {
        QFETCH(QByteArray, bytes);
        const Result result = read(bytes);
        QTEST(result.value.isValid(), "isRead");
        QCOMPARE(result.error.isEmpty(), result.value.isValid());
    }

    void refusesBinary_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray key("\x51k");
        const QByteArray sound = binary({"\xd1\x01\x02", key, "\x09"});
        QVERIFY(read(sound).value.isValid());
        QTest::newRow("header only") << QByteArray("bplist00");
        QTest::newRow("other version") << QByteArray(sound).replace("bplist00", "bplist01");
        QTest::newRow("root out of range") << binary({"\x09"}, false, 1);
        QTest::newRow("huge root") << binary({"\x09"}, false, ~0ULL);
        QTest::newRow("reference out of range") << binary({"\xa1\x05"});
        QTest::newRow("holds itself") << binary({QByteArray("\xa1\x00", 2)});
        QTest::newRow("longer cycle") << binary({"\xa1\x01", QByteArray("\xd1\x02\x00", 3), key});
        QTest::newRow("array past the end")
            << binary({QByteArray("\xaf\x13\x7f\xff\xff\xff\xff\xff\xff\xff", 10)});
        QTest::newRow("dictionary past the end") << binary({"\xde\x01"});
        QTest::newRow("text past the end") << binary({"\x5e\x61"});
        QTest::newRow("wide text past the end")
            << binary({QByteArray("\x6f\x13\xff\xff\xff\xff\xff\xff\xff\xff", 10)});
        QTest::newRow("count of a wrong type") << binary({"\xaf\x51"});
        QTest::newRow("cut integer") << binary({QByteArray("\x13\x00", 2)});
        QTest::newRow("date of four bytes") << binary({QByteArray("\x32\x00\x00\x00\x00", 5)});
        QTest::newRow("real of one byte") << binary({QByteArray("\x20\x00", 2)});
        QTest::newRow("integer of 32 bytes") << binary({QByteArray("\x15", 1) + QByteArray(32, '\1')});
        QTest::newRow("null") << binary({QByteArray(1, '\0')});
        QTest::newRow("identifier") << binary({"\x80\x05"});
        QTest::newRow("key that is an array") << binary({"\xd1\x01\x02", "\xa0", "\x09"});
        QTest::newRow("key that is a number") << binary({"\xd1\x01\x01", "\x10\x05"});
        QTest::newRow("NUL in a text") << binary({QByteArray("\x53"
                                                             "a\0b",
                                                             4)});
        QTest::newRow("NUL in a wide text") << binary({QByteArray("\x62\0a\0\0", 5)});
    }

    void refusesBinary()
    {
        QFETCH(QByteArray, bytes);
        const Result result = read(bytes);
        QVERIFY(!result.value.isValid());
        QVERIFY(!result.error.isEmpty());
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
        QVERIFY(result.value.toString().contains(QLatin1Char('a')));
        const QVariant text = QString(QChar(0xd800)) + QLatin1Char('b');
        QVERIFY(read(ZELKPropertyList::writeBinary(text).bytes).value.toString().endsWith(QLatin1Char('b')));
        QVERIFY(read(ZELKPropertyList::writeXml(text).bytes).value.toString().endsWith(QLatin1Char('b')));
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
        QTest::addColumn<QVariant>("value");
        QTest::newRow("nil") << QVariant();
        QTest::newRow("nil within") << QVariant(QVariantList{1, QVariant()});
        QTest::newRow("other type") << QVariant(QVariantList{QPoint(1, 2)});
        QTest::newRow("NUL in a text") << QVariant(QString(QChar(u'\0')));
        QTest::newRow("NUL in a key") << QVariant::fromValue(ZELKDictionary{{QString(QChar(u'\0')), 1}});
        QVariant deep = 1;
        for (int i = 0; i < 128; ++i)
            deep = QVariantList{deep};
        QTest::newRow("too deep") << deep;
    }

    void refusesToWrite()
    {
        QFETCH(QVariant, value);
        for (const auto &written :
             {ZELKPropertyList::writeBinary(value), ZELKPropertyList::writeXml(value)}) {
            QVERIFY(written.bytes.isEmpty());
            QVERIFY(!written.error.isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestPropertyList)
#include "tst_property_list.moc"
