#include "ZELKPanelFit.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double gap = 8.0;
/// A panel that hangs too low for its content goes up before it shows less than this part of the screen.
constexpr double leastPart = 1.0 / 3.0;

/// Moved by as little as brings it onto the screen; the top right corner counts most.
ZELKUprightRect broughtOnto(const ZELKUprightRect &screen, ZELKUprightRect frame)
{
    frame.x = std::min(std::max(frame.x, screen.x), screen.maxX() - frame.width);
    frame.y = std::min(std::max(frame.y, screen.y), screen.maxY() - frame.height);
    return frame;
}

} // namespace

ZELKPanelFit ZELKPanelFit::of(const Panel &panel, const QSizeF &wanted)
{
    const auto &[frame, content, screen, scrollBar] = panel;
    const QSizeF around(frame.width - content.width(), frame.height - content.height());
    const double room = std::min(frame.maxY(), screen.maxY()) - screen.y - around.height();
    const double least = std::min(wanted.height(), std::floor(screen.height * leastPart) - around.height());
    ZELKPanelFit fit;
    QSizeF size(wanted.width(), std::min(wanted.height(), std::max(room, least)));
    fit.scrolls = size.height() < wanted.height();
    if (fit.scrolls)
        size.rwidth() += scrollBar;
    size.setWidth(std::min(size.width(), screen.width - around.width()));
    const QSizeF change = size - content;
    fit.frame = {frame.x - change.width(), frame.y - change.height(), frame.width + change.width(),
                 frame.height + change.height()};
    // A panel that the user pushed over the edge stays there, unless it would be out of sight.
    if (fit.scrolls || !fit.frame.intersects(screen) || fit.frame.y < screen.y || fit.frame.x < screen.x)
        fit.frame = broughtOnto(screen, fit.frame);
    return fit;
}

ZELKUprightRect ZELKPanelFit::beside(const ZELKUprightRect &window, const QSizeF &size,
                                     const ZELKUprightRect &screen)
{
    ZELKUprightRect frame{window.maxX() + gap, window.maxY() - size.height(), size.width(), size.height()};
    if (frame.maxX() > screen.maxX())
        frame.x = window.x - gap - size.width();
    if (frame.x < screen.x)
        frame.x = window.maxX() - gap - size.width();
    return broughtOnto(screen, frame);
}
