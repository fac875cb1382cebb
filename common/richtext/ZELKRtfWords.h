#pragma once

#include "ZELKRtfGroup.h"

#include <QByteArrayView>

#include <optional>

/// The vocabulary of rich text, as far as we understand it. Words that are in none of these lists say nothing
/// to us.
namespace ZELKRtfWords {

/// Changes what holds in a group; the number behind the word comes along.
using Change = void (*)(ZELKRtfGroup &group, std::optional<int> parameter);

/// Null for words that change no look.
Change change(QByteArrayView word);
/// The character that a word stands for; 0 for none. Paragraphs end with "\n".
char16_t character(QByteArrayView word);
/// The character of a symbol; 0 for none.
char16_t characterOfSymbol(char symbol);
/// Whether a group that begins with this word holds no text of the document's body.
bool isSkippedDestination(QByteArrayView word);

} // namespace ZELKRtfWords
