#include "ZELKWordTables.h"

#include "ZELKWordBytes.h"
#include "ZELKWordProperties.h"

using namespace ZELKWordBytes;

namespace {

// The tables' numbers.
constexpr int styles = 1;
constexpr int sections = 6;
constexpr int characterPages = 12;
constexpr int paragraphPages = 13;
constexpr int fontNames = 15;
constexpr int settings = 31;
constexpr int pieces = 33;

/// A style is made of a fixed beginning, its name, and property lists, each with its length before it.
struct Style
{
    int identifier;
    int kind;
    int next;
    QString name;
    QByteArrayList properties;
};

constexpr int fixedStyles = 15; ///< of which there are always places
constexpr int paragraphKind = 1;
constexpr int characterKind = 2;

QByteArray styleEntry(const Style &style)
{
    constexpr int noBase = 0xFFF;
    QByteArray out;
    append16(out, style.identifier);
    append16(out, style.kind | noBase << 4);
    append16(out, int(style.properties.size()) | style.next << 4);
    append16(out, 0); // its whole length, below
    append16(out, 0);
    append16(out, style.name.size());
    appendText(out, style.name);
    for (const QByteArray &properties : style.properties) {
        append16(out, properties.size());
        out += properties;
        out.append(padding(out.size(), 2), '\0');
    }
    set(out, 6, quint16(out.size()));
    QByteArray entry;
    append16(entry, out.size());
    return entry + out;
}

QByteArray styleSheetHead()
{
    constexpr int entryHead = 10;
    constexpr int namesWritten = 1;
    constexpr int latestIdentifier = 91;
    QByteArray out;
    append16(out, 18);
    for (const int number : {fixedStyles, entryHead, namesWritten, latestIdentifier, fixedStyles, 0, 0, 0, 0})
        append16(out, number);
    return out;
}

QByteArray fontEntry(const QString &family)
{
    constexpr qsizetype longestName = 63;
    constexpr int trueTypeOfVariableWidth = 0x06;
    constexpr int normalWeight = 400;
    constexpr int shapeSize = 34; // classification and coverage, which readers look up themselves
    const QString name = family.left(longestName);
    QByteArray out;
    append8(out, 5 + shapeSize + 2 * (name.size() + 1));
    append8(out, trueTypeOfVariableWidth);
    append16(out, normalWeight);
    append16(out, 0);
    out.append(shapeSize, '\0');
    appendText(out, name);
    return out;
}

} // namespace

ZELKWordTables::ZELKWordTables(const Contents &contents)
{
    addStyles();
    addSection(contents);
    add(characterPages, contents.characterIndex);
    add(paragraphPages, contents.paragraphIndex);
    addFonts(contents.fonts);
    addSettings();
    addPieces(contents);
    m_bytes.append(std::max(leastStream - m_bytes.size(), qsizetype(0)), '\0');
}

void ZELKWordTables::addStyles()
{
    constexpr int defaultFontIdentifier = 65;
    constexpr int defaultFontNumber = 10;
    const Style normal{
        0, paragraphKind, 0, QStringLiteral("Normal"), {QByteArray(2, '\0'), ZELKWordProperties::forStyle()}};
    const Style defaultFont{defaultFontIdentifier,
                            characterKind,
                            defaultFontNumber,
                            QStringLiteral("Default Paragraph Font"),
                            {QByteArray()}};
    QByteArray table = styleSheetHead();
    for (int number = 0; number < fixedStyles; ++number) {
        if (number == 0)
            table += styleEntry(normal);
        else if (number == defaultFontNumber)
            table += styleEntry(defaultFont);
        else
            append16(table, 0);
    }
    add(styles, table);
}

void ZELKWordTables::addFonts(const QStringList &fonts)
{
    QByteArray table;
    append16(table, fonts.size());
    append16(table, 0);
    for (const QString &family : fonts)
        table += fontEntry(family);
    add(fontNames, table);
}

void ZELKWordTables::addSection(const Contents &contents)
{
    QByteArray table;
    append32(table, 0);
    append32(table, contents.unitCount);
    append16(table, 0);
    append32(table, contents.sectionPlace);
    append16(table, 0);
    append32(table, 0xFFFFFFFF);
    add(sections, table);
}

void ZELKWordTables::addSettings()
{
    constexpr int halfInch = 720;
    QByteArray table(500, '\0');
    set(table, 10, quint16(halfInch)); // between the usual tab stops
    add(settings, table);
}

/// One piece: all the text, two bytes a unit.
void ZELKWordTables::addPieces(const Contents &contents)
{
    constexpr int ofPieces = 2;
    QByteArray table;
    append8(table, ofPieces);
    append32(table, 16);
    append32(table, 0);
    append32(table, contents.unitCount);
    append16(table, 0);
    append32(table, contents.textStart);
    append16(table, 0);
    add(pieces, table);
}

void ZELKWordTables::add(int number, const QByteArray &table)
{
    m_places[std::size_t(number)] = {quint32(m_bytes.size()), quint32(table.size())};
    m_bytes += table;
}
