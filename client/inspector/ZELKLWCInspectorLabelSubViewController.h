#pragma once

#include "ZELKLWCInspectorSubViewController.h"

class ZELKLWCInspectorLabelView;

/// Shows a title above what follows it.
class ZELKLWCInspectorLabelSubViewController : public ZELKLWCInspectorSubViewController
{
public:
    explicit ZELKLWCInspectorLabelSubViewController(const QString &label);

    /// Null without a view.
    ZELKLWCInspectorLabelView *labelView() const;
};
