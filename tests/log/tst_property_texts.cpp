// Property texts: their quick reader and the packed form it makes must not differ from what the property-list
// reader and dictionaries come to.
#include "LogFixture.h"
#include "PropertyTexts.h"
#include "ZELKPackedProperties.h"
#include "ZELKPropertyList.h"
#include "ZELKPropertyTextReader.h"

#include <limits>

using namespace Qt::StringLiterals;
using Key = ZELKPackedProperties::Key;
using Ref = ZELKPackedProperties::Ref;

namespace {

const std::string prologue = "<?xml version=\"1.0\"?>";

const auto plist = [](const std::string &body) {
    return prologue + "<plist version=\"1.0\"><dict>" + body + "</dict></plist>";
};
const auto keyed = [](const std::string &key, const std::string &value) {
    return "<key>" + key + "</key>" + value;
};
const auto yes = [](const std::string &key) { return keyed(key, "<true/>"); };
const auto named = [](const std::string &value) {
    return plist(keyed("Name", "<string>" + value + "</string>"));
};
const auto counted = [](const std::string &value) {
    return plist(keyed("n", "<integer>" + value + "</integer>"));
};
const QString nameKey = ZELKPropertyName;

QVariantList textsOf(int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i)
        list.append(u"item %1"_s.arg(i));
    return list;
}

/// Values of every type and on both sides of every limit, some of them equal across types.
QVariantList values()
{
    QVariantList list{true, false, u""_s, u"1"_s, u"ä 🔋"_s, u"a\0b"_s, u"\uFEFFa"_s, QString(QChar(0xD800))};
    for (const qlonglong number :
         {0LL, 1LL, -1LL, 32767LL, 32768LL, -32769LL, 2147483648LL, 9007199254740992LL, 9007199254740993LL})
        list << number;
    list << std::numeric_limits<qlonglong>::min() << std::numeric_limits<qlonglong>::max()
         << 9223372036854775808ULL << QVariant::fromValue(5);
    for (const double real : {0.0, -0.0, 1.0, 1.5, 9007199254740992.0, 9223372036854775808.0,
                              std::numeric_limits<double>::infinity()})
        list << real;
    list << QString(512, u'x') << QString(513, u'x') << QByteArray("a");
    for (const QVariantList &texts :
         {QVariantList{}, {u"a"_s}, {u"a"_s, u""_s}, {1LL}, textsOf(900), textsOf(1100)})
        list << QVariant(texts);
    return list << QVariant::fromValue(ZELKDate(5)) << QVariant::fromValue(ZELKDictionary())
                << QVariant::fromValue(ZELKDictionary{{u"k"_s, 1LL}});
}

} // namespace

class TestPropertyTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_reader = std::make_unique<Reader>();
        agree(plist("")); // makes the prologue known
    }

    /// One text after another through one reader, so that each meets what the earlier ones left behind.
    void readsAsTheWholeReaderDoes_data()
    {
        const NamedRows<std::vector<std::string>> row("texts");
        row("an empty text in a fresh template", {named("a"), named("")});
        row("the root in a comment of the prologue",
            {prologue + "<!-- <plist version=\"1.0\"> --><plist version=\"1.0\"><dict/></plist>",
             prologue + "<!-- <plist version=\"1.0\"><dict>" + yes("a") + "</dict></plist>"});
        row("the root in a value",
            {prologue + "<plist><dict><key>a</key><string><![CDATA[<plist version=\"1.0\"><dict>" + yes("a") +
             "</dict></plist>"});
        row("a NUL", {named("a"), named("a") + std::string(1, '\0'), named("a") + std::string("\0<dict>", 7),
                      named(std::string("a\0b", 3)), prologue + std::string(1, '\0') + named("a")});
        row("cut off",
            {named("a"), named("b"), named("c").substr(0, 60), named("c") + "x", named("c") + "<!-- -->"});
        std::string many;
        std::string names;
        for (int i = 0; i < 2000; ++i) {
            many += i < 300 ? keyed("k" + std::to_string(i), "<integer>1</integer>") : "";
            names += "<string>n" + std::to_string(i) + "</string>";
        }
        row("many keys", {plist(many), plist(many), plist(many + keyed("Name", "<string>a</string>"))});
        row("long lists",
            {plist(keyed("a", "<array>" + names + "</array>")), plist(keyed("a", "<array></array>"))});
    }

    void readsAsTheWholeReaderDoes()
    {
        QFETCH(std::vector<std::string>, texts);
        for (const std::string &text : texts)
            agree(text);
    }

    void readsChangedTextsAsTheWholeReaderDoes()
    {
        for (const std::size_t oddness : {0, 2, 10, 40}) { // of a hundred choices
            init();
            PropertyTexts texts(1234U + unsigned(oddness));
            for (int i = 0; i < 2500 && !QTest::currentTestFailed(); ++i) {
                const std::string text = texts.text(oddness);
                agree(text);
                agree(texts.mutated(text));
            }
        }
    }

    void wideNumbersOfTexts()
    {
        for (int i = -2; i < 70001; ++i) {
            const std::string one = named("t" + std::to_string(i));
            if (i < 0 || i == 5 || i >= 69999)
                agree(one);
            const auto ref = m_reader->reader.read(one).properties;
            QVERIFY(ref);
            QCOMPARE(m_reader->properties.value(*ref, ZELKPackedProperties::Name).toString(),
                     u"t%1"_s.arg(i));
        }
        QVERIFY(m_reader->texts.size() > 0xFFFF);
        agree(named("t0"));
    }

    /// A text of very many keys is refused or read, but not walked over and over.
    void manyKeysTakeNoSquareOfTime()
    {
        std::string body;
        for (int i = 0; i < 60000; ++i)
            body += yes("key " + std::to_string(i));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(ZELKPropertyList::read(plist(body)).error.isEmpty());
        const qint64 allowed = 20 * timer.restart() + 200;
        QVERIFY(m_reader->reader.read(plist(body)).properties);
        QVERIFY2(timer.elapsed() < allowed, qPrintable(u"%1 ms"_s.arg(timer.elapsed())));
    }

    void answersForWhatItTook()
    {
        QCOMPARE(packed().pack(ZELKDictionary()), ZELKPackedProperties::empty);
        QVERIFY(!packed().contains(ZELKPackedProperties::empty, Key::Name));
        for (const QVariant &value : values()) {
            for (const QString &other : {u"Processes"_s, u""_s, u"ä"_s, u"\uFEFFk"_s, QString(600, u'k')}) {
                const ZELKDictionary dictionary{{other, 1LL}, {nameKey, value}, {u"last"_s, u"x"_s}};
                const Ref ref = packed().pack(dictionary);
                QVERIFY(comesBack(ref, dictionary));
                QVERIFY(packed().contains(ref, Key::Name));
                QCOMPARE(packed().contains(ref, Key::Processes), other == u"Processes");
                QCOMPARE(LogDump::exact(packed().value(ref, Key::Name)), LogDump::exact(value));
                QCOMPARE(packed().intValue(ref, Key::Name), ZELKValue::intValue(value));
                QCOMPARE(packed().floatValue(ref, Key::Name), ZELKValue::floatValue(value));
                QCOMPARE(packed().textId(ref, Key::Name),
                         m_reader->texts.intern(ZELKValue::description(value)));
                QCOMPARE(packed().textId(ref, Key::IsPresent), ZELKStringPool::nil);
            }
        }
    }

    void comparesAsDictionariesDo()
    {
        std::vector<ZELKDictionary> all{{}};
        for (const QVariant &value : values()) {
            all.push_back({{nameKey, value}});
            all.push_back({{nameKey, value}, {u"b"_s, 1LL}});
            all.push_back({{u"b"_s, 1.0}, {nameKey, value}});
            all.push_back({{u"b"_s, true}, {nameKey, value}, {u"d"_s, QByteArray()}});
        }
        std::vector<Ref> refs;
        for (const ZELKDictionary &dictionary : all)
            refs.push_back(packed().pack(dictionary));
        for (std::size_t a = 0; a < refs.size(); ++a) {
            for (std::size_t b = 0; b < refs.size(); ++b) {
                const bool sameName = ZELKValue::isEqual(all[a].value(nameKey), all[b].value(nameKey));
                if (packed().equal(refs[a], refs[b]) != (all[a] == all[b]) ||
                    packed().equalValues(refs[a], refs[b], {Key::Name}) != sameName)
                    QFAIL(qPrintable(LogDump::exact(all[a]) + u'\n' + LogDump::exact(all[b])));
            }
        }
    }

    /// Records of any size, which also fill more than one block.
    void findsKeysAtAnyPlace()
    {
        for (int before = 0; before < 1200; before += before < 500 ? 1 : 50) {
            ZELKDictionary dictionary;
            for (int i = 0; i < before; ++i)
                dictionary.insert(u"k%1"_s.arg(i), qlonglong(i));
            dictionary.insert(nameKey, u"BAT0"_s);
            dictionary.insert(u"l"_s, textsOf(before));
            const Ref ref = packed().pack(dictionary);
            QCOMPARE(packed().value(ref, Key::Name), QVariant(u"BAT0"_s));
            QVERIFY(comesBack(ref, dictionary));
        }
    }

    /// More texts than sixteen bits number, and more shapes than are numbered.
    void moreThanItNumbers()
    {
        const auto dictionary = [](int i) {
            return ZELKDictionary{{u"key %1"_s.arg(i), qlonglong(i)},
                                  {nameKey, u"name %1"_s.arg(i)},
                                  {ZELKPropertyProcesses, QVariantList{u"p%1"_s.arg(i), u"name 0"_s}}};
        };
        std::vector<Ref> refs;
        for (int i = 0; i < 70000; ++i)
            refs.push_back(packed().pack(dictionary(i)));
        QVERIFY(m_reader->texts.size() > 2 * 0xFFFF);
        for (const int i : {0, 32766, 32767, 32768, 59998, 59999, 60000, 65535, 65536, 69999}) {
            const Ref ref = refs[std::size_t(i)];
            QVERIFY(comesBack(ref, dictionary(i)));
            QCOMPARE(packed().textId(ref, Key::Name), m_reader->texts.intern(u"name %1"_s.arg(i)));
            QVERIFY(!packed().equal(ref, refs[std::size_t(i > 0 ? i - 1 : 1)]));
        }
        // The same text, once as a wide number and once as a narrow one.
        const Ref mixed = packed().pack({{u"a"_s, u"name 69999"_s}, {nameKey, u"name 0"_s}});
        const Ref turned = packed().pack({{nameKey, u"name 0"_s}, {u"a"_s, u"name 69999"_s}});
        QVERIFY(packed().equal(mixed, turned));
        QVERIFY(packed().equalValues(mixed, refs[0], {Key::Name}));
    }

private:
    struct Reader
    {
        ZELKStringPool texts;
        ZELKPackedProperties properties{texts};
        ZELKPropertyTextReader reader{texts, properties};
    };

    /// Both readers must say the same of the text.
    void agree(const std::string &text)
    {
        const ZELKPropertyTextReader::Result result = m_reader->reader.read(text);
        // A log meets texts only as valid UTF-8, so that faulty bytes are replaced first.
        const ZELKPropertyList::Result whole =
            ZELKPropertyList::read(QString::fromStdString(text).toStdString());
        QString expected = whole.error;
        if (expected.isEmpty())
            expected = whole.value.userType() == qMetaTypeId<ZELKDictionary>()
                           ? LogDump::exact(whole.value)
                           : u"The properties are not a dictionary."_s;
        const QString actual = result.properties
                                   ? LogDump::exact(m_reader->properties.unpack(*result.properties))
                                   : result.error;
        QVERIFY2(actual == expected, qPrintable(u"read %1\nnot  %2\nin %3"_s.arg(
                                         actual, expected, QString::fromStdString(text))));
    }

    std::unique_ptr<Reader> m_reader;
    ZELKPackedProperties &packed() { return m_reader->properties; }
    /// The record holds this dictionary, and is equal to another record of it.
    bool comesBack(Ref ref, const ZELKDictionary &dictionary)
    {
        return LogDump::exact(packed().unpack(ref)) == LogDump::exact(dictionary) &&
               packed().equal(ref, packed().pack(dictionary));
    }
};

QTEST_GUILESS_MAIN(TestPropertyTexts)
#include "tst_property_texts.moc"
