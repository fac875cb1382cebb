#include "ZELKXmlListGuard.h"

#include "ZELKListLimits.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

/// An error text, or nothing.
using Objection = std::optional<QString>;

struct Element
{
    std::string_view name;
    std::size_t children = 0;
    /// In a dictionary: a key stands without its value.
    bool awaitsValue = false;
    std::size_t contentStart = 0;

    bool isContainer() const { return name == "plist" || name == "array" || name == "dict"; }
};

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Whether `text` is like `pattern`, where 0 stands for any digit.
bool isLike(std::string_view text, std::string_view pattern)
{
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                      [](char c, char p) { return p == '0' ? isDigit(c) : c == p; });
}

bool isDate(std::string_view text)
{
    constexpr std::string_view afterYear = "-00-00T00:00:00Z";
    constexpr std::size_t longestYear = 4;
    if (text.size() <= afterYear.size() || text.size() > longestYear + afterYear.size())
        return false;
    const std::string_view year = text.substr(0, text.size() - afterYear.size());
    return std::all_of(year.begin(), year.end(), isDigit) && isLike(text.substr(year.size()), afterYear);
}

bool isNumber(std::string_view text)
{
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.empty() || !(isDigit(text.front()) || text.front() == '.'))
        return text == "nan" || text == "inf" || text == "infinity";
    return text.find_first_not_of("0123456789abcdefABCDEFxX.+-") == std::string_view::npos;
}

/// The library would take what it cannot read for zero, or for 1970.
bool isSoundText(std::string_view element, std::string_view text)
{
    if (element == "date")
        return isDate(trimmed(text));
    if (element == "integer" || element == "real")
        return isNumber(trimmed(text));
    return true;
}

class XmlWalk
{
public:
    explicit XmlWalk(std::string_view xml)
        : m_xml(xml)
    {
    }

    Objection objection()
    {
        constexpr std::size_t usualDepth = 8;
        m_open.reserve(usualDepth);
        if (m_xml.find('\0') != std::string_view::npos)
            return QStringLiteral("The XML holds a NUL character.");
        while ((m_at = m_xml.find('<', m_at)) != std::string_view::npos) {
            if (const Objection fault = markup())
                return fault;
        }
        if (!m_open.empty())
            return QStringLiteral("The element \"%1\" is not closed.").arg(openName());
        if (m_values == 0)
            return QStringLiteral("There is no property list in the XML.");
        return std::nullopt;
    }

private:
    QString openName() const
    {
        return QString::fromUtf8(m_open.back().name.data(), qsizetype(m_open.back().name.size()));
    }

    Objection markup()
    {
        const std::string_view rest = m_xml.substr(m_at);
        if (rest.starts_with("<!--"))
            return pass("<!--", "-->");
        if (rest.starts_with("<![CDATA["))
            return pass("<![CDATA[", "]]>");
        if (rest.starts_with("<?"))
            return passQuoting("<?", "?>");
        if (rest.starts_with("<!"))
            return passQuoting("<!DOCTYPE", ">");
        return tag();
    }

    Objection pass(std::string_view opening, std::string_view closing)
    {
        const auto end = m_xml.find(closing, m_at + opening.size());
        if (end == std::string_view::npos)
            return QStringLiteral("The XML ends too early.");
        m_at = end + closing.size();
        return std::nullopt;
    }

    /// Where a quotation could hide the end, readers differ about what comes after; such XML is refused.
    Objection passQuoting(std::string_view opening, std::string_view closing)
    {
        const auto start = m_at;
        if (!m_xml.substr(m_at).starts_with(opening))
            return QStringLiteral("The XML holds an unknown declaration.");
        if (const Objection fault = pass(opening, closing))
            return fault;
        const std::string_view text = m_xml.substr(start + 1, m_at - start - 1);
        if (std::count(text.begin(), text.end(), '"') % 2 != 0 || text.find('[') != std::string_view::npos ||
            text.find('<') != std::string_view::npos)
            return QStringLiteral("The XML holds markup that is not supported.");
        return std::nullopt;
    }

    Objection tag()
    {
        const auto start = m_at;
        if (const Objection fault = passQuoting("<", ">"))
            return fault;
        std::string_view text = m_xml.substr(start + 1, m_at - start - 2);
        if (text.starts_with('/'))
            return close(trimmed(text.substr(1)), start);
        const bool isEmpty = text.ends_with('/');
        text = text.substr(0, isEmpty ? text.size() - 1 : text.size());
        const std::string_view name = text.substr(0, text.find_first_of(blanks));
        if (const Objection fault = open(name))
            return fault;
        return isEmpty ? close(name, m_at) : std::nullopt;
    }

    Objection open(std::string_view name)
    {
        if (m_open.empty() != (name == "plist") || (m_open.empty() && m_values > 0))
            return QStringLiteral("The XML is not one property list.");
        if (!m_open.empty()) {
            if (const Objection fault = addTo(m_open.back(), name))
                return fault;
        }
        m_open.push_back({name, 0, false, m_at});
        if (m_open.size() > ZELKListLimits::deepestLevel + 1)
            return QStringLiteral("The property list is nested too deeply.");
        return std::nullopt;
    }

    Objection addTo(Element &parent, std::string_view name)
    {
        const bool isDictionary = parent.name == "dict";
        const bool isKey = isDictionary && name == "key" && !parent.awaitsValue;
        if (!parent.isContainer() || (isDictionary && !isKey && !parent.awaitsValue) ||
            (parent.name == "plist" && parent.children > 0))
            return QStringLiteral("An element \"%1\" stands in a wrong place.")
                .arg(QString::fromUtf8(name.data(), qsizetype(name.size())));
        parent.awaitsValue = isKey;
        ++parent.children;
        m_values += isKey ? 0 : 1;
        if (m_values > ZELKListLimits::mostValues)
            return QStringLiteral("The property list holds too many values.");
        return std::nullopt;
    }

    Objection close(std::string_view name, std::size_t at)
    {
        if (m_open.empty() || m_open.back().name != name)
            return QStringLiteral("The XML's elements do not match.");
        const Element &element = m_open.back();
        if (element.awaitsValue)
            return QStringLiteral("A dictionary's key has no value.");
        if (!isSoundText(name, m_xml.substr(element.contentStart, at - element.contentStart)))
            return QStringLiteral("The text of an element \"%1\" cannot be understood.").arg(openName());
        m_open.pop_back();
        return std::nullopt;
    }

    std::string_view m_xml;
    std::size_t m_at = 0;
    std::size_t m_values = 0;
    std::vector<Element> m_open;
};

} // namespace

QString ZELKXmlListGuard::objectionTo(std::string_view xml)
{
    return XmlWalk(xml).objection().value_or(QString());
}
