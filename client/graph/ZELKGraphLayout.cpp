#include "ZELKGraphLayout.h"

#include <algorithm>

ZELKGraphLayout ZELKGraphLayout::inFrame(const QRectF &frame, const ZELKGraphMeasures &measures)
{
    ZELKGraphLayout layout;
    layout.frame = frame;
    const QRectF media = frame.adjusted(mediaInset, mediaInset, -mediaInset, -mediaInset);
    layout.mediaRect = media;
    QRectF chart = media;
    if (measures.isTitled) {
        const double width = std::min(media.width(), measures.title.width());
        layout.titleRect = {media.x() + (media.width() - width) / 2.0, media.y(), width,
                            measures.title.height()};
        chart.setTop(chart.top() + measures.title.height() + gap);
    }
    layout.xAxisMarkerTextHeight = float(measures.dateLabelHeight + gap);
    chart.setTop(chart.top() + measures.dateLabelHeight + gap);
    if (measures.supportsBatteries) {
        const QSizeF label = measures.yAxisLabel;
        chart.setLeft(chart.left() + label.width() + gap);
        layout.yAxisLabelRect = {
            QPointF(media.x(), (chart.height() - label.height() / 2.0) / 2.0 + chart.y()), label};
    }
    layout.chartRect = chart;
    return layout;
}
