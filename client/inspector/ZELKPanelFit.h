#pragma once

#include "ZELKUprightRect.h"

#include <QSizeF>

/// The frame of a panel whose content takes another size: the top right corner keeps its place. What the
/// screen has no room for is scrolled. Pixels, y upwards. A plain value.
struct ZELKPanelFit
{
    struct Panel
    {
        ZELKUprightRect frame;
        QSizeF content;         ///< part of the frame; the rest is around it
        ZELKUprightRect screen; ///< what windows may cover
        double scrollBar = 0.0; ///< its width
    };

    static ZELKPanelFit of(const Panel &panel, const QSizeF &wanted);
    /// For a panel that was nowhere yet: beside its window where there is room, else over the window's right
    /// edge; level with the window's top, and on the screen.
    static ZELKUprightRect beside(const ZELKUprightRect &window, const QSizeF &size,
                                  const ZELKUprightRect &screen);

    ZELKUprightRect frame;
    bool scrolls = false;

    bool operator==(const ZELKPanelFit &) const = default;
};
