#pragma once

#include "ZELKBoxBlur.h"
#include "ZELKGraphColours.h"
#include "ZELKLWCEntriesViewDisplayList.h"
#include "ZELKPixelSpace.h"
#include "ZELKStateGradient.h"

#include <QPainter>

#include <vector>

/// The chart painted without any haste: every block and every point by QPainter.
namespace PlainPicture {

inline void drawBlocks(QPainter &painter, const ZELKLWCEntriesViewDisplayList &list)
{
    for (const QString &state : list.stateOrder()) {
        const auto colour = ZELKGraphColours::stateColour(state);
        const QPainterPath path = list.combinedPathForState(state);
        if (!colour || path.isEmpty())
            continue;
        const auto gradient = ZELKStateGradient::withBaseColour(*colour);
        const QRectF bounds = path.boundingRect();
        QLinearGradient fill(0.0, bounds.bottom(), 0.0, bounds.top());
        fill.setColorAt(0.0, gradient.dark);
        fill.setColorAt(1.0, gradient.light);
        painter.fillPath(path, fill);
    }
}

inline void drawCurves(QPainter &painter, const ZELKLWCEntriesViewDisplayList &list, double lower)
{
    for (const auto &battery : list.batteries().batteries()) {
        for (const auto &segment : battery.segments) {
            const auto colour = ZELKGraphColours::batteryColour(segment.state());
            if (!colour || segment.isEmpty())
                continue;
            QPainterPath area = segment.path();
            area.lineTo(segment.end().x(), lower);
            area.lineTo(segment.start().x(), lower);
            area.closeSubpath();
            area.setFillRule(Qt::WindingFill);
            QColor faint = *colour;
            faint.setAlphaF(0.1F);
            painter.fillPath(area, faint);
            painter.strokePath(segment.path(), QPen(*colour, 1.5, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
        }
    }
}

inline QImage shadowOf(const QImage &layer, double scale)
{
    const auto width = std::size_t(layer.width());
    std::vector<float> opacity(width * std::size_t(layer.height()), 0.0F);
    for (std::size_t i = width * std::size_t(8.0 * scale); i < opacity.size(); ++i)
        opacity[i] = layer.pixelColor(int(i % width), int(i / width) - int(8.0 * scale)).alphaF() / 3.0F;
    ZELKBoxBlur(9.0 * scale).blur(opacity, layer.width(), layer.height());
    QImage shadow(layer.size(), layer.format());
    for (std::size_t i = 0; i < opacity.size(); ++i)
        shadow.setPixelColor(int(i % width), int(i / width),
                             QColor::fromRgbF(0, 0, 0, std::max(0.0F, opacity[i])));
    return shadow;
}

/// Over `image`, whose size goes with `space`; as exact as its format is.
inline void paint(QImage &image, const ZELKPixelSpace &space, const ZELKLWCEntriesViewDisplayList &list,
                  const QRectF &chart)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(space.transform());
    drawBlocks(painter, list);
    QImage layer(image.size(), image.depth() > 32 ? QImage::Format_RGBA64_Premultiplied
                                                  : QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    {
        QPainter inLayer(&layer);
        inLayer.setRenderHint(QPainter::Antialiasing);
        inLayer.setTransform(space.transform());
        drawCurves(inLayer, list, chart.y());
    }
    painter.resetTransform();
    painter.drawImage(0, 0, shadowOf(layer, space.scale));
    painter.drawImage(0, 0, layer);
}

} // namespace PlainPicture
