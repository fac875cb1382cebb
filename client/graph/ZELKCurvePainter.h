#pragma once

#include "ZELKCoverage.h"
#include "ZELKPixelSpace.h"

#include <QColor>
#include <QImage>
#include <QPointF>

#include <span>

/// A line of one colour; points of an unflipped view.
struct ZELKCurve
{
    std::span<const QPointF> points;
    QColor colour;
};

/// Paints curves over what is in an image, the later ones over the earlier: below each the area down to the
/// chart's lower edge, faintly; and under them all one shadow.
class ZELKCurvePainter
{
public:
    static constexpr double lineWidth = 1.5;   ///< points
    static constexpr double shadowDrop = 8.0;  ///< points
    static constexpr double shadowBlur = 18.0; ///< points, two standard deviations
    static constexpr float shadowOpacity = 1.0F / 3.0F;
    static constexpr double areaOpacity = 0.1; ///< of the line's

    /// `image` must outlive the painter; opaque, of 32 bits a pixel. `lower` is the chart's lower edge.
    ZELKCurvePainter(QImage &image, const ZELKPixelSpace &space, double lower);

    void paint(std::span<const ZELKCurve> curves);

private:
    void paintBand(std::span<const ZELKCurve> curves, int from, int end);
    void addArea(ZELKCoverage &coverage, std::span<const QPointF> line) const;

    QImage &m_image;
    ZELKPixelSpace m_space;
    double m_lower;
};
