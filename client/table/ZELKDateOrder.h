#pragma once

#include "ZELKVisibleRange.h"

#include <cstdint>
#include <vector>

class ZELKLWCLog;

/// How the dates of a run of the log's entries follow each other. A log promises arrival order alone; as long
/// as no entry of the run is older than the one before it, sorting by date is turning indexes round, and only
/// entries of the very same date need a look. Costs 4 bytes for each exception and nothing else.
class ZELKDateOrder
{
public:
    /// `log` must outlive the order.
    explicit ZELKDateOrder(const ZELKLWCLog &log)
        : m_log(log)
    {
    }

    /// Looks at the dates of those entries that are new to the range.
    void setRange(ZELKVisibleRange range);

    /// Whether no entry of the range is older than the one before it.
    bool isAscending() const { return m_older.empty(); }
    /// The entries of the range, by index, that have the date of the one before it.
    const std::vector<std::uint32_t> &ties() const { return m_ties; }
    std::size_t bytes() const { return (m_ties.capacity() + m_older.capacity()) * sizeof(std::uint32_t); }

private:
    void look(std::uint64_t from, std::uint64_t to);
    void keep(ZELKVisibleRange range);

    const ZELKLWCLog &m_log;
    ZELKVisibleRange m_range;
    std::vector<std::uint32_t> m_ties;
    std::vector<std::uint32_t> m_older;
};
