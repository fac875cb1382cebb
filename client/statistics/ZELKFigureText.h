#pragma once

#include "ZELKAttributedString.h"

/// A figure in small print: the number in the primary look, behind it the unit in the palette's text colour,
/// and what qualifies both in the secondary look.
ZELKAttributedString ZELKFigureText(const QString &figure, const QString &unit,
                                    const QString &qualifier = {});
