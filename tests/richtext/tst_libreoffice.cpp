// LibreOffice reads our files: every character of them, and of Word documents the looks, which it says in
// rich text.
#include "Files.h"
#include "TextDump.h"
#include "TextSamples.h"
#include "ZELKRtfFileWriter.h"
#include "ZELKRtfReader.h"
#include "ZELKWordFileWriter.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString office = u"soffice"_s;

using Alignment = ZELKParagraphStyle::Alignment;
using LineSpacing = ZELKParagraphStyle::LineSpacing;

ZELKAttributedString looks()
{
    ZELKAttributedString text;
    const auto add = [&text](const QString &words, auto change) {
        ZELKTextAttributes look = TextSamples::usual();
        change(look);
        text.append(words, look);
    };
    add(u"bold "_s, [](auto &look) { look.bold = true; });
    add(u"italic "_s, [](auto &look) { look.italic = true; });
    add(u"underlined "_s, [](auto &look) { look.underline = true; });
    add(u"red "_s, [](auto &look) { look.colour = ZELKTextColour::rgb(255, 0, 16); });
    add(u"other\n"_s, [](auto &look) {
        look.family = u"DejaVu Serif"_s;
        look.pointSize = 20.5;
    });
    add(u"centre\n"_s, [](auto &look) { look.paragraph.alignment = Alignment::Centre; });
    add(u"right\n"_s, [](auto &look) { look.paragraph.alignment = Alignment::Right; });
    add(u"spaced\n"_s, [](auto &look) {
        look.paragraph = {
            Alignment::Justified, {}, LineSpacing::Multiple, 1.5, -18.0, 36.0, 100.0, 12.0, 24.0, {}};
    });
    add(u"a\tb\tc\td\te\n"_s, [](auto &look) {
        look.paragraph.tabStops = {{100.0},
                                   {200.0, ZELKTabStop::Kind::Right},
                                   {300.0, ZELKTabStop::Kind::Centre},
                                   {400.0, ZELKTabStop::Kind::Decimal}};
    });
    add(u"exactly\n"_s, [](auto &look) {
        look.paragraph.lineSpacingKind = LineSpacing::Exactly;
        look.paragraph.lineSpacing = 30.0;
    });
    return text;
}

/// The ends of paragraphs are left out: LibreOffice gives them no look of their own.
QString dump(ZELKAttributedString text)
{
    for (qsizetype end = 0; (end = text.string().indexOf(u'\n')) >= 0;)
        text.replaceCharacters(end, 1, QString());
    return TextDump::of(text);
}

} // namespace

class TestLibreOffice : public QObject
{
    Q_OBJECT

private:
    template <typename Writer, typename... Properties>
    void write(const QString &name, const ZELKAttributedString &text, const Properties &...properties)
    {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        Writer writer(file, properties...);
        writer.announce(text);
        writer.append(text);
        QVERIFY(writer.finish());
    }

    QByteArray converted(const QString &name, const QString &suffix, const QString &filter)
    {
        const QString profile = u"-env:UserInstallation=file://"_s + m_folder.filePath(u"profile"_s);
        QProcess::execute(office, {profile, u"--headless"_s, u"--convert-to"_s, suffix + filter,
                                   u"--outdir"_s, m_folder.filePath(u"out"_s), m_folder.filePath(name)});
        return readFile(m_folder.filePath(u"out/"_s + QFileInfo(name).baseName() + u'.' + suffix));
    }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(office).isEmpty())
            QSKIP("It is not installed.");
    }

    void characters()
    {
        const ZELKAttributedString text(TextSamples::withAstral(), TextSamples::usual());
        write<ZELKWordFileWriter>(u"text.doc"_s, text);
        write<ZELKRtfFileWriter>(u"other.rtf"_s, text);
        for (const QString &name : {u"text.doc"_s, u"other.rtf"_s}) {
            const QString read = QString::fromUtf8(converted(name, u"txt"_s, u":Text (encoded):UTF8"_s));
            QCOMPARE(read.trimmed().remove(QChar(0xFEFF)),
                     QString(text.string()).replace(QChar(0x2028), u'\n'));
        }
    }

    void looksOfDocuments()
    {
        const ZELKWordFileWriter::Properties properties{u"History of é"_s, u"Lullwatch"_s};
        write<ZELKWordFileWriter>(u"looks.doc"_s, looks(), properties);
        const QByteArray rtf = converted(u"looks.doc"_s, u"rtf"_s, {});
        QVERIFY(rtf.contains("{\\title History of \\u233\\'e9}"));
        const auto result = ZELKRtfReader::read(rtf);
        QVERIFY(result.text && !result.error);
        QCOMPARE(dump(*result.text), dump(looks()));
    }
};

QTEST_MAIN(TestLibreOffice)
#include "tst_libreoffice.moc"
