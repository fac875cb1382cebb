#include "ZELKReportLayout.h"

#include <QPageLayout>

#include <algorithm>
#include <cmath>

ZELKReportLayout::Paper ZELKReportLayout::Paper::of(const QPageLayout &layout)
{
    return {layout.fullRect(QPageLayout::Point).size(), layout.margins(QPageLayout::Point)};
}

ZELKReportLayout::ZELKReportLayout(const Paper &onPaper, const Heights &ofHeights, qint64 ofRows)
    : paper(onPaper)
    , heights(ofHeights)
    , rows(ofRows)
    , printableArea(paper.margins.left(), paper.margins.top(),
                    paper.size.width() - paper.margins.left() - paper.margins.right(),
                    paper.size.height() - paper.margins.top() - paper.margins.bottom())
    , rowsPerPage(std::max(qint64((printableArea.height() - heights.header - heights.titleRow) / heights.row),
                           qint64(1)))
    , pages(rows / rowsPerPage + (rows % rowsPerPage > 0 ? 1 : 0))
{
}

QRectF ZELKReportLayout::rectForPage(qint64 page) const
{
    const QRectF all = frame();
    return {all.x(), all.y() + all.height() - double(page) * paper.size.height(), all.width(),
            paper.size.height()};
}

ZELKReportLayout::Pages ZELKReportLayout::pagesIn(const QRectF &area) const
{
    const double height = frame().height();
    const auto pagesAbove = [&](double y) { return (height - y) / paper.size.height(); };
    const double first = std::floor(pagesAbove(area.y() + area.height())) + 1.0;
    const double last = std::ceil(pagesAbove(area.y()));
    return {std::max(qint64(first), qint64(1)), std::min(qint64(last), pages)};
}

double ZELKReportLayout::pageHeaderY(qint64 page) const
{
    return frame().height() - double(page - 1) * paper.size.height() - heights.header - paper.margins.top();
}

double ZELKReportLayout::rowY(qint64 row) const
{
    const qint64 page = row / rowsPerPage + 1;
    return columnHeadingsY(page) - heights.titleRow / 4.0 - double(row % rowsPerPage) * heights.row;
}
