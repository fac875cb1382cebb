#include "ZELKAxisPainter.h"

#include <QColor>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr QRgb darkGrey = 0xff555555;
constexpr QRgb lightGrey = 0xffaaaaaa;
constexpr QRgb shadowOfControls = 0xff808080;
constexpr double dash = 1.0;
constexpr double gapBetweenDashes = 3.0;

} // namespace

void ZELKAxisPainter::fill(const QRectF &rect, const QColor &colour)
{
    m_painter.fillRect(rect, colour);
}

void ZELKAxisPainter::drawPaper(const QRectF &frame, bool isBordered)
{
    const QRectF paper = m_space.turned(frame);
    fill(paper, Qt::white);
    if (!isBordered)
        return;
    m_painter.setPen(
        QPen(QColor::fromRgba(shadowOfControls), 1.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRect(paper);
}

QRectF ZELKAxisPainter::level(double y, double width, const ZELKGraphLayout &layout) const
{
    const QRectF &chart = layout.chartRect;
    const QRectF line = m_space.turned({chart.x(), y - width / 2.0, chart.width(), width});
    return {line.x(), m_space.snapped(line.y()), line.width(), width};
}

/// Between the chart's edge and the blocks that stand on it, without a gap.
void ZELKAxisPainter::drawAxis(const ZELKGraphLayout &layout)
{
    const double width = double(layout.xAxisLineWidth);
    fill(level(layout.chartRect.y() + width / 2.0, width, layout), QColor::fromRgba(darkGrey));
}

void ZELKAxisPainter::drawGrid(const ZELKGraphLayout &layout)
{
    const QRectF &chart = layout.chartRect;
    for (int i = 1; i <= gridLines; ++i) {
        const double y = chart.y() + chart.height() / gridLines * i;
        const QRectF line = level(y, double(layout.xAxisLineWidth) / 2.0, layout);
        const int dashes = int(std::ceil(line.width() / (dash + gapBetweenDashes)));
        for (int k = 0; k < dashes; ++k) {
            const double x = line.left() + k * (dash + gapBetweenDashes);
            fill({x, line.y(), std::min(dash, line.right() - x), line.height()}, QColor::fromRgba(lightGrey));
        }
    }
}

void ZELKAxisPainter::drawMarker(const ZELKAxisTicks::Tick &tick, const ZELKGraphLayout &layout)
{
    const double width = ZELKAxisTicks::width(tick.shape);
    const double length = ZELKAxisTicks::length(tick.shape);
    const QRectF line = m_space.turned({tick.x - width / 2.0, layout.chartRect.y() - length, width, length});
    fill({m_space.snapped(line.x()), line.y(), width, length}, QColor::fromRgba(darkGrey));
}
