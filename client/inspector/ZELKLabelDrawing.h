#pragma once

#include "ZELKUprightRect.h"

#include <QColor>

#include <utility>

class QPalette;

/// What a label of the inspector is drawn with. A plain value.
struct ZELKLabelColours
{
    QColor border;
    QColor inset;
    QColor background;

    /// For a label that is made. The background is the tint of controls, as bright as black on it asks for.
    static ZELKLabelColours initial(const QPalette &palette);
    /// For one that has seen the tint change: the border is from then on the shadow of controls. The
    /// difference is meant.
    static ZELKLabelColours afterTintChange(const QPalette &palette);

    bool operator==(const ZELKLabelColours &) const = default;
};

/// Where the pieces of a label stand. A plain value.
struct ZELKLabelLayout
{
    static constexpr double titleGap = 4.0;

    static ZELKLabelLayout of(const ZELKUprightRect &label, double borderWidth, double insetWidth,
                              bool hasImage);

    ZELKUprightRect insetFrame; ///< around which the inset is stroked
    ZELKUprightRect inside;
    ZELKUprightRect top;
    ZELKUprightRect bottom;
    ZELKUprightRect image; ///< empty without one
    double titleX = 0.0;

    bool operator==(const ZELKLabelLayout &) const = default;
};

namespace ZELKLabelGradient {

/// The colours at the lower and at the upper edge, made of a base colour.
std::pair<QColor, QColor> colours(const QColor &base);

} // namespace ZELKLabelGradient
