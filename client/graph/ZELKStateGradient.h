#pragma once

#include <QColor>

/// What a state's blocks are filled with: from dark at the upper edge to light at the lower one, both as
/// transparent as the state's colour. A plain value.
struct ZELKStateGradient
{
    QColor dark;
    QColor light;

    static ZELKStateGradient withBaseColour(const QColor &base);
    /// 0 at the upper edge, 1 at the lower one; beyond them the colours stay.
    QColor at(double place) const;
};
