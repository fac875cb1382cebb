#pragma once

#include "ZELKStringPool.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

/// Numbers texts of a pool from 0, in the order in which they are first asked for. Quick where the same one
/// is asked for again and again.
class ZELKTextNumbering
{
public:
    using Id = ZELKStringPool::Id;

    std::size_t numberOf(Id text)
    {
        if (m_last >= m_texts.size() || m_texts[m_last] != text)
            m_last = lookUp(text);
        return m_last;
    }
    std::size_t size() const { return m_texts.size(); }
    const std::vector<Id> &texts() const { return m_texts; }

private:
    /// There are few as a rule, and then a look at each is quickest.
    std::size_t lookUp(Id text)
    {
        const std::size_t few = std::min<std::size_t>(m_texts.size(), 8);
        for (std::size_t i = 0; i < few; ++i)
            if (m_texts[i] == text)
                return i;
        const auto [found, isNew] = m_numbers.try_emplace(text, m_texts.size());
        if (isNew)
            m_texts.push_back(text);
        return found->second;
    }

    std::unordered_map<Id, std::size_t> m_numbers;
    std::vector<Id> m_texts;
    std::size_t m_last = 0;
};
