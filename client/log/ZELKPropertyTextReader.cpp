#include "ZELKPropertyTextReader.h"

#include "ZELKPropertyList.h"

#include <QUtf8StringView>

#include <algorithm>
#include <cstring>

using Ref = ZELKPackedProperties::Ref;
using Type = ZELKPackedProperties::Type;
using namespace std::string_view_literals;

namespace {

constexpr std::size_t mostTemplates = 24;
constexpr std::size_t mostPrologues = 8;
constexpr std::size_t mostDigits = 18;   // any such number fits 64 bits
constexpr std::size_t mostKeys = 127;    // of a shape; looking for a key among more would take long
constexpr std::size_t longestText = 500; // the bound of ZELKPackedProperties, in bytes
constexpr auto rootTag = "<plist version=\"1.0\">"sv;
constexpr auto byteOrderMark = "\xEF\xBB\xBF"sv; // dropped at the start of a text that becomes a QString
constexpr auto trueTag = "<true/>"sv;
constexpr auto falseTag = "<false/>"sv;

/// memcmp for the short stretches between values, where the call would cost more than the comparison.
bool sameBytes(const char *a, const char *b, std::size_t size)
{
    constexpr std::size_t width = sizeof(std::uint64_t);
    if (size < width || size > 16 * width)
        return std::memcmp(a, b, size) == 0;
    std::uint64_t difference = 0;
    const auto compare = [&](std::size_t at) {
        std::uint64_t left = 0;
        std::uint64_t right = 0;
        std::memcpy(&left, a + at, width);
        std::memcpy(&right, b + at, width);
        difference |= left ^ right;
    };
    for (std::size_t at = 0; at + width < size; at += width)
        compare(at);
    compare(size - width);
    return difference == 0;
}

bool take(std::string_view &rest, std::string_view literal)
{
    if (rest.size() < literal.size() || !sameBytes(rest.data(), literal.data(), literal.size()))
        return false;
    rest.remove_prefix(literal.size());
    return true;
}

/// Text that means itself in XML and comes back unchanged from the property-list reader.
bool isPlain(std::string_view text)
{
    bool ascii = true;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || byte == '&')
            return false;
        ascii = ascii && byte < 0x80;
    }
    return ascii || QUtf8StringView(text.data(), qsizetype(text.size())).isValidUtf8();
}

/// Plain text up to the next tag; never empty.
std::optional<std::string_view> takeText(std::string_view &rest)
{
    const std::size_t length = rest.find('<');
    if (length == std::string_view::npos || length == 0 || length > longestText)
        return std::nullopt;
    const std::string_view text = rest.substr(0, length);
    if (!isPlain(text) || text.front() == ' ' || text.back() == ' ' || text.starts_with(byteOrderMark))
        return std::nullopt;
    rest.remove_prefix(length);
    return text;
}

/// A decimal number without sign +, leading zeros or digits that could not fit.
std::optional<std::int64_t> takeNumber(std::string_view &rest)
{
    const std::size_t sign = rest.starts_with('-') ? 1 : 0;
    std::size_t end = sign;
    std::int64_t number = 0;
    for (; end < rest.size() && end < sign + mostDigits && rest[end] >= '0' && rest[end] <= '9'; ++end)
        number = number * 10 + (rest[end] - '0');
    if (end == sign || (rest[sign] == '0' && end > 1))
        return std::nullopt;
    rest.remove_prefix(end);
    return sign ? -number : number;
}

std::optional<bool> takeBool(std::string_view &rest)
{
    if (take(rest, trueTag))
        return true;
    if (take(rest, falseTag))
        return false;
    return std::nullopt;
}

} // namespace

/// Walks one text in the usual form.
class ZELKPropertyTextReader::Scanner
{
public:
    Scanner(std::string_view text, ZELKStringPool &texts, Values &values, std::vector<Span> &spans)
        : m_text(text)
        , m_rest(text)
        , m_texts(texts)
        , m_values(values)
        , m_spans(spans)
    {
    }

    bool dictionary(std::string_view prologue)
    {
        if (!take(m_rest, prologue) || !take(m_rest, rootTag))
            return false;
        skipSpace();
        if (!take(m_rest, "<dict>"sv))
            return false;
        for (skipSpace(); !take(m_rest, "</dict>"sv); skipSpace())
            if (!pair())
                return false;
        skipSpace();
        if (!take(m_rest, "</plist>"sv))
            return false;
        skipSpace();
        return m_rest.empty();
    }

private:
    void skipSpace()
    {
        while (!m_rest.empty() && (m_rest.front() == '\n' || m_rest.front() == '\t' || m_rest.front() == ' '))
            m_rest.remove_prefix(1);
    }

    std::size_t position() const { return m_text.size() - m_rest.size(); }

    bool pair()
    {
        if (m_values.size() == mostKeys || !take(m_rest, "<key>"sv))
            return false;
        const std::optional<std::string_view> name = takeText(m_rest);
        if (!name || !take(m_rest, "</key>"sv))
            return false;
        const ZELKStringPool::Id key = m_texts.intern(*name);
        const auto sameKey = [key](const auto &item) { return item.key == key; };
        if (std::any_of(m_values.begin(), m_values.end(), sameKey))
            return false;
        skipSpace();
        if (!m_values.empty() && m_values.back().value.type == Type::Texts)
            return false;
        m_values.emplace_back();
        m_values.back().key = key;
        return value(m_values.back().value);
    }

    bool value(ZELKPackedProperties::Value &value)
    {
        if (take(m_rest, "<array>"sv))
            return texts(value);
        if (take(m_rest, "<integer>"sv)) {
            const std::size_t begin = position();
            const std::optional<std::int64_t> number = takeNumber(m_rest);
            m_spans.push_back({begin, position()});
            value.number = number.value_or(0);
            value.type = ZELKPackedProperties::narrowest(value.number);
            return number && take(m_rest, "</integer>"sv);
        }
        if (take(m_rest, "<string>"sv)) {
            const std::size_t begin = position();
            const std::optional<std::string_view> text = takeText(m_rest);
            m_spans.push_back({begin, position()});
            if (!text)
                return false;
            const ZELKStringPool::Id id = m_texts.intern(*text);
            value.number = id;
            value.type = ZELKPackedProperties::narrowestText(id);
            return take(m_rest, "</string>"sv);
        }
        const std::size_t begin = position();
        const std::optional<bool> flag = takeBool(m_rest);
        m_spans.push_back({begin, position()});
        value.number = flag.value_or(false) ? 1 : 0;
        return flag.has_value();
    }

    bool texts(ZELKPackedProperties::Value &value)
    {
        value.type = Type::Texts;
        for (skipSpace(); !take(m_rest, "</array>"sv); skipSpace()) {
            if (!take(m_rest, "<string>"sv))
                return false;
            const std::optional<std::string_view> text = takeText(m_rest);
            if (!text || !take(m_rest, "</string>"sv))
                return false;
            value.texts.push_back(m_texts.intern(*text));
        }
        return true;
    }

    std::string_view m_text;
    std::string_view m_rest;
    ZELKStringPool &m_texts;
    Values &m_values;
    std::vector<Span> &m_spans;
};

ZELKPropertyTextReader::ZELKPropertyTextReader(ZELKStringPool &texts, ZELKPackedProperties &properties)
    : m_texts(texts)
    , m_properties(properties)
{
}

ZELKPropertyTextReader::Result ZELKPropertyTextReader::read(std::string_view text)
{
    if (const std::optional<Ref> ref = matchAny(text))
        return {ref, {}};
    if (const std::optional<Ref> ref = scan(text))
        return {ref, {}};
    return readInFull(text);
}

// MARK: templates

std::optional<Ref> ZELKPropertyTextReader::matchAny(std::string_view text)
{
    for (Template &candidate : m_templates)
        if (const std::optional<Ref> ref = match(candidate, text))
            return ref;
    return std::nullopt;
}

bool ZELKPropertyTextReader::matchText(Part &part, std::string_view &rest, char *at)
{
    const std::size_t known = part.lastText.size();
    if (known > 0 && rest.size() > known && rest[known] == '<' && rest.starts_with(part.lastText)) {
        rest.remove_prefix(known);
    } else {
        const std::optional<std::string_view> text = takeText(rest);
        if (!text)
            return false;
        part.lastText = *text;
        part.lastId = m_texts.intern(*text);
    }
    if (ZELKPackedProperties::narrowestText(part.lastId) > part.field.type)
        return false;
    ZELKPackedProperties::putNumber(at, part.field.type, part.lastId);
    return true;
}

bool ZELKPropertyTextReader::matchValue(Part &part, std::string_view &rest, char *at)
{
    const Type type = part.field.type;
    if (type == Type::Text16 || type == Type::Text32)
        return matchText(part, rest, at);
    if (type == Type::Bool) {
        const std::optional<bool> flag = takeBool(rest);
        ZELKPackedProperties::putNumber(at, type, flag.value_or(false) ? 1 : 0);
        return flag.has_value();
    }
    const std::optional<std::int64_t> number = takeNumber(rest);
    if (!number || ZELKPackedProperties::narrowest(*number) > type)
        return false;
    ZELKPackedProperties::putNumber(at, type, *number);
    return true;
}

std::optional<Ref> ZELKPropertyTextReader::match(Template &candidate, std::string_view text)
{
    std::string_view rest = text;
    char *record = m_properties.room();
    for (Part &part : candidate.parts) {
        if (!take(rest, part.fixed))
            return std::nullopt;
        if (!matchValue(part, rest, record + part.field.offset))
            return std::nullopt;
    }
    if (rest != candidate.tail)
        return std::nullopt;
    return m_properties.keep(candidate.shape, m_properties.sizeOf(candidate.shape));
}

void ZELKPropertyTextReader::learn(std::string_view text, const std::vector<Span> &spans, Ref ref)
{
    const auto shape = m_properties.shapeOf(ref);
    if (!shape || m_properties.fields(*shape).size() != spans.size())
        return;
    Template made;
    made.shape = *shape;
    std::size_t from = 0;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        made.parts.push_back({std::string(text.substr(from, spans[i].begin - from)),
                              m_properties.fields(*shape)[i],
                              {},
                              ZELKStringPool::nil});
        from = spans[i].end;
    }
    made.tail = text.substr(from);
    if (m_templates.size() == mostTemplates)
        m_templates.clear(); // what is still in use is soon learned again
    m_templates.push_back(std::move(made));
}

// MARK: whole texts

std::optional<Ref> ZELKPropertyTextReader::scan(std::string_view text)
{
    for (const std::string &prologue : m_prologues) {
        m_values.clear();
        m_spans.clear();
        if (!Scanner(text, m_texts, m_values, m_spans).dictionary(prologue))
            continue;
        if (m_values.empty())
            return ZELKPackedProperties::empty;
        const Ref ref = m_properties.pack(m_values);
        if (ref == ZELKPackedProperties::empty)
            return std::nullopt;
        if (m_values.back().value.type != Type::Texts)
            learn(text, m_spans, ref);
        return ref;
    }
    return std::nullopt;
}

ZELKPropertyTextReader::Result ZELKPropertyTextReader::readInFull(std::string_view text)
{
    const QByteArray utf8 = QString::fromUtf8(text.data(), qsizetype(text.size())).toUtf8();
    const ZELKPropertyList::Result result =
        ZELKPropertyList::read({utf8.constData(), std::size_t(utf8.size())});
    if (!result.error.isEmpty() || !result.value.isValid())
        return {std::nullopt, result.error};
    if (result.value.userType() != qMetaTypeId<ZELKDictionary>())
        return {std::nullopt, QStringLiteral("The properties are not a dictionary.")};
    learnPrologue(text);
    return {m_properties.pack(result.value.value<ZELKDictionary>()), {}};
}

void ZELKPropertyTextReader::learnPrologue(std::string_view text)
{
    const std::size_t root = text.find(rootTag);
    if (root == std::string_view::npos || !text.starts_with("<?xml") || m_prologues.size() == mostPrologues)
        return;
    const std::string prologue(text.substr(0, root));
    // What stands in a comment or in unparsed text only looks like the root.
    if (prologue.find("<!--") != std::string::npos || prologue.find("<![") != std::string::npos)
        return;
    if (std::find(m_prologues.begin(), m_prologues.end(), prologue) == m_prologues.end())
        m_prologues.push_back(prologue);
}
