#pragma once

#include <QString>

/// The platform's font, which is the application's, and its sizes in points. The sizes beside the usual one
/// are parts of it, since the desktops here have one size only; none is too small to read. Taken anew at each
/// call, so that a change of the font is followed. Where there is no window system, 10 points of no family.
namespace ZELKSystemFonts {

QString family();
double systemFontSize();
/// Captions, and what is said in passing.
double labelFontSize();
/// The font sizes of the small and the mini kind of control.
double smallSystemFontSize();
double miniSystemFontSize();

} // namespace ZELKSystemFonts
