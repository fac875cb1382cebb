// The arrangement's filter and sorts.
#include "ZELKEntryArrangement.h"
#include "ZELKLWCLog.h"
#include "ZELKSummarySearch.h"

#include <algorithm>
#include <numeric>

namespace {

/// Below this, tables as long as the pool of texts cost more than they save.
constexpr std::size_t fewEntries = 1000;

/// The first of ascending numbers that is not below `value`, looked for from `from` on in growing steps.
template <typename Iterator>
Iterator seek(Iterator from, Iterator end, std::uint32_t value)
{
    std::ptrdiff_t step = 1;
    while (end - from > step && from[step] < value) {
        from += step;
        step *= 2;
    }
    return std::lower_bound(from, end - from > step ? from + step : end, value);
}

} // namespace

bool ZELKEntryArrangement::passes(ZELKStringPool::Id summary) const
{
    const std::string_view text = m_log.objectAtIndex(int(m_range.location))->arena().texts().view(summary);
    return text.find(std::string_view(m_filter.constData(), std::size_t(m_filter.size()))) !=
           std::string_view::npos;
}

/// Indexes of the entries in a part of the range that pass the filter.
std::vector<ZELKEntryArrangement::Index> ZELKEntryArrangement::passing(ZELKVisibleRange range) const
{
    std::vector<Index> entries;
    if (m_filter.isEmpty()) {
        entries.resize(range.length);
        std::iota(entries.begin(), entries.end(), Index(range.location));
        return entries;
    }
    if (range.length < fewEntries) {
        for (auto i = Index(range.location); i < range.end(); ++i)
            if (passes(m_summaries.at(i)))
                entries.push_back(i);
        return entries;
    }
    const ZELKStringPool &texts = m_log.objectAtIndex(int(range.location))->arena().texts();
    const std::string_view filter(m_filter.constData(), std::size_t(m_filter.size()));
    const ZELKStringPool::Id *summaries = m_summaries.filledFrom(Index(range.location));
    return ZELKSummarySearch(texts, filter).placesIn({summaries, range.length}, Index(range.location));
}

/// Brings indexes, rising as the log has them, into the kept order.
void ZELKEntryArrangement::sort(std::vector<Index> &entries) const
{
    if (m_keys.empty())
        return;
    if (entries.size() < fewEntries) {
        std::sort(entries.begin(), entries.end(), [this](Index a, Index b) { return precedes(a, b); });
        return;
    }
    const auto date = std::find_if(m_keys.begin(), m_keys.end(), [](const Key &key) { return key.isDate; });
    if (date != m_keys.end())
        sortByDate(entries, date->ascending);
    else if (m_isFalling)
        std::reverse(entries.begin(), entries.end());
    if (!m_keys.front().isDate)
        sortBySummary(entries);
}

void ZELKEntryArrangement::sortByDate(std::vector<Index> &entries, bool ascending) const
{
    if (!m_dates.isAscending()) {
        if (m_keys.front().isDate) {
            std::sort(entries.begin(), entries.end(), [this](Index a, Index b) { return precedes(a, b); });
            return;
        }
        if (m_isFalling)
            std::reverse(entries.begin(), entries.end());
        std::stable_sort(entries.begin(), entries.end(), [this, ascending](Index a, Index b) {
            const ZELKLWCLogEntry *first = m_log.objectAtIndex(int(ascending ? a : b));
            return first->before(m_log.objectAtIndex(int(ascending ? b : a))->date());
        });
        return;
    }
    const bool endsUpRising = ascending;
    const bool isDecidedFurther = m_keys.front().isDate && m_keys.size() > 1;
    if (isDecidedFurther || endsUpRising == m_isFalling)
        turnTies(entries);
    if (!ascending)
        std::reverse(entries.begin(), entries.end());
}

/// Puts entries of one date, which rise, in the order that further keys or the direction ask for.
void ZELKEntryArrangement::turnTies(std::vector<Index> &entries) const
{
    const std::vector<std::uint32_t> &ties = m_dates.ties();
    const bool isSorted = m_keys.front().isDate && m_keys.size() > 1;
    auto place = entries.begin();
    for (std::size_t i = 0; i < ties.size() && place != entries.end();) {
        const Index first = ties[i] - 1;
        Index last = ties[i];
        while (++i < ties.size() && ties[i] == last + 1)
            ++last;
        const auto from = seek(place, entries.end(), first);
        place = seek(from, entries.end(), last + 1);
        if (isSorted)
            std::sort(from, place, [this](Index a, Index b) { return precedes(a, b); });
        else
            std::reverse(from, place);
    }
}

/// Stable, rising: the different summaries are sorted, and entries dealt out to their places.
void ZELKEntryArrangement::sortBySummary(std::vector<Index> &entries) const
{
    m_summaries.fill();
    const ZELKStringPool &texts = m_log.objectAtIndex(int(entries.front()))->arena().texts();
    std::vector<Index> placeOf(texts.size() + 1, 0); // first how many entries, then where the next one goes
    std::vector<ZELKStringPool::Id> different;
    for (const Index entry : entries) {
        const ZELKStringPool::Id summary = m_summaries.at(entry);
        if (placeOf[summary]++ == 0)
            different.push_back(summary);
    }
    std::sort(different.begin(), different.end(),
              [&texts](auto a, auto b) { return texts.view(a) < texts.view(b); });
    Index place = 0;
    for (const ZELKStringPool::Id summary : different)
        place += std::exchange(placeOf[summary], place);
    std::vector<Index> sorted(entries.size());
    for (const Index entry : entries)
        sorted[placeOf[m_summaries.at(entry)]++] = entry;
    entries = std::move(sorted);
}
