// Dictionaries packed into a few bytes must come out, compare and answer as they did before.
#include "LogDump.h"
#include "ZELKEventVocabulary.h"
#include "ZELKPackedProperties.h"

#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;
using Key = ZELKPackedProperties::Key;
using Ref = ZELKPackedProperties::Ref;

namespace {

const QString name = ZELKPropertyName;

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

class TestPackedProperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store = std::make_unique<Store>(); }

    void answersForWhatItTook()
    {
        QCOMPARE(packed().pack(ZELKDictionary()), ZELKPackedProperties::empty);
        QVERIFY(!packed().contains(ZELKPackedProperties::empty, Key::Name));
        for (const QVariant &value : values()) {
            for (const QString &other : {u"Processes"_s, u""_s, u"ä"_s, u"\uFEFFk"_s, QString(600, u'k')}) {
                const ZELKDictionary dictionary{{other, 1LL}, {name, value}, {u"last"_s, u"x"_s}};
                const Ref ref = packed().pack(dictionary);
                QVERIFY(comesBack(ref, dictionary));
                QVERIFY(packed().contains(ref, Key::Name));
                QCOMPARE(packed().contains(ref, Key::Processes), other == u"Processes");
                QVERIFY(!packed().contains(ref, Key::IsPresent));
                QCOMPARE(LogDump::exact(packed().value(ref, Key::Name)), LogDump::exact(value));
                QCOMPARE(packed().intValue(ref, Key::Name), ZELKValue::intValue(value));
                QCOMPARE(packed().floatValue(ref, Key::Name), ZELKValue::floatValue(value));
                QCOMPARE(packed().textId(ref, Key::Name),
                         m_store->texts.intern(ZELKValue::description(value)));
                QCOMPARE(packed().textId(ref, Key::IsPresent), ZELKStringPool::nil);
            }
        }
    }

    void comparesAsDictionariesDo()
    {
        std::vector<ZELKDictionary> all{{}};
        for (const QVariant &value : values()) {
            all.push_back({{name, value}});
            all.push_back({{name, value}, {u"b"_s, 1LL}});
            all.push_back({{u"b"_s, 1.0}, {name, value}});
            all.push_back({{u"b"_s, true}, {name, value}, {u"d"_s, QByteArray()}});
        }
        std::vector<Ref> refs;
        for (const ZELKDictionary &dictionary : all)
            refs.push_back(packed().pack(dictionary));
        for (std::size_t a = 0; a < refs.size(); ++a) {
            for (std::size_t b = 0; b < refs.size(); ++b) {
                const bool sameName = ZELKValue::isEqual(all[a].value(name), all[b].value(name));
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
            dictionary.insert(name, u"BAT0"_s);
            dictionary.insert(u"l"_s, textsOf(before));
            const Ref ref = packed().pack(dictionary);
            QCOMPARE(packed().value(ref, Key::Name), QVariant(u"BAT0"_s));
            QVERIFY(packed().equalValues(ref, ref, {Key::Name}));
            QVERIFY(comesBack(ref, dictionary));
        }
    }

    void textsBeyondSixteenBits()
    {
        const auto dictionary = [](int i) {
            return ZELKDictionary{{name, u"name %1"_s.arg(i)},
                                  {ZELKPropertyProcesses, QVariantList{u"p%1"_s.arg(i), u"name 0"_s}}};
        };
        const std::vector<Ref> refs = packMany(dictionary);
        QVERIFY(m_store->texts.size() > 2 * 0xFFFF);
        for (const int i : {0, 32766, 32767, 32768, 65535, 65536, 69999}) {
            const Ref ref = refs[std::size_t(i)];
            QVERIFY(comesBack(ref, dictionary(i)));
            QCOMPARE(packed().textId(ref, Key::Name), m_store->texts.intern(u"name %1"_s.arg(i)));
            QVERIFY(!packed().equal(ref, refs[std::size_t(i > 0 ? i - 1 : 1)]));
        }
        // The same text, once as a wide number and once as a narrow one.
        const Ref mixed = packed().pack({{u"a"_s, u"name 69999"_s}, {name, u"name 0"_s}});
        const Ref turned = packed().pack({{name, u"name 0"_s}, {u"a"_s, u"name 69999"_s}});
        QVERIFY(packed().equal(mixed, turned));
        QVERIFY(packed().equalValues(mixed, refs[0], {Key::Name}));
    }

    void moreShapesThanItNumbers()
    {
        const auto dictionary = [](int i) {
            return ZELKDictionary{{u"key %1"_s.arg(i), qlonglong(i)}, {name, u"a"_s}};
        };
        const std::vector<Ref> refs = packMany(dictionary);
        for (const int i : {0, 59998, 59999, 60000, 65535, 65536, 69999}) {
            const Ref ref = refs[std::size_t(i)];
            QVERIFY(comesBack(ref, dictionary(i)));
            QVERIFY(packed().equalValues(ref, refs[0], {Key::Name}));
            QCOMPARE(packed().equal(ref, refs[0]), i == 0);
        }
    }

private:
    struct Store
    {
        ZELKStringPool texts;
        ZELKPackedProperties properties{texts};
    };

    ZELKPackedProperties &packed() { return m_store->properties; }
    /// The record holds this dictionary, and is equal to another record of it.
    bool comesBack(Ref ref, const ZELKDictionary &dictionary)
    {
        return LogDump::exact(packed().unpack(ref)) == LogDump::exact(dictionary) &&
               packed().equal(ref, packed().pack(dictionary));
    }
    template <typename Make>
    std::vector<Ref> packMany(Make &&make)
    {
        std::vector<Ref> refs;
        for (int i = 0; i < 70000; ++i)
            refs.push_back(packed().pack(make(i)));
        return refs;
    }

    std::unique_ptr<Store> m_store;
};

QTEST_GUILESS_MAIN(TestPackedProperties)
#include "tst_packed_properties.moc"
