#pragma once

#include "ZELKPaperFont.h"
#include "ZELKReportColumn.h"
#include "ZELKReportLayout.h"
#include "ZELKTextAttributes.h"

#include <QList>

#include <memory>

class QLabel;
class QPainter;
class QWidget;
class ZELKLWCLogEntry;
class ZELKLWCLogTableModel;
class ZELKLWCLogTableView;

/// The log table on paper: its rows as they are arranged, with a header and the columns' headings on each
/// page, every row on one line above a light rule. Black on white, whatever the window looks like.
///
/// Lengths are points, places those of an unflipped view (see ZELKReportLayout). What the table shows later
/// does not change a report: its columns and rows are those of the moment when it was made. The log must
/// outlive it, and so must the columns' formatters.
class ZELKLWCPrintableReportView
{
public:
    /// Pages, counted from 1.
    struct PageRange
    {
        qint64 location = 1;
        qint64 length = 0;
    };

    /// Raises for an argument that is missing (a title that is null), and "Unable to load %@ nib." where the
    /// page header's interface file is missing or damaged.
    ZELKLWCPrintableReportView(const ZELKLWCLogTableView *inTableView,
                               const ZELKLWCLogTableModel *inDataController, const QString &inTitle,
                               const ZELKReportLayout::Paper &paper);
    ~ZELKLWCPrintableReportView();
    ZELKLWCPrintableReportView(const ZELKLWCPrintableReportView &) = delete;
    ZELKLWCPrintableReportView &operator=(const ZELKLWCPrintableReportView &) = delete;

    qint64 pages() const { return m_layout.pages; }
    PageRange knowsPageRange() const { return {1, pages()}; }
    QRectF rectForPage(qint64 page) const { return m_layout.rectForPage(page); }
    const ZELKReportLayout &layout() const { return m_layout; }
    static constexpr bool isFlipped() { return false; }

    /// Both are the main bundle's name.
    static QString printJobTitle();
    static QString applicationName();
    /// The system font at the size of a mini control.
    static ZELKPaperFont fontForRow();

    /// Other columns than the table's.
    void setColumns(const QList<ZELKReportColumn> &columns);

    /// Draws what an area of the view shows. The painter's unit is a point; the area's upper left corner is
    /// its origin, its y grows downwards. Costs no more than the pages that the area touches.
    void drawRect(QPainter &painter, const QRectF &area) const;

private:
    /// A painter on an area of the view; places are turned over here and nowhere else.
    struct Canvas;

    void drawPage(const Canvas &canvas, qint64 page) const;
    void drawPageHeader(const Canvas &canvas, qint64 page) const;
    void drawColumnHeadings(const Canvas &canvas, double y) const;
    void drawRow(const Canvas &canvas, ZELKLWCLogEntry *entry, double y) const;
    void drawCell(const Canvas &canvas, const ZELKReportColumn &column, ZELKLWCLogEntry *entry,
                  const QRectF &cell) const;
    void drawRule(const Canvas &canvas, double y) const;

    static constexpr double m_columnPadding = 3.0;

    QList<ZELKReportColumn> m_columns;
    QList<ZELKLWCLogEntry *> m_arrangedObjects;
    QString m_title;
    std::unique_ptr<QWidget> m_pageHeaderView; // never shown; laid out in points
    QLabel *m_pageTextField;
    QLabel *m_titleTextField;
    ZELKPaperFont m_rowFont;
    ZELKPaperFont m_headingFont;
    ZELKTextAttributes m_rowAttributes;
    double m_tableWidth;
    ZELKReportLayout m_layout;
};
