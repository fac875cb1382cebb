#pragma once

#include "ZELKThinnedLine.h"

#include <QPainterPath>
#include <QPointF>
#include <QString>

/// A stretch of a battery's curve under one power source. A plain value; points are those of an unflipped
/// view.
class ZELKLWCEntriesViewBatterySegment
{
public:
    /// Stands for a power source while the battery is away.
    static QString disconnected();

    /// Without a state and without points; its end is the view's origin. For `columnWidth` see
    /// ZELKThinnedLine.
    explicit ZELKLWCEntriesViewBatterySegment(double columnWidth = 0.0)
        : m_line(columnWidth)
    {
    }
    static ZELKLWCEntriesViewBatterySegment batterySegmentForState(const QString &state, QPointF start,
                                                                   double columnWidth = 0.0);

    /// The power source's word, or disconnected(); null for a segment whose beginning no event tells of.
    const QString &state() const { return m_state; }
    void setState(const QString &state) { m_state = state; }
    /// The first point.
    QPointF start() const { return m_start; }
    /// The last point added.
    QPointF end() const { return m_end; }
    bool isEmpty() const { return m_line.isEmpty(); }
    /// The line through the points, thinned; it begins at start() and ends at end().
    const std::vector<QPointF> &points() const { return m_line.points(); }
    QPainterPath path() const;

    void addPoint(QPointF point);
    /// While a battery is away its curve stays at the last known level: goes to the point's x and keeps y.
    /// That is the view's lower edge as long as there is no point.
    void disconnectionPoint(QPointF point);
    /// Nothing is left to do at the end of a segment.
    void close() {}

private:
    QString m_state;
    QPointF m_start;
    QPointF m_end;
    ZELKThinnedLine m_line;
};
