#pragma once

#include <random>
#include <string>
#include <vector>

/// Makes property-list texts, usual and odd, always the same ones for the same seed.
class PropertyTexts
{
public:
    explicit PropertyTexts(unsigned seed)
        : m_random(seed)
    {
    }

    std::size_t upTo(std::size_t most) { return m_random() % (most + 1); }
    bool once(std::size_t in) { return upTo(in - 1) == 0; }
    template <typename T>
    const T &oneOf(const std::vector<T> &items)
    {
        return items[upTo(items.size() - 1)];
    }

    /// `oddness` of a hundred choices are unusual.
    std::string text(std::size_t oddness);
    /// A few small changes anywhere.
    std::string mutated(std::string text);

private:
    bool odd() { return upTo(99) < m_oddness; }
    std::string usualOr(const std::string &usual, const std::vector<std::string> &others);
    std::string space();
    std::string prologue();
    std::string root();
    std::string key(const std::string &name);
    std::string integer();
    std::string string();
    std::string value(const std::string &name, int depth);
    std::string other(int depth);
    void change(std::string &text);

    std::mt19937 m_random;
    std::size_t m_oddness = 0;
};
