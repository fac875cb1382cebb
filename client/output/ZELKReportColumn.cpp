#include "ZELKReportColumn.h"

#include "ZELKLWCLogTableModel.h"
#include "ZELKLWCLogTableView.h"

#include <QHeaderView>

#include <algorithm>

QList<ZELKReportColumn> ZELKReportColumn::columnsOf(const ZELKLWCLogTableView &table)
{
    QList<ZELKReportColumn> columns;
    const auto *model = qobject_cast<const ZELKLWCLogTableModel *>(table.model());
    const QHeaderView &header = *table.horizontalHeader();
    for (int place = 0; model && place < header.count(); ++place) {
        const int section = header.logicalIndex(place);
        if (header.isSectionHidden(section))
            continue;
        const auto column = ZELKLWCLogTableModel::Column(section);
        const auto of = [&](int role) { return model->headerData(section, Qt::Horizontal, role); };
        columns.append({ZELKLWCLogTableModel::identifier(column), of(Qt::DisplayRole).toString(),
                        double(header.sectionSize(section)), Qt::Alignment(of(Qt::TextAlignmentRole).toInt()),
                        model->formatter(column)});
    }
    return columns;
}

double ZELKReportColumn::tableWidth(const QList<ZELKReportColumn> &columns)
{
    constexpr double beside = 2.0;
    double width = beside;
    for (const ZELKReportColumn &column : columns)
        width += column.width;
    return width;
}

double ZELKReportColumn::cellWidth(double tableWidth, double printableWidth) const
{
    constexpr double least = 0.3;
    return std::max(width / tableWidth, least) * printableWidth;
}
