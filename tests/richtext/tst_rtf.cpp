// Rich text files: what is read of them, what is said of damaged ones, and that what was written comes back.
#include "NamedRows.h"
#include "TextDump.h"
#include "ZELKRtfReader.h"
#include "ZELKRtfWriter.h"

using namespace Qt::StringLiterals;
using Code = ZELKRtfError::Code;

namespace {

using BodyRows = NamedRows<QByteArray, const char *>;

void addLooks(const BodyRows &row)
{
    row("nothing set", "Hello", "<>Hello");
    row("groups forget", "a{\\b b}\\b c\\b0 d", "<>a<b>bc<>d");
    row("sizes", "\\fs20 a\\fs21 b\\fs0 c", "<10>a<10.5>b<>c");
    row("all at once", "\\b\\i\\ul\\fs40 a\\plain b\\uldb c\\ulnone d", "<20 b i u>a<>b<u>c<>d");
    row("fonts, by their own code pages",
        "{\\fonttbl{\\f0\\fswiss Arial;}{\\f3\\fcharset204 {\\*\\falt X}T\\'e5\\u8364?;}}"
        "a\\f3 \\'e5\\f0 \\'e5\\f7 \\'e5",
        "<Arial>a<Tе€>е<Arial>å<>å");
    row("fonts without groups", "{\\fonttbl\\f0\\fnil A A;\\f1 B;}\\f1 x{\\plain y}", "<B>x<A A>y");
    row("colours",
        "{\\colortbl;\\red255\\blue1;\\red300;\\ctextone\\ctint138\\red9;\\ctextone;}\\cf1 a\\cf2 b\\cf3 c"
        "\\cf4 d\\cf5 e\\cf0 f\\cf-1 g",
        "<#ff0001>a<#ff0000>b<dim>c<text>d<>efg");
    row("paragraphs",
        "\\pard\\qc\\li720\\fi-360\\ri20\\sb100\\sa200\\sl360\\slmult1\\tqr\\tx1440\\tx2880 a\\par b\\par"
        "\\pard\\qj c",
        "<centre li36 fi-18 ri1 sb5 sa10 x1.5 tr72 t144>a¶b¶<justified>c");
    row("line spacing", "\\sl240 a\\par\\sl-300 b\\par\\sl0 c", "<least12>a¶<exactly15>b¶<>c");
    row("the end of a paragraph decides", "\\ql a{\\b b}\\qr c\\par d", "<right>a<b right>b<right>c¶d");
    row("absurd numbers", "\\fs99999999999\\li-99999999999 a", "<1638 li-5669.3>a");
}

void addTexts(const BodyRows &row)
{
    row("names and symbols", "\\~\\_\\-\\emdash\\bullet x\\line\\tab\\{\\}\\\\\\\ny\\\rz",
        "<>\u00A0\u2011\u00AD—•x\u2028→{}\\¶y¶z");
    row("lines end anywhere", QByteArray("a\r\nb\nc\0d", 8), "<>abcd");
    row("Unicode", "\\u8364?\\u-10179?\\u-8704?\\uc0\\u252\\uc2\\u223 ss{\\uc0\\u946}x", "<>€😀üßβx");
    row("what stands for other readers", "\\u8212\\'97a\\u8212\\emdash b{\\u8212}c\\uc3\\u8212 --{d}",
        "<>—a—b—c—d");
    row("half a character", "\\u-10179?x\\u-8704?", "<>\uFFFDx\uFFFD");
    row("Western", "\\'80\\'e9\\'81\351", "<>€é\uFFFDé");
    row("Japanese", "{\\fonttbl{\\f0\\fcharset128 M;}}\\'93\\'fa\\'96{\\b\\'93\\'fa}", "<M>日\uFFFD<M b>日");
    row("Cyrillic", "\\ansicpg1251 \\'cf", "<>П");
    row("Macintosh", "\\mac\\'8a", "<>ä");
    row("a code page of nobody", "\\ansicpg4711\\'e9", "<>é");
    row("other purposes",
        "{\\info{\\title T}}{\\*\\unknown x{y}}{\\header h}{\\stylesheet{\\s1 S;}}{\\info{\\fonttbl"
        "{\\f0 F;}}}{\\field{\\*\\fldinst X}{\\fldrslt a}}{\\pict\\bin3 }}}}b{\\unknown c}\\v d\\v0 e",
        "<>abce");
    row("tables", "a\\cell b\\cell\\row", "<>a→b→¶");
}

} // namespace

class TestRtf : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        const BodyRows row("body", "text");
        addLooks(row);
        addTexts(row);
    }

    void reads()
    {
        QFETCH(QByteArray, body);
        const auto result = ZELKRtfReader::read("{\\rtf1\\ansi\\deff0 " + body + "}");
        QVERIFY2(!result.error, result.error ? result.error->what() : "");
        QTEST(TextDump::of(*result.text), "text");
    }

    void refuses_data()
    {
        const NamedRows<QByteArray, int, const char *> row("bytes", "code", "text");
        row("nothing", "", int(Code::NotRichText), nullptr);
        row("plain text", "hello", int(Code::NotRichText), nullptr);
        row("another word", "{\\rtg1 x}", int(Code::NotRichText), nullptr);
        row("too many bytes", QByteArray("{\\rtf1 ").leftJustified(ZELKRtfReader::mostBytes + 1, 'x'),
            int(Code::TooLarge), nullptr);
        row("too deep", "{\\rtf1 " + QByteArray(100000, '{'), int(Code::TooDeep), nullptr);
        row("no end", "{\\rtf1 a{\\b b}", int(Code::Truncated), "<>a<b>b");
        row("ends within a control", "{\\rtf1 a\\", int(Code::Truncated), "<>a");
        row("ends within a byte", "{\\rtf1 a\\'4", int(Code::Truncated), "<>a");
        row("ends within data", "{\\rtf1 a\\bin9 x}", int(Code::Truncated), "<>a");
        row("one end too many", "{\\rtf1 a}\n}", int(Code::Unbalanced), "<>a");
        row("no byte", "{\\rtf1 a\\'zz}", int(Code::MalformedByte), "<>azz");
        row("something behind it", "{\\rtf1 a} x", 0, "<>a");
    }

    void refuses()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        const auto result = ZELKRtfReader::read(bytes);
        QTEST(result.error ? int(result.error->code()) : 0, "code");
        QCOMPARE(result.text.has_value(), !text.isNull());
        QCOMPARE(TextDump::of(result.text.value_or(ZELKAttributedString())), text.isNull() ? u""_s : text);
    }

    void writes()
    {
        ZELKTextAttributes heading;
        heading.family = u"Söhne"_s;
        heading.pointSize = 13.5;
        heading.bold = true;
        heading.colour = ZELKTextColour::rgb(255, 0, 16);
        ZELKAttributedString text(u"a\\é😀\t"_s, heading);
        heading.colour = ZELKTextColour::of(ZELKTextColour::Role::DisabledControlText);
        heading.paragraph.alignment = ZELKParagraphStyle::Alignment::Right;
        text.append(u"b\n{c}"_s, heading);
        QCOMPARE(ZELKRtfWriter::write(text),
                 QByteArray(
                     "{\\rtf1\\ansi\\ansicpg1252\\uc1\n{\\fonttbl{\\f1\\fnil\\fcharset0 S\\u246\\'3fhne;}}\n"
                     "{\\colortbl;\\red255\\green0\\blue16;"
                     "\\ctextone\\ctint138\\cshade255\\red117\\green117\\blue117;}\n"
                     "{\\f1\\fs27\\b\\cf1 a\\\\\\u233\\'3f\\u-10179\\'3f\\u-8704\\'3f\\tab "
                     "}{\\f1\\fs27\\b\\cf2 b\\par\n}"
                     "\\pard\\qr\n{\\f1\\fs27\\b\\cf2 \\{c\\}}}\n"));
    }

    void readsWhatWasWritten()
    {
        ZELKTextAttributes look;
        look.pointSize = 12.0;
        ZELKAttributedString text(u"usual \u0007\u00A0\u2028 {\\'41}\n"_s, look);
        look.family = u"DejaVu Sans"_s;
        look.italic = true;
        look.colour = ZELKTextColour::of(ZELKTextColour::Role::ControlText);
        look.paragraph = {ZELKParagraphStyle::Alignment::Justified,
                          {},
                          ZELKParagraphStyle::LineSpacing::Exactly,
                          14.05,
                          -18.0,
                          36.0,
                          1.5,
                          5.0,
                          0.05,
                          {{72.0, ZELKTabStop::Kind::Decimal}, {144.0}}};
        text.append(u"日本\t"_s, look);
        look.underline = true;
        look.pointSize = 7.5;
        text.append(u"e̊\n\n"_s, look);
        look.paragraph.lineSpacingKind = ZELKParagraphStyle::LineSpacing::Multiple;
        look.paragraph.lineSpacing = 1.25;
        look.colour = ZELKTextColour::rgb(0, 0, 0);
        text.append(u"end"_s, look);
        const auto result = ZELKRtfReader::read(ZELKRtfWriter::write(text));
        QVERIFY(!result.error);
        QCOMPARE(TextDump::of(*result.text), TextDump::of(text));
        QVERIFY(*result.text == text);
    }
};

QTEST_MAIN(TestRtf)
#include "tst_rtf.moc"
