#pragma once

#include "ZELKAttributedString.h"
#include "ZELKTextColours.h"

#include <QFont>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextDocument>

/// Attributed texts as Qt lays them out, for whatever has room for many lines. Needs a window system.
///
/// Points become dots of a device by its dots per inch: those of the screen, unless others are given.
namespace ZELKTextDocument {

/// Of the primary screen, as the platform has it set for texts.
double screenDotsPerInch();
QFont font(const ZELKTextAttributes &attributes);
/// Without a foreground where the colour is whatever the view draws with.
QTextCharFormat charFormat(const ZELKTextAttributes &attributes, const ZELKTextColours &colours);
QTextBlockFormat blockFormat(const ZELKParagraphStyle &style, double dotsPerInch);

/// Makes `text` all there is in the document, without a margin around it.
void fill(QTextDocument &document, const ZELKAttributedString &text, const ZELKTextColours &colours,
          double dotsPerInch = screenDotsPerInch());
/// Height on the screen, in the pixels that widgets reckon with, where lines may have any length; with the
/// spacing before the first paragraph and after the last.
double height(const ZELKAttributedString &text);

} // namespace ZELKTextDocument
