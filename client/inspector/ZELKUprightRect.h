#pragma once

#include <QRectF>
#include <QString>

#include <optional>

/// A rectangle where y grows upwards, so that its origin is its bottom left corner. The panel and its parts
/// are reckoned in these; they are turned once, where they meet the widgets. A plain value.
struct ZELKUprightRect
{
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    /// With so much less on all four sides.
    ZELKUprightRect inset(double by) const { return {x + by, y + by, width - 2.0 * by, height - 2.0 * by}; }
    /// False for those that only touch, and for empty ones.
    bool intersects(const ZELKUprightRect &other) const
    {
        return x < other.maxX() && other.x < maxX() && y < other.maxY() && other.y < maxY() && width > 0.0 &&
               height > 0.0 && other.width > 0.0 && other.height > 0.0;
    }

    /// The same place where y grows downwards, within something of that height.
    QRectF turned(double heightOfWhole) const { return {x, heightOfWhole - maxY(), width, height}; }
    static ZELKUprightRect fromTurned(const QRectF &rect, double heightOfWhole)
    {
        return {rect.x(), heightOfWhole - rect.bottom(), rect.width(), rect.height()};
    }

    /// "{{x, y}, {width, height}}".
    QString string() const;
    /// Nothing for a text that is no such rectangle, or one beyond all bounds.
    static std::optional<ZELKUprightRect> fromString(const QString &string);

    bool operator==(const ZELKUprightRect &) const = default;
};
