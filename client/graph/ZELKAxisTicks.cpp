#include "ZELKAxisTicks.h"

#include "ZELKCalendar.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallestSpacing = 10.0;
constexpr double spacingOfNarrowFrame = 0.1; // of its width
// Labels keep half of their width from the next.
constexpr double widthWithGap = 1.5;
// What sums and differences of the same lengths may differ by.
constexpr double tolerance = 1e-6;

} // namespace

ZELKAxisTicks ZELKAxisTicks::forPeriod(const ZELKLWCAbsoluteDuration &period, const ZELKGraphLayout &layout,
                                       const std::vector<ZELKLWCEntriesViewMarkerInterval> &intervals,
                                       const Measure &measure)
{
    ZELKAxisTicks axis;
    const double width = layout.chartRect.width();
    if (!(period.duration() > 0.0) || !layout.hasChart())
        return axis;
    const double least = std::min(smallestSpacing, layout.frame.width() * spacingOfNarrowFrame);
    bool isLabelled = true;
    int shapesUsed = 0;
    for (const ZELKLWCEntriesViewMarkerInterval &interval : intervals) {
        const double spacing = interval.timeInterval * (width / period.duration());
        if (!(spacing > least && spacing < width))
            continue;
        const Shape shape = shapesUsed == 0 ? Shape::Major : Shape::Minor;
        if (axis.addMarkers(shape, period, layout, interval, isLabelled ? &measure : nullptr) > 0)
            isLabelled = false;
        if (++shapesUsed == 2)
            break;
    }
    return axis;
}

/// Answers how many dates were added; none without `measure`.
int ZELKAxisTicks::addMarkers(Shape shape, const ZELKLWCAbsoluteDuration &period,
                              const ZELKGraphLayout &layout, const ZELKLWCEntriesViewMarkerInterval &interval,
                              const Measure *measure)
{
    const QRectF &chart = layout.chartRect;
    const QRectF room = layout.mediaRect.adjusted(-tolerance, -tolerance, tolerance, tolerance);
    const double pointsASecond = chart.width() / period.duration();
    const double count = period.duration() / interval.timeInterval;
    // The share of a step that is left over is taken for seconds. That is meant: it keeps the ticks where
    // they always stood.
    const double shift = count - std::trunc(count);
    ZELKDate date = period.startDate().addingTimeInterval(shift);
    double x = chart.x() - shift * pointsASecond;
    QRectF previous;
    int labelled = 0;
    for (int k = 1; count > 0.0; ++k) {
        ticks.push_back({x, shape});
        if (measure && count >= 2.0 && !interval.dateFormat.isEmpty()) {
            const QString text = ZELKCalendar::format(date, interval.dateFormat);
            const QSizeF size = (*measure)(text);
            QRectF rect({x - size.width() / 2.0, chart.y() - double(layout.xAxisMarkerTextHeight)}, size);
            if (room.contains(rect) && !rect.intersects(previous) && rect.x() > chart.x()) {
                labels.push_back({rect, text});
                rect.setWidth(rect.width() * widthWithGap);
                previous = rect;
                ++labelled;
            }
        }
        x += interval.timeInterval * pointsASecond;
        date = date.addingTimeInterval(interval.timeInterval);
        if (!(k < count))
            break;
    }
    return labelled;
}
