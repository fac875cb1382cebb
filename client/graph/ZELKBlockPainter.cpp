#include "ZELKBlockPainter.h"

#include "ZELKCoverage.h"
#include "ZELKLWCEntriesViewDisplayList.h"
#include "ZELKOpaquePixel.h"

#include <algorithm>
#include <cmath>

using DisplayList = ZELKLWCEntriesViewDisplayList;

ZELKBlockPainter::ZELKBlockPainter(QImage &image, const ZELKPixelSpace &space)
    : m_image(image)
    , m_space(space)
{
}

void ZELKBlockPainter::paint(const Blocks &blocks, const ZELKStateGradient &gradient)
{
    if (blocks.ranges.empty() || !(blocks.upper > blocks.lower))
        return;
    paintBody(blocks, gradient, blocks.isRounded ? paintTop(blocks, gradient) : 0);
}

/// The share of each column of pixels that the blocks cover.
std::vector<float> ZELKBlockPainter::columnsOf(std::span<const ZELKBlockRange> ranges) const
{
    const int width = m_image.width();
    std::vector<float> columns(std::size_t(width), 0.0F);
    for (const ZELKBlockRange &range : ranges) {
        const double from = std::clamp(range.from * m_space.scale, 0.0, double(width));
        const double to = std::clamp(range.to * m_space.scale, 0.0, double(width));
        for (int x = int(from); x < to; ++x)
            columns[std::size_t(x)] += float(std::min(x + 1.0, to) - std::max(double(x), from));
    }
    for (float &share : columns)
        share = std::min(share, 1.0F);
    return columns;
}

/// The rows in which there are round corners; answers the first one below them.
int ZELKBlockPainter::paintTop(const Blocks &blocks, const ZELKStateGradient &gradient)
{
    const double upper = m_space.pixel({0.0, blocks.upper}).y();
    const int end = int(std::ceil(upper + DisplayList::radius * m_space.scale));
    const int first = std::max(0, int(std::floor(upper)));
    if (first >= end)
        return first;
    ZELKCoverage coverage(QRect(0, first, m_image.width(), end - first));
    for (const ZELKBlockRange &range : blocks.ranges) {
        const ZELKLWCEntriesViewState block{
            QRectF(range.from, blocks.lower, range.width(), blocks.upper - blocks.lower), {}, nullptr};
        const QPainterPath path =
            range.wide ? DisplayList::roundedPathForState(block) : DisplayList::pathForState(block);
        for (const QPolygonF &polygon : path.toSubpathPolygons(m_space.transform()))
            for (qsizetype i = 1; i < polygon.size(); ++i)
                coverage.addEdge(polygon[i - 1], polygon[i]);
    }
    coverage.takeRows([&](int y, int x, std::span<const float> shares) {
        if (y < m_image.height())
            blend(y, x, shares, colourOfRow(y, blocks, gradient), 1.0);
    });
    return end;
}

void ZELKBlockPainter::paintBody(const Blocks &blocks, const ZELKStateGradient &gradient, int firstRow)
{
    const std::vector<float> columns = columnsOf(blocks.ranges);
    const double upper = m_space.pixel({0.0, blocks.upper}).y();
    const double lower = m_space.pixel({0.0, blocks.lower}).y();
    const int first = std::max({0, firstRow, int(std::floor(upper))});
    const int end = std::min(m_image.height(), int(std::ceil(lower)));
    for (int y = first; y < end; ++y) {
        const double part = std::min(y + 1.0, lower) - std::max(double(y), upper);
        blend(y, 0, columns, colourOfRow(y, blocks, gradient), part);
    }
}

QColor ZELKBlockPainter::colourOfRow(int y, const Blocks &blocks, const ZELKStateGradient &gradient) const
{
    const double upper = m_space.pixel({0.0, blocks.upper}).y();
    const double height = (blocks.upper - blocks.lower) * m_space.scale;
    return gradient.at((y + 0.5 - upper) / height);
}

void ZELKBlockPainter::blend(int y, int x, std::span<const float> shares, const QColor &colour, double part)
{
    const float alpha = colour.alphaF() * float(part);
    const float red = colour.redF() * 255.0F;
    const float green = colour.greenF() * 255.0F;
    const float blue = colour.blueF() * 255.0F;
    auto *pixel = reinterpret_cast<QRgb *>(m_image.scanLine(y)) + x;
    for (const float share : shares) { // none covers nothing, and leaves the pixel as it is
        const float over = share * alpha;
        *pixel = ZELKOpaquePixel::laidOver(*pixel, red * over, green * over, blue * over, 1.0F - over);
        ++pixel;
    }
}
