#pragma once

#include "ZELKAttributedString.h"

/// The two looks in which a value and what qualifies it stand side by side: primary, and secondary, which is
/// smaller and dimmer. Taken from the platform's fonts at each call.
class ZELKLWCPresentationAssistant
{
public:
    ZELKLWCPresentationAssistant() = delete;

    static ZELKTextAttributes primaryAttributes();
    static ZELKTextAttributes secondaryAttributes();
    /// The first text in the primary look and behind it, with nothing between, the second in the secondary
    /// one, unless it is null.
    static ZELKAttributedString attributedStringWithPrimary(const QString &primary, const QString &secondary);
    /// The secondary look for a value of that look: of as much smaller a size as usual. The usual secondary
    /// look where the given one has no font.
    static ZELKTextAttributes secondaryAttributesFromPrimaryAttributes(const ZELKTextAttributes &attributes);
    /// For small print: the sizes of a small and of a mini control. That they are two kinds of control is
    /// meant.
    static ZELKTextAttributes miniPrimaryAttributes();
    static ZELKTextAttributes miniSecondaryAttributes();
};
