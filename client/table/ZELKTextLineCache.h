#pragma once

#include "ZELKTextAttributes.h"

#include <QCache>
#include <QFont>
#include <QGlyphRun>
#include <QRectF>
#include <QTextOption>

class QPainter;
class ZELKAttributedString;
struct ZELKTextColours;

/// Draws texts as ZELKTextLines does, to the pixel, and remembers where the characters of the last ones
/// stood: laying a line out takes several times as long as drawing it.
///
/// It knows lines of one look, as a column of a table has them; with the first text of another look it begins
/// anew. Texts of several paragraphs or looks, and those with characters that are not drawn as they are, it
/// leaves to ZELKTextLines.
class ZELKTextLineCache
{
public:
    void draw(QPainter &painter, const QRectF &bounds, const ZELKAttributedString &text,
              const ZELKTextColours &colours);

private:
    /// What all lines have in common.
    struct Look
    {
        QFont standard; ///< of the program, which fonts without a name follow
        double dotsPerInch = 0.0;
        ZELKTextAttributes attributes;
        QFont font;
        double ascent = 0.0;
        double dots = 0.0; ///< how wide those are that stand for what is cut off
        QMarginsF margins;
        double height = 0.0; ///< without the margins
        QTextOption option;
    };
    struct Key
    {
        QString text;
        QSizeF size;

        bool operator==(const Key &) const = default;
        friend size_t qHash(const Key &key, size_t seed = 0)
        {
            return qHashMulti(seed, key.text, key.size.width(), key.size.height());
        }
    };
    /// Places are counted from the top left of what the line is drawn in.
    struct Line
    {
        QPointF place;
        QList<QGlyphRun> glyphs;
    };

    void follow(const ZELKTextAttributes &attributes);
    const Line &line(const Key &key);
    Line laidOut(const Key &key) const;

    Look m_look;
    /// As many as no screen has rows; each takes some 1 kB.
    QCache<Key, Line> m_lines{150};
};
