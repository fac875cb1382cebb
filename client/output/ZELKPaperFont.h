#pragma once

#include <QFont>

/// The platform's font for paper: its size and its measures are points, whatever a screen or a printer makes
/// of one. Needs a window system. A plain value.
///
/// Texts are laid out in dots of a twentieth of a point, by a font that is so many dots high. Nothing is
/// measured in the pixels of a device, and what is rounded to dots is too small to be seen.
class ZELKPaperFont
{
public:
    static constexpr double dotsInPoint = 20.0;

    explicit ZELKPaperFont(double pointSize, bool bold = false);

    /// In dots.
    const QFont &font() const { return m_font; }
    /// From the line's top to the line on which the letters stand.
    double ascent() const { return m_ascent; }
    double lineHeight() const { return m_lineHeight; }
    /// Of the rectangle that has room for each of the font's letters, with all that may stand above and below
    /// it; never less than a line, nor so much as fonts with outsized signs ask for.
    double boundingHeight() const;

private:
    double m_pointSize;
    QFont m_font;
    double m_ascent;
    double m_lineHeight;
};
