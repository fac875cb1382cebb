#pragma once

#include "ZELKGraphLayout.h"
#include "ZELKLWCAbsoluteDuration.h"
#include "ZELKLWCEntriesViewMarkerInterval.h"

#include <QRectF>
#include <QSizeF>
#include <QString>

#include <functional>
#include <vector>

/// The ticks below the time axis and their dates. Plain values, in points of an unflipped view.
struct ZELKAxisTicks
{
    enum class Shape { Major, Minor };
    struct Tick
    {
        double x = 0.0;
        Shape shape = Shape::Major;
    };
    struct Label
    {
        QRectF rect;
        QString text;
    };
    /// How large a date's text is.
    using Measure = std::function<QSizeF(const QString &text)>;

    std::vector<Tick> ticks;
    std::vector<Label> labels;

    /// How far ticks reach down from the axis, and how wide they are.
    static constexpr double length(Shape shape) { return shape == Shape::Major ? 4.0 : 3.0; }
    static constexpr double width(Shape shape) { return shape == Shape::Major ? 1.0 : 0.5; }

    /// Of at most two steps: the coarsest that fits has long ticks, the next finer one short ones. Only one
    /// of them has dates. A step fits when its ticks stand more than 10 points apart, or a tenth of a narrow
    /// frame, and less than the chart's width.
    static ZELKAxisTicks forPeriod(const ZELKLWCAbsoluteDuration &period, const ZELKGraphLayout &layout,
                                   const std::vector<ZELKLWCEntriesViewMarkerInterval> &intervals,
                                   const Measure &measure);

private:
    int addMarkers(Shape shape, const ZELKLWCAbsoluteDuration &period, const ZELKGraphLayout &layout,
                   const ZELKLWCEntriesViewMarkerInterval &interval, const Measure *measure);
};
