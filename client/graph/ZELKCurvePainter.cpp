#include "ZELKCurvePainter.h"

#include "ZELKBoxBlur.h"
#include "ZELKColourLayer.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// Rows are painted in bands of about so many pixels, so that no picture needs a layer as large as itself.
constexpr int pixelsOfBand = 1 << 22;

} // namespace

ZELKCurvePainter::ZELKCurvePainter(QImage &image, const ZELKPixelSpace &space, double lower)
    : m_image(image)
    , m_space(space)
    , m_lower(lower)
{
}

void ZELKCurvePainter::paint(std::span<const ZELKCurve> curves)
{
    if (curves.empty() || m_image.isNull())
        return;
    const int rows = std::max(1, pixelsOfBand / m_image.width());
    for (int y = 0; y < m_image.height(); y += rows)
        paintBand(curves, y, std::min(y + rows, m_image.height()));
}

void ZELKCurvePainter::paintBand(std::span<const ZELKCurve> curves, int from, int end)
{
    const ZELKColourLayer::Shadow shadow{shadowDrop * m_space.scale, shadowBlur / 2.0 * m_space.scale,
                                         shadowOpacity};
    // Shadows come from above the band, and what casts them may lie below it as far as the blur reaches.
    const int reach = ZELKBoxBlur(shadow.deviation).reach();
    const int top = std::max(0, from - reach - int(std::lround(shadow.drop)));
    const int bottom = std::min(m_image.height(), end + reach);
    const QRect box(0, top, m_image.width(), bottom - top);
    ZELKColourLayer layer(box);
    ZELKCoverage coverage(layer.turnedBox());
    std::vector<QPointF> line;
    for (const ZELKCurve &curve : curves) {
        if (curve.points.size() < 2)
            continue;
        line.clear();
        for (const QPointF point : curve.points)
            line.push_back(m_space.pixel(point).transposed());
        const auto lay = [&](double opacity) {
            QColor colour = curve.colour;
            colour.setAlphaF(float(opacity * curve.colour.alphaF()));
            layer.add(coverage, colour);
        };
        addArea(coverage, line);
        lay(areaOpacity);
        coverage.addLine(line, lineWidth * m_space.scale);
        lay(1.0);
    }
    layer.paint(m_image, shadow, from, end);
}

/// `line` is turned, as all that is covered in a colour layer.
void ZELKCurvePainter::addArea(ZELKCoverage &coverage, std::span<const QPointF> line) const
{
    const double lower = m_space.pixel({0.0, m_lower}).y();
    const QPointF first(lower, line.front().y());
    QPointF last = first;
    for (const QPointF next : line) {
        coverage.addEdge(last, next);
        last = next;
    }
    const QPointF end(lower, last.y());
    coverage.addEdge(last, end);
    coverage.addEdge(end, first);
}
