#pragma once

#include "ZELKAttributedString.h"
#include "ZELKPixelSpace.h"
#include "ZELKTextAttributes.h"

class QPainter;

/// The texts of the graph. Rectangles are those of an unflipped view; sizes are whole points, so that what is
/// laid out around them stands on whole points too. Needs a window system.
namespace ZELKGraphText {

/// Dark grey, centred, cut at the tail: what all texts along the axes have in common.
ZELKTextAttributes attributes(double pointSize);

QSizeF size(const QString &text, const ZELKTextAttributes &attributes);
/// Centred; a line that does not fit ends with "…".
void draw(QPainter &painter, const ZELKPixelSpace &space, const QRectF &rect, const QString &text,
          const ZELKTextAttributes &attributes);

/// A label in the upper left corner of `frame`.
void drawTopLeft(QPainter &painter, const ZELKPixelSpace &space, const QRectF &frame,
                 const ZELKAttributedString &label);
/// A label in the frame's middle, three fifths of the way up. Both are as wide as their lines, and wrapped
/// only where the frame is narrower.
void drawBanner(QPainter &painter, const ZELKPixelSpace &space, const QRectF &frame,
                const ZELKAttributedString &label);
/// Whether a banner leaves alone what stands in the upper left corner.
bool fitTogether(const QRectF &frame, const ZELKAttributedString &topLeft,
                 const ZELKAttributedString &banner);

} // namespace ZELKGraphText
