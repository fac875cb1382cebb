#pragma once

#include "ZELKAttributedString.h"
#include "ZELKRtfError.h"

#include <QByteArrayView>

#include <optional>

/// Reads rich text files (RTF).
///
/// Understood: fonts and their sizes, bold, italic, underline, colours, the paragraph's alignment, indents,
/// spacing, line spacing and tab stops, characters by name, as \u and in the code page of the document or of
/// the font. Groups of other purpose (styles, pictures, headers, whatever is marked with \*) are passed over,
/// words that are not known are ignored, table cells are divided by tabs.
namespace ZELKRtfReader {

constexpr qsizetype mostBytes = 16'777'216;
constexpr int deepestGroup = 500;

/// Damaged text may still be read in part; then there are a text and an error.
struct Result
{
    std::optional<ZELKAttributedString> text;
    std::optional<ZELKRtfError> error;
};

/// Takes any bytes, in a time that grows as their number does.
Result read(QByteArrayView bytes);

} // namespace ZELKRtfReader
