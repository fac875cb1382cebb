#pragma once

#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <cmath>

/// Where the points of an unflipped view stand in an image, whose rows are counted from above. Painters turn
/// over what they are given here, once, and nowhere else. A plain value.
struct ZELKPixelSpace
{
    double height = 0.0; ///< of the view, in points
    double scale = 1.0;  ///< pixels a point

    QPointF pixel(QPointF point) const { return {point.x() * scale, (height - point.y()) * scale}; }
    /// From points to pixels.
    QTransform transform() const { return {scale, 0.0, 0.0, -scale, 0.0, height * scale}; }
    /// The same rectangle in points counted from above, as a QPainter on an image with that many pixels a
    /// point has them.
    QRectF turned(const QRectF &rect) const
    {
        return {rect.x(), height - rect.y() - rect.height(), rect.width(), rect.height()};
    }
    /// A place of a point, brought to the next border between pixels. A bar that is as wide as pixels are, or
    /// several of them, is sharp when it begins there.
    double snapped(double place) const { return std::ceil(place * scale - 0.5) / scale; }
};
