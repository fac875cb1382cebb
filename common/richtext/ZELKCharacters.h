#pragma once

#include <QChar>

/// What a character of a foreign text would do beyond being read: names of processes and devices come from
/// anywhere, and a line of them must not end elsewhere or change how the next one is read.
namespace ZELKCharacters {

/// Marks that embed, override or isolate a direction of writing.
constexpr bool turnsDirection(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

/// Tabs and line feeds among them.
constexpr bool isControl(QChar character)
{
    const char16_t unit = character.unicode();
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

/// The separators of lines and paragraphs, which are no control characters.
constexpr bool isSeparator(QChar character)
{
    return character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

/// Does nothing of all that: it can stand in a line as it is.
constexpr bool isPlain(QChar character)
{
    return !isControl(character) && !isSeparator(character) && !turnsDirection(character);
}

} // namespace ZELKCharacters
