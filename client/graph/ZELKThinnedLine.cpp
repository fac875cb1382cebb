#include "ZELKThinnedLine.h"

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
    if (m_points.size() - m_first > 4)
        dropFifth();
}

/// Of the three points between the first and the last of the column at least one is neither its lowest nor
/// its highest.
void ZELKThinnedLine::dropFifth()
{
    const auto column = m_points.begin() + std::ptrdiff_t(m_first);
    auto lowest = column;
    auto highest = column;
    for (auto point = column; point != m_points.end(); ++point) {
        if (point->y() < lowest->y())
            lowest = point;
        if (point->y() > highest->y())
            highest = point;
    }
    auto needless = column + 1;
    while (needless == lowest || needless == highest)
        ++needless;
    m_points.erase(needless);
}
