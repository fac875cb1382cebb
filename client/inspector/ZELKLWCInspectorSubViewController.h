#pragma once

#include "ZELKDateFormatter.h"
#include "ZELKDictionary.h"
#include "ZELKInspectorTableView.h"

#include <QPointer>

#include <memory>

class ZELKInspectorTextView;

/// One part of the inspector's panel: a label, or the value of an attribute, in a view of its own that comes
/// from an interface file. What kind of value it is chooses the file. Which value the file shows where, the
/// names of its objects say: "messageView" the key, "titleView" a headline, "valueView" the value as a text,
/// "tableView" the value's rows.
class ZELKLWCInspectorSubViewController : public ZELKInspectorTableSource
{
public:
    using Pointer = std::unique_ptr<ZELKLWCInspectorSubViewController>;

    static Pointer inspectorSubViewControllerWithLabel(const QString &label);
    static Pointer inspectorSubViewControllerWithMessage(const QString &message);
    /// A value of no known kind becomes the message "Unsupported attribute".
    static Pointer inspectorSubViewControllerWithAttributeValue(const QVariant &value, const QString &key);

    /// The interface file of that name asserts "Unable to load %@ nib." where it is missing or malformed; the
    /// controller is then one without a view.
    ZELKLWCInspectorSubViewController(const QVariant &value, const QString &key, const QString &nib);
    ~ZELKLWCInspectorSubViewController() override;
    ZELKLWCInspectorSubViewController(const ZELKLWCInspectorSubViewController &) = delete;
    ZELKLWCInspectorSubViewController &operator=(const ZELKLWCInspectorSubViewController &) = delete;

    /// Owned, unless what it was put into took it along; null without one.
    QWidget *view() const { return m_view; }
    const QString &attributeKey() const { return m_attributeKey; }
    const QVariant &attributeValue() const { return m_attributeValue; }
    /// Short dates without a time.
    static constexpr ZELKDateFormatter dateFormatter()
    {
        return {ZELKDateFormatter::Style::Short, ZELKDateFormatter::Style::None};
    }

    /// Rows are an array's elements, a dictionary's keys, and what there is to say of an entry or a
    /// selection.
    int numberOfRowsInTableView() const override;
    /// An array's element at the row, whatever the column; a date is formatted, and its time is in the column
    /// "time". Else what the row is called in the column "key", and its value in any other.
    QVariant tableViewObjectValueForTableColumn(const QString &column, int row) const override;
    static constexpr bool tableViewShouldSelectRow(int) { return false; }

    /// Connects the view's objects; called once the controller is whole.
    void awakeFromNib();

protected:
    /// The headline; empty for a value without one.
    virtual ZELKAttributedString title() const;
    /// The rows of a value that is no array, by what they are called.
    const ZELKDictionary &items() const { return m_items; }

    template <typename Type>
    Type *outlet(const char *name) const
    {
        return m_view ? m_view->findChild<Type *>(QString::fromLatin1(name)) : nullptr;
    }

private:
    void loadNib(const QString &nib);
    void fillTable();

    QPointer<QWidget> m_view;
    QString m_attributeKey;
    QVariant m_attributeValue;
    QVariantList m_elements; ///< of an array
    ZELKDictionary m_items;
};
