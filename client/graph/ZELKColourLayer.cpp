#include "ZELKColourLayer.h"

#include "ZELKBoxBlur.h"
#include "ZELKOpaquePixel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int tile = 16; // columns; as many rows as are read of each while it is in the cache

} // namespace

ZELKColourLayer::ZELKColourLayer(const QRect &box)
    : m_box(box)
    , m_pixels(std::size_t(box.width()) * std::size_t(box.height()))
{
}

void ZELKColourLayer::add(ZELKCoverage &coverage, const QColor &colour)
{
    const Pixel opaque{colour.redF(), colour.greenF(), colour.blueF(), 1.0F};
    const float opacity = colour.alphaF();
    coverage.takeRows([&](int x, int y, std::span<const float> shares) {
        Pixel *pixel = m_pixels.data() + place(x, y);
        for (const float share : shares) {
            if (share > 0.0F)
                *pixel = pixel->towards(opaque, share * opacity);
            ++pixel;
        }
    });
}

/// The layer's opacity, moved down and blurred; kept as the layer is.
std::vector<float> ZELKColourLayer::blurred(const Shadow &shadow) const
{
    const auto height = std::size_t(m_box.height());
    std::vector<float> opacity(m_pixels.size(), 0.0F);
    const std::size_t drop = std::min(height, std::size_t(std::lround(shadow.drop)));
    for (std::size_t column = 0; column < opacity.size(); column += height)
        for (std::size_t y = drop; y < height; ++y)
            opacity[column + y] = m_pixels[column + y - drop].alpha * shadow.opacity;
    ZELKBoxBlur(shadow.deviation).blur(opacity, m_box.height(), m_box.width());
    return opacity;
}

void ZELKColourLayer::paint(QImage &image, const Shadow &shadow, int from, int end) const
{
    const std::vector<float> darkness = blurred(shadow);
    const int first = std::max(from, m_box.top());
    const int last = std::min(end - 1, m_box.bottom());
    for (int left = m_box.left(); left <= m_box.right(); left += tile)
        for (int y = first; y <= last; ++y)
            paintPart(image, darkness, QRect(left, y, std::min(tile, m_box.right() + 1 - left), 1));
}

/// Some pixels of a row.
void ZELKColourLayer::paintPart(QImage &image, const std::vector<float> &darkness, const QRect &part) const
{
    auto *pixel = reinterpret_cast<QRgb *>(image.scanLine(part.y())) + part.x();
    std::size_t here = place(part.x(), part.y());
    for (int i = 0; i < part.width(); ++i, ++pixel, here += std::size_t(m_box.height())) {
        const Pixel &over = m_pixels[here];
        const float dark = darkness[here];
        if (over.alpha <= 0.0F && dark < 0.001F)
            continue;
        const float left = (1.0F - over.alpha) * (1.0F - dark);
        *pixel = ZELKOpaquePixel::laidOver(*pixel, over.red * 255.0F, over.green * 255.0F, over.blue * 255.0F,
                                           left);
    }
}
