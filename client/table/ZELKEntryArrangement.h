#pragma once

#include "ZELKDateOrder.h"
#include "ZELKSortDescriptor.h"
#include "ZELKSummaryColumn.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// Which of the log's visible entries a list shows, and in which order: those whose summary contains a text,
/// sorted. Entries are known by their index in the log.
///
/// It keeps 4 bytes an entry for the order, none at all while that is the log's own or its reverse, and
/// 4 bytes for the number of the summary. A falling order is kept rising and read from behind, so that what
/// is appended to the log is appended here.
class ZELKEntryArrangement
{
public:
    using Index = std::uint32_t;

    /// Entries side by side in the kept order.
    struct Span
    {
        std::size_t position = 0;
        std::size_t length = 0;
    };
    /// Entries that come between those there are.
    struct Insertion
    {
        std::size_t position = 0;
        std::vector<Index> entries;
    };

    static const QString dateKey;
    static const QString summaryKey;

    /// `log` must outlive the arrangement.
    explicit ZELKEntryArrangement(const ZELKLWCLog &log);

    int count() const { return int(size()); }
    Index indexAtRow(int row) const;
    /// Nothing for an entry that is not shown.
    std::optional<int> rowOfIndex(Index index) const;
    /// The first of the rows of a span.
    int rowOfSpan(Span span) const;

    ZELKVisibleRange range() const { return m_range; }
    /// Whether rows are in the order of dates, rising or falling, with no exception.
    bool isByDate() const { return m_dates.isAscending() && (m_keys.empty() || m_keys.front().isDate); }
    bool isFalling() const { return m_isFalling; }

    /// What is to be shown, from scratch.
    void arrange(ZELKVisibleRange range, const QString &filter, const ZELKSortDescriptors &descriptors);

    /// The way to another range, in steps between which the rows are sound: remove what leaves, the last
    /// first, then enter the range and insert what comes, the last first. Nothing where there are so many
    /// places that arranging anew is better.
    std::optional<std::vector<Span>> leaving(ZELKVisibleRange range) const;
    void remove(Span span);
    std::optional<std::vector<Insertion>> entering(ZELKVisibleRange range);
    void insert(const Insertion &insertion);

    bool isPrepared() const { return m_summaries.isFilled(); }
    /// Composes summaries ahead of a search; true when some are left.
    bool prepareSome(std::size_t count) const { return m_summaries.fillSome(count); }
    /// Memory that it holds.
    std::size_t bytes() const;

private:
    /// In terms of the kept order.
    struct Key
    {
        bool isDate = true;
        bool ascending = true;
    };

    std::size_t size() const { return m_isPlain ? std::size_t(m_plain.length) : m_order.size(); }
    Index kept(std::size_t position) const
    {
        return m_isPlain ? Index(m_plain.location + position) : m_order[position];
    }
    std::optional<std::size_t> positionOf(Index index) const;
    void setKeys(const ZELKSortDescriptors &descriptors);
    bool isLogsOrder() const;
    bool precedes(Index a, Index b) const;
    int compareSummaries(Index a, Index b) const;

    bool passes(ZELKStringPool::Id summary) const;
    std::vector<Index> passing(ZELKVisibleRange range) const;
    void sort(std::vector<Index> &entries) const;
    void sortByDate(std::vector<Index> &entries, bool ascending) const;
    void turnTies(std::vector<Index> &entries) const;
    void sortBySummary(std::vector<Index> &entries) const;
    void writeOut();
    std::optional<std::vector<Insertion>> insertionsOf(const std::vector<Index> &entries) const;

    const ZELKLWCLog &m_log;
    ZELKVisibleRange m_range;
    QByteArray m_filter; // UTF-8, in which texts contain each other as they do in UTF-16
    std::vector<Key> m_keys;
    bool m_isFalling = false; // rows are read from behind; of equal entries the newer is kept first then
    bool m_isPlain = true;    // the kept order is `m_plain`, not `m_order`
    ZELKVisibleRange m_plain;
    std::vector<Index> m_order;
    ZELKSummaryColumn m_summaries;
    ZELKDateOrder m_dates;
};
