#pragma once

#include "ZELKCoverage.h"

#include <QColor>
#include <QImage>

#include <vector>

/// A transparent layer over some of an image's pixels, in which colours are kept exactly enough for very many
/// faint ones to add up; everything in it casts one shadow. Kept by columns: dense curves are steep, and what
/// they cover lies close together then, several times quicker to reach than one row after the other.
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

    /// The box with x and y exchanged.
    QRect turnedBox() const { return {m_box.topLeft().transposed(), m_box.size().transposed()}; }
    /// Lays a colour over what is covered, and forgets that. `coverage` is of turnedBox(): its rows are the
    /// layer's columns.
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
    void paintPart(QImage &image, const std::vector<float> &darkness, const QRect &part) const;
    /// Where a pixel of the image is kept.
    std::size_t place(int x, int y) const
    {
        return std::size_t(x - m_box.left()) * std::size_t(m_box.height()) + std::size_t(y - m_box.top());
    }

    QRect m_box;
    std::vector<Pixel> m_pixels;
};
