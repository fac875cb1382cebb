#pragma once

#include <QRectF>
#include <QSizeF>

/// What the graph's layout depends on beside its frame: how large its texts are, in points.
struct ZELKGraphMeasures
{
    QSizeF title;
    QSizeF yAxisLabel;
    double dateLabelHeight = 0.0; ///< the same for every date
    bool isTitled = true;
    bool supportsBatteries = false; ///< whether there is a scale of charge
};

/// Where the graph's parts stand in its frame. A plain value, in points of an unflipped view.
///
/// A frame that is too small for its texts leaves a chart without area, or less: nothing is painted there.
struct ZELKGraphLayout
{
    static constexpr double mediaInset = 10.0;
    static constexpr double gap = 6.0; ///< above the title, around the dates, right of the y axis's label

    QRectF frame;
    QRectF mediaRect;      ///< what is left of the frame inside its margin
    QRectF titleRect;      ///< as wide as the title, if the frame is; null without title
    QRectF yAxisLabelRect; ///< null without a scale of charge
    QRectF chartRect;      ///< the plotting area
    /// Distance between each of their edges and the chart; set, though no step of drawing reads them.
    float chartPadding = 5.0F;
    float xAxisMarkerTextPadding = 3.0F;
    float xAxisMarkerTextHeight = 0.0F; ///< of the band of dates below the axis
    float xAxisLineWidth = 1.0F;

    static ZELKGraphLayout inFrame(const QRectF &frame, const ZELKGraphMeasures &measures);
    bool hasChart() const { return chartRect.width() > 0.0 && chartRect.height() > xAxisLineWidth; }
};
