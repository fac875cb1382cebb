#include "ZELKRtfLooks.h"

#include <algorithm>
#include <cmath>

namespace {

QByteArray colourEntry(const ZELKTextColour &colour)
{
    switch (colour.role) {
    case ZELKTextColour::Role::Inherited:
    case ZELKTextColour::Role::ControlText:
        return "\\ctextone\\ctint255\\cshade255\\red0\\green0\\blue0;";
    case ZELKTextColour::Role::DisabledControlText: // readable on white and on black
        return "\\ctextone\\ctint138\\cshade255\\red117\\green117\\blue117;";
    case ZELKTextColour::Role::Fixed:
        break;
    }
    return ZELKRtfLooks::word("red", qRed(colour.fixed)) + ZELKRtfLooks::word("green", qGreen(colour.fixed)) +
           ZELKRtfLooks::word("blue", qBlue(colour.fixed)) + ';';
}

} // namespace

void ZELKRtfLooks::add(const ZELKTextAttributes &look)
{
    if (!look.family.isEmpty() && !m_fonts.contains(look.family))
        m_fonts.append(look.family);
    if (look.colour != ZELKTextColour() && !m_colours.contains(look.colour))
        m_colours.append(look.colour);
}

QByteArray ZELKRtfLooks::head() const
{
    return "{\\rtf1\\ansi\\ansicpg1252\\uc1\n" + fontTable() + colourTable();
}

QByteArray ZELKRtfLooks::words(const ZELKTextAttributes &look) const
{
    QByteArray out;
    if (const auto number = m_fonts.indexOf(look.family); number >= 0)
        out += word("f", int(number) + 1);
    if (look.pointSize > 0.0)
        out += word("fs", std::max(int(std::lround(std::min(look.pointSize, 1638.0) * 2.0)), 1));
    if (look.bold)
        out += "\\b";
    if (look.italic)
        out += "\\i";
    if (look.underline)
        out += "\\ul";
    if (const auto number = m_colours.indexOf(look.colour); number >= 0)
        out += word("cf", int(number) + 1);
    return out.isEmpty() ? out : out + ' ';
}

QByteArray ZELKRtfLooks::word(const char *name, int number)
{
    return QByteArray("\\") + name + QByteArray::number(number);
}

void ZELKRtfLooks::appendEscaped(QByteArray &out, QChar character)
{
    const char16_t unit = character.unicode();
    if (unit == u'\\' || unit == u'{' || unit == u'}')
        (out += '\\') += char(unit);
    else if (unit >= 0x20 && unit < 0x7F)
        out += char(unit);
    else // for readers without Unicode a question mark, in the form that all take for one character
        ((out += "\\u") += QByteArray::number(qint16(unit))) += "\\'3f";
}

QByteArray ZELKRtfLooks::fontTable() const
{
    QByteArray out;
    for (int number = 1; const QString &family : m_fonts) {
        out += '{' + word("f", number++) + "\\fnil\\fcharset0 ";
        for (const QChar character : family)
            appendEscaped(out, character == QLatin1Char(';') ? QLatin1Char(' ') : character);
        out += ";}";
    }
    return out.isEmpty() ? out : "{\\fonttbl" + out + "}\n";
}

QByteArray ZELKRtfLooks::colourTable() const
{
    QByteArray out;
    for (const ZELKTextColour &colour : m_colours)
        out += colourEntry(colour);
    return out.isEmpty() ? out : "{\\colortbl;" + out + "}\n";
}
