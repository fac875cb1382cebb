#include "ZELKInspectorStack.h"

#include <algorithm>

ZELKInspectorStack ZELKInspectorStack::of(const std::vector<std::optional<QSizeF>> &parts)
{
    ZELKInspectorStack stack;
    for (const std::optional<QSizeF> &part : parts) {
        const QSizeF size = part.value_or(QSizeF(0.0, 0.0));
        stack.height += float(size.height());
        stack.width = std::max(stack.width, size.width());
    }
    double y = double(stack.height);
    for (const std::optional<QSizeF> &part : parts) {
        const double height = part.value_or(QSizeF(0.0, 0.0)).height();
        y -= height;
        stack.frames.push_back({0.0, y, stack.width, height});
    }
    return stack;
}
