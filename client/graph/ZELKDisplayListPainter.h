#pragma once

#include "ZELKChartScale.h"
#include "ZELKPixelSpace.h"

#include <QImage>

class ZELKLWCEntriesViewDisplayList;

/// Paints what is in the chart over what is in an image: the blocks of each state that has a colour, in the
/// list's order, then the curves of all batteries.
class ZELKDisplayListPainter
{
public:
    /// `image` must outlive the painter; opaque, of 32 bits a pixel. Of `scale` only the rectangle and the
    /// axis count.
    ZELKDisplayListPainter(QImage &image, const ZELKPixelSpace &space, const ZELKChartScale &scale);

    void paint(const ZELKLWCEntriesViewDisplayList &list);

private:
    void paintBlocks(const ZELKLWCEntriesViewDisplayList &list);
    void paintCurves(const ZELKLWCEntriesViewDisplayList &list);

    QImage &m_image;
    ZELKPixelSpace m_space;
    QRectF m_chart;
    double m_axis; // width of the line that blocks stand on
};
