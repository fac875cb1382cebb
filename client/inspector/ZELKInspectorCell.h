#pragma once

#include "ZELKAttributedString.h"

#include <QVariant>

/// A value of the inspector as a text. A plain value.
struct ZELKInspectorCell
{
    /// A text with attributes as it is; another value by its description, in the primary look of small print.
    /// What a program may have written into a log does no harm: it is bounded, and nothing in it turns the
    /// direction of what follows.
    static ZELKInspectorCell ofValue(const QVariant &value);
    /// What a row is called: the same text, dimmed.
    static ZELKInspectorCell ofKey(const QVariant &key);

    /// The leading percentage, "25.0%", which stands in a column of its own; empty for a text that begins
    /// otherwise, and for plain values.
    ZELKAttributedString figure;
    ZELKAttributedString text;
    bool isPlain = false; ///< not a text with attributes
};
