#pragma once

#include "ZELKStringPool.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Finds the entries whose summaries contain a text, from the numbers of the summaries. Into each different
/// summary it looks once, however many entries have it.
class ZELKSummarySearch
{
public:
    using Id = ZELKStringPool::Id;

    /// For a text as UTF-8, in which texts contain each other as they do in UTF-16. `texts` must outlive the
    /// search.
    ZELKSummarySearch(const ZELKStringPool &texts, std::string_view text);

    /// The places in `summaries` of those that contain the text, rising and counted from `first`.
    std::vector<std::uint32_t> placesIn(std::span<const Id> summaries, std::uint32_t first);

private:
    /// Bits, so that one of several summaries taken together says whether any of them needs a look.
    enum Verdict : std::uint8_t { Fails = 0, Passes = 1, Unknown = 2 };

    std::size_t lookAtBlock(std::span<const Id> block, std::uint32_t first, std::uint32_t *places);
    template <std::size_t size>
    std::size_t lookAtGroup(std::span<const Id, size> group, std::uint32_t first, std::uint32_t *places);
    void judge(Id summary);

    const ZELKStringPool &m_texts;
    std::string m_text;
    std::vector<Verdict> m_verdicts; // by number
};
