#include "ZELKCurvePainter.h"

#include "ZELKBoxBlur.h"
#include "ZELKColourLayer.h"

#include <algorithm>
#include <cmath>

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
    ZELKCoverage coverage(box);
    for (const ZELKCurve &curve : curves) {
        if (curve.points.size() < 2)
            continue;
        QColor colour = curve.colour;
        const auto add = [&layer, &colour](int y, int x, std::span<const float> shares) {
            layer.add(y, x, shares, colour);
        };
        colour.setAlphaF(float(areaOpacity * curve.colour.alphaF()));
        addArea(coverage, curve);
        coverage.takeRows(add);
        colour = curve.colour;
        addLine(coverage, curve);
        coverage.takeRows(add);
    }
    layer.paint(m_image, shadow, from, end);
}

void ZELKCurvePainter::addArea(ZELKCoverage &coverage, const ZELKCurve &curve) const
{
    QPointF last = m_space.pixel({curve.points.front().x(), m_lower});
    for (const QPointF point : curve.points) {
        const QPointF next = m_space.pixel(point);
        coverage.addEdge(last, next);
        last = next;
    }
    coverage.addEdge(last, m_space.pixel({curve.points.back().x(), m_lower}));
}

void ZELKCurvePainter::addLine(ZELKCoverage &coverage, const ZELKCurve &curve) const
{
    const double width = lineWidth * m_space.scale;
    QPointF before;
    QPointF at = m_space.pixel(curve.points.front());
    for (std::size_t i = 1; i < curve.points.size(); ++i) {
        const QPointF next = m_space.pixel(curve.points[i]);
        if (next == at)
            continue;
        coverage.addLine(at, next, width);
        if (i > 1)
            coverage.addJoint(before, at, next, width);
        before = at;
        at = next;
    }
}
