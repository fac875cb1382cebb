#include "ZELKLabelColours.h"

#include "ZELKTextColours.h"

#include <QPalette>

#include <algorithm>

namespace {

constexpr double readableContrast = 7.0;

/// The titles are black, whatever tint the desktop has chosen.
QColor tint(const QPalette &palette)
{
    const QColor chosen = palette.color(QPalette::Active, QPalette::Highlight).toRgb();
    constexpr int steps = 20;
    QColor colour = chosen;
    for (int step = 1; step <= steps && ZELKTextColours::contrast(colour, Qt::black) < readableContrast;
         ++step) {
        const float part = float(step) / steps;
        const auto lighter = [part](float channel) { return channel + (1.0F - channel) * part; };
        colour = QColor::fromRgbF(lighter(chosen.redF()), lighter(chosen.greenF()), lighter(chosen.blueF()));
    }
    return colour;
}

} // namespace

ZELKLabelColours ZELKLabelColours::initial(const QPalette &palette)
{
    return {palette.color(QPalette::Active, QPalette::Highlight),
            palette.color(QPalette::Active, QPalette::Light), tint(palette)};
}

ZELKLabelColours ZELKLabelColours::afterTintChange(const QPalette &palette)
{
    ZELKLabelColours colours = initial(palette);
    colours.border = palette.color(QPalette::Active, QPalette::Dark);
    return colours;
}

std::pair<QColor, QColor> ZELKLabelColours::gradient(const QColor &base)
{
    float hue = 0.0F;
    float saturation = 0.0F;
    float brightness = 0.0F;
    float alpha = 0.0F;
    base.toRgb().getHsvF(&hue, &saturation, &brightness, &alpha);
    const float sameHue = std::max(hue, 0.0F); // of grey it is none
    return {QColor::fromHsvF(sameHue, std::max(saturation - 0.12F, 0.0F), std::min(brightness + 0.3F, 1.0F),
                             alpha),
            QColor::fromHsvF(sameHue, saturation > 0.04F ? std::min(saturation + 0.12F, 1.0F) : 0.0F,
                             std::max(brightness - 0.09F, 0.0F), alpha)};
}
