#include "ZELKWordProperties.h"

#include "ZELKWordBytes.h"

#include <algorithm>
#include <cmath>

using namespace ZELKWordBytes;

namespace {

// The codes of the operations. The highest three bits say how long the operand is.
enum Code : quint16 {
    Bold = 0x0835,
    BoldComplex = 0x085C, // complex: of scripts that are written from right to left or joined
    Italic = 0x0836,
    ItalicComplex = 0x085D,
    Underline = 0x2A3E,
    FontAscii = 0x4A4F,
    FontEastAsian = 0x4A50,
    FontOther = 0x4A51,
    FontComplex = 0x4A5E,
    Size = 0x4A43,
    SizeComplex = 0x4A61,
    Colour = 0x6870,
    Alignment = 0x2403,
    LeftIndent = 0x840F,
    RightIndent = 0x840E,
    FirstLineIndent = 0x8411,
    SpacingBefore = 0xA413,
    SpacingAfter = 0xA414,
    LineSpacing = 0x6412,
    TabStops = 0xC60D,
    PageWidth = 0xB01F,
    PageHeight = 0xB020,
    PageLeft = 0xB021,
    PageRight = 0xB022,
    PageTop = 0x9023,
    PageBottom = 0x9024
};

void set8(QByteArray &out, Code code, qint64 operand)
{
    append16(out, code);
    append8(out, operand);
}

void set16(QByteArray &out, Code code, qint64 operand)
{
    append16(out, code);
    append16(out, operand);
}

void set32(QByteArray &out, Code code, qint64 operand)
{
    append16(out, code);
    append32(out, operand);
}

/// At most 22 inches, which is what positions may be.
int twips(double points, double least = -1584.0)
{
    constexpr double most = 1584.0;
    return int(std::lround(std::clamp(points, least, most) * 20.0));
}

quint32 colourNumber(const ZELKTextColour &colour)
{
    constexpr quint32 automatic = 0xFF000000;
    constexpr quint32 dimmed = 0x757575; // readable on white
    switch (colour.role) {
    case ZELKTextColour::Role::Fixed:
        return quint32(qRed(colour.fixed) | qGreen(colour.fixed) << 8 | qBlue(colour.fixed) << 16);
    case ZELKTextColour::Role::DisabledControlText:
        return dimmed;
    case ZELKTextColour::Role::Inherited:
    case ZELKTextColour::Role::ControlText:
        break;
    }
    return automatic;
}

void addFont(QByteArray &out, int font)
{
    for (const Code code : {FontAscii, FontEastAsian, FontOther, FontComplex})
        set16(out, code, font);
}

void addSize(QByteArray &out, int halfPoints)
{
    set16(out, Size, halfPoints);
    set16(out, SizeComplex, halfPoints);
}

int alignmentNumber(ZELKParagraphStyle::Alignment alignment)
{
    switch (alignment) {
    case ZELKParagraphStyle::Alignment::Centre:
        return 1;
    case ZELKParagraphStyle::Alignment::Right:
        return 2;
    case ZELKParagraphStyle::Alignment::Justified:
        return 3;
    case ZELKParagraphStyle::Alignment::Natural:
    case ZELKParagraphStyle::Alignment::Left:
        break;
    }
    return 0;
}

void addLineSpacing(QByteArray &out, const ZELKParagraphStyle &style)
{
    constexpr double unitsInLine = 240.0;
    int height = twips(style.lineSpacing, 0.0);
    const bool isMultiple = style.lineSpacingKind == ZELKParagraphStyle::LineSpacing::Multiple;
    if (style.lineSpacingKind == ZELKParagraphStyle::LineSpacing::Natural)
        return;
    if (style.lineSpacingKind == ZELKParagraphStyle::LineSpacing::Exactly)
        height = -height;
    else if (isMultiple)
        height = int(std::lround(std::clamp(style.lineSpacing, 0.0, 132.0) * unitsInLine));
    append16(out, LineSpacing);
    append16(out, height);
    append16(out, isMultiple ? 1 : 0);
}

/// None are taken away, some are added: their positions, then their kinds.
void addTabStops(QByteArray &out, QList<ZELKTabStop> stops)
{
    constexpr qsizetype mostStops = 64;
    if (stops.isEmpty())
        return;
    std::stable_sort(stops.begin(), stops.end(),
                     [](const ZELKTabStop &a, const ZELKTabStop &b) { return a.position < b.position; });
    const auto isSamePlace = [](const ZELKTabStop &a, const ZELKTabStop &b) {
        return twips(a.position) == twips(b.position);
    };
    stops.erase(std::unique(stops.begin(), stops.end(), isSamePlace), stops.end());
    stops.resize(std::min(stops.size(), mostStops));
    append16(out, TabStops);
    append8(out, 2 + 3 * stops.size());
    append8(out, 0);
    append8(out, stops.size());
    for (const ZELKTabStop &stop : stops)
        append16(out, twips(stop.position));
    for (const ZELKTabStop &stop : stops)
        append8(out, int(stop.kind)); // the format counts them alike
}

} // namespace

QByteArray ZELKWordProperties::forCharacters(const ZELKTextAttributes &look, int font)
{
    constexpr double mostPoints = 1638.0;
    QByteArray out;
    if (font != 0)
        addFont(out, font);
    if (look.pointSize > 0.0)
        addSize(out, std::max(int(std::lround(std::min(look.pointSize, mostPoints) * 2.0)), 2));
    for (const auto &[isSet, code] :
         {std::pair(look.bold, Bold), std::pair(look.bold, BoldComplex), std::pair(look.italic, Italic),
          std::pair(look.italic, ItalicComplex), std::pair(look.underline, Underline)})
        if (isSet)
            set8(out, code, 1);
    if (const quint32 colour = colourNumber(look.colour); colour != colourNumber({}))
        set32(out, Colour, colour);
    return out;
}

QByteArray ZELKWordProperties::forParagraph(const ZELKParagraphStyle &style)
{
    QByteArray out;
    if (const int alignment = alignmentNumber(style.alignment); alignment != 0)
        set8(out, Alignment, alignment);
    const std::pair<Code, int> lengths[] = {{LeftIndent, twips(style.leftIndent)},
                                            {RightIndent, twips(style.rightIndent)},
                                            {FirstLineIndent, twips(style.firstLineIndent)},
                                            {SpacingBefore, twips(style.spacingBefore, 0.0)},
                                            {SpacingAfter, twips(style.spacingAfter, 0.0)}};
    for (const auto &[code, length] : lengths)
        if (length != 0)
            set16(out, code, length);
    addLineSpacing(out, style);
    addTabStops(out, style.tabStops);
    return out;
}

QByteArray ZELKWordProperties::forStyle()
{
    QByteArray out;
    addFont(out, 0);
    addSize(out, usualHalfPoints);
    return out;
}

QByteArray ZELKWordProperties::forPage()
{
    constexpr int inch = 1440;
    QByteArray out;
    set16(out, PageWidth, 11906);
    set16(out, PageHeight, 16838);
    for (const Code code : {PageLeft, PageRight, PageTop, PageBottom})
        set16(out, code, inch);
    return out;
}
