#include "ZELKSummarySearch.h"

#include <algorithm>
#include <array>

namespace {

/// Summaries that are looked at together: most searches find something in few of these groups.
constexpr std::size_t groupSize = 8;
/// What is found in so many summaries is put down before it goes where it stays, so that nothing is reserved,
/// or cleared, for the many that are not found.
constexpr std::size_t blockSize = 1024;
constexpr std::size_t judgedTogether = 16;

} // namespace

ZELKSummarySearch::ZELKSummarySearch(const ZELKStringPool &texts, std::string_view text)
    : m_texts(texts)
    , m_text(text)
    , m_verdicts(texts.size() + 1, Unknown)
{
}

std::vector<std::uint32_t> ZELKSummarySearch::placesIn(std::span<const Id> summaries, std::uint32_t first)
{
    std::vector<std::uint32_t> found;
    std::array<std::uint32_t, blockSize> places;
    for (std::size_t start = 0; start < summaries.size(); start += blockSize) {
        const auto block = summaries.subspan(start, std::min(blockSize, summaries.size() - start));
        const std::size_t count = lookAtBlock(block, first + std::uint32_t(start), places.data());
        found.insert(found.end(), places.begin(), places.begin() + std::ptrdiff_t(count));
    }
    found.shrink_to_fit();
    return found;
}

/// Writes down the places of those of a block that pass; answers how many there are.
std::size_t ZELKSummarySearch::lookAtBlock(std::span<const Id> block, std::uint32_t first,
                                           std::uint32_t *places)
{
    std::size_t count = 0;
    std::size_t start = 0;
    for (; start + groupSize <= block.size(); start += groupSize)
        count += lookAtGroup(block.subspan(start).first<groupSize>(), first + std::uint32_t(start),
                             places + count);
    return count + lookAtGroup(block.subspan(start), first + std::uint32_t(start), places + count);
}

template <std::size_t size>
std::size_t ZELKSummarySearch::lookAtGroup(std::span<const Id, size> group, std::uint32_t first,
                                           std::uint32_t *places)
{
    unsigned together = 0;
    for (const Id summary : group)
        together |= m_verdicts[summary];
    if (together == Fails)
        return 0;
    if ((together & Unknown) != 0)
        for (const Id summary : group)
            judge(summary);
    // Without a branch for each, which would be guessed wrong too often.
    std::size_t count = 0;
    for (std::size_t i = 0; i < group.size(); ++i) {
        places[count] = first + std::uint32_t(i);
        count += m_verdicts[group[i]];
    }
    return count;
}

/// Texts have numbers, and stand in memory, in the order of first sight: those behind a new one are met soon,
/// and cost least right behind it.
void ZELKSummarySearch::judge(Id summary)
{
    const std::size_t end = std::min<std::size_t>(summary + judgedTogether, m_verdicts.size());
    for (std::size_t next = summary; next < end && m_verdicts[next] == Unknown; ++next)
        m_verdicts[next] = m_texts.view(Id(next)).find(m_text) != std::string_view::npos ? Passes : Fails;
}
