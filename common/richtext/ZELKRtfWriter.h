#pragma once

#include "ZELKAttributedString.h"

#include <QByteArray>

/// Writes rich text files (RTF) of plain ASCII, which ZELKRtfReader and word processors read.
///
/// The reader answers an equal text where that is possible: a size of 0 is left out and read as 12 points,
/// sizes are rounded to half points and lengths to twentieths, a paragraph takes the style of its first
/// character, and lines always wrap. The colours that a palette decides are marked as the theme's, with a
/// fixed one for those who know no theme.
namespace ZELKRtfWriter {

QByteArray write(const ZELKAttributedString &text);

} // namespace ZELKRtfWriter
