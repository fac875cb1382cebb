#include "ZELKLWCPresentationAssistant.h"

#include "ZELKSystemFonts.h"

namespace {

/// Size of the secondary look where the primary one has size 1.
float ratio()
{
    return float(ZELKSystemFonts::labelFontSize()) / float(ZELKSystemFonts::systemFontSize());
}

void setFont(ZELKTextAttributes &attributes, double pointSize)
{
    attributes.family = ZELKSystemFonts::family();
    attributes.pointSize = pointSize;
    attributes.bold = false;
    attributes.italic = false;
}

} // namespace

ZELKTextAttributes ZELKLWCPresentationAssistant::primaryAttributes()
{
    ZELKTextAttributes attributes;
    setFont(attributes, ZELKSystemFonts::systemFontSize());
    return attributes;
}

ZELKTextAttributes ZELKLWCPresentationAssistant::secondaryAttributes()
{
    ZELKTextAttributes attributes;
    setFont(attributes, primaryAttributes().pointSize * ratio());
    attributes.colour = ZELKTextColour::of(ZELKTextColour::Role::DisabledControlText);
    return attributes;
}

ZELKAttributedString ZELKLWCPresentationAssistant::attributedStringWithPrimary(const QString &primary,
                                                                               const QString &secondary)
{
    ZELKAttributedString text(primary, primaryAttributes());
    text.append(secondary, secondaryAttributes());
    return text;
}

ZELKTextAttributes
ZELKLWCPresentationAssistant::secondaryAttributesFromPrimaryAttributes(const ZELKTextAttributes &attributes)
{
    ZELKTextAttributes secondary = secondaryAttributes();
    if (attributes.pointSize > 0.0)
        setFont(secondary, attributes.pointSize * ratio());
    return secondary;
}

ZELKTextAttributes ZELKLWCPresentationAssistant::miniPrimaryAttributes()
{
    ZELKTextAttributes attributes = primaryAttributes();
    setFont(attributes, ZELKSystemFonts::smallSystemFontSize());
    return attributes;
}

ZELKTextAttributes ZELKLWCPresentationAssistant::miniSecondaryAttributes()
{
    ZELKTextAttributes attributes = secondaryAttributes();
    setFont(attributes, ZELKSystemFonts::miniSystemFontSize());
    return attributes;
}
