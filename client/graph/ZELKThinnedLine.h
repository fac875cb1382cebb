#pragma once

#include <QPointF>

#include <cstddef>
#include <vector>

/// A polyline that looks the same however many points it is given: of the points that follow each other
/// within one column, the first and the last are kept, and between them the lowest and the highest where they
/// are beyond both, in their order. Points may go back to the left, which begins the column anew.
class ZELKThinnedLine
{
public:
    /// `columnWidth` in points; 0 keeps every point.
    explicit ZELKThinnedLine(double columnWidth = 0.0)
        : m_columnWidth(columnWidth)
    {
    }

    void append(QPointF point);
    /// What is kept, in the order of appending.
    const std::vector<QPointF> &points() const { return m_points; }
    bool isEmpty() const { return m_points.empty(); }

private:
    void dropNeedless();

    double m_columnWidth;
    double m_column = 0.0;
    std::size_t m_first = 0; // of the points that stand in the column
    std::vector<QPointF> m_points;
};
