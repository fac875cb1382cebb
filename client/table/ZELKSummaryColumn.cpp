#include "ZELKSummaryColumn.h"

#include "ZELKLWCLog.h"
#include "ZELKTightGrowth.h"

#include <algorithm>

void ZELKSummaryColumn::setRange(ZELKVisibleRange range)
{
    const std::uint64_t first = std::max(m_range.location, range.location);
    const std::uint64_t last = std::min(m_range.end(), range.end());
    if (first >= last) {
        m_ids.clear();
        m_filled = 0;
    } else {
        // What goes, then what comes, at either end.
        const std::uint64_t gone = first - m_range.location;
        m_ids.resize(last - m_range.location);
        m_ids.erase(m_ids.begin(), m_ids.begin() + std::ptrdiff_t(gone));
        ZELKTightGrowth::fit(m_ids, range.length);
        m_ids.insert(m_ids.begin(), first - range.location, ZELKStringPool::nil);
        const bool isFilledFromStart = first == range.location && m_filled > gone;
        m_filled = isFilledFromStart ? std::min<std::uint64_t>(m_filled - gone, last - first) : 0;
    }
    ZELKTightGrowth::fit(m_ids, range.length);
    m_ids.resize(range.length, ZELKStringPool::nil);
    m_range = range;
}

bool ZELKSummaryColumn::fillSome(std::size_t count) const
{
    const std::size_t end = m_filled + std::min(count, m_ids.size() - m_filled);
    for (; m_filled < end; ++m_filled)
        if (m_ids[m_filled] == ZELKStringPool::nil)
            compose(std::uint32_t(m_range.location + m_filled));
    return !isFilled();
}

ZELKSummaryColumn::Id ZELKSummaryColumn::compose(std::uint32_t index) const
{
    return m_ids[index - m_range.location] = m_log.objectAtIndex(int(index))->summaryId();
}
