#pragma once

#include "ZELKBlockRanges.h"
#include "ZELKPixelSpace.h"
#include "ZELKStateGradient.h"

#include <QImage>

#include <span>
#include <vector>

/// Paints the blocks of one state at once, over what is in the image: every place once, however many blocks
/// meet in a pixel, with exactly the share that they cover of it.
class ZELKBlockPainter
{
public:
    /// `image` must outlive the painter; opaque, of 32 bits a pixel.
    ZELKBlockPainter(QImage &image, const ZELKPixelSpace &space);

    struct Blocks
    {
        std::span<const ZELKBlockRange> ranges; ///< disjoint, from left to right
        double lower = 0.0;                     ///< edges of all of them, in points
        double upper = 0.0;
        bool isRounded = false; ///< the upper corners of wide ones
    };
    void paint(const Blocks &blocks, const ZELKStateGradient &gradient);

private:
    std::vector<float> columnsOf(std::span<const ZELKBlockRange> ranges) const;
    int paintTop(const Blocks &blocks, const ZELKStateGradient &gradient);
    void paintBody(const Blocks &blocks, const ZELKStateGradient &gradient, int firstRow);
    void blend(int y, int x, std::span<const float> shares, const QColor &colour, double part);
    QColor colourOfRow(int y, const Blocks &blocks, const ZELKStateGradient &gradient) const;

    QImage &m_image;
    ZELKPixelSpace m_space;
};
