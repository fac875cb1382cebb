#pragma once

#include "ZELKInspectorTextView.h"

#include <QStringList>
#include <QVariant>

/// What a table of the inspector asks of whoever knows its rows.
class ZELKInspectorTableSource
{
public:
    virtual ~ZELKInspectorTableSource() = default;

    virtual int numberOfRowsInTableView() const = 0;
    /// The value in the column of that identifier.
    virtual QVariant tableViewObjectValueForTableColumn(const QString &column, int row) const = 0;
};

/// Rows of the inspector. One column makes a list; of two, the first has what the rows are called, at the
/// middle of the panel, and the second their values. Figures of several rows stand below one another.
class ZELKInspectorTableView : public ZELKInspectorTextView
{
    Q_OBJECT
    Q_PROPERTY(QStringList columns READ columns WRITE setColumns)

public:
    /// More than anybody reads; what is left out is counted in a line of its own.
    static constexpr int mostRows = 500;

    explicit ZELKInspectorTableView(QWidget *parent = nullptr)
        : ZELKInspectorTextView(parent)
    {
    }

    /// Identifiers.
    const QStringList &columns() const { return m_columns; }
    void setColumns(const QStringList &columns) { m_columns = columns; }
    /// Not owned; may be null.
    void setSource(const ZELKInspectorTableSource *source) { m_source = source; }
    /// Asks for all rows anew.
    void reloadData() { refill(); }

protected:
    void fill(QTextDocument &document) const override;

private:
    const ZELKInspectorTableSource *m_source = nullptr;
    QStringList m_columns;
};
