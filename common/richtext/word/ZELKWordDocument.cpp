#include "ZELKWordDocument.h"

#include "ZELKWordBytes.h"
#include "ZELKWordProperties.h"

#include <QStringView>

using namespace ZELKWordBytes;

namespace {

constexpr char classIdentifier[] = "\x06\x09\x02\0\0\0\0\0\xC0\0\0\0\0\0\0\x46";
constexpr char16_t paragraphEnd = u'\r';
constexpr char16_t lineBreak = u'\v';

/// A unit between two others as the document holds it.
char16_t written(char16_t before, char16_t unit, char16_t after)
{
    if (unit == u'\n')
        return paragraphEnd;
    if (unit == 0x2028 || unit == 0x2029 || unit == u'\v')
        return lineBreak;
    if ((unit < 0x20 && unit != u'\t') || (unit >= 0x7F && unit < 0xA0))
        return u' ';
    const bool isHalf = (QChar::isHighSurrogate(unit) && !QChar::isLowSurrogate(after)) ||
                        (QChar::isLowSurrogate(unit) && !QChar::isHighSurrogate(before));
    return isHalf || unit >= 0xFFFE ? char16_t(QChar::ReplacementCharacter) : unit;
}

QByteArray writtenText(QStringView text)
{
    QByteArray out(2 * text.size(), Qt::Uninitialized);
    char16_t before = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        const char16_t after = i + 1 < text.size() ? text[i + 1].unicode() : u'\0';
        set(out, 2 * i, quint16(written(before, unit, after)));
        before = unit;
    }
    return out;
}

} // namespace

ZELKWordDocument::ZELKWordDocument(QIODevice &device)
    : m_file(device, QByteArrayView(classIdentifier, 16))
{
    m_contents.fonts = QStringList{QStringLiteral("Arial")};
}

bool ZELKWordDocument::begin()
{
    put(QByteArray(ZELKWordHeader::room, '\0'));
    return m_file.beginStream("WordDocument") && flush();
}

bool ZELKWordDocument::append(const ZELKAttributedString &piece)
{
    constexpr qsizetype enough = 65536;
    const QStringView text(piece.string());
    m_waiting += writtenText(text);
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : piece.runs()) {
        appendRun(text.sliced(start, run.length), run.attributes);
        start += run.length;
    }
    return m_waiting.size() < enough || flush();
}

void ZELKWordDocument::appendRun(QStringView text, const ZELKTextAttributes &look)
{
    if (look != m_look)
        startLook(look);
    while (!text.isEmpty()) {
        if (m_startsParagraph && look.paragraph != m_style)
            startStyle(look.paragraph);
        const qsizetype lineEnd = text.indexOf(QLatin1Char('\n'));
        m_startsParagraph = lineEnd >= 0;
        const qsizetype length = m_startsParagraph ? lineEnd + 1 : text.size();
        m_position += quint32(2 * length);
        if (m_startsParagraph)
            m_paragraphs.append(m_position, m_styleProperties);
        text = text.sliced(length);
    }
}

void ZELKWordDocument::startLook(const ZELKTextAttributes &look)
{
    const QByteArray properties = ZELKWordProperties::forCharacters(look, fontNumber(look.family));
    m_look = look;
    if (properties == m_lookProperties)
        return;
    if (m_position > m_lookStart)
        m_characters.append(m_position, m_lookProperties);
    m_lookStart = m_position;
    m_lookProperties = properties;
}

void ZELKWordDocument::startStyle(const ZELKParagraphStyle &style)
{
    m_style = style;
    m_styleProperties = ZELKWordProperties::forParagraph(style);
}

int ZELKWordDocument::fontNumber(const QString &family)
{
    constexpr qsizetype mostFonts = 0x7FFF;
    const auto known = family.isEmpty() ? 0 : m_contents.fonts.indexOf(family);
    if (known >= 0)
        return int(known);
    if (m_contents.fonts.size() >= mostFonts)
        return 0;
    m_contents.fonts.append(family);
    return int(m_contents.fonts.size()) - 1;
}

qint64 ZELKWordDocument::size() const
{
    constexpr int openPages = 2 * ZELKWordPages::pageSize;
    constexpr int rounding = 4 * ZELKWordPages::pageSize;
    return qint64(m_position) + m_characters.bytes().size() + m_paragraphs.bytes().size() + openPages +
           rounding;
}

bool ZELKWordDocument::finish(const QString &title, const QString &application)
{
    endText();
    return appendPages() && endStream() && m_file.addSummary(title, application) && m_file.finish();
}

/// The last paragraph must have an end.
void ZELKWordDocument::endText()
{
    if (!m_startsParagraph || m_position == ZELKWordHeader::room) {
        QByteArray end;
        append16(end, paragraphEnd);
        put(end);
        m_paragraphs.append(m_position, m_styleProperties);
    }
    m_characters.append(m_position, m_lookProperties);
    m_characters.finish();
    m_paragraphs.finish();
    m_header.textEnd = m_position;
    m_header.unitCount = (m_position - ZELKWordHeader::room) / 2;
}

bool ZELKWordDocument::appendPages()
{
    put(QByteArray(padding(m_position, ZELKWordPages::pageSize), '\0'));
    if (!flush())
        return false;
    const std::pair<const ZELKWordPages &, QByteArray &> kinds[] = {
        {m_characters, m_contents.characterIndex}, {m_paragraphs, m_contents.paragraphIndex}};
    for (const auto &[pages, index] : kinds) {
        index = pages.index(m_position / ZELKWordPages::pageSize);
        m_position += quint32(pages.bytes().size());
        if (!m_file.append(pages.bytes()))
            return false;
    }
    return true;
}

/// The page's properties, the header, and the second stream.
bool ZELKWordDocument::endStream()
{
    m_contents.sectionPlace = m_position;
    m_contents.textStart = ZELKWordHeader::room;
    m_contents.unitCount = m_header.unitCount;
    const QByteArray page = ZELKWordProperties::forPage();
    QByteArray end;
    append16(end, page.size());
    put(end + page);
    put(QByteArray(padding(m_position, ZELKWordPages::pageSize), '\0'));
    if (m_position < leastStream)
        put(QByteArray(leastStream - m_position, '\0'));
    m_header.streamSize = m_position;
    const ZELKWordTables tables(m_contents);
    return flush() && m_file.replaceBeginning(m_header.bytes(tables.places())) && m_file.endStream() &&
           m_file.beginStream("1Table") && m_file.append(tables.bytes()) && m_file.endStream();
}

void ZELKWordDocument::put(const QByteArray &bytes)
{
    m_waiting += bytes;
    m_position += quint32(bytes.size());
}

bool ZELKWordDocument::flush()
{
    const bool isTaken = m_file.append(m_waiting);
    m_waiting.resize(0); // keeps its room
    return isTaken;
}
