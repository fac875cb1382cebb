#include "ZELKPropertyList.h"
#include "ZELKRawEvent.h"
#include "ZELKValue.h"

#include <QtTest>

#include <limits>
#include <random>
#include <vector>

using namespace Qt::StringLiterals;
using Kind = ZELKRawEventReader::Kind;

namespace {

QByteArray blobOf(const ZELKRawEvent &event)
{
    return ZELKPropertyList::writeBinary(QVariant::fromValue(event)).bytes;
}

QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

/// The texts as a dictionary says them, in the order of the vocabulary; nothing when it is no such event.
std::optional<QStringList> textsOf(const ZELKRawEvent &event)
{
    QStringList texts;
    for (const QString &key : {u"date"_s, u"description"_s, u"monitor"_s, u"properties"_s}) {
        if (event.value(key).typeId() != QMetaType::QString)
            return std::nullopt;
        texts.append(event.string(key));
    }
    return event.size() == texts.size() ? std::optional(texts) : std::nullopt;
}

/// What the reader says that the property-list reader does not; empty when they agree.
QString difference(ZELKRawEventReader &reader, const QByteArray &bytes)
{
    // A copy of exactly the bytes, so that a look beyond them is noticed.
    const std::vector<char> blob(bytes.begin(), bytes.end());
    const ZELKPropertyList::Result whole = ZELKPropertyList::read({blob.data(), blob.size()});
    const auto event = whole.value.userType() == qMetaTypeId<ZELKDictionary>()
                           ? whole.value.value<ZELKRawEvent>()
                           : ZELKRawEvent();
    const Kind kind = reader.read({blob.data(), blob.size()});
    if (kind == Kind::Faulty)
        return event.isEmpty() && !reader.error().isEmpty() ? QString() : u"faulty"_s;
    if (kind == Kind::Dictionary)
        return !event.isEmpty() && reader.dictionary().keys() == event.keys() &&
                       ZELKValue::description(QVariant::fromValue(reader.dictionary())) ==
                           ZELKValue::description(QVariant::fromValue(event))
                   ? QString()
                   : u"another dictionary"_s;
    const auto &view = reader.view();
    const QStringList read{text(view.date), text(view.description), text(view.monitor),
                           text(view.properties)};
    return textsOf(event) == read ? QString()
                                  : u"read in place: "_s + read.join(u'|') + u" not "_s + whole.error;
}

class Mutator
{
public:
    explicit Mutator(unsigned seed)
        : m_random(seed)
    {
    }
    unsigned upTo(unsigned most) { return unsigned(m_random() % (most + 1)); }

    QString anyText()
    {
        static const QStringList texts{u"a"_s,
                                       u""_s,
                                       u"ü"_s,
                                       u"🔋"_s,
                                       u"\uFEFFa"_s,
                                       u"\uFEFF"_s,
                                       u"fourteen chars"_s,
                                       u"fifteen chars.."_s,
                                       QString(300, u'x'),
                                       QString(300, u'é'),
                                       u"NULL"_s,
                                       u"date"_s,
                                       u"\uFFFF"_s,
                                       u"\u0085"_s};
        return texts.at(upTo(unsigned(texts.size() - 1)));
    }
    QByteArray event()
    {
        ZELKRawEvent event;
        QStringList keys{u"date"_s, u"description"_s, u"monitor"_s, u"properties"_s};
        std::shuffle(keys.begin(), keys.end(), m_random);
        for (const QString &key : keys)
            event.insert(key, anyText());
        if (upTo(9) == 0)
            event.insert(anyText(), anyText());
        if (upTo(9) == 0)
            event.insert(u"date"_s, 1.5);
        return blobOf(event);
    }
    QByteArray mutated(QByteArray blob)
    {
        for (unsigned i = 1 + upTo(2); i > 0 && !blob.isEmpty(); --i) {
            // Most changes where the structure stands: the first bytes, and the last.
            const unsigned last = unsigned(blob.size() - 1);
            const qsizetype at = upTo(2) == 0 ? upTo(last)
                                 : upTo(1)    ? upTo(qMin(last, 24U))
                                              : last - upTo(qMin(last, 50U));
            const unsigned how = upTo(5);
            if (how == 0)
                blob.remove(at, 1);
            else if (how == 1)
                blob.insert(at, char(upTo(255)));
            else
                blob[at] = char(how < 4 ? blob.at(at) + int(upTo(4)) - 2 : int(upTo(255)));
        }
        return blob;
    }

private:
    std::mt19937 m_random;
};

} // namespace

class TestRawEvent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesDates_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("date");
        QTest::newRow("zero") << 0.0 << u"0.000000"_s;
        QTest::newRow("now") << 731000000.1234564 << u"731000000.123456"_s;
        QTest::newRow("rounded up") << 0.9999999 << u"1.000000"_s;
        QTest::newRow("negative") << -5.5 << u"-5.500000"_s;
        QTest::newRow("large") << 1e21 << u"1000000000000000000000.000000"_s;
    }

    void writesDates()
    {
        QFETCH(double, seconds);
        QFETCH(QString, date);
        QCOMPARE(ZELKDateText(ZELKDate(seconds)), date);
        QVERIFY(ZELKIsDateText(date.toStdString()));
        const ZELKRawEvent event = ZELKMakeRawEvent(ZELKDate(seconds), u"e"_s, u"m"_s);
        QCOMPARE(event.keys(), (QStringList{u"date"_s, u"description"_s, u"monitor"_s, u"properties"_s}));
        QCOMPARE(textsOf(event), (QStringList{date, u"e"_s, u"m"_s, u"NULL"_s}));
    }

    void tellsDatesFromOtherTexts_data()
    {
        QTest::addColumn<QByteArray>("date");
        for (const QByteArray &date :
             {QByteArray(), QByteArray(" 1.0"), QByteArray("1.0 "), QByteArray("1,0"), QByteArray("nan"),
              QByteArray("inf"), QByteArray("-"), QByteArray("1e5"), QByteArray("0x10"),
              QByteArray("1.0\0", 4), QByteArray("+1.0"), QByteArray(400, '9')})
            QTest::addRow("'%s'", date.left(8).constData()) << date;
    }

    void tellsDatesFromOtherTexts()
    {
        QFETCH(QByteArray, date);
        QVERIFY(!ZELKIsDateText(date.toStdString()));
    }

    void writesProperties()
    {
        const ZELKDictionary properties{{u"ü"_s, 1LL}, {u"a"_s, u"<&>"_s}};
        const auto read = ZELKPropertyList::read(ZELKPropertiesText(properties).toStdString());
        QCOMPARE(read.value.value<ZELKDictionary>().keys(), properties.keys());
        QCOMPARE(read.value.value<ZELKDictionary>(), properties);
    }

    void readsEvents_data()
    {
        QTest::addColumn<ZELKRawEvent>("event");
        QTest::addColumn<Kind>("kind");
        const auto row = [](const char *title, const ZELKRawEvent &event, Kind kind) {
            QTest::newRow(title) << event << kind;
        };
        const ZELKDate date(1.5);
        row("as ever", ZELKMakeRawEvent(date, u"e"_s, u"m"_s), Kind::Texts);
        row("long texts", ZELKMakeRawEvent(date, QString(15, u'e'), QString(300, u'm'), QString(70000, u'p')),
            Kind::Texts);
        row("not ASCII", ZELKMakeRawEvent(date, u"Lüfter"_s, u"🔋"_s, QString(300, u'ß')), Kind::Texts);
        row("the same texts",
            {{u"date"_s, u"x"_s},
             {u"description"_s, u"x"_s},
             {u"monitor"_s, u"x"_s},
             {u"properties"_s, u"x"_s}},
            Kind::Texts);
        row("empty texts",
            {{u"properties"_s, u""_s}, {u"monitor"_s, u""_s}, {u"description"_s, u""_s}, {u"date"_s, u""_s}},
            Kind::Texts);
        ZELKRawEvent other = ZELKMakeRawEvent(date, u"e"_s, u"m"_s);
        other.insert(u"date"_s, 1.5);
        row("a number for a date", other, Kind::Dictionary);
        other = ZELKMakeRawEvent(date, u"e"_s, u"m"_s);
        other.insert(u"more"_s, u"x"_s);
        row("one more", other, Kind::Dictionary);
        other.remove(u"date"_s);
        row("one in another's place", other, Kind::Dictionary);
        other.remove(u"more"_s);
        row("one fewer", other, Kind::Dictionary);
        row("none", {}, Kind::Faulty);
    }

    void readsEvents()
    {
        QFETCH(ZELKRawEvent, event);
        ZELKRawEventReader reader;
        const QByteArray blob = blobOf(event);
        QTEST(reader.read({blob.constData(), std::size_t(blob.size())}), "kind");
        QCOMPARE(difference(reader, blob), QString());
    }

    void readsXmlToo()
    {
        const ZELKRawEvent event = ZELKMakeRawEvent(ZELKDate(5), u"e"_s, u"m"_s);
        const std::string xml = ZELKPropertiesText(event).toStdString();
        ZELKRawEventReader reader;
        QCOMPARE(reader.read(xml), Kind::Dictionary);
        QCOMPARE(reader.dictionary(), event);
        QCOMPARE(reader.read("rubbish"), Kind::Faulty);
        QVERIFY(!reader.error().isEmpty());
    }

    /// What lies in place stays what the property-list reader makes of it, whatever the bytes.
    void readsChangedBytesAsTheWholeReaderDoes()
    {
        Mutator mutator(42);
        ZELKRawEventReader reader;
        for (int i = 0; i < 10000; ++i) {
            const QByteArray blob = mutator.event();
            QVERIFY2(difference(reader, blob).isEmpty(), blob.toHex());
            const QByteArray changed = mutator.mutated(blob);
            const QString fault = difference(reader, changed);
            QVERIFY2(fault.isEmpty(), qPrintable(fault + u' ' + QString::fromLatin1(changed.toHex())));
        }
    }
};

QTEST_GUILESS_MAIN(TestRawEvent)
#include "test_raw_event.moc"
