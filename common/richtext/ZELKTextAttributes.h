#pragma once

#include <QList>
#include <QRgb>
#include <QString>

#include <cstdint>

/// What colour a text has. A name for a purpose, which the palette in force decides when it is drawn, so that
/// one text suits light and dark; or a colour of its own.
struct ZELKTextColour
{
    enum class Role : std::uint8_t {
        Inherited,           ///< whatever the view draws with
        ControlText,         ///< the palette's text
        DisabledControlText, ///< the same, dimmer
        Fixed
    };

    Role role = Role::Inherited;
    QRgb fixed = 0; ///< opaque; 0 unless the role is Fixed

    static constexpr ZELKTextColour of(Role role) { return {role, 0}; }
    static constexpr ZELKTextColour rgb(int red, int green, int blue)
    {
        return {Role::Fixed, qRgb(red, green, blue)};
    }
    bool operator==(const ZELKTextColour &) const = default;
};

/// A place that a tab leads to, in points from the paragraph's left edge.
struct ZELKTabStop
{
    enum class Kind : std::uint8_t { Left, Centre, Right, Decimal };

    double position = 0.0;
    Kind kind = Kind::Left;

    bool operator==(const ZELKTabStop &) const = default;
};

/// How the lines of a paragraph lie. Lengths in points. A paragraph has one style: that of its first
/// character.
struct ZELKParagraphStyle
{
    enum class Alignment : std::uint8_t { Natural, Left, Centre, Right, Justified };
    /// What becomes of a line that does not fit. Rich text files know of no other than wrapping.
    enum class LineBreak : std::uint8_t { Wrap, TruncateTail };
    /// Whether `lineSpacing` counts: not at all, as a factor, or as a height in points.
    enum class LineSpacing : std::uint8_t { Natural, Multiple, AtLeast, Exactly };

    Alignment alignment = Alignment::Natural;
    LineBreak lineBreak = LineBreak::Wrap;
    LineSpacing lineSpacingKind = LineSpacing::Natural;
    double lineSpacing = 0.0;
    double firstLineIndent = 0.0; ///< beyond the left indent; may be negative
    double leftIndent = 0.0;
    double rightIndent = 0.0;
    double spacingBefore = 0.0;
    double spacingAfter = 0.0;
    QList<ZELKTabStop> tabStops;

    bool operator==(const ZELKParagraphStyle &) const = default;
};

/// How a character looks, and the paragraph that it stands in. A plain value; with nothing set it is the
/// platform's font in the colour of whatever it is drawn in.
struct ZELKTextAttributes
{
    QString family;         ///< empty: the platform's
    double pointSize = 0.0; ///< 0: the platform's
    bool bold = false;
    bool italic = false;
    bool underline = false;
    ZELKTextColour colour;
    ZELKParagraphStyle paragraph;

    bool hasFont() const { return pointSize > 0.0 || !family.isEmpty(); }
    bool operator==(const ZELKTextAttributes &) const = default;
};
