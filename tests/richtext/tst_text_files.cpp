// Long texts as files: Word documents that are what they should be to the last byte, rich text that is the
// same whether written at once or piece by piece, and devices that fail.
#include "Rows.h"
#include "TextSamples.h"
#include "WordReader.h"
#include "ZELKRtfFileWriter.h"
#include "ZELKRtfWriter.h"
#include "ZELKWordFileWriter.h"

#include <QBuffer>

using namespace Qt::StringLiterals;
using Failure = ZELKTextFileWriter::Failure;

namespace {

template <typename Writer>
QByteArray written(const QList<ZELKAttributedString> &pieces)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    Writer writer(buffer);
    for (const ZELKAttributedString &piece : pieces)
        writer.announce(piece);
    bool isWhole = true;
    for (const ZELKAttributedString &piece : pieces)
        isWhole = writer.append(piece) && isWhole;
    return writer.finish() && isWhole ? buffer.data() : QByteArray();
}

template <typename Writer>
QByteArray written(const QString &text)
{
    return written<Writer>({ZELKAttributedString(text, TextSamples::usual())});
}

/// As a document's text is to be.
QString inDocument(QString text)
{
    text.replace(u'\n', u'\r').replace(QChar(0x2028), u'\v');
    return text.isEmpty() || !text.endsWith(u'\r') ? text + u'\r' : text;
}

/// Takes so many bytes and no more, wherever they are written.
class FullDevice : public QBuffer
{
public:
    FullDevice(qint64 room, bool isPipe)
        : m_room(room)
        , m_isPipe(isPipe)
    {
        open(QIODevice::ReadWrite);
    }
    bool isSequential() const override { return m_isPipe; }

protected:
    qint64 writeData(const char *bytes, qint64 size) override
    {
        m_room -= size;
        return m_room < 0 ? -1 : QBuffer::writeData(bytes, size);
    }

private:
    qint64 m_room;
    const bool m_isPipe;
};

} // namespace

class TestTextFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documents_data()
    {
        const Rows<QString, QString> row;
        row("nothing", u""_s, u"\r"_s);
        row("an end alone", u"\n"_s, u"\r"_s);
        row("no end", u"a\nb"_s, u"a\rb\r"_s);
        row("all letters", TextSamples::withAstral(), inDocument(TextSamples::withAstral()));
        row("breaks within", u"a\u2028b\u2029c\vd\n"_s, u"a\vb\vc\vd\r"_s);
        row("control characters", u"\0\u0001\u0007\f\r\u0013\u001F\u007F\u0085 \t"_s, u"          \t\r"_s);
        row("halves of characters", QString(QChar(0xD83D)) + u"a\xDE00\xFFFF\n"_s,
            u"\uFFFDa\uFFFD\uFFFD\r"_s);
        row("large", QString(100000, u'x'), QString(100000, u'x') + u'\r');
    }
    void documents()
    {
        const auto [text, expected] = Rows<QString, QString>::fetch();
        const WordReader reader(written<ZELKWordFileWriter>(text));
        QCOMPARE(reader.fault, nullptr);
        QCOMPARE(reader.text, expected);
    }

    void documentsOfManyPages()
    {
        QList<ZELKAttributedString> lines;
        ZELKTextAttributes other = TextSamples::usual();
        for (int i = 0; i < 3000; ++i) {
            other.pointSize = 8.0 + i % 50;
            lines.append(ZELKAttributedString(u"date\t"_s, TextSamples::usual()));
            lines.append(ZELKAttributedString(u"summary\n"_s, other));
        }
        const WordReader reader(written<ZELKWordFileWriter>(lines));
        QCOMPARE(reader.fault, nullptr);
        QCOMPARE(reader.text, u"date\tsummary\r"_s.repeated(3000));
        QCOMPARE(reader.pageCounts[1], (3000 + 28) / 29);
        QVERIFY2(reader.pageCounts[0] > 100 && reader.pageCounts[0] < 400,
                 qPrintable(QString::number(reader.pageCounts[0])));
    }

    void anyTextGivesADocument()
    {
        for (quint32 seed = 1; seed <= 60; ++seed) {
            const ZELKAttributedString text = TextSamples::random(seed);
            const WordReader reader(written<ZELKWordFileWriter>({text}));
            const bool hasHalves = text.string().toUcs4().contains(QChar::ReplacementCharacter);
            QVERIFY2(!reader.fault, qPrintable(u"%1: %2"_s.arg(seed).arg(QLatin1String(reader.fault))));
            QVERIFY(hasHalves || reader.text == inDocument(text.string()));
        }
    }

    void richTextInPiecesIsTheSame()
    {
        for (quint32 seed = 1; seed <= 20; ++seed) {
            const ZELKAttributedString text = TextSamples::random(seed);
            QList<ZELKAttributedString> pieces;
            qsizetype start = 0;
            for (const ZELKAttributedString::Run &run : text.runs()) {
                pieces.append(text.substring(start, run.length));
                start += run.length;
            }
            QCOMPARE(written<ZELKRtfFileWriter>(pieces), ZELKRtfWriter::write(text));
        }
    }

    void failures_data()
    {
        const Rows<int, bool, Failure> row; // bytes there is room for, whether it is a pipe
        row("no room", 0, false, Failure::Device);
        row("room for the beginning", 70000, false, Failure::Device);
        row("room for all but the end", 203000, false, Failure::Device);
        row("a pipe", 1000000, true, Failure::NotSeekable);
        row("enough", 1000000, false, Failure::None);
    }
    void failures()
    {
        const auto [room, isPipe, failure] = Rows<int, bool, Failure>::fetch();
        FullDevice device(room, isPipe);
        ZELKWordFileWriter writer(device);
        writer.append(QString(100000, u'x'), TextSamples::usual());
        const bool isWhole = writer.finish();
        QCOMPARE(writer.failure(), failure);
        QCOMPARE(isWhole, writer.failure() == Failure::None);
        QCOMPARE(!WordReader(device.data()).fault, isWhole);
    }

    void tooLarge()
    {
        FullDevice device(1 << 20, false);
        ZELKWordFileWriter writer(device, {{}, {}, 10000});
        QVERIFY(writer.append(u"short"_s, {}));
        QVERIFY(!writer.append(QString(4000, u'x'), {}));
        QVERIFY(!writer.finish());
        QCOMPARE(writer.failure(), Failure::TooLarge);
    }

    void richTextFails()
    {
        FullDevice device(70000, true);
        ZELKRtfFileWriter writer(device);
        QVERIFY(writer.append(QString(66000, u'x'), {}));
        QVERIFY(!writer.append(QString(66000, u'x'), {}));
        QVERIFY(!writer.finish());
        QCOMPARE(writer.failure(), Failure::Device);
    }

    void whatIsGivenUpIsNoDocument()
    {
        FullDevice device(1 << 20, false);
        {
            ZELKWordFileWriter writer(device);
            writer.append(QString(100000, u'x'), TextSamples::usual());
        }
        QVERIFY(device.size() > 0);
        QVERIFY(WordReader(device.data()).fault);
    }

    void withinParagraph()
    {
        const QString kept = u"a\tb\u2028c"_s;
        QCOMPARE(ZELKTextFileWriter::withinParagraph(kept), kept);
        QCOMPARE(ZELKTextFileWriter::withinParagraph(u"a\nb\r\nc\rd\ve\ff\u0085g\u2029\n"_s),
                 u"a\u2028b\u2028c\u2028d\u2028e\u2028f\u2028g\u2028\u2028"_s);
    }
};

QTEST_MAIN(TestTextFiles)
#include "tst_text_files.moc"
