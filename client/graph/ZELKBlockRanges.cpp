#include "ZELKBlockRanges.h"

#include <algorithm>
#include <cmath>

void ZELKBlockRanges::add(double x1, double x2)
{
    if (x2 - x1 > thinWidth) {
        m_ranges.push_back({x1, x2, true});
        return;
    }
    const auto [from, to] = std::minmax(x1, x2);
    if (from < to)
        addThin(from, to);
}

void ZELKBlockRanges::addThin(double from, double to)
{
    const bool mayMerge = m_columnWidth > 0.0 && !m_ranges.empty() && !m_ranges.back().wide;
    if (mayMerge && from >= m_ranges.back().from) {
        ZELKBlockRange &last = m_ranges.back();
        if (to <= m_thinEnd)
            return;
        from = std::max(from, m_thinEnd);
        if (std::floor(from / m_columnWidth) == std::floor(last.from / m_columnWidth)) {
            last.to += to - from;
            m_thinEnd = to;
            return;
        }
    }
    m_ranges.push_back({from, to, false});
    m_thinEnd = to;
}

std::vector<ZELKBlockRange> ZELKBlockRanges::ranges() const
{
    std::vector<ZELKBlockRange> sorted = m_ranges;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto &a, const auto &b) { return a.from < b.from; });
    std::vector<ZELKBlockRange> apart;
    for (ZELKBlockRange range : sorted) {
        if (!apart.empty() && range.from < apart.back().to) {
            ZELKBlockRange &last = apart.back();
            if (range.to <= last.to)
                continue;
            if (range.wide && last.wide) {
                last.to = range.to;
                continue;
            }
            range.from = last.to;
            range.wide = range.wide && range.width() > thinWidth;
        }
        apart.push_back(range);
    }
    return apart;
}
