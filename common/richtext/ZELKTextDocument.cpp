#include "ZELKTextDocument.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTextBlock>
#include <QTextCursor>

namespace {

using Paragraph = ZELKParagraphStyle;

constexpr double pointsInInch = 72.0;

Qt::Alignment alignment(Paragraph::Alignment alignment)
{
    switch (alignment) {
    case Paragraph::Alignment::Left:
        return Qt::AlignLeft | Qt::AlignAbsolute;
    case Paragraph::Alignment::Right:
        return Qt::AlignRight | Qt::AlignAbsolute;
    case Paragraph::Alignment::Centre:
        return Qt::AlignHCenter;
    case Paragraph::Alignment::Justified:
        return Qt::AlignJustify;
    case Paragraph::Alignment::Natural:
        break;
    }
    return Qt::AlignLeft;
}

QTextOption::TabType tabType(ZELKTabStop::Kind kind)
{
    switch (kind) {
    case ZELKTabStop::Kind::Centre:
        return QTextOption::CenterTab;
    case ZELKTabStop::Kind::Right:
        return QTextOption::RightTab;
    case ZELKTabStop::Kind::Decimal:
        return QTextOption::DelimiterTab;
    case ZELKTabStop::Kind::Left:
        break;
    }
    return QTextOption::LeftTab;
}

void setLineHeight(QTextBlockFormat &format, const Paragraph &style, double scale)
{
    switch (style.lineSpacingKind) {
    case Paragraph::LineSpacing::Multiple:
        format.setLineHeight(style.lineSpacing * 100.0, QTextBlockFormat::ProportionalHeight);
        break;
    case Paragraph::LineSpacing::AtLeast:
        format.setLineHeight(style.lineSpacing * scale, QTextBlockFormat::MinimumHeight);
        break;
    case Paragraph::LineSpacing::Exactly:
        format.setLineHeight(style.lineSpacing * scale, QTextBlockFormat::FixedHeight);
        break;
    case Paragraph::LineSpacing::Natural:
        break;
    }
}

} // namespace

double ZELKTextDocument::screenDotsPerInch()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->logicalDotsPerInchY() : 96.0;
}

QFont ZELKTextDocument::font(const ZELKTextAttributes &attributes)
{
    QFont font = QGuiApplication::font();
    if (!attributes.family.isEmpty())
        font.setFamilies({attributes.family});
    if (attributes.pointSize > 0.0)
        font.setPointSizeF(attributes.pointSize);
    font.setBold(attributes.bold || (attributes.family.isEmpty() && font.bold()));
    font.setItalic(attributes.italic);
    font.setUnderline(attributes.underline);
    return font;
}

QTextCharFormat ZELKTextDocument::charFormat(const ZELKTextAttributes &attributes,
                                             const ZELKTextColours &colours)
{
    QTextCharFormat format;
    format.setFont(font(attributes));
    if (colours.isUniform || attributes.colour.role != ZELKTextColour::Role::Inherited)
        format.setForeground(colours.colour(attributes.colour));
    return format;
}

QTextBlockFormat ZELKTextDocument::blockFormat(const ZELKParagraphStyle &style, double dotsPerInch)
{
    const double scale = dotsPerInch / pointsInInch;
    QTextBlockFormat format;
    format.setAlignment(alignment(style.alignment));
    format.setTextIndent(style.firstLineIndent * scale);
    format.setLeftMargin(style.leftIndent * scale);
    format.setRightMargin(style.rightIndent * scale);
    format.setTopMargin(style.spacingBefore * scale);
    format.setBottomMargin(style.spacingAfter * scale);
    format.setNonBreakableLines(style.lineBreak == Paragraph::LineBreak::TruncateTail);
    setLineHeight(format, style, scale);
    QList<QTextOption::Tab> tabs;
    for (const ZELKTabStop &stop : style.tabStops)
        tabs.append(QTextOption::Tab(stop.position * scale, tabType(stop.kind), QLatin1Char('.')));
    format.setTabPositions(tabs);
    return format;
}

void ZELKTextDocument::fill(QTextDocument &document, const ZELKAttributedString &text,
                            const ZELKTextColours &colours, double dotsPerInch)
{
    document.clear();
    document.setUndoRedoEnabled(false);
    document.setDocumentMargin(0.0);
    document.setDefaultFont(QGuiApplication::font());
    QTextCursor cursor(&document);
    bool startsParagraph = true;
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        const QTextCharFormat format = charFormat(run.attributes, colours);
        const qsizetype end = start + run.length;
        while (start < end) {
            if (startsParagraph) {
                if (start > 0)
                    cursor.insertBlock();
                cursor.setBlockFormat(blockFormat(run.attributes.paragraph, dotsPerInch));
                cursor.setBlockCharFormat(format);
            }
            const qsizetype lineEnd = text.string().indexOf(QLatin1Char('\n'), start);
            startsParagraph = lineEnd >= 0 && lineEnd < end;
            cursor.insertText(text.string().mid(start, (startsParagraph ? lineEnd : end) - start), format);
            start = startsParagraph ? lineEnd + 1 : end;
        }
    }
}

double ZELKTextDocument::height(const ZELKAttributedString &text)
{
    QTextDocument document;
    fill(document, text, ZELKTextColours::forPaper());
    // A document has no spacing around it, but a text has.
    return document.firstBlock().blockFormat().topMargin() + document.size().height() +
           document.lastBlock().blockFormat().bottomMargin();
}
