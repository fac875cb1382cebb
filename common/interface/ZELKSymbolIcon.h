#pragma once

#include <QIcon>

class ZELKBundle;

/// Our own symbols. They are drawn in the colour that the palette gives to texts on buttons at that moment,
/// so that they follow a change between light and dark, and are sharp at every size.
namespace ZELKSymbolIcon {

/// "icons/NAME.svg" of the bundle, in which "currentColor" stands for the palette's colour. A missing file
/// raises "%@ Missing '%@.svg'.".
QIcon icon(const ZELKBundle &bundle, const QString &name);

} // namespace ZELKSymbolIcon
