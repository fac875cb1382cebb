#include "ZELKChartScale.h"

QPointF ZELKChartScale::convertDateToPoint(ZELKDate date) const
{
    if (!period.contains(date) || !(period.duration() > 0.0))
        return {};
    const double seconds = date.timeIntervalSinceDate(period.startDate());
    return {chartRect.x() + seconds * (chartRect.width() / period.duration()), chartRect.y()};
}

QPointF ZELKChartScale::convertDateAndPercentageToPoint(ZELKDate date, double percentage) const
{
    const QPointF onAxis = convertDateToPoint(date);
    return {onAxis.x(), onAxis.y() + percentage * (chartRect.height() / 100.0)};
}

std::optional<ZELKDate> ZELKChartScale::convertPointToDate(QPointF point) const
{
    const double right = point.x() - chartRect.x();
    const double up = point.y() - chartRect.y();
    if (!(right >= 0.0 && right < chartRect.width() && up >= 0.0 && up < chartRect.height()))
        return std::nullopt;
    return period.startDate().addingTimeInterval(right * (period.duration() / chartRect.width()));
}

QRectF ZELKChartScale::blockBetween(ZELKDate start, ZELKDate end) const
{
    const double x1 = convertDateToPoint(start).x();
    const double x2 = convertDateToPoint(end).x();
    return {x1, chartRect.y() + xAxisLineWidth, x2 - x1, chartRect.height() - xAxisLineWidth};
}
