#pragma once

#include "ZELKVisibleRange.h"

#include <QAbstractTableModel>

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// The log's visible entries as rows, oldest first: date and summary. Rows come and go at both ends as the
/// visible range does; what stays visible stays the same row, so that selection and scroll position hold.
/// Nothing is copied: a cell is made when it is asked for.
class ZELKLWCLogTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { DateColumn, SummaryColumn, ColumnCount };

    /// `log` must outlive the model.
    explicit ZELKLWCLogTableModel(ZELKLWCLog &log, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Null for a row that is not there.
    ZELKLWCLogEntry *entryAtRow(int row) const;

private:
    void follow(ZELKVisibleRange range);
    void removeEnds(ZELKVisibleRange range);
    void insertEnds(ZELKVisibleRange range);

    ZELKLWCLog &m_log;
    /// What the views were told of; entries of the log, by index.
    ZELKVisibleRange m_range;
};
