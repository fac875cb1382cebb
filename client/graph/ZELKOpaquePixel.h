#pragma once

#include <QRgb>

/// A pixel that lets nothing through.
namespace ZELKOpaquePixel {

/// The pixel with a colour laid over it: the colour's parts, 0 to 255, as far as they cover, and of
/// what was there the share that is left.
inline QRgb laidOver(QRgb below, float red, float green, float blue, float left)
{
    constexpr float half = 0.5F; // truncated, the sum is rounded
    const auto mixed = [left](float over, int under) { return int(over + float(under) * left + half); };
    return qRgb(mixed(red, qRed(below)), mixed(green, qGreen(below)), mixed(blue, qBlue(below)));
}

} // namespace ZELKOpaquePixel
