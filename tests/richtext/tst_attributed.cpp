// Texts with attributes: their changes, their colours, and how they are drawn.
#include "Rows.h"
#include "TextDump.h"
#include "ZELKTextDocument.h"
#include "ZELKTextLines.h"

#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace {

ZELKTextAttributes sized(double points)
{
    ZELKTextAttributes attributes;
    attributes.pointSize = points;
    return attributes;
}

/// "<1>ab<2>cd<3>ef"
ZELKAttributedString sample()
{
    ZELKAttributedString text(u"ab"_s, sized(1));
    text.append(u"cd"_s, sized(2));
    text.append(ZELKAttributedString(u"ef"_s, sized(3)));
    return text;
}

QImage drawn(const ZELKAttributedString &text, double width = 120.0)
{
    QImage image(200, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    ZELKTextLines::draw(painter, {10.0, 5.0, width, 30.0}, text, ZELKTextColours::forPaper());
    return image;
}

QImage drawn(const QString &text, double width = 120.0)
{
    return drawn(ZELKAttributedString(text, sized(12)), width);
}

double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

} // namespace

class TestAttributed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replaces_data()
    {
        const Rows<int, int, QString, QString> row; // where, how much, by what; what comes of it
        row("within a run", 0, 1, "XY", "<1>XYb<2>cd<3>ef");
        row("across runs, in the look of the first", 1, 4, "X", "<1>aX<3>f");
        row("a whole run", 2, 2, "X", "<1>ab<2>X<3>ef");
        row("everything", 0, 6, "X", "<1>X");
        row("by nothing", 1, 2, "", "<1>a<2>d<3>ef");
        row("an end", 4, 99, "X", "<1>ab<2>cd<3>X");
        row("nothing, at a seam", 2, 0, "X", "<1>abX<2>cd<3>ef");
        row("nothing, at the beginning", 0, 0, "X", "<1>Xab<2>cd<3>ef");
        row("nothing, beyond the end", 99, 5, "X", "<1>ab<2>cd<3>efX");
    }
    void replaces()
    {
        const auto [position, length, with, expected] = Rows<int, int, QString, QString>::fetch();
        ZELKAttributedString text = sample();
        text.replaceCharacters(position, length, with);
        QCOMPARE(TextDump::of(text), expected);
    }

    void takesPartsAndPutsThemTogether()
    {
        const ZELKAttributedString text = sample();
        QCOMPARE(TextDump::of(text.substring(1, 4)), u"<1>b<2>cd<3>e"_s);
        QCOMPARE(TextDump::of(text.substring(-3, 2)), u""_s);
        ZELKAttributedString whole = text.substring(0, 3);
        whole.append(text.substring(3, 99));
        QVERIFY(whole == text);
        whole.append(whole);
        QCOMPARE(TextDump::of(whole), u"<1>ab<2>cd<3>ef<1>ab<2>cd<3>ef"_s);
        whole.changeAttributes(1, 9, [](ZELKTextAttributes &one) { one.pointSize = 5; });
        QCOMPARE(TextDump::of(whole), u"<1>a<5>bcdefabcd<3>ef"_s);
        QCOMPARE(TextDump::of(text.scaled(2)), u"<2>ab<4>cd<6>ef"_s);
    }

    void dimmedTextCanBeRead()
    {
        for (const auto &[base, text, faint] :
             {std::tuple(0xffffff, 0x000000, 0xbebebe), std::tuple(0x1e1e1e, 0xffffff, 0x404040),
              std::tuple(0x000000, 0xeeeeee, 0x999999)}) {
            QPalette palette;
            palette.setColor(QPalette::Base, QColor(QRgb(base)));
            palette.setColor(QPalette::Text, QColor(QRgb(text)));
            palette.setColor(QPalette::Disabled, QPalette::Text, QColor(QRgb(faint)));
            const QColor dimmed = ZELKTextColours::fromPalette(palette).dimmed;
            const auto [dark, light] =
                std::minmax({luminance(dimmed), luminance(palette.color(QPalette::Base))});
            const double contrast = (light + 0.05) / (dark + 0.05);
            QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
            QVERIFY(dimmed != palette.color(QPalette::Text));
            palette.setColor(QPalette::HighlightedText, Qt::cyan);
            const ZELKTextColours selected = ZELKTextColours::fromPalette(palette, true);
            QCOMPARE(selected.colour(ZELKTextColour::rgb(1, 2, 3)), QColor(Qt::cyan));
        }
    }

    void cutsALineWhereItEnds()
    {
        for (const QString &text :
             {u"Weather in the mountains, every day"_s, u"שלום עולם שלום עולם שלום"_s}) {
            const QImage cut = drawn(text);
            bool isFound = false;
            for (qsizetype length = 1; length < text.size(); ++length)
                isFound = isFound || drawn(text.left(length) + QChar(0x2026)) == cut;
            QVERIFY(isFound);
            QVERIFY(drawn(text, 0.0) != cut);
        }
        const QString endless(100000, u'w');
        QCOMPARE(drawn(endless), drawn(endless.left(500)));
    }

    void drawsAnythingOnItsLine()
    {
        QCOMPARE(drawn(u"a\u0007b\u2028c\rd"_s), drawn(u"a b c d"_s));
        QCOMPARE(drawn(u"a\u202Ebc\u2066d"_s), drawn(u"a\u200Bbc\u200Bd"_s));
        QVERIFY(drawn(u"one\ntwo"_s) != drawn(u"one two"_s));
        // One look is drawn as two that look alike are.
        ZELKTextAttributes look = sized(12);
        look.bold = look.underline = true;
        look.colour = ZELKTextColour::rgb(255, 0, 0);
        const ZELKAttributedString one(u"one look"_s, look);
        ZELKAttributedString two(u"one "_s, look);
        look.paragraph.leftIndent = 9.0; // the first character's style is the line's
        two.append(u"look"_s, look);
        QCOMPARE(drawn(one), drawn(two));
        QVERIFY(drawn(one) != drawn(ZELKAttributedString(one.string(), sized(12))));
        QCOMPARE(drawn(QString(100, u'\n') + u"x"_s), drawn(u"\n\n"_s)); // beyond the lower edge
    }

    void laysParagraphsOut()
    {
        ZELKTextAttributes spaced = sized(10);
        const double line = ZELKTextDocument::height(ZELKAttributedString(u"x"_s, spaced));
        QCOMPARE(ZELKTextDocument::height(ZELKAttributedString(u"x\ny\n"_s, spaced)), 2 * line);
        spaced.paragraph.spacingAfter = 36.0;
        const ZELKAttributedString text(u"x\ny"_s, spaced);
        QTextDocument document;
        ZELKTextDocument::fill(document, text, ZELKTextColours::forPaper(), 144.0);
        QCOMPARE(document.firstBlock().blockFormat().bottomMargin(), 72.0);
        QCOMPARE(document.toPlainText(), text.string());
        QCOMPARE(ZELKTextDocument::height(text),
                 2 * line + 2 * 36.0 * ZELKTextDocument::screenDotsPerInch() / 72.0);
    }
};

QTEST_MAIN(TestAttributed)
#include "tst_attributed.moc"
