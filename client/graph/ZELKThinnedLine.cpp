#include "ZELKThinnedLine.h"

#include <algorithm>
#include <cmath>

void ZELKThinnedLine::append(QPointF point)
{
    if (!(m_columnWidth > 0.0)) {
        m_points.push_back(point);
        return;
    }
    const double column = std::floor(point.x() / m_columnWidth);
    if (m_points.empty() || column != m_column) {
        m_column = column;
        m_first = m_points.size();
    }
    m_points.push_back(point);
    if (m_points.size() - m_first > 2)
        dropNeedless();
}

/// Of the points between the first and the last of the column only its lowest and its highest stay.
void ZELKThinnedLine::dropNeedless()
{
    const auto column = m_points.begin() + std::ptrdiff_t(m_first);
    const auto last = m_points.end() - 1;
    double lowest = std::min(column->y(), last->y());
    double highest = std::max(column->y(), last->y());
    auto lowestPoint = column;
    auto highestPoint = column;
    for (auto point = column + 1; point != last; ++point) {
        if (point->y() < lowest) {
            lowest = point->y();
            lowestPoint = point;
        }
        if (point->y() > highest) {
            highest = point->y();
            highestPoint = point;
        }
    }
    auto kept = column + 1;
    for (auto point = column + 1; point != m_points.end(); ++point)
        if (point == lowestPoint || point == highestPoint || point == last)
            *kept++ = *point;
    m_points.erase(kept, m_points.end());
}
