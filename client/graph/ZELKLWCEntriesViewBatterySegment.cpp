#include "ZELKLWCEntriesViewBatterySegment.h"

QString ZELKLWCEntriesViewBatterySegment::disconnected()
{
    return QStringLiteral("Disconnected");
}

ZELKLWCEntriesViewBatterySegment
ZELKLWCEntriesViewBatterySegment::batterySegmentForState(const QString &state, QPointF start,
                                                         double columnWidth)
{
    ZELKLWCEntriesViewBatterySegment segment(columnWidth);
    segment.m_state = state;
    segment.addPoint(start);
    return segment;
}

QPainterPath ZELKLWCEntriesViewBatterySegment::path() const
{
    QPainterPath path;
    if (isEmpty())
        return path;
    path.moveTo(points().front());
    for (auto point = points().begin() + 1; point != points().end(); ++point)
        path.lineTo(*point);
    return path;
}

void ZELKLWCEntriesViewBatterySegment::addPoint(QPointF point)
{
    if (isEmpty())
        m_start = point;
    m_end = point;
    m_line.append(point);
}

void ZELKLWCEntriesViewBatterySegment::disconnectionPoint(QPointF point)
{
    addPoint({point.x(), m_end.y()});
}
