#include "ZELKLWCInspectorLabelSubViewController.h"

#include "ZELKLWCInspectorLabelView.h"

ZELKLWCInspectorLabelSubViewController::ZELKLWCInspectorLabelSubViewController(const QString &label)
    : ZELKLWCInspectorSubViewController({}, label, QStringLiteral("ZELKLWCInspectorLabelSubViewController"))
{
    if (ZELKLWCInspectorLabelView *found = labelView())
        found->setTitle(label);
}

ZELKLWCInspectorLabelView *ZELKLWCInspectorLabelSubViewController::labelView() const
{
    return outlet<ZELKLWCInspectorLabelView>("labelView");
}
