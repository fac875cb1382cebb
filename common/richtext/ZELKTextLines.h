#pragma once

#include "ZELKAttributedString.h"
#include "ZELKTextColours.h"

#include <QRectF>

class QPainter;

/// Draws attributed texts where there is room for few lines, as in the rows of a table: each paragraph on one
/// line, cut with "…" where it does not fit. Needs a window system.
///
/// Any text is safe: no more than a line's beginning is laid out however long it is, control characters show
/// as spaces, and characters that turn the direction of what follows have no effect. The base lines stand
/// where the paragraphs' own fonts put them, whichever fonts a line's characters are taken from, so that rows
/// look alike.
namespace ZELKTextLines {

/// UTF-16 units of a paragraph that are looked at: more than any line of a table shows, and little enough to
/// lay out at once.
constexpr qsizetype longestLine = 1000;

/// Between the top and the bottom of `bounds`, and within it; the pen's colour is set to the text's.
void draw(QPainter &painter, const QRectF &bounds, const ZELKAttributedString &text,
          const ZELKTextColours &colours);

} // namespace ZELKTextLines
