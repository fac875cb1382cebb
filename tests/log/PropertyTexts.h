#pragma once

#include <random>
#include <sstream>
#include <string>
#include <vector>

/// Makes property-list texts, usual and odd, always the same ones for the same seed.
class PropertyTexts
{
public:
    using Texts = std::vector<std::string>;

    explicit PropertyTexts(unsigned seed)
        : m_random(seed)
    {
    }

    std::size_t upTo(std::size_t most) { return m_random() % (most + 1); }
    bool once(std::size_t in) { return upTo(in - 1) == 0; }
    template <typename T>
    const T &oneOf(const std::vector<T> &items)
    {
        return items[upTo(items.size() - 1)];
    }

    /// `oddness` of a hundred choices are unusual.
    std::string text(std::size_t oddness)
    {
        m_oddness = oddness;
        std::string body;
        for (const std::string &name : names)
            if ((!odd() || once(2)) && (name != "Processes" || once(2)))
                body += space() + key(odd() ? oneOf(names) : name) + space() + value(name);
        const std::string dictionary = body.empty() && once(2) ? "<dict/>" : "<dict>" + body + "\n</dict>";
        return (odd() ? oneOf(oddPrologues) : usualPrologue) + (odd() ? oneOf(oddRoots) : oddRoots[0]) +
               space() + dictionary + space() + "</plist>" + (odd() ? "" : "\n");
    }

    /// A few small changes anywhere.
    std::string mutated(std::string text)
    {
        for (std::size_t changes = 1 + upTo(2); changes > 0 && !text.empty(); --changes) {
            const std::size_t at = upTo(text.size() - 1);
            if (once(4))
                text[at] = char(upTo(255));
            else if (once(3))
                text.erase(at, 1 + upTo(once(8) ? 80 : 3));
            else if (once(2))
                text.insert(at, text.substr(upTo(text.size() - 1), upTo(40)));
            else
                text.insert(at, oneOf(pieces));
        }
        return text;
    }

private:
    /// What stands between bars.
    static Texts listed(const char *text)
    {
        Texts items;
        std::istringstream stream(text);
        for (std::string item; std::getline(stream, item, '|');)
            items.push_back(item);
        return items;
    }

    bool odd() { return upTo(99) < m_oddness; }
    std::string space() { return odd() ? oneOf(oddSpaces) : "\n\t"; }
    std::string key(const std::string &name)
    {
        return odd() ? oneOf(oddKeys) : "<key>" + name + (odd() ? " " : "") + "</key>";
    }
    std::string integer()
    {
        return "<integer>" + (odd() ? oneOf(oddIntegers) : std::to_string(upTo(100))) + "</integer>";
    }
    std::string string()
    {
        const bool isLong = odd() && once(8);
        return "<string>" + (isLong ? std::string(500 + upTo(1), 'x') : oneOf(odd() ? oddStrings : names)) +
               "</string>";
    }
    std::string list()
    {
        std::string items;
        for (std::size_t i = upTo(3); i > 0; --i)
            items += space() + (odd() ? other() : string());
        return "<array>" + items + "</array>";
    }
    std::string other()
    {
        const std::string values[] = {integer(), string(), oneOf(oddElements), oneOf(oddElements)};
        if (once(8))
            return list();
        return once(8) ? "<dict>" + key("k") + other() + "</dict>" : values[upTo(3)];
    }
    std::string value(const std::string &name)
    {
        if (odd())
            return other();
        if (name == "Processes")
            return list();
        if (name.starts_with("Is"))
            return once(2) ? "<true/>" : "<false/>";
        return name == "Name" || name == "Power Source State" ? string() : integer();
    }

    const Texts names =
        listed("Name|Is Present|Is Charging|Processes|Current Capacity|Max Capacity|Time to Empty|"
               "Power Source State|Idle Seconds");
    const std::string usualPrologue = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC "
                                      "\"-//X//Y//EN\" \"http://example.org/p.dtd\">\n";
    const Texts oddPrologues =
        listed("|\n|<?xml version=\"1.0\"?>|<?xml version=\"1.0\" encoding=\"UTF-16\"?>|"
               "<?xml version=\"1.0\"?><!-- <plist version=\"1.0\"> -->|"
               "<?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM \"x\">|"
               "\xef\xbb\xbf<?xml version=\"1.0\"?>");
    const Texts oddRoots =
        listed("<plist version=\"1.0\">|<plist>|<plist version='1.0'>|<plist version=\"1.0\" >");
    const Texts oddSpaces = listed("| |\r\n|<!-- c -->");
    const Texts oddKeys = listed("<key>&lt;Name</key>|<key>\xc3\xa4</key>|<key/>|<key></key>");
    const Texts oddIntegers = listed("-1|-0|007|+5| 5 |32767|32768|-32768|2147483648|-2147483649|1.5||0x1F|"
                                     "9223372036854775807|9223372036854775808|18446744073709551615|"
                                     "18446744073709551616|123456789012345678|5<!-- c -->0");
    const Texts oddStrings =
        listed("| | a|a |a\tb|a\nb|a\r\nb|a&amp;b|&#228;|&quot;|&nosuch;|a > b|]]>|\"'|\xc3\xa4|"
               "\xf0\x9f\x94\x8b|\xef\xbb\xbf|\xc2\x85|\xc2\xa0|\xef\xbf\xbf|\xff|\x7f|"
               "<![CDATA[<b>]]>|a<!-- c -->b");
    const Texts oddElements = listed("<true/>|<true />|<true></true>|<string/>|<integer/>|<array/>|<dict/>|"
                                     "<real>1.5</real>|<real>-0</real>|<real>1e999</real>|<real>x</real>|"
                                     "<real>9007199254740992</real>|<data></data>|<data>AAEC</data>|"
                                     "<data>?</data>|<date>2024-03-05T14:02:11Z</date>");
    const Texts pieces =
        listed("<|>|/|&|&amp;|<dict>|</dict>|<key>|</key>|<true/>|<array>|</array>| |\n|\r|\t|0|-|9|\xc3|"
               "\xa4|<!--|-->|<plist version=\"1.0\">|</plist>|<?xml|?>|<string>|</string>|<integer>|"
               "</integer>|<![CDATA[|]]>|\x7f|\xef\xbb\xbf|\"|<string/>|<data>AAAA</data>");

    std::mt19937 m_random;
    std::size_t m_oddness = 0;
};
