// Raw events and the stream that carries them.
#include "Raised.h"
#include "Rows.h"
#include "ZELKEventStream.h"
#include "ZELKPropertyList.h"
#include "ZELKRawEvent.h"
#include "ZELKRawEventWriter.h"
#include "ZELKValue.h"

#include <random>
#include <string>
#include <vector>

using State = ZELKEventStreamReader::State;
using namespace Qt::StringLiterals;
using namespace std::literals;
using Kind = ZELKRawEventReader::Kind;

namespace {

QByteArray streamOf(const QList<QByteArray> &events, std::uint64_t count)
{
    QByteArray stream = ZELKEventStream::begin();
    for (const QByteArray &event : events)
        ZELKEventStream::append(stream, event.toStdString());
    return stream + ZELKEventStream::end(count);
}

struct Read
{
    QList<QByteArray> events;
    State state;
};

Read readInPieces(const QByteArray &stream, qsizetype size)
{
    ZELKEventStreamReader reader;
    Read read;
    for (qsizetype at = 0; at < stream.size(); at += size) {
        reader.feed(stream.mid(at, size).toStdString());
        while (const auto event = reader.next())
            read.events.append(QByteArray(event->data(), qsizetype(event->size())));
    }
    read.state = reader.state();
    return read;
}

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
    bool agrees = false;
    if (kind == Kind::Faulty) {
        agrees = event.isEmpty() && !reader.error().isEmpty();
    } else if (kind == Kind::Dictionary) {
        agrees = !event.isEmpty() && reader.dictionary().keys() == event.keys() &&
                 ZELKValue::description(QVariant::fromValue(reader.dictionary())) ==
                     ZELKValue::description(QVariant::fromValue(event));
    } else {
        const auto &view = reader.view();
        agrees = textsOf(event) == QStringList{text(view.date), text(view.description), text(view.monitor),
                                               text(view.properties)};
    }
    return agrees ? QString()
                  : u"of kind %1, though the whole reader says otherwise; "_s.arg(int(kind)) + whole.error;
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
        static const QStringList texts =
            u"a||ü|🔋|\uFEFFa|\uFEFF|date|fourteen chars|fifteen chars..|\uFFFF|\u0085"_s.split(u'|')
            << QString(300, u'x') << QString(300, u'é');
        return texts.at(upTo(unsigned(texts.size() - 1)));
    }
    ZELKRawEvent event()
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
        return event;
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

class TestEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void arrivesWholeInPiecesOfAnySize()
    {
        const QList<QByteArray> events{"a", QByteArray(300, 'b'), QByteArray("\0\0\0\0", 4), "d"};
        const QByteArray stream = streamOf(events, 4);
        QCOMPARE(stream.left(11), QByteArray("LWEV1\n\0\0\0\1a", 11));
        for (qsizetype size = 1; size <= stream.size(); ++size) {
            const Read read = readInPieces(stream, size);
            QCOMPARE(read.events, events);
            QCOMPARE(read.state, State::Complete);
        }
        QCOMPARE(readInPieces(streamOf({}, 0), 5).state, State::Complete);
    }

    void tellsFaults_data()
    {
        const Rows<QByteArray, int, State> row;
        const QByteArray whole = streamOf({"one", "two"}, 2);
        row("broken off in an event", whole.left(15), 1, State::Reading);
        row("broken off in the number", whole.chopped(1), 2, State::Reading);
        row("another greeting", "LWEV2\n", 0, State::Faulty);
        row("a wrong number", streamOf({"one"}, 2), 1, State::Faulty);
        row("something after the number", whole + 'x', 2, State::Faulty);
        row("an event too long", QByteArray("LWEV1\n\1\0\0\1", 10), 0, State::Faulty);
        row("the longest length, not yet there", QByteArray("LWEV1\n\1\0\0\0", 10), 0, State::Reading);
    }
    void tellsFaults()
    {
        const auto [stream, events, state] = Rows<QByteArray, int, State>::fetch();
        for (const qsizetype size : {qsizetype(1), qsizetype(7), stream.size() + 1}) {
            const Read read = readInPieces(stream, size);
            QCOMPARE(read.events.size(), events);
            QCOMPARE(read.state, state);
        }
    }

    void refusesEventsOutOfBounds()
    {
        QByteArray stream;
        for (const std::size_t size : {0U, ZELKEventStream::longestEvent + 1U})
            QVERIFY(!raised([&] { ZELKEventStream::append(stream, std::string(size, 'x')); }).isEmpty());
        QVERIFY(stream.isEmpty());
    }

    void writesDates_data()
    {
        const Rows<double, QString> row;
        row("rounded down", 731000000.1234564, "731000000.123456");
        row("rounded up", 0.9999999, "1.000000");
        row("negative", -5.5, "-5.500000");
        row("large", 1e21, "1000000000000000000000.000000");
    }
    void writesDates()
    {
        const auto [seconds, date] = Rows<double, QString>::fetch();
        QCOMPARE(ZELKDateText(ZELKDate(seconds)), date);
        QVERIFY(ZELKIsDateText(date.toStdString()));
        const ZELKRawEvent event = ZELKMakeRawEvent(ZELKDate(seconds), u"e"_s, u"m"_s);
        QCOMPARE(textsOf(event), (QStringList{date, u"e"_s, u"m"_s, u"NULL"_s}));
    }

    void tellsDatesFromOtherTexts()
    {
        for (const std::string &text : {""s, " 1.0"s, "1.0 "s, "1,0"s, "nan"s, "-"s, "1e5"s, "0x10"s,
                                        "1.0\0"s, "+1.0"s, std::string(400, '9')})
            QVERIFY2(!ZELKIsDateText(text), text.c_str());
    }

    void readsEvents_data()
    {
        const Rows<ZELKRawEvent, Kind> row;
        const ZELKRawEvent event = ZELKMakeRawEvent(ZELKDate(1.5), u"e"_s, u"m"_s);
        row("as ever", event, Kind::Texts);
        row("long texts, not ASCII",
            ZELKMakeRawEvent(ZELKDate(1.5), QString(15, u'e'), u"🔋"_s + QString(300, u'ß'),
                             QString(70000, u'p')),
            Kind::Texts);
        ZELKRawEvent other = event;
        other.insert(u"monitor"_s, u""_s);
        row("an empty text", other, Kind::Texts);
        other.insert(u"date"_s, 1.5);
        row("a number for a date", other, Kind::Dictionary);
        other.insert(u"more"_s, u"x"_s);
        other.remove(u"date"_s);
        row("one in another's place", other, Kind::Dictionary);
        row("none", ZELKRawEvent(), Kind::Faulty);
    }
    void readsEvents()
    {
        const auto [event, kind] = Rows<ZELKRawEvent, Kind>::fetch();
        ZELKRawEventReader reader;
        const QByteArray blob = blobOf(event);
        QCOMPARE(reader.read({blob.constData(), std::size_t(blob.size())}), kind);
        QCOMPARE(difference(reader, blob), QString());
    }

    /// What lies in place stays what the property-list reader makes of it, whatever the bytes.
    void readsChangedBytesAsTheWholeReaderDoes()
    {
        Mutator mutator(42);
        ZELKRawEventReader reader;
        const QByteArray sound = blobOf(ZELKMakeRawEvent(ZELKDate(1.5), u"e"_s, u"m"_s, u"p"_s));
        for (qsizetype at = 0; at < sound.size(); ++at) {
            QByteArray changed = sound;
            ++changed.data()[at]; // a length, too: the last text then ends behind the texts
            QVERIFY2(difference(reader, changed).isEmpty(), changed.toHex());
        }
        for (int i = 0; i < 10000; ++i) {
            const ZELKRawEvent event = mutator.event();
            const QByteArray blob = blobOf(event);
            QCOMPARE(ZELKRawEventWriter::write(event).bytes, blob); // what the library writes
            QVERIFY2(difference(reader, blob).isEmpty(), blob.toHex());
            const QByteArray changed = mutator.mutated(blob);
            const QString fault = difference(reader, changed);
            QVERIFY2(fault.isEmpty(), qPrintable(fault + u' ' + QString::fromLatin1(changed.toHex())));
        }
    }
};

QTEST_GUILESS_MAIN(TestEvents)
#include "tst_events.moc"
