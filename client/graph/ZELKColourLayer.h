#pragma once

#include "ZELKCoverage.h"

#include <QColor>
#include <QImage>

#include <vector>

/// A transparent layer over some of an image's pixels, in which colours are kept exactly enough for very many
/// faint ones to add up; everything in it casts one shadow.
class ZELKColourLayer
{
public:
    /// A shadow of an image, in pixels.
    struct Shadow
    {
        double drop = 0.0;      ///< how far it lies below what casts it
        double deviation = 0.0; ///< of the blur
        float opacity = 0.0F;
    };

    explicit ZELKColourLayer(const QRect &box);

    const QRect &box() const { return m_box; }
    /// Lays a colour over what is covered, and forgets that. `coverage` is of the layer's box.
    void add(ZELKCoverage &coverage, const QColor &colour);
    /// Lays the shadow over the image and then the layer, in the image's rows `from` up to before `end`.
    void paint(QImage &image, const Shadow &shadow, int from, int end) const;

private:
    /// Premultiplied by the opacity.
    struct Pixel
    {
        float red = 0.0F;
        float green = 0.0F;
        float blue = 0.0F;
        float alpha = 0.0F;

        Pixel towards(const Pixel &other, float share) const
        {
            return {red + (other.red - red) * share, green + (other.green - green) * share,
                    blue + (other.blue - blue) * share, alpha + (other.alpha - alpha) * share};
        }
    };

    std::vector<float> blurred(const Shadow &shadow) const;
    Pixel *row(int y) { return m_pixels.data() + std::size_t(y) * std::size_t(m_box.width()); }
    const Pixel *row(int y) const { return m_pixels.data() + std::size_t(y) * std::size_t(m_box.width()); }

    QRect m_box;
    std::vector<Pixel> m_pixels;
};
