#include "ZELKStateGradient.h"

#include <algorithm>

ZELKStateGradient ZELKStateGradient::withBaseColour(const QColor &base)
{
    constexpr float grey = 0.04F; // a hue that is not seen must not come out
    float hue = 0.0F;
    float saturation = 0.0F;
    float brightness = 0.0F;
    float alpha = 0.0F;
    base.getHsvF(&hue, &saturation, &brightness, &alpha);
    hue = std::max(hue, 0.0F); // less than 0 for greys
    ZELKStateGradient gradient;
    gradient.light =
        QColor::fromHsvF(hue, std::max(saturation - 0.12F, 0.0F), std::min(brightness + 0.3F, 1.0F), alpha);
    gradient.dark = QColor::fromHsvF(hue, saturation > grey ? std::min(saturation + 0.12F, 1.0F) : 0.0F,
                                     std::max(brightness - 0.09F, 0.0F), alpha);
    return gradient;
}

QColor ZELKStateGradient::at(double place) const
{
    const auto share = float(std::clamp(place, 0.0, 1.0));
    const auto mixed = [share](float from, float to) { return from + (to - from) * share; };
    return QColor::fromRgbF(mixed(dark.redF(), light.redF()), mixed(dark.greenF(), light.greenF()),
                            mixed(dark.blueF(), light.blueF()), mixed(dark.alphaF(), light.alphaF()));
}
