#pragma once

#include "ZELKAttributedString.h"

#include <QRectF>

class QPainter;
class ZELKPaperFont;

/// Texts on paper. Needs a window system.
namespace ZELKPaperText {

/// Draws one line, in the middle of the height of `rect`: a text that is too long ends with "…". The
/// painter's unit is a point, its y grows downwards.
///
/// Sizes and styles are those of `font`; of the text's own look its colours are left, darkened where they
/// would be too light for paper, and underlines. Any text is safe, however long it is.
void draw(QPainter &painter, const QRectF &rect, const ZELKAttributedString &text, const ZELKPaperFont &font,
          Qt::Alignment alignment);

} // namespace ZELKPaperText
