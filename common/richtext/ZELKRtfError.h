#pragma once

#include <QString>

#include <stdexcept>

/// What is wrong with rich text. Can be thrown: whoever needs the text whole raises it.
class ZELKRtfError : public std::runtime_error
{
public:
    enum class Code {
        NotRichText = 1,  ///< does not begin as rich text does
        TooLarge = 2,     ///< more bytes than are read
        TooDeep = 3,      ///< groups within groups beyond any need
        Truncated = 4,    ///< ends within a group, a control word or binary data
        Unbalanced = 5,   ///< closes a group that was not open
        MalformedByte = 6 ///< \' without two hexadecimal digits
    };

    /// `offset` in bytes.
    ZELKRtfError(Code code, qsizetype offset);

    Code code() const { return m_code; }
    qsizetype offset() const { return m_offset; }
    /// One sentence, for a console line.
    QString localizedDescription() const { return QString::fromUtf8(what()); }

private:
    Code m_code;
    qsizetype m_offset;
};
