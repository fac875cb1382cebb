#pragma once

#include "ZELKAxisTicks.h"
#include "ZELKGraphLayout.h"
#include "ZELKPixelSpace.h"

class QColor;
class QPainter;

/// Paints what stands around the chart without looking at any event: paper, axis, grid and ticks. Lines are
/// moved by less than a pixel to where pixels begin, so that they are sharp at any number of pixels a point.
class ZELKAxisPainter
{
public:
    static constexpr int gridLines = 5; ///< the highest is the chart's upper edge

    /// `painter` must outlive this one.
    ZELKAxisPainter(QPainter &painter, const ZELKPixelSpace &space)
        : m_painter(painter)
        , m_space(space)
    {
    }

    void drawPaper(const QRectF &frame, bool isBordered);
    void drawAxis(const ZELKGraphLayout &layout);
    void drawGrid(const ZELKGraphLayout &layout);
    void drawMarker(const ZELKAxisTicks::Tick &tick, const ZELKGraphLayout &layout);

private:
    void fill(const QRectF &rect, const QColor &colour);
    /// Centred on a height, as a line that is drawn there.
    QRectF level(double y, double width, const ZELKGraphLayout &layout) const;

    QPainter &m_painter;
    ZELKPixelSpace m_space;
};
