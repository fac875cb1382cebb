#include "ZELKWordPages.h"

#include "ZELKWordBytes.h"

#include <algorithm>

using namespace ZELKWordBytes;

namespace {

constexpr int lastByte = ZELKWordPages::pageSize - 1; // counts the stretches

/// Bytes for each stretch beside its end: of a paragraph also its height, which readers find out themselves.
int entrySize(ZELKWordPages::Kind kind)
{
    return kind == ZELKWordPages::Kind::Characters ? 1 : 13;
}

/// The properties with their length before them; of a paragraph it counts pairs of bytes, and there is its
/// style's number, which is 0.
QByteArray blockOf(ZELKWordPages::Kind kind, const QByteArray &properties)
{
    QByteArray block;
    if (kind == ZELKWordPages::Kind::Characters) {
        append8(block, properties.size());
        return block + properties;
    }
    const qsizetype size = properties.size() + 2;
    if (size % 2 == 0)
        append8(block, 0);
    append8(block, (size + 1) / 2);
    append16(block, 0);
    return block + properties;
}

} // namespace

ZELKWordPages::ZELKWordPages(Kind kind, quint32 start)
    : m_kind(kind)
    , m_end(start)
    , m_pageStarts{start}
    , m_bottom(lastByte)
{
}

void ZELKWordPages::append(quint32 end, const QByteArray &properties)
{
    const QByteArray block = blockOf(m_kind, properties);
    const auto number = int(m_ends.size());
    const int top = 4 * (number + 2) + entrySize(m_kind) * (number + 1);
    int place = placeFor(block);
    if (std::min(place, m_bottom) < top) {
        closePage();
        place = placeFor(block);
    }
    if (place < m_bottom) {
        m_blocks.push_back({block, place});
        m_bottom = place;
    }
    m_ends.push_back(end);
    m_places.push_back(place);
    m_end = end;
}

/// Where equal properties stand on the page, or where these would, which has to be even.
int ZELKWordPages::placeFor(const QByteArray &block) const
{
    for (const Block &known : m_blocks)
        if (known.bytes == block)
            return known.place;
    return (m_bottom - int(block.size())) / 2 * 2;
}

void ZELKWordPages::closePage()
{
    const auto count = qsizetype(m_ends.size());
    const qsizetype page = m_bytes.size();
    m_bytes.append(pageSize, '\0');
    set(m_bytes, page, m_pageStarts.back());
    for (qsizetype i = 0; i < count; ++i) {
        set(m_bytes, page + 4 * (i + 1), m_ends[std::size_t(i)]);
        set(m_bytes, page + 4 * (count + 1) + entrySize(m_kind) * i, quint8(m_places[std::size_t(i)] / 2));
    }
    for (const Block &block : m_blocks)
        m_bytes.replace(page + block.place, block.bytes.size(), block.bytes);
    set(m_bytes, page + lastByte, quint8(count));
    m_pageStarts.push_back(m_end);
    m_ends.clear();
    m_places.clear();
    m_blocks.clear();
    m_bottom = lastByte;
}

void ZELKWordPages::finish()
{
    if (!m_ends.empty())
        closePage();
}

QByteArray ZELKWordPages::index(quint32 firstNumber) const
{
    QByteArray out;
    for (const quint32 start : m_pageStarts)
        append32(out, start);
    for (std::size_t i = 0; i + 1 < m_pageStarts.size(); ++i)
        append32(out, firstNumber + quint32(i));
    return out;
}
