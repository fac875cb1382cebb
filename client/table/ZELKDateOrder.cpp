#include "ZELKDateOrder.h"

#include "ZELKLWCLog.h"

#include <algorithm>

void ZELKDateOrder::setRange(ZELKVisibleRange range)
{
    const bool grows =
        m_range.length > 0 && range.location >= m_range.location && range.location < m_range.end();
    keep(grows ? range : ZELKVisibleRange{});
    look(grows ? m_range.end() : range.location + 1, range.end());
    m_range = range;
}

/// An exception is one between two entries of the range.
void ZELKDateOrder::keep(ZELKVisibleRange range)
{
    const auto isOutside = [range](std::uint32_t index) {
        return index <= range.location || index >= range.end();
    };
    std::erase_if(m_ties, isOutside);
    std::erase_if(m_older, isOutside);
}

void ZELKDateOrder::look(std::uint64_t from, std::uint64_t to)
{
    if (from >= to)
        return;
    ZELKDate last = m_log.objectAtIndex(int(from) - 1)->date();
    for (std::uint64_t i = from; i < to; ++i) {
        const ZELKDate date = m_log.objectAtIndex(int(i))->date();
        if (date == last)
            m_ties.push_back(std::uint32_t(i));
        else if (date < last)
            m_older.push_back(std::uint32_t(i));
        last = date;
    }
}
