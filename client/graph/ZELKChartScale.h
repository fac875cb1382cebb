#pragma once

#include "ZELKLWCAbsoluteDuration.h"

#include <QPointF>
#include <QRectF>

#include <optional>

/// Where times and percentages stand on a chart: a period of time spread over a rectangle. A plain value.
///
/// Positions are points of an unflipped view: y counts upwards, and the chart's origin is its lower left
/// corner, the rectangle's x and y. Whoever paints turns them over once.
struct ZELKChartScale
{
    /// The plotting area; its lower edge is the time axis.
    QRectF chartRect;
    /// What is seen. Without length, or reversed, it has no place on the chart.
    ZELKLWCAbsoluteDuration period;
    /// Thickness of the time axis in points; blocks stand on it, not over it.
    double xAxisLineWidth = 1.0;

    /// On the axis. A date outside the period becomes the view's origin, (0, 0), wherever the chart is. That
    /// is meant: callers clip their dates to the period, or show that they do not.
    QPointF convertDateToPoint(ZELKDate date) const;
    /// The same, raised by a percentage of the chart's height; 0 to 100 lie inside.
    QPointF convertDateAndPercentageToPoint(ZELKDate date, double percentage) const;
    /// Nothing for a point outside the chart. Left and lower edge belong to the chart, right and upper do
    /// not.
    std::optional<ZELKDate> convertPointToDate(QPointF point) const;
    /// The block between two dates, from the axis to the chart's upper edge. Its width is negative when the
    /// ends lie the other way round, as they do when only the second lies outside the period.
    QRectF blockBetween(ZELKDate start, ZELKDate end) const;

    friend bool operator==(const ZELKChartScale &, const ZELKChartScale &) = default;
};
