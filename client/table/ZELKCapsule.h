#pragma once

#include <QPainterPath>
#include <QRectF>

/// The shape behind a highlighted text: a bar as high as its frame, with half circles for ends.
struct ZELKCapsule
{
    /// How far the text stands off the left end. On the right it may reach to the frame's edge, so that a row
    /// keeps its text's place and width whether it is highlighted or not.
    static constexpr double textInset = 5.0;

    QRectF frame;
    float radius = 0.0F;

    static ZELKCapsule inFrame(const QRectF &frame) { return {frame, float(frame.height() / 2.0)}; }
    static QRectF textFrame(const QRectF &frame) { return frame.adjusted(textInset, 0.0, 0.0, 0.0); }

    /// The circles whose outer halves are the ends.
    QRectF leftEnd() const { return {frame.left(), frame.top(), 2.0 * radius, 2.0 * radius}; }
    QRectF rightEnd() const
    {
        return {frame.right() - 2.0 * radius, frame.top(), 2.0 * radius, 2.0 * radius};
    }

    QPainterPath path() const
    {
        QPainterPath path;
        path.arcMoveTo(leftEnd(), 90.0);
        path.arcTo(leftEnd(), 90.0, 180.0);
        path.arcTo(rightEnd(), 270.0, 180.0);
        path.closeSubpath();
        return path;
    }
};
