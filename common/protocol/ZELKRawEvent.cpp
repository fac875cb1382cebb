#include "ZELKRawEvent.h"

#include "ZELKEventVocabulary.h"
#include "ZELKPropertyList.h"

#include <QStringConverter>
#include <QtEndian>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

ZELKRawEvent ZELKMakeRawEvent(ZELKDate date, const QString &event, const QString &monitor,
                              const QString &properties)
{
    return {{ZELKEventKeyDate, ZELKDateText(date)},
            {ZELKEventKeyDescription, event},
            {ZELKEventKeyMonitor, monitor},
            {ZELKEventKeyProperties, properties}};
}

QString ZELKDateText(ZELKDate date)
{
    return QString::number(date.timeIntervalSinceReferenceDate(), 'f', 6);
}

bool ZELKIsDateText(std::string_view text)
{
    double value = 0.0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

QString ZELKPropertiesText(const ZELKDictionary &properties)
{
    return QString::fromUtf8(ZELKPropertyList::writeXml(QVariant::fromValue(properties)).bytes);
}

namespace {

/// A text of a binary property list: its bytes, one or (wide) two a character.
struct Text
{
    std::string_view bytes;
    bool wide = false;
};

/// Reads flat dictionaries of texts from a binary property list; every access is checked.
class FlatReader
{
public:
    explicit FlatReader(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    bool readTrailer();
    /// Gives key and value of each of the top dictionary's pairs; false when it is not made of texts alone.
    template <typename Put>
    bool pairs(std::size_t count, Put &&put) const;

private:
    static constexpr std::string_view magic = "bplist00";
    static constexpr std::size_t trailerSize = 32;

    std::uint64_t number(std::size_t at, std::size_t width) const
    {
        const char *bytes = m_bytes.data() + at;
        if (width == 1)
            return static_cast<unsigned char>(*bytes);
        if (width == 2)
            return qFromBigEndian<std::uint16_t>(bytes);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return value;
    }
    std::optional<std::size_t> offsetOf(std::uint64_t object) const;
    std::optional<Text> textAt(std::size_t at) const;

    std::string_view m_bytes;
    std::size_t m_offsetWidth = 0;
    std::size_t m_referenceWidth = 0;
    std::uint64_t m_objects = 0;
    std::uint64_t m_top = 0;
    std::uint64_t m_table = 0; // objects end where the offset table begins
};

bool FlatReader::readTrailer()
{
    if (m_bytes.size() < magic.size() + trailerSize || !m_bytes.starts_with(magic))
        return false;
    const std::size_t trailer = m_bytes.size() - trailerSize;
    m_offsetWidth = number(trailer + 6, 1);
    m_referenceWidth = number(trailer + 7, 1);
    m_objects = number(trailer + 8, 8);
    m_top = number(trailer + 16, 8);
    m_table = number(trailer + 24, 8);
    return m_offsetWidth >= 1 && m_offsetWidth <= 4 && m_referenceWidth >= 1 && m_referenceWidth <= 2 &&
           m_table > magic.size() && m_table < trailer && m_objects == (trailer - m_table) / m_offsetWidth &&
           (trailer - m_table) % m_offsetWidth == 0 && m_top < m_objects;
}

std::optional<std::size_t> FlatReader::offsetOf(std::uint64_t object) const
{
    if (object >= m_objects)
        return std::nullopt;
    const std::uint64_t offset = number(m_table + object * m_offsetWidth, m_offsetWidth);
    return offset >= magic.size() && offset < m_table ? std::optional<std::size_t>(offset) : std::nullopt;
}

std::optional<Text> FlatReader::textAt(std::size_t at) const
{
    const std::uint64_t marker = number(at++, 1);
    const std::uint64_t type = marker >> 4;
    std::uint64_t length = marker & 15;
    if (type != 5 && type != 6)
        return std::nullopt;
    if (length == 15) {
        if (at >= m_table || number(at, 1) >> 4 != 1)
            return std::nullopt;
        const std::size_t width = std::size_t(1) << (number(at++, 1) & 15);
        if (width > 4 || m_table - at < width)
            return std::nullopt;
        length = number(at, width);
        at += width;
    }
    const std::uint64_t bytes = type == 6 ? length * 2 : length;
    if (bytes > m_table - at)
        return std::nullopt;
    return Text{m_bytes.substr(at, bytes), type == 6};
}

template <typename Put>
bool FlatReader::pairs(std::size_t count, Put &&put) const
{
    const auto top = offsetOf(m_top);
    if (!top || number(*top, 1) != (0xD0 | count) || m_table - *top - 1 < 2 * count * m_referenceWidth)
        return false;
    const std::size_t references = *top + 1;
    for (std::size_t i = 0; i < count; ++i) {
        const auto key = offsetOf(number(references + i * m_referenceWidth, m_referenceWidth));
        const auto value = offsetOf(number(references + (count + i) * m_referenceWidth, m_referenceWidth));
        const auto keyText = key ? textAt(*key) : std::nullopt;
        const auto valueText = value ? textAt(*value) : std::nullopt;
        if (!keyText || !valueText || keyText->wide || !put(keyText->bytes, *valueText))
            return false;
    }
    return true;
}

/// Bytes from 1 to 127 alone, which a property list's narrow texts are made of.
bool isAscii(std::string_view text)
{
    constexpr std::uint64_t high = 0x8080808080808080U;
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::size_t width = sizeof(std::uint64_t);
    std::uint64_t found = 0;
    std::size_t at = 0;
    for (; at + width <= text.size(); at += width) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, text.data() + at, width);
        found |= eight | (eight - ones); // a zero byte borrows into its highest bit
    }
    for (; at < text.size(); ++at)
        found |= static_cast<signed char>(text[at]) <= 0 ? high : 0;
    return (found & high) == 0;
}

/// Appends UTF-16 (big-endian) as UTF-8; false on what the property-list reader refuses or reads in another
/// way: no text at all, unpaired surrogates, NUL, a byte order mark.
bool appendWide(std::string_view bytes, std::string &out)
{
    if (bytes.empty())
        return false;
    QStringDecoder decoder(QStringDecoder::Utf16BE,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    const QString text = decoder(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    if (decoder.hasError() || !text.isValidUtf16() || text.contains(QChar::Null) ||
        text.startsWith(QChar::ByteOrderMark))
        return false;
    out += text.toStdString();
    return true;
}

/// The four texts of an event; a wide text is converted into the scratch string.
class EventTexts
{
public:
    EventTexts(ZELKRawEventView &view, std::string &scratch)
        : m_view(view)
        , m_scratch(scratch)
    {
    }

    bool put(std::string_view key, const Text &text)
    {
        std::string_view *field = fieldFor(key);
        if (!field || field->data())
            return false;
        if (text.wide)
            return putWide(*field, text.bytes);
        *field = text.bytes;
        return field == &m_view.properties ? text.bytes.find('\0') == std::string_view::npos
                                           : isAscii(text.bytes);
    }

private:
    std::string_view *fieldFor(std::string_view key)
    {
        switch (key.size()) { // all different
        case std::string_view("date").size():
            return key == "date" ? &m_view.date : nullptr;
        case std::string_view("description").size():
            return key == "description" ? &m_view.description : nullptr;
        case std::string_view("monitor").size():
            return key == "monitor" ? &m_view.monitor : nullptr;
        case std::string_view("properties").size():
            return key == "properties" ? &m_view.properties : nullptr;
        default:
            return nullptr;
        }
    }
    bool putWide(std::string_view &field, std::string_view bytes)
    {
        // Room for the whole event is made once: views into the scratch string must not move.
        const std::size_t before = m_scratch.size();
        if (m_scratch.capacity() - before < bytes.size() / 2 * 3)
            return false;
        if (!appendWide(bytes, m_scratch))
            return false;
        field = std::string_view(m_scratch).substr(before);
        return true;
    }

    ZELKRawEventView &m_view;
    std::string &m_scratch;
};

} // namespace

ZELKRawEventReader::Kind ZELKRawEventReader::read(std::string_view bytes)
{
    m_view = {};
    m_scratch.clear();
    m_scratch.reserve(bytes.size() / 2 * 3);
    FlatReader reader(bytes);
    EventTexts texts(m_view, m_scratch);
    if (reader.readTrailer() &&
        reader.pairs(4, [&](std::string_view key, const Text &text) { return texts.put(key, text); }))
        return Kind::Texts;

    const ZELKPropertyList::Result result = ZELKPropertyList::read(bytes);
    m_error = result.error.isEmpty() ? QStringLiteral("This is no event.") : result.error;
    if (result.error.isEmpty() && result.value.userType() == qMetaTypeId<ZELKDictionary>()) {
        m_dictionary = result.value.value<ZELKDictionary>();
        if (!m_dictionary.isEmpty())
            return Kind::Dictionary;
    }
    return Kind::Faulty;
}
