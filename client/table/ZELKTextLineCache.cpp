#include "ZELKTextLineCache.h"

#include "ZELKCharacters.h"
#include "ZELKTextDocument.h"
#include "ZELKTextLines.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr QChar ellipsis(0x2026);

bool isPlain(const ZELKAttributedString &text)
{
    return text.runs().size() == 1 && !text.runs().front().attributes.underline &&
           text.length() < ZELKTextLines::longestLine &&
           std::all_of(text.string().begin(), text.string().end(),
                       [](QChar one) { return ZELKCharacters::isPlain(one); });
}

/// One line of a text, laid out for a width.
class LaidOut
{
public:
    LaidOut(const QString &text, const QFont &font, QTextOption option, double width,
            QTextOption::WrapMode wrap)
        : m_layout(text, font)
    {
        option.setWrapMode(wrap);
        m_layout.setTextOption(option);
        m_layout.setCacheEnabled(true); // else the characters would be looked up again for their places
        m_layout.beginLayout();
        m_line = m_layout.createLine();
        m_line.setLineWidth(std::max(width, 0.0));
        m_layout.endLayout();
    }
    double naturalWidth() const { return m_line.naturalTextWidth(); }
    int length() const { return m_line.textLength(); }
    double ascent() const { return m_line.ascent(); }
    QList<QGlyphRun> glyphs() const { return m_layout.glyphRuns(); }

private:
    QTextLayout m_layout;
    QTextLine m_line;
};

} // namespace

void ZELKTextLineCache::draw(QPainter &painter, const QRectF &bounds, const ZELKAttributedString &text,
                             const ZELKTextColours &colours)
{
    if (!isPlain(text)) {
        ZELKTextLines::draw(painter, bounds, text, colours);
        return;
    }
    const ZELKTextAttributes &attributes = text.runs().front().attributes;
    follow(attributes);
    const Line &laid = line({text.string(), bounds.size()});
    painter.save();
    painter.setClipRect(bounds, Qt::IntersectClip);
    painter.setPen(colours.colour(attributes.colour));
    for (const QGlyphRun &run : laid.glyphs)
        painter.drawGlyphRun(bounds.topLeft() + laid.place, run);
    painter.restore();
}

void ZELKTextLineCache::follow(const ZELKTextAttributes &attributes)
{
    const QFont standard = QGuiApplication::font();
    const double dotsPerInch = ZELKTextDocument::screenDotsPerInch();
    if (standard.isCopyOf(m_look.standard) && dotsPerInch == m_look.dotsPerInch &&
        attributes == m_look.attributes &&
        m_look.option.textDirection() == QGuiApplication::layoutDirection())
        return;
    m_lines.clear();
    const QFont font = ZELKTextDocument::font(attributes);
    const QFontMetricsF metrics(font);
    const QTextBlockFormat format = ZELKTextDocument::blockFormat(attributes.paragraph, dotsPerInch);
    m_look = {standard,
              dotsPerInch,
              attributes,
              font,
              metrics.ascent(),
              metrics.horizontalAdvance(ellipsis),
              {format.leftMargin() + format.textIndent(), format.topMargin(), format.rightMargin(),
               format.bottomMargin()},
              format.lineHeight(metrics.lineSpacing(), 1.0),
              QTextOption(format.alignment())}; // which takes the program's direction
}

const ZELKTextLineCache::Line &ZELKTextLineCache::line(const Key &key)
{
    if (const Line *known = m_lines.object(key))
        return *known;
    m_lines.insert(key, new Line(laidOut(key)));
    return *m_lines.object(key);
}

ZELKTextLineCache::Line ZELKTextLineCache::laidOut(const Key &key) const
{
    const QMarginsF &margins = m_look.margins;
    const double width = key.size.width() - margins.left() - margins.right();
    const double air = key.size.height() - margins.top() - m_look.height - margins.bottom();
    const double top = std::floor(std::max(air / 2.0, 0.0)) + margins.top();
    if (top >= key.size.height())
        return {};
    const auto placed = [&](const LaidOut &laid) -> Line {
        return {{margins.left(), top + std::round(m_look.ascent - laid.ascent())}, laid.glyphs()};
    };
    const LaidOut whole(key.text, m_look.font, m_look.option, width, QTextOption::NoWrap);
    if (whole.naturalWidth() <= width)
        return placed(whole);
    // A line that may break anywhere ends behind the last character that fits, whatever its direction.
    const LaidOut fitting(key.text, m_look.font, m_look.option, width - m_look.dots,
                          QTextOption::WrapAnywhere);
    return placed(
        {key.text.left(fitting.length()) + ellipsis, m_look.font, m_look.option, width, QTextOption::NoWrap});
}
