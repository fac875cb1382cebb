#pragma once

#include "ZELKTextAttributes.h"

#include <cstdint>

/// What holds within one group of rich text, and is forgotten at its end.
struct ZELKRtfGroup
{
    enum class Destination : std::uint8_t { Body, Fonts, Colours, Skipped };

    static constexpr double usualSize = 12.0;
    static constexpr int defaultFont = -1; ///< whatever \deff names

    ZELKRtfGroup() { attributes.pointSize = usualSize; }

    Destination destination = Destination::Body;
    /// Without family and colour, which stand in tables, and without line spacing, which two words make up.
    ZELKTextAttributes attributes;
    int font = defaultFont;
    int colour = 0;
    int lineSpacing = 0; ///< twips, or 240ths of a line
    bool spacingIsFactor = false;
    ZELKTabStop::Kind nextTab = ZELKTabStop::Kind::Left;
    int fallbackLength = 1; ///< characters behind \u for readers that do not know it
    bool isHidden = false;
};
