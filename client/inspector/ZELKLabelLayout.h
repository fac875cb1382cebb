#pragma once

#include "ZELKUprightRect.h"

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
