// The controller's dealings with single rows: partners, dates, the pasteboard.
#include "ZELKAssertion.h"
#include "ZELKAttributedString.h"
#include "ZELKFormatter.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKRowText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>

// MARK: selection

ZELKLWCLogEntry *ZELKLWCLogTableController::firstSelectedEntry() const
{
    const ZELKRowRanges rows = selectedRows();
    return rows.empty() ? nullptr : m_model.entryAtRow(rows.front().first);
}

ZELKLWCLogEntry *ZELKLWCLogTableController::lastSelectedEntry() const
{
    const ZELKRowRanges rows = selectedRows();
    return rows.empty() ? nullptr : m_model.entryAtRow(rows.back().last);
}

QList<ZELKLWCLogEntry *> ZELKLWCLogTableController::selectedObjects() const
{
    QList<ZELKLWCLogEntry *> entries;
    for (const ZELKRowRange &range : selectedRows())
        for (int row = range.first; row <= range.last; ++row)
            entries.append(m_model.entryAtRow(row));
    return entries;
}

void ZELKLWCLogTableController::selectRow(int row)
{
    const QModelIndex index = m_model.index(row, 0);
    m_view.selectionModel()->setCurrentIndex(index,
                                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_view.scrollTo(index);
}

void ZELKLWCLogTableController::doubleClickShowInformationPanel()
{
    Q_EMIT showInformationPanel();
}

// MARK: partners

std::optional<int> ZELKLWCLogTableController::rowOfSelectedEntrysPair() const
{
    const ZELKLWCLogEntry *entry = firstSelectedEntry();
    return entry ? m_model.rowOfEntry(entry->pair()) : std::nullopt;
}

std::optional<int> ZELKLWCLogTableController::rowOfOnlySelectedEntrysPair() const
{
    const ZELKRowRanges rows = selectedRows();
    return rows.size() == 1 && rows.front().count() == 1 ? rowOfSelectedEntrysPair() : std::nullopt;
}

void ZELKLWCLogTableController::selectPair()
{
    if (const std::optional<int> row = rowOfSelectedEntrysPair())
        selectRow(*row);
}

void ZELKLWCLogTableController::extendSelectionToPair()
{
    const std::optional<int> pair = rowOfSelectedEntrysPair();
    if (!pair)
        return;
    const int selected = selectedRows().front().first;
    const QItemSelection span(m_model.index(std::min(selected, *pair), 0),
                              m_model.index(std::max(selected, *pair), m_model.columnCount() - 1));
    m_view.selectionModel()->select(span, QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

bool ZELKLWCLogTableController::validateMenuItem(MenuItem item) const
{
    switch (item) {
    case MenuItem::CancelFilter:
        return !m_filterString.isEmpty();
    case MenuItem::SelectPair:
    case MenuItem::ExtendSelectionToPair:
        return rowOfOnlySelectedEntrysPair().has_value();
    case MenuItem::Other:
        return true;
    }
    return true;
}

// MARK: dates

void ZELKLWCLogTableController::coalescedSelectEntryByDate()
{
    const QVariant selection = m_dateSender ? m_dateSender->property("selection") : QVariant();
    if (selection.metaType() != QMetaType::fromType<ZELKDate>())
        return;
    if (const std::optional<int> row = nearestVisibleEntryToDate(selection.value<ZELKDate>()))
        selectRow(*row);
}

namespace {

/// What a date lies between, among entries that are walked in any order. Of entries of one date the one
/// walked first is the earlier.
class Neighbours
{
public:
    explicit Neighbours(ZELKDate date)
        : m_date(date)
    {
    }
    void meet(ZELKDate date, int row)
    {
        if (!first || date < first->date)
            first = {date, row};
        if (!last || !(date < last->date))
            last = {date, row};
        if (date > m_date && (!after || date < after->date))
            after = {date, row};
        if (!(date > m_date) && (!before || !(date < before->date)))
            before = {date, row};
    }
    std::optional<int> nearest() const
    {
        if (!first)
            return std::nullopt;
        if (first->date > m_date)
            return first->row;
        if (last->date < m_date)
            return last->row;
        if (!after)
            return std::nullopt;
        const bool isAfterFarther =
            before && after->date.timeIntervalSinceDate(m_date) > m_date.timeIntervalSinceDate(before->date);
        return isAfterFarther ? before->row : after->row;
    }

private:
    struct Met
    {
        ZELKDate date;
        int row = 0;
    };
    ZELKDate m_date;
    std::optional<Met> first;
    std::optional<Met> last;
    std::optional<Met> after;
    std::optional<Met> before;
};

} // namespace

/// Entries in the order of dates are found by halves; then the two around the date, and the ends, are all
/// there is to meet.
std::optional<int> ZELKLWCLogTableController::nearestVisibleEntryToDate(ZELKDate date) const
{
    Neighbours neighbours(date);
    const int count = m_model.rowCount();
    const auto meet = [&](int row) {
        if (row >= 0 && row < count)
            neighbours.meet(m_model.entryAtRow(row)->date(), row);
    };
    if (!m_model.arrangement().isByDate()) {
        for (int row = 0; row < count; ++row)
            meet(row);
        return neighbours.nearest();
    }
    const bool isFalling = m_model.arrangement().isFalling();
    const auto rowAt = [&](int place) { return isFalling ? count - 1 - place : place; };
    int low = 0;
    for (int high = count; low < high;) {
        const int middle = low + (high - low) / 2;
        if (m_model.entryAtRow(rowAt(middle))->after(date))
            high = middle;
        else
            low = middle + 1;
    }
    for (const int place : {0, low - 1, low, count - 1})
        meet(rowAt(place));
    return neighbours.nearest();
}

// MARK: data source

int ZELKLWCLogTableController::numberOfRowsInTableView() const
{
    return m_log.count();
}

QVariant ZELKLWCLogTableController::tableViewObjectValueForTableColumn(Column column, int row) const
{
    if (row < 0 || row >= m_log.count())
        return {};
    return ZELKLWCLogTableModel::value(m_log.objectAtIndex(row), column);
}

// MARK: pasteboard

bool ZELKLWCLogTableController::tableViewWriteRowsToPasteboard(const ZELKRowRanges &rows,
                                                               QMimeData &pasteboard)
{
    if (rows.empty())
        return false;
    ZELKRowText::write(ZELKRowText::text(m_model, rows), pasteboard);
    return true;
}

bool ZELKLWCLogTableController::copySelection()
{
    auto pasteboard = std::make_unique<QMimeData>();
    if (!tableViewWriteRowsToPasteboard(selectedRows(), *pasteboard))
        return false;
    QGuiApplication::clipboard()->setMimeData(pasteboard.release());
    return true;
}
