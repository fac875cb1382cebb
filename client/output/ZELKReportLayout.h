#pragma once

#include <QMarginsF>
#include <QRectF>
#include <QSizeF>

class QPageLayout;

/// How a report is divided into pages: a header, a line of column headings and as many rows as fit, on each.
/// A plain value; all lengths are points.
///
/// Places are those of an unflipped view, in which y grows upwards: it is as wide as the paper and as high as
/// all pages together, and its first page is the topmost. Row 0 is the first one.
struct ZELKReportLayout
{
    /// The sheet, and what stays free at its edges.
    struct Paper
    {
        QSizeF size;
        QMarginsF margins;

        static Paper of(const QPageLayout &layout);
    };
    /// What stands on a page.
    struct Heights
    {
        double header = 0.0;
        double titleRow = 0.0;
        double row = 0.0;
    };

    ZELKReportLayout(const Paper &paper, const Heights &heights, qint64 rows);

    Paper paper;
    Heights heights;
    qint64 rows;
    QRectF printableArea; ///< left and top margin; what the margins leave of the paper
    qint64 rowsPerPage;   ///< at least one, on however small a sheet
    qint64 pages;         ///< none without rows; the last one is never empty

    /// All pages.
    QRectF frame() const { return {0.0, 0.0, paper.size.width(), paper.size.height() * double(pages)}; }
    /// Pages are counted from 1.
    QRectF rectForPage(qint64 page) const;
    /// The pages that an area of the view touches: `last` < `first` where there are none.
    struct Pages
    {
        qint64 first = 1;
        qint64 last = 0;
    };
    Pages pagesIn(const QRectF &area) const;

    qint64 firstRow(qint64 page) const { return (page - 1) * rowsPerPage; }
    qint64 rowsOnPage(qint64 page) const { return qBound(qint64(0), rows - firstRow(page), rowsPerPage); }

    /// The lower edges of what stands on a page.
    double pageHeaderY(qint64 page) const;
    double columnHeadingsY(qint64 page) const { return pageHeaderY(page) - heights.titleRow; }
    /// The first row begins a quarter of a line below the header; the headings stand above it, in room that
    /// the header leaves at its foot.
    double rowY(qint64 row) const;
};
