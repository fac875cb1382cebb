#pragma once

#include "ZELKLWCInspectorSubViewController.h"

/// Shows a dictionary: a row for each key.
class ZELKLWCInspectorDictionarySubViewController : public ZELKLWCInspectorSubViewController
{
public:
    ZELKLWCInspectorDictionarySubViewController(const QVariant &value, const QString &key);

    /// In the order that the dictionary gives; none for a value that has no keys, whose rows are then those
    /// of an array.
    QStringList keyArray() const { return items().keys(); }
    /// Null without a view.
    ZELKInspectorTableView *tableView() const { return outlet<ZELKInspectorTableView>("tableView"); }
};
