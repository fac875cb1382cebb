#include "LogDump.h"
#include "ZELKEventVocabulary.h"
#include "ZELKPackedProperties.h"

#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;
using Key = ZELKPackedProperties::Key;

namespace {

const QStringList knownKeys{ZELKPropertyName,
                            ZELKPropertyIsPresent,
                            ZELKPropertyIsCharging,
                            ZELKPropertyCurrentCapacity,
                            ZELKPropertyMaxCapacity,
                            ZELKPropertyTimeToEmpty,
                            ZELKPropertyTimeToFullCharge,
                            ZELKPropertyPowerSourceID,
                            ZELKPropertyTransportType,
                            ZELKPropertyLowWarnLevel,
                            ZELKPropertyShutdownLevel,
                            ZELKPropertyPowerSourceState,
                            ZELKPropertyIdleSeconds,
                            ZELKPropertyProcesses};

QVariantList textsOf(int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i)
        list.append(u"item %1"_s.arg(i));
    return list;
}

/// Values of every type, some of them equal across types.
QVariantList values()
{
    return {true,
            false,
            0LL,
            1LL,
            -1LL,
            32767LL,
            32768LL,
            -32769LL,
            2147483648LL,
            std::numeric_limits<qlonglong>::min(),
            9007199254740992LL,
            9007199254740993LL,
            std::numeric_limits<qlonglong>::max(),
            9223372036854775808ULL,
            QVariant::fromValue(5),
            0.0,
            -0.0,
            1.0,
            1.5,
            9007199254740992.0,
            9223372036854775808.0,
            std::numeric_limits<double>::infinity(),
            u""_s,
            u"a"_s,
            u"1"_s,
            u"ä 🔋"_s,
            u"a\0b"_s,
            u"\uFEFFa"_s,
            QString(QChar(0xD800)),
            QString(512, u'x'),
            QString(513, u'x'),
            QByteArray("a"),
            QVariantList{},
            QVariantList{u"a"_s},
            QVariantList{u"a"_s, u""_s},
            QVariantList{1LL},
            textsOf(900),
            textsOf(1100),
            QVariant::fromValue(ZELKDate(5)),
            QVariant::fromValue(ZELKDictionary()),
            QVariant::fromValue(ZELKDictionary{{u"k"_s, 1LL}})};
}

} // namespace

class TestPackedProperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesBackWhatItTook()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        QCOMPARE(packed.pack(ZELKDictionary()), ZELKPackedProperties::empty);
        QVERIFY(packed.unpack(ZELKPackedProperties::empty).isEmpty());
        QVERIFY(!packed.contains(ZELKPackedProperties::empty, Key::Name));
        for (const QVariant &value : values()) {
            for (const QString &key : {u"Name"_s, u""_s, u"ä"_s, u"\uFEFFk"_s, QString(600, u'k')}) {
                for (const ZELKDictionary &dictionary :
                     {ZELKDictionary{{key, value}}, ZELKDictionary{{u"first"_s, 1LL}, {key, value}},
                      ZELKDictionary{{key, value}, {u"last"_s, u"x"_s}}})
                    QCOMPARE(LogDump::exact(packed.unpack(packed.pack(dictionary))),
                             LogDump::exact(dictionary));
            }
        }
    }

    void answersForTheKnownKeys()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        for (const QVariant &value : values()) {
            for (int key = 0; key < Key::keyCount; ++key) {
                const ZELKDictionary dictionary{{u"x"_s, 2LL}, {knownKeys.at(key), value}};
                const auto ref = packed.pack(dictionary);
                const auto known = Key(key);
                QVERIFY(packed.contains(ref, known));
                QVERIFY(!packed.contains(ref, Key((key + 1) % Key::keyCount)));
                QCOMPARE(LogDump::exact(packed.value(ref, known)), LogDump::exact(value));
                QCOMPARE(packed.intValue(ref, known), ZELKValue::intValue(value));
                QCOMPARE(packed.floatValue(ref, known), ZELKValue::floatValue(value));
                QVERIFY(packed.textId(ref, known) != ZELKStringPool::nil);
                QCOMPARE(packed.textId(ref, known), packed.textId(packed.pack(dictionary), known));
                QCOMPARE(packed.textId(ref, Key((key + 1) % Key::keyCount)), ZELKStringPool::nil);
            }
        }
    }

    void comparesAsDictionariesDo()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        std::vector<ZELKDictionary> dictionaries{{}};
        for (const QVariant &value : values()) {
            dictionaries.push_back({{ZELKPropertyName, value}});
            dictionaries.push_back({{ZELKPropertyName, value}, {u"b"_s, 1LL}});
            dictionaries.push_back({{u"b"_s, 1.0}, {ZELKPropertyName, value}});
            dictionaries.push_back({{u"b"_s, true}, {ZELKPropertyName, value}, {u"d"_s, QByteArray()}});
        }
        std::vector<ZELKPackedProperties::Ref> refs;
        for (const ZELKDictionary &dictionary : dictionaries)
            refs.push_back(packed.pack(dictionary));
        for (std::size_t a = 0; a < refs.size(); ++a) {
            for (std::size_t b = 0; b < refs.size(); ++b) {
                const QVariant left = dictionaries[a].value(ZELKPropertyName);
                const QVariant right = dictionaries[b].value(ZELKPropertyName);
                if (packed.equal(refs[a], refs[b]) != (dictionaries[a] == dictionaries[b]) ||
                    packed.equalValues(refs[a], refs[b], {Key::Name}) != ZELKValue::isEqual(left, right))
                    QFAIL(qPrintable(LogDump::exact(dictionaries[a]) + u'\n' +
                                     LogDump::exact(dictionaries[b])));
            }
        }
    }

    void findsKeysAtAnyPlace()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        for (const int before : {0, 1, 126, 127, 128, 300, 454, 455, 1000}) {
            ZELKDictionary dictionary;
            for (int i = 0; i < before; ++i)
                dictionary.insert(u"k%1"_s.arg(i), qlonglong(i));
            dictionary.insert(ZELKPropertyName, u"BAT0"_s);
            const auto ref = packed.pack(dictionary);
            QVERIFY(packed.contains(ref, Key::Name));
            QCOMPARE(packed.value(ref, Key::Name), QVariant(u"BAT0"_s));
            QVERIFY(packed.equalValues(ref, ref, {Key::Name}));
            QCOMPARE(LogDump::exact(packed.unpack(ref)), LogDump::exact(dictionary));
        }
    }

    void textsBeyondSixteenBits()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        const auto dictionary = [](int i) {
            return ZELKDictionary{{ZELKPropertyName, u"name %1"_s.arg(i)},
                                  {u"n"_s, qlonglong(i)},
                                  {ZELKPropertyProcesses, QVariantList{u"p%1"_s.arg(i), u"name 0"_s}}};
        };
        std::vector<ZELKPackedProperties::Ref> refs;
        for (int i = 0; i < 70000; ++i)
            refs.push_back(packed.pack(dictionary(i)));
        QVERIFY(texts.size() > 2 * 0xFFFF);
        for (const int i : {0, 1, 30000, 32766, 32767, 32768, 33000, 65535, 65536, 69999}) {
            const auto ref = refs[std::size_t(i)];
            QCOMPARE(LogDump::exact(packed.unpack(ref)), LogDump::exact(dictionary(i)));
            QCOMPARE(texts.string(packed.textId(ref, Key::Name)), u"name %1"_s.arg(i));
            QVERIFY(packed.equal(ref, packed.pack(dictionary(i))));
            QVERIFY(!packed.equal(ref, refs[std::size_t(i > 0 ? i - 1 : 1)]));
        }
        // The same text, once as a wide number and once as a narrow one.
        const auto mixed = packed.pack({{u"a"_s, u"name 69999"_s}, {ZELKPropertyName, u"name 0"_s}});
        const auto turned = packed.pack({{ZELKPropertyName, u"name 0"_s}, {u"a"_s, u"name 69999"_s}});
        QVERIFY(packed.equal(mixed, turned));
        QVERIFY(packed.equalValues(mixed, refs[0], {Key::Name}));
    }

    void moreShapesThanItNumbers()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        const auto dictionary = [](int i) {
            return ZELKDictionary{{u"key %1"_s.arg(i), qlonglong(i)}, {ZELKPropertyName, u"a"_s}};
        };
        std::vector<ZELKPackedProperties::Ref> refs;
        for (int i = 0; i < 70000; ++i)
            refs.push_back(packed.pack(dictionary(i)));
        for (const int i : {0, 59998, 59999, 60000, 65535, 65536, 69999}) {
            const auto ref = refs[std::size_t(i)];
            QCOMPARE(LogDump::exact(packed.unpack(ref)), LogDump::exact(dictionary(i)));
            QVERIFY(packed.equalValues(ref, refs[0], {Key::Name}));
            QVERIFY(packed.equal(ref, packed.pack(dictionary(i))));
            QCOMPARE(packed.equal(ref, refs[0]), i == 0);
        }
    }

    void recordsFillManyBlocks()
    {
        ZELKStringPool texts;
        ZELKPackedProperties packed(texts);
        std::vector<ZELKPackedProperties::Ref> refs;
        for (int i = 0; i < 2000; ++i)
            refs.push_back(packed.pack({
                {u"l"_s, textsOf(i % 1000 + 1)},
            }));
        for (int i = 0; i < 2000; ++i)
            QCOMPARE(packed.unpack(refs[std::size_t(i)]).value(u"l"_s).toList().size(), i % 1000 + 1);
    }
};

QTEST_GUILESS_MAIN(TestPackedProperties)
#include "tst_packed_properties.moc"
