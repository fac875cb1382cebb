#include "ZELKPaperText.h"

#include "ZELKCharacters.h"
#include "ZELKPaperFont.h"
#include "ZELKTextColours.h"
#include "ZELKTextLines.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>
#include <QTextLayout>

#include <algorithm>

namespace {

/// As much as a line can show, without what breaks lines or turns the direction of what follows. No character
/// changes its place.
QString safeLine(const QString &text)
{
    constexpr QChar nothing(0x200B); // a space without width
    QString line = text.left(ZELKTextLines::longestLine);
    for (QChar &character : line) {
        if (ZELKCharacters::turnsDirection(character))
            character = nothing;
        else if (character.isSpace() || ZELKCharacters::isControl(character))
            character = QLatin1Char(' ');
    }
    return line;
}

/// Marks can be piled up on a letter over the whole page.
bool hasMarks(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar character) {
        return character.category() == QChar::Mark_NonSpacing || character.isSurrogate();
    });
}

/// What is written for a dark window may be too light for paper.
QColor onPaper(const ZELKTextColour &colour)
{
    const ZELKTextColours paper = ZELKTextColours::forPaper();
    if (colour.role != ZELKTextColour::Role::Fixed)
        return paper.colour(colour);
    QPalette white;
    white.setColor(QPalette::Base, Qt::white);
    white.setColor(QPalette::Text, paper.text);
    white.setColor(QPalette::Disabled, QPalette::Text, QColor(colour.fixed));
    return ZELKTextColours::fromPalette(white).dimmed;
}

/// `length` is that of the line, whose end may have given way to an ellipsis.
QList<QTextLayout::FormatRange> formats(const ZELKAttributedString &text, qsizetype length)
{
    QList<QTextLayout::FormatRange> ranges;
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        QTextCharFormat format;
        format.setForeground(onPaper(run.attributes.colour));
        if (run.attributes.underline)
            format.setFontUnderline(true);
        ranges.append({int(start), int(std::min(run.length, length - start)), format});
        start += run.length;
        if (start >= length)
            break;
    }
    return ranges;
}

QTextLine layOut(QTextLayout &layout, double width)
{
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid())
        line.setLineWidth(width);
    layout.endLayout();
    return line;
}

} // namespace

void ZELKPaperText::draw(QPainter &painter, const QRectF &rect, const ZELKAttributedString &text,
                         const ZELKPaperFont &font, Qt::Alignment alignment)
{
    constexpr double dots = ZELKPaperFont::dotsInPoint;
    const double width = rect.width() * dots;
    if (text.isEmpty() || width <= 0.0)
        return;
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::NoWrap);
    QTextLayout layout(safeLine(text.string()), font.font());
    layout.setTextOption(option);
    layout.setFormats(formats(text, layout.text().size()));
    QTextLine line = layOut(layout, width);
    if (line.naturalTextWidth() > width) {
        layout.setText(QFontMetricsF(font.font()).elidedText(layout.text(), Qt::ElideRight, width));
        layout.setFormats(formats(text, layout.text().size()));
        line = layOut(layout, width);
    }
    if (!line.isValid())
        return;
    // The letters of each line stand at the same height, whichever fonts they are taken from.
    const double above = (rect.height() - font.lineHeight()) / 2.0 + font.ascent();
    line.setPosition({0.0, above * dots - line.ascent()});
    painter.save();
    if (hasMarks(layout.text()))
        painter.setClipRect(rect, Qt::IntersectClip);
    painter.translate(rect.topLeft());
    painter.scale(1.0 / dots, 1.0 / dots);
    layout.draw(&painter, {});
    painter.restore();
}
