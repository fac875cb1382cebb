#pragma once

#include "ZELKLWCInspectorSubViewController.h"

/// Shows a dictionary: a row for each key.
class ZELKLWCInspectorDictionarySubViewController : public ZELKLWCInspectorSubViewController
{
public:
    ZELKLWCInspectorDictionarySubViewController(const QVariant &value, const QString &key);

    /// In the order that the dictionary gives; none for a value that has no keys, whose rows are then those
    /// of an array.
    const QStringList &keyArray() const { return m_keyArray; }
    /// Null without a view.
    ZELKInspectorTableView *tableView() const { return outlet<ZELKInspectorTableView>("tableView"); }

    int numberOfRowsInTableView() const override;
    /// The key in the column "key", the value for it in any other.
    QVariant tableViewObjectValueForTableColumn(const QString &column, int row) const override;

private:
    QStringList m_keyArray;
};
