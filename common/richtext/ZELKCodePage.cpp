#include "ZELKCodePage.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace {

const iconv_t none = iconv_t(-1); // NOLINT(performance-no-int-to-ptr): that is how the C library says it

/// 0x80 to 0x9F; the rest is Latin 1.
constexpr char16_t westernExtras[] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                      0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

QString fromWestern(QByteArrayView bytes)
{
    QString text = QString::fromLatin1(bytes);
    for (QChar &character : text)
        if (character >= QChar(0x80) && character < QChar(0xA0))
            character = QChar(westernExtras[character.unicode() - 0x80]);
    return text;
}

/// The C library's name.
QByteArray converterName(int codePage)
{
    constexpr int macRoman = 10000;
    constexpr int johab = 1361;
    constexpr int utf8 = 65001;
    switch (codePage) {
    case macRoman:
        return "MACINTOSH";
    case johab:
        return "JOHAB";
    case utf8:
        return "UTF-8";
    default:
        return "CP" + QByteArray::number(codePage);
    }
}

/// Converts all bytes, passing over those that stand for nothing.
QString convert(iconv_t converter, QByteArrayView bytes)
{
    QString text(bytes.size() * 2 + 8, Qt::Uninitialized); // more than any code page makes of them
    char *in = const_cast<char *>(bytes.data()); // NOLINT(cppcoreguidelines-pro-type-const-cast): not written
    auto *const start = reinterpret_cast<char *>(text.data());
    char *out = start;
    std::size_t inLeft = std::size_t(bytes.size());
    std::size_t outLeft = std::size_t(text.size()) * sizeof(QChar);
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    while (inLeft > 0 && iconv(converter, &in, &inLeft, &out, &outLeft) == std::size_t(-1)) {
        if (errno == E2BIG || outLeft < sizeof(QChar))
            break;
        constexpr QChar replacement(QChar::ReplacementCharacter);
        out = std::copy_n(reinterpret_cast<const char *>(&replacement), sizeof replacement, out);
        outLeft -= sizeof replacement;
        if (inLeft == 0) // nothing is left to pass over
            break;
        ++in;
        --inLeft;
    }
    iconv(converter, nullptr, nullptr, &out, &outLeft);
    text.truncate((out - start) / qsizetype(sizeof(QChar)));
    return text;
}

} // namespace

ZELKCodePage::~ZELKCodePage()
{
    for (const Converter opened : std::as_const(m_converters))
        if (opened != none)
            iconv_close(opened);
}

QString ZELKCodePage::decode(QByteArrayView bytes, int codePage)
{
    const bool isPlain = std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0; });
    if (isPlain || codePage == western)
        return fromWestern(bytes);
    const Converter opened = converter(codePage);
    return opened == none ? fromWestern(bytes) : convert(opened, bytes);
}

ZELKCodePage::Converter ZELKCodePage::converter(int codePage)
{
    const auto known = m_converters.constFind(codePage);
    if (known != m_converters.constEnd())
        return *known;
    constexpr qsizetype most = 64; // there are fewer, but numbers are made up easily
    if (m_converters.size() >= most)
        return none;
    const char *to = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "UTF-16LE" : "UTF-16BE";
    return *m_converters.insert(codePage, iconv_open(to, converterName(codePage).constData()));
}

int ZELKCodePage::ofCharacterSet(int characterSet)
{
    static const QHash<int, int> codePages{{0, western}, {77, 10000}, {128, 932},  {129, 949},  {130, 1361},
                                           {134, 936},   {136, 950},  {161, 1253}, {162, 1254}, {163, 1258},
                                           {177, 1255},  {178, 1256}, {186, 1257}, {204, 1251}, {222, 874},
                                           {238, 1250},  {254, 437},  {255, 850}};
    return codePages.value(characterSet, 0);
}
