#include "ZELKEventStream.h"

#include "ZELKAssertion.h"

#include <QtEndian>

#include <algorithm>

namespace {

template <typename T>
void appendBigEndian(QByteArray &out, T number)
{
    char bytes[sizeof(T)];
    qToBigEndian(number, bytes);
    out.append(bytes, qsizetype(sizeof bytes));
}

} // namespace

QByteArray ZELKEventStream::begin()
{
    return QByteArray(greeting.data(), qsizetype(greeting.size()));
}

void ZELKEventStream::append(QByteArray &out, std::string_view event)
{
    if (event.empty() || event.size() > longestEvent)
        ZELKAssertion::failParameter(QStringLiteral("common/protocol/ZELKEventStream"), 0,
                                     "event.size() in 1 ... longestEvent");
    appendBigEndian(out, std::uint32_t(event.size()));
    out.append(event.data(), qsizetype(event.size()));
}

QByteArray ZELKEventStream::end(std::uint64_t count)
{
    QByteArray out;
    appendBigEndian(out, std::uint32_t(0));
    appendBigEndian(out, count);
    return out;
}

void ZELKEventStreamReader::feed(std::string_view bytes)
{
    if (m_state == State::Faulty || bytes.empty())
        return;
    if (m_state == State::Complete) { // nothing follows the closing number
        m_state = State::Faulty;
        return;
    }
    m_buffer.remove(0, m_position);
    m_position = 0;
    m_buffer.append(bytes.data(), qsizetype(bytes.size()));
    if (m_greeted)
        return;
    const auto seen = std::min(std::size_t(m_buffer.size()), ZELKEventStream::greeting.size());
    if (std::string_view(m_buffer.constData(), seen) != ZELKEventStream::greeting.substr(0, seen)) {
        m_state = State::Faulty;
    } else if (seen == ZELKEventStream::greeting.size()) {
        m_greeted = true;
        m_position = qsizetype(seen);
    }
}

std::optional<std::string_view> ZELKEventStreamReader::next()
{
    constexpr qsizetype lengthSize = sizeof(std::uint32_t);
    constexpr qsizetype countSize = sizeof(std::uint64_t);
    const qsizetype available = m_buffer.size() - m_position;
    if (m_state != State::Reading || !m_greeted || available < lengthSize)
        return std::nullopt;

    const char *at = m_buffer.constData() + m_position;
    const auto length = qFromBigEndian<std::uint32_t>(at);
    if (length == 0) {
        if (available < lengthSize + countSize)
            return std::nullopt;
        const bool whole =
            available == lengthSize + countSize && qFromBigEndian<std::uint64_t>(at + lengthSize) == m_count;
        m_state = whole ? State::Complete : State::Faulty;
        return std::nullopt;
    }
    if (length > ZELKEventStream::longestEvent) {
        m_state = State::Faulty;
        return std::nullopt;
    }
    if (available < lengthSize + qsizetype(length))
        return std::nullopt;
    m_position += lengthSize + qsizetype(length);
    ++m_count;
    return std::string_view(at + lengthSize, length);
}
