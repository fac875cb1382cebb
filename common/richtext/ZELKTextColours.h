#pragma once

#include "ZELKTextAttributes.h"

#include <QColor>

class QPalette;

/// What the colours of a text are where it is drawn.
struct ZELKTextColours
{
    QColor text;
    QColor dimmed;          ///< for disabled control text
    bool isUniform = false; ///< one colour for everything: that of the text

    /// As the palette has it for the base, or for a selected row of a view. Its disabled text is often too
    /// faint for what shall still be read: it is brought as near to the text as it takes to stand out 4.5:1.
    static ZELKTextColours fromPalette(const QPalette &palette, bool isSelected = false);
    /// Black and grey, as on paper.
    static ZELKTextColours forPaper();

    QColor colour(const ZELKTextColour &of) const;

    /// How much one colour stands out from another, whichever is the text: from 1 to 21, as the guidelines
    /// for accessible contents reckon it.
    static double contrast(const QColor &a, const QColor &b);
};
