#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

/// Numbers and texts as Word documents hold them, low bytes first.
namespace ZELKWordBytes {

constexpr qsizetype leastStream = 4096; ///< into shorter ones some readers do not look

template <typename Number>
void set(QByteArray &bytes, qsizetype offset, Number number)
{
    qToLittleEndian(number, bytes.data() + offset);
}

template <typename Number>
void append(QByteArray &bytes, Number number)
{
    bytes.resize(bytes.size() + qsizetype(sizeof(Number)));
    set(bytes, bytes.size() - qsizetype(sizeof(Number)), number);
}

inline void append8(QByteArray &bytes, qint64 number)
{
    append(bytes, quint8(number));
}

inline void append16(QByteArray &bytes, qint64 number)
{
    append(bytes, quint16(number));
}

inline void append32(QByteArray &bytes, qint64 number)
{
    append(bytes, quint32(number));
}

/// With a zero at its end, which its length does not count.
inline void appendText(QByteArray &bytes, const QString &text)
{
    for (const QChar unit : text)
        append16(bytes, unit.unicode());
    append16(bytes, 0);
}

/// What is missing to a multiple of `unit`.
constexpr qsizetype padding(qsizetype size, qsizetype unit)
{
    return (unit - size % unit) % unit;
}

} // namespace ZELKWordBytes
