#pragma once

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

    /// Of the shine that a base colour makes: at the lower and at the upper edge.
    static std::pair<QColor, QColor> gradient(const QColor &base);

    bool operator==(const ZELKLabelColours &) const = default;
};
