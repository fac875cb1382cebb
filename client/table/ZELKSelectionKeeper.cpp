#include "ZELKSelectionKeeper.h"

#include "ZELKAssertion.h"
#include "ZELKLWCLogTableModel.h"
#include "ZELKLWCLogTableView.h"

#include <QScrollBar>

namespace {

/// A selection in more pieces than anybody can have meant is let go: a view looks through all of them for
/// each cell that it paints.
constexpr qsizetype mostPieces = 5000;

} // namespace

ZELKSelectionKeeper::ZELKSelectionKeeper(ZELKLWCLogTableView &view, ZELKLWCLogTableModel &model)
    : m_view(view)
    , m_model(model)
{
    connect(&model, &ZELKLWCLogTableModel::willRearrange, this, [this] { zelkGuard([this] { save(); }); });
    connect(&model, &ZELKLWCLogTableModel::didRearrange, this, [this] { zelkGuard([this] { restore(); }); });
}

std::optional<ZELKEntryArrangement::Index> ZELKSelectionKeeper::entryOf(int row) const
{
    if (row < 0 || row >= m_model.rowCount())
        return std::nullopt;
    return m_model.arrangement().indexAtRow(row);
}

std::optional<int> ZELKSelectionKeeper::rowOf(std::optional<ZELKEntryArrangement::Index> entry) const
{
    return entry ? m_model.arrangement().rowOfIndex(*entry) : std::nullopt;
}

bool ZELKSelectionKeeper::isNewestSeen() const
{
    const QScrollBar *bar = m_view.verticalScrollBar();
    return m_model.arrangement().isByDate() &&
           bar->value() == (m_model.arrangement().isFalling() ? bar->minimum() : bar->maximum());
}

void ZELKSelectionKeeper::save()
{
    saveSelection();
    m_current = entryOf(m_view.currentIndex().row());
    m_isCurrentSeen =
        m_current && m_view.viewport()->rect().intersects(m_view.visualRect(m_view.currentIndex()));
    m_top = entryOf(m_view.verticalScrollBar()->value());
    m_isNewestSeen = isNewestSeen();
}

void ZELKSelectionKeeper::saveSelection()
{
    m_selected.clear();
    const ZELKRowRanges rows = m_view.selectedRows();
    if (rows.empty())
        return;
    const ZELKEntryArrangement &arrangement = m_model.arrangement();
    m_firstIndex = arrangement.range().location;
    m_selected.resize(arrangement.range().length, false);
    for (const ZELKRowRange &range : rows)
        for (int row = range.first; row <= range.last; ++row)
            m_selected[arrangement.indexAtRow(row) - m_firstIndex] = true;
}

void ZELKSelectionKeeper::restore()
{
    restoreSelection();
    m_selected = {};
    const std::optional<int> current = rowOf(m_current);
    if (current)
        makeCurrent(*current);
    restoreView();
    if (m_current && !current)
        makeCurrent(rowToGoOnFrom());
}

void ZELKSelectionKeeper::makeCurrent(int row)
{
    m_view.selectionModel()->setCurrentIndex(m_model.index(row, 0), QItemSelectionModel::NoUpdate);
}

/// Where the current row is listed no more, the arrow keys go on from what is seen.
int ZELKSelectionKeeper::rowToGoOnFrom() const
{
    const bool isNewestLast = m_model.arrangement().isByDate() && !m_model.arrangement().isFalling();
    return m_isNewestSeen && isNewestLast ? m_model.rowCount() - 1 : m_view.verticalScrollBar()->value();
}

void ZELKSelectionKeeper::restoreSelection()
{
    if (m_selected.empty())
        return;
    const auto isSelected = [this](int row) {
        const std::uint64_t place = m_model.arrangement().indexAtRow(row) - m_firstIndex;
        return place < m_selected.size() && m_selected[place];
    };
    QItemSelection selection;
    const int count = m_model.rowCount();
    for (int row = 0; row < count && selection.size() <= mostPieces; ++row) {
        if (!isSelected(row))
            continue;
        const int first = row;
        while (row + 1 < count && isSelected(row + 1))
            ++row;
        selection.append({m_model.index(first, 0), m_model.index(row, m_model.columnCount() - 1)});
    }
    if (selection.size() <= mostPieces)
        m_view.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void ZELKSelectionKeeper::restoreView()
{
    m_view.layOutNow();
    const std::optional<int> current = rowOf(m_current);
    if (current && m_isCurrentSeen)
        m_view.scrollTo(m_model.index(*current, 0));
    else if (m_isNewestSeen && m_model.arrangement().isByDate())
        m_model.arrangement().isFalling() ? m_view.scrollToTop() : m_view.scrollToBottom();
    else
        m_view.scrollTo(m_model.index(rowOf(m_top).value_or(0), 0), QAbstractItemView::PositionAtTop);
}
