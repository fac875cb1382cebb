#pragma once

#include <QList>
#include <QPrinter>

/// Which pages are printed, and in which order.
struct ZELKPageSequence
{
    qint64 pages = 0; ///< how many there are
    /// The ones that are wanted, counted from 1; beyond what there is nothing is printed. 0 for no limit.
    int from = 0;
    int to = 0;
    int copies = 1; ///< those that the printer does not make by itself
    bool isCollated = true;
    bool isLastFirst = false;

    /// As the user chose it for the printer.
    static ZELKPageSequence of(const QPrinter &printer, qint64 pages);

    QList<qint64> pageNumbers() const;
};
