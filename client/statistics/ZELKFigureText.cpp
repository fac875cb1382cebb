#include "ZELKFigureText.h"

#include "ZELKLWCPresentationAssistant.h"

ZELKAttributedString ZELKFigureText(const QString &figure, const QString &unit, const QString &qualifier)
{
    const ZELKTextAttributes secondary = ZELKLWCPresentationAssistant::miniSecondaryAttributes();
    ZELKTextAttributes plain = secondary;
    plain.colour = ZELKTextColour::of(ZELKTextColour::Role::ControlText);
    ZELKAttributedString text(figure, ZELKLWCPresentationAssistant::miniPrimaryAttributes());
    text.append(unit, plain);
    text.append(qualifier, secondary);
    return text;
}
