#pragma once

#include "ZELKUprightRect.h"

#include <QSizeF>

#include <optional>
#include <vector>

/// How the parts of the panel stand below one another: as wide as the widest, each as high as it is, the
/// first one at the top. Pixels; the origin is the bottom left corner of the whole. A plain value.
struct ZELKInspectorStack
{
    /// Of the parts from top to bottom; one that is missing takes no room.
    static ZELKInspectorStack of(const std::vector<std::optional<QSizeF>> &parts);

    std::vector<ZELKUprightRect> frames; ///< in the order of the parts
    double width = 0.0;
    float height = 0.0F; ///< summed up in single precision

    QSizeF size() const { return {width, double(height)}; }
};
