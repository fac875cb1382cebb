#include "ZELKLabelLayout.h"

ZELKLabelLayout ZELKLabelLayout::of(const ZELKUprightRect &label, double borderWidth, double insetWidth,
                                    bool hasImage)
{
    ZELKLabelLayout layout;
    layout.insetFrame = label.inset(borderWidth);
    layout.inside = layout.insetFrame.inset(insetWidth);
    const ZELKUprightRect &inside = layout.inside;
    layout.bottom = {inside.x, inside.y, inside.width, inside.height / 2.0};
    layout.top = {inside.x, inside.y + inside.height / 2.0, inside.width, inside.height / 2.0};
    layout.titleX = inside.x + titleGap;
    if (hasImage) {
        layout.image = {inside.x, inside.y, inside.height, inside.height};
        layout.titleX += inside.height;
    }
    return layout;
}
