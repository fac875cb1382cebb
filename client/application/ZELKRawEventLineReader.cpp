#include "ZELKRawEventLineReader.h"

#include "ZELKCommandLineText.h"
#include "ZELKEventVocabulary.h"
#include "ZELKFormat.h"
#include "ZELKPropertyList.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::string_view noProperties(ZELKEventNoProperties.data(), 4);

constexpr std::array fieldNames = {ZELKEventKeyDate, ZELKEventKeyDescription, ZELKEventKeyMonitor,
                                   ZELKEventKeyProperties};
enum Field { DateField, DescriptionField, MonitorField, PropertiesField, FieldCount };

/// Why a line is no event.
struct Objection
{
    QString reason;
};

/// `reason` is a key of the command line's texts.
[[noreturn]] void object(const char *reason, const QString &name = {})
{
    throw Objection{ZELKFormat(ZELKCommandLineText(reason), {name})};
}

struct Fields
{
    std::array<std::optional<std::string>, FieldCount> texts;
    /// Instead of the text, when it was a number.
    std::optional<double> date;
};

/// The JSON of one line. What is not understood throws an Objection.
class LineParser
{
public:
    explicit LineParser(std::string_view line)
        : m_rest(line)
    {
    }

    Fields parse();

private:
    void skipSpace();
    bool take(char wanted);
    void takeMember(Fields &fields);
    std::string takeString();
    void takeEscape(std::string &text);
    unsigned takeHex();
    double takeNumber();
    std::size_t digits(std::size_t from) const;

    std::string_view m_rest;
};

QString shown(std::string_view text)
{
    constexpr std::size_t longest = 40;
    const QString whole = QString::fromUtf8(text.data(), qsizetype(std::min(text.size(), longest)));
    return text.size() > longest ? whole + QChar(0x2026) : whole;
}

Field fieldNamed(const std::string &key)
{
    for (std::size_t i = 0; i < fieldNames.size(); ++i)
        if (key == fieldNames[i].data())
            return Field(i);
    object("unknown key \"%@\"", shown(key));
}

void appendUtf8(std::string &text, char32_t character)
{
    const auto tail = [&](int shift) { text += char(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        text += char(character);
    } else if (character < 0x800) {
        text += char(0xC0 | character >> 6);
        tail(0);
    } else if (character < 0x10000) {
        text += char(0xE0 | character >> 12);
        tail(6);
        tail(0);
    } else {
        text += char(0xF0 | character >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

bool isUtf8(std::string_view bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    return text.size() <= qsizetype(bytes.size()) && !decoder.hasError();
}

Fields LineParser::parse()
{
    Fields fields;
    skipSpace();
    if (!take('{'))
        object("not a JSON object");
    if (!take('}')) {
        do {
            takeMember(fields);
        } while (take(','));
        if (!take('}'))
            object("the object is not closed");
    }
    if (!m_rest.empty())
        object("more than one object");
    for (std::size_t i = 0; i < FieldCount; ++i)
        if (!fields.texts[i] && (i != DateField || !fields.date))
            object("missing key \"%@\"", QString(fieldNames[i]));
    return fields;
}

void LineParser::skipSpace()
{
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t\r\n"), m_rest.size()));
}

/// Takes one character of the grammar and the space behind it.
bool LineParser::take(char wanted)
{
    if (!m_rest.starts_with(wanted))
        return false;
    m_rest.remove_prefix(1);
    skipSpace();
    return true;
}

void LineParser::takeMember(Fields &fields)
{
    const Field field = fieldNamed(takeString());
    const QString name = fieldNames[field];
    if (fields.texts[field] || (field == DateField && fields.date))
        object("the key \"%@\" stands twice", name);
    if (!take(':'))
        object("no value for \"%@\"", name);
    if (m_rest.starts_with('"'))
        fields.texts[field] = takeString();
    else if (field == DateField)
        fields.date = takeNumber();
    else
        object("\"%@\" is no text", name);
}

std::string LineParser::takeString()
{
    if (!m_rest.starts_with('"'))
        object("no text where one is needed");
    m_rest.remove_prefix(1);
    std::string text;
    while (true) {
        const std::size_t plain = std::min(m_rest.find_first_of("\"\\"), m_rest.size());
        for (const char byte : m_rest.substr(0, plain))
            if (static_cast<unsigned char>(byte) < ' ')
                object("a control character in a text");
        text.append(m_rest.substr(0, plain));
        m_rest.remove_prefix(plain);
        if (m_rest.empty())
            object("a text is not closed");
        if (m_rest.front() == '"')
            break;
        takeEscape(text);
    }
    take('"');
    return text;
}

void LineParser::takeEscape(std::string &text)
{
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    m_rest.remove_prefix(1);
    if (m_rest.empty())
        object("a text is not closed");
    const char letter = m_rest.front();
    m_rest.remove_prefix(1);
    if (const std::size_t found = letters.find(letter); found != std::string_view::npos) {
        text += meanings[found];
        return;
    }
    if (letter != 'u')
        object("an unknown escape in a text");
    char32_t character = takeHex();
    if (QChar::isHighSurrogate(character) && m_rest.starts_with("\\u")) {
        m_rest.remove_prefix(2);
        const unsigned low = takeHex();
        if (QChar::isLowSurrogate(low))
            character = QChar::surrogateToUcs4(char16_t(character), char16_t(low));
    }
    if (QChar::isSurrogate(character))
        object("half a surrogate pair in a text");
    if (character == 0)
        object("a NUL in a text");
    appendUtf8(text, character);
}

unsigned LineParser::takeHex()
{
    constexpr std::size_t length = 4;
    unsigned value = 0;
    const std::string_view hex = m_rest.substr(0, length);
    const auto [end, error] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    if (error != std::errc() || hex.size() != length || end != hex.data() + length)
        object("an unknown escape in a text");
    m_rest.remove_prefix(length);
    return value;
}

std::size_t LineParser::digits(std::size_t from) const
{
    std::size_t end = from;
    while (end < m_rest.size() && m_rest[end] >= '0' && m_rest[end] <= '9')
        ++end;
    return end - from;
}

/// By JSON's grammar, which is narrower than from_chars: no leading zeros, digits on both sides of a point.
double LineParser::takeNumber()
{
    std::size_t end = m_rest.starts_with('-') ? 1 : 0;
    const std::size_t whole = digits(end);
    bool sound = whole == 1 || (whole > 1 && m_rest[end] != '0');
    end += whole;
    if (end < m_rest.size() && m_rest[end] == '.') {
        const std::size_t decimals = digits(++end);
        sound = sound && decimals > 0;
        end += decimals;
    }
    if (end < m_rest.size() && (m_rest[end] == 'e' || m_rest[end] == 'E')) {
        ++end;
        if (end < m_rest.size() && (m_rest[end] == '+' || m_rest[end] == '-'))
            ++end;
        const std::size_t exponent = digits(end);
        sound = sound && exponent > 0;
        end += exponent;
    }
    double value = 0.0;
    if (!sound)
        object("\"date\" is no number");
    if (std::from_chars(m_rest.data(), m_rest.data() + end, value).ec != std::errc())
        object("\"date\" is out of range");
    m_rest.remove_prefix(end);
    skipSpace();
    return value;
}

QString fromUtf8(const std::string &utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

ZELKDate checkedDate(const Fields &fields)
{
    double seconds = 0.0;
    if (fields.date) {
        seconds = *fields.date;
    } else {
        const std::string &text = *fields.texts[DateField];
        if (!ZELKIsDateText(text))
            object("\"date\" is no number");
        std::from_chars(text.data(), text.data() + text.size(), seconds);
    }
    if (!(seconds >= 0.0 && seconds <= ZELKDate::distantFuture().timeIntervalSinceReferenceDate()))
        object("\"date\" is out of range");
    return ZELKDate(seconds + 0.0); // no minus before a zero
}

void checkProperties(const std::string &properties)
{
    // The binary form is a property list too, but no text.
    if (properties.starts_with("bplist"))
        object("\"properties\" is no property-list text");
    const ZELKPropertyList::Result list = ZELKPropertyList::read(properties);
    if (!list.error.isEmpty())
        object("\"properties\" cannot be read: %@", list.error.simplified());
    if (list.value.userType() != qMetaTypeId<ZELKDictionary>())
        object("\"properties\" is no dictionary");
}

} // namespace

ZELKRawEventLineReader::Result ZELKRawEventLineReader::read(std::string_view line)
{
    try {
        if (line.find('\0') != std::string_view::npos)
            object("a NUL");
        if (!isUtf8(line))
            object("not UTF-8");
        const Fields fields = LineParser(line).parse();
        const ZELKDate date = checkedDate(fields);
        const std::string &properties = *fields.texts[PropertiesField];
        if (properties != noProperties && properties != m_goodProperties) {
            checkProperties(properties);
            m_goodProperties = properties;
        }
        return {ZELKMakeRawEvent(date, fromUtf8(*fields.texts[DescriptionField]),
                                 fromUtf8(*fields.texts[MonitorField]), fromUtf8(properties)),
                {}};
    } catch (const Objection &objection) {
        return {std::nullopt, objection.reason};
    }
}
