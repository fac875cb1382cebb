#pragma once

#include <QByteArrayView>

#include <cstdint>
#include <optional>

/// What rich text is made of, one after the other.
struct ZELKRtfToken
{
    enum class Kind : std::uint8_t {
        GroupStart, ///< {
        GroupEnd,   ///< }
        Word,       ///< \name, \name12
        Symbol,     ///< \ and a character that is no letter
        Byte,       ///< \'hh
        Text,       ///< anything else
        Binary,     ///< \bin and its data, passed over
        End,
        Truncated,    ///< the bytes end within a token
        MalformedByte ///< \' without two digits, passed over
    };

    Kind kind = Kind::End;
    QByteArrayView bytes;         ///< of a word its name, of text the text
    std::optional<int> parameter; ///< of a word
    char symbol = 0;              ///< of a symbol or a byte
};

/// Takes rich text apart. Does not copy the bytes.
class ZELKRtfScanner
{
public:
    explicit ZELKRtfScanner(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }

    ZELKRtfToken next();
    /// Where the next token begins.
    qsizetype offset() const { return m_at; }
    /// Whether nothing but white space and NULs follows.
    bool isAtEnd() const;

private:
    ZELKRtfToken control();
    ZELKRtfToken word();
    ZELKRtfToken hexadecimal();
    ZELKRtfToken binary(int length);
    ZELKRtfToken text();
    std::optional<int> number();
    bool hasMore() const { return m_at < m_bytes.size(); }
    char peek() const { return m_bytes[m_at]; }

    QByteArrayView m_bytes;
    qsizetype m_at = 0;
};
