#pragma once

#include "ZELKTextAttributes.h"

#include <QByteArray>

/// What makes characters, paragraphs and pages of a Word document differ from its usual ones: a sequence of
/// operations, each of a code and what it sets.
namespace ZELKWordProperties {

/// Half points of text whose size nobody set.
constexpr int usualHalfPoints = 24;

/// `font` is its number in the document.
QByteArray forCharacters(const ZELKTextAttributes &look, int font);
QByteArray forParagraph(const ZELKParagraphStyle &style);
/// Of the usual characters.
QByteArray forStyle();
/// A4, with margins of an inch.
QByteArray forPage();

} // namespace ZELKWordProperties
