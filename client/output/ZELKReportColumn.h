#pragma once

#include <QList>
#include <QString>

class ZELKFormatter;
class ZELKLWCLogTableView;

/// A column of the log table as a report prints it. A plain value.
struct ZELKReportColumn
{
    /// What of a row it shows: "event" for the row's entry itself, else the key of one of the entry's values.
    QString identifier;
    QString title;
    double width = 0.0; ///< in the table; only the proportions matter
    Qt::Alignment alignment = Qt::AlignLeft;
    const ZELKFormatter *formatter = nullptr; ///< not owned; without one nothing is shown

    /// Those that the table shows, in its order. Formatters are the table model's.
    static QList<ZELKReportColumn> columnsOf(const ZELKLWCLogTableView &table);
    /// The width that shares are taken of: that of all columns, and 2.
    static double tableWidth(const QList<ZELKReportColumn> &columns);
    /// The column's share of a width on paper, 0.3 of it at least. Several narrow columns may thus want more
    /// than there is; they run past the right edge then.
    double cellWidth(double tableWidth, double printableWidth) const;
};
