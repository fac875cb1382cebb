#pragma once

#include "ZELKRtfScanner.h"
#include "ZELKTextAttributes.h"

#include <QList>

/// The colours that rich text numbers at its beginning. A colour of the theme's text is the palette's text;
/// tinted, it is the dimmer one.
class ZELKRtfColourTable
{
public:
    void take(const ZELKRtfToken &token);
    /// No colour of its own for numbers that are not there.
    ZELKTextColour colour(int number) const;

private:
    void finish();

    QList<ZELKTextColour> m_colours;
    int m_red = -1; ///< -1 while none is given
    int m_green = -1;
    int m_blue = -1;
    bool m_isText = false;
    bool m_isTinted = false;
};
