#include "ZELKRtfScanner.h"

#include <algorithm>
#include <limits>

namespace {

using Kind = ZELKRtfToken::Kind;

bool isLetter(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

/// Line ends stand between tokens to keep lines short, and say nothing.
bool isPassedOver(char byte)
{
    return byte == '\r' || byte == '\n' || byte == '\0';
}

int digitValue(char byte)
{
    if (isDigit(byte))
        return byte - '0';
    const char small = char(byte | 0x20);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

} // namespace

ZELKRtfToken ZELKRtfScanner::next()
{
    while (hasMore() && isPassedOver(peek()))
        ++m_at;
    if (!hasMore())
        return {Kind::End, {}, {}, 0};
    switch (peek()) {
    case '{':
        ++m_at;
        return {Kind::GroupStart, {}, {}, 0};
    case '}':
        ++m_at;
        return {Kind::GroupEnd, {}, {}, 0};
    case '\\':
        ++m_at;
        return control();
    default:
        return text();
    }
}

bool ZELKRtfScanner::isAtEnd() const
{
    return std::all_of(m_bytes.begin() + m_at, m_bytes.end(),
                       [](char byte) { return isPassedOver(byte) || byte == ' ' || byte == '\t'; });
}

ZELKRtfToken ZELKRtfScanner::text()
{
    const qsizetype start = m_at;
    while (hasMore() && !isPassedOver(peek()) && peek() != '{' && peek() != '}' && peek() != '\\')
        ++m_at;
    return {Kind::Text, m_bytes.sliced(start, m_at - start), {}, 0};
}

ZELKRtfToken ZELKRtfScanner::control()
{
    if (!hasMore())
        return {Kind::Truncated, {}, {}, 0};
    if (isLetter(peek()))
        return word();
    const char symbol = m_bytes[m_at++];
    if (symbol == '\'')
        return hexadecimal();
    if (symbol == '\r' && hasMore() && peek() == '\n')
        ++m_at;
    return {Kind::Symbol, {}, {}, symbol};
}

ZELKRtfToken ZELKRtfScanner::word()
{
    const qsizetype start = m_at;
    while (hasMore() && isLetter(peek()))
        ++m_at;
    const QByteArrayView name = m_bytes.sliced(start, m_at - start);
    const std::optional<int> parameter = number();
    if (hasMore() && peek() == ' ')
        ++m_at;
    if (name == "bin")
        return binary(parameter.value_or(0));
    return {Kind::Word, name, parameter, 0};
}

/// The number behind a word; beyond the bounds of an int it is drawn in to them.
std::optional<int> ZELKRtfScanner::number()
{
    const bool isNegative = hasMore() && peek() == '-';
    const qsizetype first = m_at + (isNegative ? 1 : 0);
    if (first >= m_bytes.size() || !isDigit(m_bytes[first]))
        return std::nullopt;
    constexpr qint64 most = std::numeric_limits<int>::max();
    qint64 value = 0;
    for (m_at = first; hasMore() && isDigit(peek()); ++m_at)
        value = std::min(value * 10 + (peek() - '0'), most);
    return int(isNegative ? -value : value);
}

ZELKRtfToken ZELKRtfScanner::hexadecimal()
{
    if (m_bytes.size() - m_at < 2) {
        m_at = m_bytes.size();
        return {Kind::Truncated, {}, {}, 0};
    }
    const int high = digitValue(m_bytes[m_at]);
    const int low = digitValue(m_bytes[m_at + 1]);
    if (high < 0 || low < 0)
        return {Kind::MalformedByte, {}, {}, 0};
    m_at += 2;
    return {Kind::Byte, {}, {}, char(high * 16 + low)};
}

ZELKRtfToken ZELKRtfScanner::binary(int length)
{
    if (length > m_bytes.size() - m_at) {
        m_at = m_bytes.size();
        return {Kind::Truncated, {}, {}, 0};
    }
    m_at += std::max(length, 0);
    return {Kind::Binary, {}, {}, 0};
}
