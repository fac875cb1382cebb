#pragma once

#include <QString>

#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <vector>

/// Texts kept once and named by a small number. Number 0 is nil. Texts are UTF-8 in blocks that never move.
class ZELKStringPool
{
public:
    using Id = std::uint32_t;
    static constexpr Id nil = 0;

    ZELKStringPool();
    ~ZELKStringPool();
    ZELKStringPool(const ZELKStringPool &) = delete;
    ZELKStringPool &operator=(const ZELKStringPool &) = delete;

    /// The number of `utf8`, taken up when it is new. Numbers count up from 1 in the order of first sight.
    Id intern(std::string_view utf8);
    Id intern(const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        return intern(std::string_view(utf8.constData(), std::size_t(utf8.size())));
    }
    /// nil when the text is not in the pool.
    Id find(std::string_view utf8) const;
    /// The text of a number; empty for nil.
    std::string_view view(Id id) const { return m_texts[id]; }
    /// The text unchanged, a byte-order mark at its beginning included; a null string for nil.
    QString string(Id id) const;
    /// How many numbers are given out, nil not counted.
    std::size_t size() const { return m_texts.size() - 1; }

private:
    std::size_t slotOf(std::string_view utf8, std::size_t hash) const;
    void grow();
    std::string_view keep(std::string_view utf8);

    std::vector<std::string_view> m_texts;
    std::vector<Id> m_slots; // open addressing; a power of two long
    std::deque<std::unique_ptr<char[]>> m_blocks;
    std::size_t m_blockUsed = 0;
    std::size_t m_blockSize = 0;
};
