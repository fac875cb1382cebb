#pragma once

#include "ZELKStringPool.h"
#include "ZELKVisibleRange.h"

#include <cstdint>
#include <vector>

class ZELKLWCLog;

/// The numbers of the summaries of a run of the log's entries, side by side: a search walks 4 bytes an entry
/// instead of the entries, and knows a summary that it has met before by its number.
///
/// Summaries are composed when they are first asked for, which takes half a second for a million entries;
/// fillSome() lets an idle program do it before anybody types.
class ZELKSummaryColumn
{
public:
    using Id = ZELKStringPool::Id;

    /// `log` must outlive the column.
    explicit ZELKSummaryColumn(const ZELKLWCLog &log)
        : m_log(log)
    {
    }

    /// Keeps what is known of entries that stay in the range.
    void setRange(ZELKVisibleRange range);
    /// Of an entry of the range, by its index in the log.
    Id at(std::uint32_t index) const
    {
        const Id known = m_ids[index - m_range.location];
        return known != ZELKStringPool::nil ? known : compose(index);
    }
    bool isFilled() const { return m_filled == m_ids.size(); }
    /// Composes up to `count` more; true when some are left.
    bool fillSome(std::size_t count) const;
    void fill() const { fillSome(m_ids.size()); }
    /// The numbers from an entry of the range on, to the range's end, all of them composed.
    const Id *filledFrom(std::uint32_t index) const
    {
        fill();
        return m_ids.data() + (index - m_range.location);
    }
    /// Gives back the room for entries to come.
    void trim() { m_ids.shrink_to_fit(); }
    std::size_t bytes() const { return m_ids.capacity() * sizeof(Id); }

private:
    Id compose(std::uint32_t index) const;

    const ZELKLWCLog &m_log;
    ZELKVisibleRange m_range;
    mutable std::vector<Id> m_ids;    // nil where not yet asked for
    mutable std::size_t m_filled = 0; // how many are known from the first on
};
