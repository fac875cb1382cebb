#include "ZELKColourLayer.h"

#include "ZELKBoxBlur.h"
#include "ZELKOpaquePixel.h"

#include <algorithm>
#include <cmath>

ZELKColourLayer::ZELKColourLayer(const QRect &box)
    : m_box(box)
    , m_pixels(std::size_t(box.width()) * std::size_t(box.height()))
{
}

void ZELKColourLayer::add(ZELKCoverage &coverage, const QColor &colour)
{
    const Pixel opaque{colour.redF(), colour.greenF(), colour.blueF(), 1.0F};
    const float opacity = colour.alphaF();
    coverage.takeRows([&](int y, int x, std::span<const float> shares) {
        Pixel *pixel = row(y - m_box.top()) + (x - m_box.left());
        for (const float share : shares) {
            if (share > 0.0F)
                *pixel = pixel->towards(opaque, share * opacity);
            ++pixel;
        }
    });
}

/// The layer's opacity, moved down and blurred; as large as the layer.
std::vector<float> ZELKColourLayer::blurred(const Shadow &shadow) const
{
    const int width = m_box.width();
    const int height = m_box.height();
    std::vector<float> opacity(m_pixels.size(), 0.0F);
    const int drop = std::min(height, int(std::lround(shadow.drop)));
    float *to = opacity.data() + std::size_t(drop) * std::size_t(width);
    const std::size_t count = std::size_t(height - drop) * std::size_t(width);
    for (std::size_t i = 0; i < count; ++i)
        to[i] = m_pixels[i].alpha * shadow.opacity;
    ZELKBoxBlur(shadow.deviation).blur(opacity, width, height);
    return opacity;
}

void ZELKColourLayer::paint(QImage &image, const Shadow &shadow, int from, int end) const
{
    const std::vector<float> darkness = blurred(shadow);
    for (int y = std::max(from, m_box.top()); y < std::min(end, m_box.bottom() + 1); ++y) {
        const Pixel *over = row(y - m_box.top());
        const float *dark = darkness.data() + (over - m_pixels.data());
        auto *pixel = reinterpret_cast<QRgb *>(image.scanLine(y)) + m_box.left();
        for (int x = 0; x < m_box.width(); ++x, ++over, ++dark, ++pixel) {
            if (over->alpha <= 0.0F && *dark < 0.001F)
                continue;
            const float left = (1.0F - over->alpha) * (1.0F - *dark);
            *pixel = ZELKOpaquePixel::laidOver(*pixel, over->red * 255.0F, over->green * 255.0F,
                                               over->blue * 255.0F, left);
        }
    }
}
