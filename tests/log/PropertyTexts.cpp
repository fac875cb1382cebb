#include "PropertyTexts.h"

namespace {

const std::vector<std::string> pieces{"<",
                                      ">",
                                      "/",
                                      "&",
                                      "&amp;",
                                      "<dict>",
                                      "</dict>",
                                      "<key>",
                                      "</key>",
                                      "<true/>",
                                      "<array>",
                                      "</array>",
                                      " ",
                                      "\n",
                                      "\r",
                                      "\t",
                                      "0",
                                      "-",
                                      "9",
                                      "\xc3",
                                      "\xa4",
                                      "<!--",
                                      "-->",
                                      "<plist version=\"1.0\">",
                                      "</plist>",
                                      "<?xml",
                                      "?>",
                                      "<string>",
                                      "</string>",
                                      "<integer>",
                                      "</integer>",
                                      "<![CDATA[",
                                      "]]>",
                                      "\x7f",
                                      "\xef\xbb\xbf",
                                      "\"",
                                      "<real>1</real>",
                                      "<string/>",
                                      "<data>AAAA</data>"};

const std::vector<std::string> oddPrologues{
    "",
    "\n",
    "<?xml version=\"1.0\"?>",
    "<?xml version=\"1.0\" encoding=\"UTF-16\"?>",
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- <plist version=\"1.0\"> -->",
    "<?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM \"x\">",
    "\xef\xbb\xbf<?xml version=\"1.0\"?>"};

const std::vector<std::string> oddIntegers{"-1",
                                           "-0",
                                           "007",
                                           "+5",
                                           " 5 ",
                                           "32767",
                                           "32768",
                                           "-32768",
                                           "2147483648",
                                           "-2147483649",
                                           "9223372036854775807",
                                           "9223372036854775808",
                                           "18446744073709551615",
                                           "18446744073709551616",
                                           "123456789012345678",
                                           "0x1F",
                                           "",
                                           "1.5",
                                           "5<!-- c -->0",
                                           "99999999999999999999999"};

const std::vector<std::string> oddStrings{"",
                                          " ",
                                          " a",
                                          "a ",
                                          "a\tb",
                                          "a\nb",
                                          "a\r\nb",
                                          "a&amp;b",
                                          "&#228;",
                                          "&quot;",
                                          "&nosuch;",
                                          "a > b",
                                          "]]>",
                                          "\"'",
                                          "\xc3\xa4",
                                          "\xf0\x9f\x94\x8b",
                                          "\xef\xbb\xbf"
                                          "x",
                                          "\xc2\x85",
                                          "\xc2\xa0x",
                                          "\xef\xbf\xbf",
                                          "<![CDATA[<b>]]>",
                                          "a<!-- c -->b",
                                          std::string(500, 'x'),
                                          std::string(501, 'x'),
                                          "\xff",
                                          "\x7f"};

const std::vector<std::string> names{"Name",          "Is Present",         "Is Charging",
                                     "Processes",     "Current Capacity",   "Max Capacity",
                                     "Time to Empty", "Power Source State", "Idle Seconds"};

std::string element(const std::string &name, const std::string &content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

} // namespace

std::string PropertyTexts::text(std::size_t oddness)
{
    m_oddness = oddness;
    std::string body;
    for (const std::string &usual : names) {
        if (odd() && once(2))
            continue;
        const std::string &name = odd() ? oneOf(names) : usual;
        body += space() + key(name);
        body += space() + value(name, 2);
    }
    const std::string start = prologue() + root();
    const std::string end = space() + "</plist>" + (odd() ? "" : "\n");
    return start + space() + (body.empty() && once(2) ? "<dict/>" : "<dict>" + body + "\n</dict>") + end;
}

std::string PropertyTexts::mutated(std::string text)
{
    for (std::size_t changes = 1 + upTo(2); changes > 0 && !text.empty(); --changes)
        change(text);
    return text;
}

void PropertyTexts::change(std::string &text)
{
    const std::size_t at = upTo(text.size() - 1);
    switch (upTo(4)) {
    case 0:
        text[at] = char(upTo(255));
        return;
    case 1:
        text.erase(at, 1 + upTo(once(8) ? 80 : 3));
        return;
    case 2:
        text.insert(at, oneOf(pieces));
        return;
    case 3: {
        const std::size_t from = upTo(text.size() - 1);
        text.insert(at, text.substr(from, upTo(40)));
        return;
    }
    default:
        if (const std::size_t tag = text.find('<', at); tag != std::string::npos)
            text.insert(tag, oneOf(pieces));
    }
}

std::string PropertyTexts::usualOr(const std::string &usual, const std::vector<std::string> &others)
{
    return odd() ? oneOf(others) : usual;
}

std::string PropertyTexts::space()
{
    return usualOr("\n\t", {"", " ", "\n\t", "\r\n", "<!-- c -->"});
}

std::string PropertyTexts::prologue()
{
    return usualOr("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//X//Y//EN\" "
                   "\"http://example.org/p.dtd\">\n",
                   oddPrologues);
}

std::string PropertyTexts::root()
{
    return usualOr("<plist version=\"1.0\">",
                   {"<plist>", "<plist version='1.0'>", "<plist version=\"1.0\" >"});
}

std::string PropertyTexts::key(const std::string &name)
{
    return usualOr(element("key", name),
                   {element("key", name + " "), element("key", "&lt;" + name), element("key", "\xc3\xa4"),
                    "<key/>", "<key></key>", element("key", std::string(600, 'k'))});
}

std::string PropertyTexts::integer()
{
    return element("integer", usualOr(std::to_string(upTo(100)), oddIntegers));
}

std::string PropertyTexts::string()
{
    const std::string usual = oneOf<std::string>({"BAT0", "BAT1", "AC Power", "Battery Power"});
    return element("string", usualOr(usual, oddStrings));
}

std::string PropertyTexts::value(const std::string &name, int depth)
{
    if (odd())
        return other(depth);
    if (name == "Processes") {
        std::string items;
        for (std::size_t i = upTo(3); i > 0; --i) {
            items += space();
            items += odd() ? other(depth - 1) : string();
        }
        return element("array", items);
    }
    if (name.starts_with("Is"))
        return once(2) ? "<true/>" : "<false/>";
    return name == "Name" || name == "Power Source State" ? string() : integer();
}

std::string PropertyTexts::other(int depth)
{
    switch (upTo(depth > 0 ? 9 : 6)) {
    case 0:
        return integer();
    case 1:
        return string();
    case 2:
        return oneOf<std::string>({"<true/>", "<true />", "<true></true>", "<false/>"});
    case 3:
        return element("real",
                       oneOf<std::string>({"1.5", "50", "-0", "1e300", "1e999", "x", "9007199254740992"}));
    case 4:
        return element("data", oneOf<std::string>({"", "AAEC", "?"}));
    case 5:
        return element("date", "2024-03-05T14:02:11Z");
    case 6:
        return oneOf<std::string>({"<string/>", "<integer/>", "<array/>", "<dict/>"});
    case 7:
        return element("array", string() + other(depth - 1));
    default:
        return element("dict", key("k") + other(depth - 1));
    }
}
