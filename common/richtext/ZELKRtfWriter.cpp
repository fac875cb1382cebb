#include "ZELKRtfWriter.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

using Paragraph = ZELKParagraphStyle;

/// A word and its number.
QByteArray word(const char *name, int number)
{
    return QByteArray("\\") + name + QByteArray::number(number);
}

int twips(double points)
{
    constexpr double most = 5669.3; // two metres
    return int(std::lround(std::clamp(points, -most, most) * 20.0));
}

/// Text without line ends and tabs that mean something.
void appendEscaped(QByteArray &out, QChar character)
{
    const char16_t unit = character.unicode();
    if (unit == u'\\' || unit == u'{' || unit == u'}')
        (out += '\\') += char(unit);
    else if (unit >= 0x20 && unit < 0x7F)
        out += char(unit);
    else
        out += word("u", qint16(unit)) + '?';
}

void appendText(QByteArray &out, QStringView text)
{
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\n':
            out += "\\par\n";
            break;
        case 0x2028:
            out += "\\line ";
            break;
        case u'\t':
            out += "\\tab ";
            break;
        default:
            appendEscaped(out, character);
        }
    }
}

/// Numbers for the different fonts and colours of a text. Number 0 is "none of its own" in both.
class Tables
{
public:
    explicit Tables(const ZELKAttributedString &text)
    {
        for (const ZELKAttributedString::Run &run : text.runs()) {
            if (!run.attributes.family.isEmpty() && !m_fonts.contains(run.attributes.family))
                m_fonts.append(run.attributes.family);
            if (run.attributes.colour != ZELKTextColour() && !m_colours.contains(run.attributes.colour))
                m_colours.append(run.attributes.colour);
        }
    }

    int font(const QString &family) const { return int(m_fonts.indexOf(family)) + 1; }
    int colour(const ZELKTextColour &colour) const { return int(m_colours.indexOf(colour)) + 1; }

    QByteArray fontTable() const
    {
        QByteArray out;
        for (const QString &family : m_fonts) {
            out += '{' + word("f", font(family)) + "\\fnil\\fcharset0 ";
            for (const QChar character : family)
                appendEscaped(out, character == QLatin1Char(';') ? QLatin1Char(' ') : character);
            out += ";}";
        }
        return out.isEmpty() ? out : "{\\fonttbl" + out + "}\n";
    }

    QByteArray colourTable() const
    {
        QByteArray out;
        for (const ZELKTextColour &colour : m_colours)
            out += entry(colour);
        return out.isEmpty() ? out : "{\\colortbl;" + out + "}\n";
    }

private:
    static QByteArray entry(const ZELKTextColour &colour)
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
        return word("red", qRed(colour.fixed)) + word("green", qGreen(colour.fixed)) +
               word("blue", qBlue(colour.fixed)) + ';';
    }

    QStringList m_fonts;
    QList<ZELKTextColour> m_colours;
};

const char *alignmentWord(Paragraph::Alignment alignment)
{
    switch (alignment) {
    case Paragraph::Alignment::Left:
        return "\\ql";
    case Paragraph::Alignment::Centre:
        return "\\qc";
    case Paragraph::Alignment::Right:
        return "\\qr";
    case Paragraph::Alignment::Justified:
        return "\\qj";
    case Paragraph::Alignment::Natural:
        break;
    }
    return "";
}

const char *tabWord(ZELKTabStop::Kind kind)
{
    switch (kind) {
    case ZELKTabStop::Kind::Centre:
        return "\\tqc";
    case ZELKTabStop::Kind::Right:
        return "\\tqr";
    case ZELKTabStop::Kind::Decimal:
        return "\\tqdec";
    case ZELKTabStop::Kind::Left:
        break;
    }
    return "";
}

QByteArray lineSpacing(const Paragraph &style)
{
    constexpr double unitsInLine = 240.0;
    switch (style.lineSpacingKind) {
    case Paragraph::LineSpacing::Multiple:
        return word("sl", int(std::lround(std::clamp(style.lineSpacing, 0.0, 472.5) * unitsInLine))) +
               "\\slmult1";
    case Paragraph::LineSpacing::AtLeast:
        return word("sl", twips(style.lineSpacing));
    case Paragraph::LineSpacing::Exactly:
        return word("sl", -twips(style.lineSpacing));
    case Paragraph::LineSpacing::Natural:
        break;
    }
    return {};
}

QByteArray paragraphWords(const Paragraph &style)
{
    QByteArray out = QByteArray("\\pard") + alignmentWord(style.alignment);
    const std::pair<const char *, double> lengths[] = {{"fi", style.firstLineIndent},
                                                       {"li", style.leftIndent},
                                                       {"ri", style.rightIndent},
                                                       {"sb", style.spacingBefore},
                                                       {"sa", style.spacingAfter}};
    for (const auto &[name, length] : lengths)
        if (twips(length) != 0)
            out += word(name, twips(length));
    out += lineSpacing(style);
    for (const ZELKTabStop &stop : style.tabStops)
        out += tabWord(stop.kind) + word("tx", twips(stop.position));
    return out + '\n';
}

QByteArray characterWords(const ZELKTextAttributes &attributes, const Tables &tables)
{
    QByteArray out;
    if (!attributes.family.isEmpty())
        out += word("f", tables.font(attributes.family));
    if (attributes.pointSize > 0.0)
        out += word("fs", std::max(int(std::lround(std::min(attributes.pointSize, 1638.0) * 2.0)), 1));
    if (attributes.bold)
        out += "\\b";
    if (attributes.italic)
        out += "\\i";
    if (attributes.underline)
        out += "\\ul";
    if (attributes.colour != ZELKTextColour())
        out += word("cf", tables.colour(attributes.colour));
    return out.isEmpty() ? out : out + ' ';
}

/// Writes the text run by run, and the style of a paragraph before it where it is another one.
QByteArray body(const ZELKAttributedString &text, const Tables &tables)
{
    QByteArray out;
    Paragraph current;
    bool startsParagraph = true;
    qsizetype start = 0;
    for (const ZELKAttributedString::Run &run : text.runs()) {
        const QByteArray opening = '{' + characterWords(run.attributes, tables);
        const qsizetype end = start + run.length;
        while (start < end) {
            if (startsParagraph && run.attributes.paragraph != current) {
                current = run.attributes.paragraph;
                out += paragraphWords(current);
            }
            const qsizetype lineEnd = text.string().indexOf(QLatin1Char('\n'), start);
            startsParagraph = lineEnd >= 0 && lineEnd < end;
            const qsizetype partEnd = startsParagraph ? lineEnd + 1 : end;
            out += opening;
            appendText(out, QStringView(text.string()).mid(start, partEnd - start));
            out += '}';
            start = partEnd;
        }
    }
    return out;
}

} // namespace

QByteArray ZELKRtfWriter::write(const ZELKAttributedString &text)
{
    const Tables tables(text);
    return "{\\rtf1\\ansi\\ansicpg1252\\uc1\n" + tables.fontTable() + tables.colourTable() +
           body(text, tables) + "}\n";
}
