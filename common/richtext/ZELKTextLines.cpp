#include "ZELKTextLines.h"

#include "ZELKCharacters.h"
#include "ZELKTextDocument.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

using ZELKTextLines::longestLine;

constexpr int mostLines = 16;
constexpr QChar ellipsis(0x2026);

QString safe(QString text)
{
    constexpr QChar nothing(0x200B); // a space without width
    for (QChar &character : text) {
        if (ZELKCharacters::turnsDirection(character))
            character = nothing;
        else if (!ZELKCharacters::isPlain(character) && character != QLatin1Char('\t'))
            character = QLatin1Char(' ');
    }
    return text;
}

/// A paragraph as one line: its text and style, and what its own font makes of its height.
struct Line
{
    ZELKAttributedString text;
    QTextBlockFormat format;
    double ascent = 0.0;
    double height = 0.0; ///< without the spacing around it
};

Line lineOf(const ZELKAttributedString &text, const ZELKTextAttributes &attributes)
{
    Line line{text,
              ZELKTextDocument::blockFormat(attributes.paragraph, ZELKTextDocument::screenDotsPerInch())};
    const QFontMetricsF metrics(ZELKTextDocument::font(attributes));
    line.ascent = metrics.ascent();
    line.height = line.format.lineHeight(metrics.lineSpacing(), 1.0);
    return line;
}

std::vector<Line> linesOf(const ZELKAttributedString &text)
{
    std::vector<Line> lines;
    for (qsizetype start = 0; start < text.length() && int(lines.size()) < mostLines;) {
        const qsizetype lineEnd = text.string().indexOf(QLatin1Char('\n'), start);
        const qsizetype end = lineEnd < 0 ? text.length() : lineEnd;
        lines.push_back(
            lineOf(text.substring(start, std::min(end - start, longestLine)), text.attributesAt(start)));
        start = end + 1;
    }
    return lines;
}

double heightOf(const std::vector<Line> &lines)
{
    double height = 0.0;
    for (const Line &line : lines)
        height += line.format.topMargin() + line.height + line.format.bottomMargin();
    return height;
}

/// One line of a text within a width.
class LaidOut
{
public:
    LaidOut(const ZELKAttributedString &text, const QTextBlockFormat &format, const ZELKTextColours &colours,
            double width, QTextOption::WrapMode wrap)
        : m_layout(safe(text.string()))
        , m_pen(colours.text)
    {
        QTextOption option(format.alignment());
        option.setWrapMode(wrap);
        option.setTabs(format.tabPositions());
        m_layout.setTextOption(option);
        if (text.runs().size() == 1) { // as most are; a layout without formats takes two thirds of the time
            m_layout.setFont(ZELKTextDocument::font(text.runs().front().attributes));
            m_pen = colours.colour(text.runs().front().attributes.colour);
        } else {
            m_layout.setFormats(formats(text, colours));
        }
        m_layout.beginLayout();
        m_line = m_layout.createLine();
        if (m_line.isValid())
            m_line.setLineWidth(std::max(width, 0.0));
        m_layout.endLayout();
    }

    double naturalWidth() const { return m_line.isValid() ? m_line.naturalTextWidth() : 0.0; }
    qsizetype length() const { return m_line.isValid() ? m_line.textLength() : 0; }
    void draw(QPainter &painter, QPointF place, double ascent)
    {
        if (!m_line.isValid())
            return;
        m_line.setPosition({0.0, std::round(ascent - m_line.ascent())});
        painter.setPen(m_pen);
        m_layout.draw(&painter, place);
    }

private:
    static QList<QTextLayout::FormatRange> formats(const ZELKAttributedString &text,
                                                   const ZELKTextColours &colours)
    {
        QList<QTextLayout::FormatRange> ranges;
        int start = 0;
        for (const ZELKAttributedString::Run &run : text.runs()) {
            ranges.append({start, int(run.length), ZELKTextDocument::charFormat(run.attributes, colours)});
            start += int(run.length);
        }
        return ranges;
    }

    QTextLayout m_layout;
    QTextLine m_line;
    QColor m_pen;
};

void drawLine(QPainter &painter, const QRectF &bounds, const Line &line, const ZELKTextColours &colours)
{
    const double left = line.format.leftMargin() + line.format.textIndent();
    const double width = bounds.width() - left - line.format.rightMargin();
    const QPointF place = bounds.topLeft() + QPointF(left, 0.0);
    LaidOut whole(line.text, line.format, colours, width, QTextOption::NoWrap);
    if (whole.naturalWidth() <= width && line.text.length() < longestLine) {
        whole.draw(painter, place, line.ascent);
        return;
    }
    // A line that may break anywhere ends behind the last character that fits, whatever its direction.
    const ZELKTextAttributes end = line.text.attributesAt(line.text.length() - 1);
    const double dots = QFontMetricsF(ZELKTextDocument::font(end)).horizontalAdvance(ellipsis);
    const LaidOut fitting(line.text, line.format, colours, width - dots, QTextOption::WrapAnywhere);
    ZELKAttributedString cut = line.text.substring(0, fitting.length());
    cut.append(ellipsis, cut.isEmpty() ? end : cut.attributesAt(cut.length() - 1));
    LaidOut(cut, line.format, colours, width, QTextOption::NoWrap).draw(painter, place, line.ascent);
}

} // namespace

void ZELKTextLines::draw(QPainter &painter, const QRectF &bounds, const ZELKAttributedString &text,
                         const ZELKTextColours &colours)
{
    const std::vector<Line> lines = linesOf(text);
    QRectF place = bounds;
    place.setTop(bounds.top() + std::floor(std::max((bounds.height() - heightOf(lines)) / 2.0, 0.0)));
    painter.save();
    painter.setClipRect(bounds, Qt::IntersectClip);
    for (const Line &line : lines) {
        place.setTop(place.top() + line.format.topMargin());
        if (place.top() >= bounds.bottom())
            break;
        drawLine(painter, place, line, colours);
        place.setTop(place.top() + line.height + line.format.bottomMargin());
    }
    painter.restore();
}
