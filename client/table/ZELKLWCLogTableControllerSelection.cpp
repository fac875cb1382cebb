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

std::optional<int> ZELKLWCLogTableController::nearestVisibleEntryToDate(ZELKDate date) const
{
    const auto nearest = m_model.neighboursOfDate(date).nearest();
    return nearest ? std::optional(nearest->index) : std::nullopt;
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
