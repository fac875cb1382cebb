#pragma once

#include "ZELKAttributedString.h"
#include "ZELKDateNeighbours.h"
#include "ZELKEntryArrangement.h"

#include <QAbstractTableModel>
#include <QTimer>

class ZELKFormatter;
class ZELKLWCLog;
class ZELKLWCLogEntry;
class ZELKLWCLogEntryFormatter;

/// The log's visible entries as rows, date and summary: those that pass the filter, in the order of the sort,
/// without one oldest first. Rows come and go as the visible range does; what stays visible stays the same
/// row, so that selection and scroll position hold. Nothing is copied: a cell is made when it is asked for.
class ZELKLWCLogTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { DateColumn, SummaryColumn, ColumnCount };
    /// A cell's text with its attributes, safe for one row: a ZELKAttributedString.
    static constexpr int attributedTextRole = Qt::UserRole;

    /// `log` must outlive the model.
    explicit ZELKLWCLogTableModel(ZELKLWCLog &log, QObject *parent = nullptr);

    /// What the cells' texts are made by, from the entry's value for the column's identifier; without them,
    /// dates are short and summaries plain. Not owned.
    void setFormatters(const ZELKFormatter *date, const ZELKLWCLogEntryFormatter *summary);
    /// Null where there is none.
    const ZELKFormatter *formatter(Column column) const;
    /// The key of the entry's value that a column shows: "date", and "events", which is the entry itself.
    static QString identifier(Column column);
    /// The value for that key, as formatters take it.
    static QVariant value(ZELKLWCLogEntry *entry, Column column);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Rows are those whose summary contains `filterString`; all, when it is empty. Case counts.
    QString filterString() const { return m_filterString; }
    void setFilterString(const QString &filterString);
    const ZELKSortDescriptors &sortDescriptors() const { return m_sortDescriptors; }
    void setSortDescriptors(const ZELKSortDescriptors &descriptors);
    const ZELKEntryArrangement &arrangement() const { return m_arrangement; }

    /// Null for a row that is not there.
    ZELKLWCLogEntry *entryAtRow(int row) const;
    /// Nothing for an entry that no row shows.
    std::optional<int> rowOfEntry(const ZELKLWCLogEntry *entry) const;
    /// Among the rows.
    ZELKDateNeighbours neighboursOfDate(ZELKDate date) const;

Q_SIGNALS:
    /// Around every reset of the model, which a new filter or sort is: whoever keeps rows by number turns
    /// them into entries and back.
    void willRearrange();
    void didRearrange();

private:
    void follow(ZELKVisibleRange range);
    void rearrange();
    void takeOut(ZELKEntryArrangement::Span span);
    void putIn(const ZELKEntryArrangement::Insertion &insertion);
    void prepareWhenIdle();
    QString text(ZELKLWCLogEntry *entry, Column column) const;
    ZELKAttributedString attributedText(ZELKLWCLogEntry *entry, Column column) const;

    ZELKLWCLog &m_log;
    ZELKEntryArrangement m_arrangement;
    QString m_filterString;
    ZELKSortDescriptors m_sortDescriptors;
    const ZELKFormatter *m_dateFormatter = nullptr;
    const ZELKLWCLogEntryFormatter *m_summaryFormatter = nullptr;
    QTimer m_idle;
};
