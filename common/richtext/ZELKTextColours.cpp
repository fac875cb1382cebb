#include "ZELKTextColours.h"

#include <QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr double readableContrast = 4.5;

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

QColor mixed(const QColor &a, const QColor &b, double partOfB)
{
    const auto channel = [partOfB](int from, int to) {
        return int(std::lround(from + (to - from) * partOfB));
    };
    return {channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue())};
}

QColor readable(const QColor &faint, const QColor &text, const QColor &background)
{
    constexpr int steps = 20;
    for (int step = 0; step < steps; ++step) {
        const QColor candidate = mixed(faint, text, double(step) / steps);
        if (ZELKTextColours::contrast(candidate, background) >= readableContrast)
            return candidate;
    }
    return text;
}

} // namespace

ZELKTextColours ZELKTextColours::fromPalette(const QPalette &palette, bool isSelected)
{
    if (isSelected) {
        const QColor text = palette.color(QPalette::HighlightedText);
        return {text, text, true};
    }
    const QColor text = palette.color(QPalette::Text);
    return {text,
            readable(palette.color(QPalette::Disabled, QPalette::Text), text, palette.color(QPalette::Base)),
            false};
}

ZELKTextColours ZELKTextColours::forPaper()
{
    constexpr QRgb grey = 0xFF757575;
    return {Qt::black, QColor(grey), false};
}

QColor ZELKTextColours::colour(const ZELKTextColour &of) const
{
    if (isUniform)
        return text;
    switch (of.role) {
    case ZELKTextColour::Role::Fixed:
        return QColor(of.fixed);
    case ZELKTextColour::Role::DisabledControlText:
        return dimmed;
    case ZELKTextColour::Role::Inherited:
    case ZELKTextColour::Role::ControlText:
        break;
    }
    return text;
}

double ZELKTextColours::contrast(const QColor &a, const QColor &b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}
