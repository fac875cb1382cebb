#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QString>

/// Turns bytes of old code pages into text. Keeps the C library's converters open between calls.
class ZELKCodePage
{
public:
    static constexpr int western = 1252;

    ZELKCodePage() = default;
    ~ZELKCodePage();
    ZELKCodePage(const ZELKCodePage &) = delete;
    ZELKCodePage &operator=(const ZELKCodePage &) = delete;

    /// Bytes without a character become U+FFFD; a code page that nobody knows is read as 1252.
    QString decode(QByteArrayView bytes, int codePage);
    /// The code page of a font's \fcharset; 0 for those that have none of their own.
    static int ofCharacterSet(int characterSet);

private:
    using Converter = void *; // an iconv_t

    Converter converter(int codePage);

    QHash<int, Converter> m_converters;
};
