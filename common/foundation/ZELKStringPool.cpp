#include "ZELKStringPool.h"

#include <QStringDecoder>

#include <algorithm>
#include <cstring>

namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
constexpr std::size_t firstSlots = 1024;
constexpr std::size_t ordinaryBlock = std::size_t(1) << 16;

std::uint64_t mixed(std::uint64_t hash, std::uint64_t word)
{
    hash = (hash ^ word) * 0x9fb21c651e98df25U;
    return hash ^ (hash >> 29);
}

/// Eight bytes at a time; the length goes in first, so that texts that differ in trailing zeros differ.
std::size_t hashOf(std::string_view text)
{
    std::uint64_t hash = 0x2545f4914f6cdd1dU ^ text.size();
    while (text.size() >= sizeof(std::uint64_t)) {
        std::uint64_t word;
        std::memcpy(&word, text.data(), sizeof word);
        hash = mixed(hash, word);
        text.remove_prefix(sizeof word);
    }
    std::uint64_t word = 0;
    if (!text.empty())
        std::memcpy(&word, text.data(), text.size());
    return std::size_t(mixed(mixed(hash, word), 0));
}

} // namespace

ZELKStringPool::ZELKStringPool()
    : m_texts(1)
    , m_slots(firstSlots, nil)
{
}

ZELKStringPool::~ZELKStringPool() = default;

ZELKStringPool::Id ZELKStringPool::intern(std::string_view utf8)
{
    const std::size_t hash = hashOf(utf8);
    std::size_t slot = slotOf(utf8, hash);
    if (m_slots[slot] != nil)
        return m_slots[slot];
    if (m_texts.size() * 2 > m_slots.size()) {
        grow();
        slot = slotOf(utf8, hash);
    }
    m_texts.push_back(keep(utf8));
    return m_slots[slot] = Id(m_texts.size() - 1);
}

ZELKStringPool::Id ZELKStringPool::find(std::string_view utf8) const
{
    return m_slots[slotOf(utf8, hashOf(utf8))];
}

QString ZELKStringPool::string(Id id) const
{
    if (id == nil)
        return {};
    const QByteArrayView utf8(m_texts[id].data(), qsizetype(m_texts[id].size()));
    if (!utf8.startsWith(byteOrderMark))
        return QString::fromUtf8(utf8);
    // Qt takes it for the mark of a file, and drops it; here it is a part of the text.
    return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom).decode(utf8);
}

std::size_t ZELKStringPool::slotOf(std::string_view utf8, std::size_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = hash & mask;
    while (m_slots[slot] != nil && m_texts[m_slots[slot]] != utf8)
        slot = (slot + 1) & mask;
    return slot;
}

void ZELKStringPool::grow()
{
    m_slots.assign(m_slots.size() * 2, nil);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t id = 1; id < m_texts.size(); ++id) {
        std::size_t slot = hashOf(m_texts[id]) & mask;
        while (m_slots[slot] != nil)
            slot = (slot + 1) & mask;
        m_slots[slot] = Id(id);
    }
}

std::string_view ZELKStringPool::keep(std::string_view utf8)
{
    if (utf8.empty())
        return std::string_view("");
    if (utf8.size() > ordinaryBlock / 8) {
        // A long text gets a block of its own; the last one stays the one that is being filled.
        m_blocks.push_front(std::make_unique<char[]>(utf8.size()));
        std::copy(utf8.begin(), utf8.end(), m_blocks.front().get());
        return {m_blocks.front().get(), utf8.size()};
    }
    if (m_blockSize - m_blockUsed < utf8.size()) {
        m_blocks.push_back(std::make_unique<char[]>(ordinaryBlock));
        m_blockSize = ordinaryBlock;
        m_blockUsed = 0;
    }
    char *place = m_blocks.back().get() + m_blockUsed;
    std::copy(utf8.begin(), utf8.end(), place);
    m_blockUsed += utf8.size();
    return {place, utf8.size()};
}
