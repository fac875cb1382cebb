#include "ZELKEntryArrangement.h"

#include "ZELKLWCLog.h"
#include "ZELKTightGrowth.h"

#include <algorithm>
#include <numeric>

const QString ZELKEntryArrangement::dateKey = QStringLiteral("date");
const QString ZELKEntryArrangement::summaryKey = QStringLiteral("summary");

namespace {

/// With more places than this, going from one to the next costs more than arranging and laying out anew.
constexpr std::size_t mostPlaces = 1000;

} // namespace

ZELKEntryArrangement::ZELKEntryArrangement(const ZELKLWCLog &log)
    : m_log(log)
    , m_summaries(log)
    , m_dates(log)
{
}

std::size_t ZELKEntryArrangement::bytes() const
{
    return m_order.capacity() * sizeof(Index) + m_summaries.bytes() + m_dates.bytes();
}

// MARK: rows

ZELKEntryArrangement::Index ZELKEntryArrangement::indexAtRow(int row) const
{
    return kept(m_isFalling ? size() - 1 - std::size_t(row) : std::size_t(row));
}

std::optional<int> ZELKEntryArrangement::rowOfIndex(Index index) const
{
    const std::optional<std::size_t> position = positionOf(index);
    if (!position)
        return std::nullopt;
    return rowOfSpan({*position, 1});
}

int ZELKEntryArrangement::rowOfSpan(Span span) const
{
    return int(m_isFalling ? size() - span.position - span.length : span.position);
}

std::optional<std::size_t> ZELKEntryArrangement::positionOf(Index index) const
{
    if (m_isPlain) {
        if (!m_plain.contains(index))
            return std::nullopt;
        return std::size_t(index - m_plain.location);
    }
    if (!m_range.contains(index))
        return std::nullopt;
    const auto found = std::lower_bound(m_order.begin(), m_order.end(), index,
                                        [this](Index a, Index b) { return precedes(a, b); });
    if (found == m_order.end() || *found != index)
        return std::nullopt;
    return std::size_t(found - m_order.begin());
}

// MARK: order

void ZELKEntryArrangement::setKeys(const ZELKSortDescriptors &descriptors)
{
    m_keys.clear();
    m_isFalling = false;
    for (const ZELKSortDescriptor &descriptor : descriptors) {
        const bool isDate = descriptor.key == dateKey;
        const bool isKnown = isDate || descriptor.key == summaryKey;
        if (!isKnown || std::any_of(m_keys.begin(), m_keys.end(),
                                    [isDate](const Key &key) { return key.isDate == isDate; }))
            continue;
        if (m_keys.empty())
            m_isFalling = !descriptor.ascending;
        m_keys.push_back({isDate, descriptor.ascending != m_isFalling});
    }
}

/// Whether all entries of the range are in the kept order as the log has them.
bool ZELKEntryArrangement::isLogsOrder() const
{
    if (m_keys.empty())
        return true;
    const bool tiesAreRight = m_dates.ties().empty() || (!m_isFalling && m_keys.size() == 1);
    return m_keys.front().isDate && m_dates.isAscending() && tiesAreRight;
}

int ZELKEntryArrangement::compareSummaries(Index a, Index b) const
{
    const ZELKStringPool &texts = m_log.objectAtIndex(int(a))->arena().texts();
    const ZELKStringPool::Id first = m_summaries.at(a);
    const ZELKStringPool::Id second = m_summaries.at(b);
    return first == second ? 0 : texts.view(first).compare(texts.view(second));
}

bool ZELKEntryArrangement::precedes(Index a, Index b) const
{
    for (const Key &key : m_keys) {
        int order = 0;
        if (key.isDate) {
            const ZELKDate first = m_log.objectAtIndex(int(a))->date();
            const ZELKDate second = m_log.objectAtIndex(int(b))->date();
            order = first < second ? -1 : int(second < first);
        } else {
            order = compareSummaries(a, b);
        }
        if (order != 0)
            return (order < 0) == key.ascending;
    }
    return m_isFalling ? a > b : a < b;
}

// MARK: arranging

void ZELKEntryArrangement::arrange(ZELKVisibleRange range, const QString &filter,
                                   const ZELKSortDescriptors &descriptors)
{
    m_summaries.setRange(range);
    m_dates.setRange(range);
    m_range = range;
    m_filter = filter.toUtf8();
    setKeys(descriptors);
    m_isPlain = m_filter.isEmpty() && isLogsOrder();
    m_plain = range;
    m_order = {};
    if (m_isPlain)
        return;
    m_summaries.trim(); // the moment at which both columns are there
    m_order = passing(range);
    sort(m_order);
}

/// What comes makes the order another one than the log's.
void ZELKEntryArrangement::writeOut()
{
    m_order.resize(m_plain.length);
    std::iota(m_order.begin(), m_order.end(), Index(m_plain.location));
    m_isPlain = false;
}

// MARK: following the range

std::optional<std::vector<ZELKEntryArrangement::Span>>
ZELKEntryArrangement::leaving(ZELKVisibleRange range) const
{
    std::vector<Span> spans;
    if (m_isPlain) {
        const std::uint64_t first = std::clamp(range.location, m_plain.location, m_plain.end());
        const std::uint64_t last = std::clamp(range.end(), first, m_plain.end());
        if (first == last)
            return m_plain.length > 0 ? std::vector<Span>{{0, size()}} : spans;
        if (last < m_plain.end())
            spans.push_back({std::size_t(last - m_plain.location), std::size_t(m_plain.end() - last)});
        if (first > m_plain.location)
            spans.push_back({0, std::size_t(first - m_plain.location)});
        return spans;
    }
    if (range.location <= m_range.location && range.end() >= m_range.end())
        return spans;
    for (std::size_t i = m_order.size(); i-- > 0;) {
        if (range.contains(m_order[i]))
            continue;
        if (!spans.empty() && spans.back().position == i + 1)
            spans.back() = {i, spans.back().length + 1};
        else if (spans.size() < mostPlaces)
            spans.push_back({i, 1});
        else
            return std::nullopt;
    }
    return spans;
}

void ZELKEntryArrangement::remove(Span span)
{
    if (m_isPlain) {
        m_plain.length -= span.length;
        if (span.position == 0)
            m_plain.location += span.length;
        return;
    }
    const auto first = m_order.begin() + std::ptrdiff_t(span.position);
    m_order.erase(first, first + std::ptrdiff_t(span.length));
}

std::optional<std::vector<ZELKEntryArrangement::Insertion>>
ZELKEntryArrangement::entering(ZELKVisibleRange range)
{
    ZELKVisibleRange before{range.location, 0};
    ZELKVisibleRange after = range;
    if (std::max(m_range.location, range.location) < std::min(m_range.end(), range.end())) {
        if (range.location < m_range.location)
            before.length = m_range.location - range.location;
        after.location = std::min(m_range.end(), range.end());
        after.length = range.end() - after.location;
    }
    m_summaries.setRange(range);
    m_dates.setRange(range);
    m_range = range;
    if (m_isPlain && m_plain.length == 0)
        m_plain.location = range.location;
    if (m_isPlain && !isLogsOrder())
        writeOut();
    std::vector<Index> entries = passing(before);
    const std::vector<Index> later = passing(after);
    entries.insert(entries.end(), later.begin(), later.end());
    if (!m_isPlain)
        sort(entries);
    ZELKTightGrowth::fit(m_order, m_order.size());
    return insertionsOf(entries);
}

std::optional<std::vector<ZELKEntryArrangement::Insertion>>
ZELKEntryArrangement::insertionsOf(const std::vector<Index> &entries) const
{
    std::vector<Insertion> insertions;
    const auto inOrder = [this](Index a, Index b) { return precedes(a, b); };
    for (const Index entry : entries) {
        std::size_t position = size();
        if (m_isPlain)
            position = entry < m_plain.location ? 0 : position;
        else if (position > 0 && precedes(entry, m_order.back()))
            position = std::size_t(std::lower_bound(m_order.begin(), m_order.end(), entry, inOrder) -
                                   m_order.begin());
        if (insertions.empty() || insertions.back().position != position) {
            if (insertions.size() == mostPlaces)
                return std::nullopt;
            insertions.push_back({position, {}});
        }
        insertions.back().entries.push_back(entry);
    }
    std::reverse(insertions.begin(), insertions.end());
    return insertions;
}

void ZELKEntryArrangement::insert(const Insertion &insertion)
{
    if (m_isPlain) {
        m_plain.length += insertion.entries.size();
        m_plain.location = std::min<std::uint64_t>(m_plain.location, insertion.entries.front());
        return;
    }
    ZELKTightGrowth::fit(m_order, m_order.size() + insertion.entries.size());
    m_order.insert(m_order.begin() + std::ptrdiff_t(insertion.position), insertion.entries.begin(),
                   insertion.entries.end());
}
