#include "ZELKPaperFont.h"

#include "ZELKSystemFonts.h"

#include <QFontMetricsF>
#include <QRawFont>
#include <QtEndian>

#include <algorithm>

namespace {

QFont fontInDots(double pointSize, bool bold)
{
    QFont font(ZELKSystemFonts::family());
    font.setPixelSize(qRound(pointSize * ZELKPaperFont::dotsInPoint));
    font.setBold(bold);
    // Next to nothing, but letters with space between them are not joined to ligatures, which somebody who
    // searches the file for "fi" would not find.
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1.0 / 64.0);
    return font;
}

/// Of the rectangle around all letters, as the font's header has it, in parts of the font's size; 0 where it
/// has none.
double boundingHeightOf(const QFont &font)
{
    constexpr qsizetype unitsPlace = 18;
    constexpr qsizetype lowestPlace = 38;
    constexpr qsizetype highestPlace = 42;
    const QByteArray header = QRawFont::fromFont(font).fontTable("head");
    if (header.size() < highestPlace + 2)
        return 0.0;
    const auto number = [&header](qsizetype place) { return qFromBigEndian<qint16>(header.data() + place); };
    const double units = number(unitsPlace);
    return units > 0.0 ? (number(highestPlace) - number(lowestPlace)) / units : 0.0;
}

} // namespace

ZELKPaperFont::ZELKPaperFont(double pointSize, bool bold)
    : m_pointSize(pointSize)
    , m_font(fontInDots(pointSize, bold))
    , m_ascent(QFontMetricsF(m_font).ascent() / dotsInPoint)
    , m_lineHeight(QFontMetricsF(m_font).height() / dotsInPoint)
{
}

double ZELKPaperFont::boundingHeight() const
{
    constexpr double most = 1.7;
    return std::max(std::min(boundingHeightOf(m_font), most) * m_pointSize, m_lineHeight);
}
