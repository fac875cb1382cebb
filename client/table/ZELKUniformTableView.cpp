#include "ZELKUniformTableView.h"

#include "ZELKAssertion.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>

#include <algorithm>

ZELKUniformTableView::ZELKUniformTableView(QWidget *parent)
    : QTableView(parent)
    , m_noRows(std::make_unique<QStandardItemModel>())
{
    verticalHeader()->hide();
    // The usual table lays its corner button out, and hides it; this one never gets there.
    for (auto *corner : findChildren<QAbstractButton *>(QString(), Qt::FindDirectChildrenOnly))
        corner->hide();
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
}

ZELKUniformTableView::~ZELKUniformTableView() = default;

// MARK: geometry

int ZELKUniformTableView::uniformRowHeight() const
{
    return std::max(1, verticalHeader()->defaultSectionSize());
}

/// What is looked at stays in sight: the last rows, and the current one.
void ZELKUniformTableView::setUniformRowHeight(int height)
{
    if (height == verticalHeader()->defaultSectionSize())
        return;
    const QScrollBar &bar = *verticalScrollBar();
    const bool isAtEnd = bar.maximum() > bar.minimum() && bar.value() == bar.maximum();
    const bool isCurrentSeen = viewport()->rect().intersects(visualRect(currentIndex()));
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(std::max(1, height));
    updateGeometries();
    if (isAtEnd)
        scrollToBottom();
    if (isCurrentSeen)
        scrollTo(currentIndex());
    viewport()->update();
}

int ZELKUniformTableView::rows() const
{
    return model() ? model()->rowCount(rootIndex()) : 0;
}

int ZELKUniformTableView::rowsInPage() const
{
    return std::max(1, viewport()->height() / uniformRowHeight());
}

/// The row at a height of the viewport, which may lie beyond it; the nearest one where there is none.
int ZELKUniformTableView::rowAtHeight(int y) const
{
    const int height = uniformRowHeight();
    const int below = y + verticalOffset();
    return std::clamp(below < 0 ? 0 : below / height, 0, std::max(0, rows() - 1));
}

int ZELKUniformTableView::verticalOffset() const
{
    return verticalScrollBar()->value() * uniformRowHeight();
}

QRect ZELKUniformTableView::visualRect(const QModelIndex &index) const
{
    if (!index.isValid() || index.model() != model() || isIndexHidden(index))
        return {};
    return {columnViewportPosition(index.column()), index.row() * uniformRowHeight() - verticalOffset(),
            columnWidth(index.column()), uniformRowHeight()};
}

QModelIndex ZELKUniformTableView::indexAt(const QPoint &point) const
{
    const int below = point.y() + verticalOffset();
    const int column = columnAt(point.x());
    if (!model() || below < 0 || below / uniformRowHeight() >= rows() || column < 0)
        return {};
    return model()->index(below / uniformRowHeight(), column, rootIndex());
}

bool ZELKUniformTableView::isIndexHidden(const QModelIndex &index) const
{
    return isColumnHidden(index.column());
}

int ZELKUniformTableView::sizeHintForRow(int) const
{
    return uniformRowHeight();
}

QSize ZELKUniformTableView::viewportSizeHint() const
{
    return {horizontalHeader()->length(), std::min(rows(), 20) * uniformRowHeight()};
}

// MARK: layout

void ZELKUniformTableView::setModel(QAbstractItemModel *newModel)
{
    for (const QMetaObject::Connection &connection : m_connections)
        disconnect(connection);
    m_connections.clear();
    QTableView::setModel(newModel);
    verticalHeader()->setModel(m_noRows.get());
    if (!newModel)
        return;
    const auto follow = [this] {
        zelkGuard([this] {
            updateGeometries();
            viewport()->update();
        });
    };
    m_connections = {connect(newModel, &QAbstractItemModel::rowsInserted, this, follow),
                     connect(newModel, &QAbstractItemModel::rowsRemoved, this, follow),
                     connect(newModel, &QAbstractItemModel::layoutChanged, this, follow),
                     connect(newModel, &QAbstractItemModel::modelReset, this, follow)};
    updateGeometries();
}

void ZELKUniformTableView::layOutNow()
{
    executeDelayedItemsLayout();
    updateGeometries();
}

void ZELKUniformTableView::updateGeometries()
{
    if (m_isUpdating)
        return;
    m_isUpdating = true;
    placeHeader();
    setScrollRanges();
    // Past the usual table, which would scroll to where its vertical header ends.
    QAbstractItemView::updateGeometries(); // NOLINT(bugprone-parent-virtual-call)
    m_isUpdating = false;
}

void ZELKUniformTableView::placeHeader()
{
    QHeaderView *header = horizontalHeader();
    const int height = header->isHidden() ? 0
                                          : std::clamp(header->sizeHint().height(), header->minimumHeight(),
                                                       header->maximumHeight());
    setViewportMargins(0, height, 0, 0);
    const QRect view = viewport()->geometry();
    header->setGeometry(view.left(), view.top() - height, view.width(), height);
    if (header->isHidden())
        QMetaObject::invokeMethod(header, "updateGeometries");
}

void ZELKUniformTableView::setScrollRanges()
{
    verticalScrollBar()->setPageStep(rowsInPage());
    verticalScrollBar()->setSingleStep(1);
    verticalScrollBar()->setRange(0, std::max(0, rows() - rowsInPage()));
    const int width = viewport()->width();
    horizontalScrollBar()->setPageStep(width);
    horizontalScrollBar()->setSingleStep(std::max(width / 20, 2));
    horizontalScrollBar()->setRange(0, std::max(0, horizontalHeader()->length() - width));
}

void ZELKUniformTableView::scrollContentsBy(int dx, int)
{
    if (dx != 0)
        horizontalHeader()->setOffset(horizontalScrollBar()->value());
    viewport()->update();
}

void ZELKUniformTableView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid() || index.model() != model())
        return;
    const int page = rowsInPage();
    const int top = verticalScrollBar()->value();
    const int row = index.row();
    if (hint == PositionAtTop || (hint == EnsureVisible && row < top))
        verticalScrollBar()->setValue(row);
    else if (hint == PositionAtBottom || (hint == EnsureVisible && row >= top + page))
        verticalScrollBar()->setValue(row - page + 1);
    else if (hint == PositionAtCenter)
        verticalScrollBar()->setValue(row - page / 2);
}

// MARK: cursor and selection

QModelIndex ZELKUniformTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int last = rows() - 1;
    if (last < 0)
        return {};
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return model()->index(action == MoveEnd ? last : 0, 0, rootIndex());
    int row = current.row();
    int column = current.column();
    const int forward = isRightToLeft() ? -1 : 1;
    switch (action) {
    case MoveUp:
    case MovePrevious:
        --row;
        break;
    case MoveDown:
    case MoveNext:
        ++row;
        break;
    case MovePageUp:
        row -= rowsInPage();
        break;
    case MovePageDown:
        row += rowsInPage();
        break;
    case MoveHome:
        row = 0;
        break;
    case MoveEnd:
        row = last;
        break;
    case MoveLeft:
        column -= forward;
        break;
    case MoveRight:
        column += forward;
        break;
    }
    return model()->index(std::clamp(row, 0, last), std::clamp(column, 0, model()->columnCount() - 1),
                          rootIndex());
}

void ZELKUniformTableView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command)
{
    if (!selectionModel() || rows() == 0)
        return;
    const QRect area = rect.normalized();
    const QModelIndex top = model()->index(rowAtHeight(area.top()), 0, rootIndex());
    const QModelIndex bottom =
        model()->index(rowAtHeight(area.bottom()), model()->columnCount() - 1, rootIndex());
    selectionModel()->select(QItemSelection(top, bottom), command);
}

QRegion ZELKUniformTableView::visualRegionForSelection(const QItemSelection &selection) const
{
    const int first = verticalScrollBar()->value();
    const int last = first + rowsInPage() + 1;
    QRegion region;
    for (const QItemSelectionRange &range : selection) {
        const int top = std::max(range.top(), first);
        const int bottom = std::min(range.bottom(), last);
        if (top <= bottom)
            region += QRect(0, top * uniformRowHeight() - verticalOffset(), viewport()->width(),
                            (bottom - top + 1) * uniformRowHeight());
    }
    return region;
}

// MARK: painting

void ZELKUniformTableView::paintEvent(QPaintEvent *event)
{
    zelkGuard([&] {
        QPainter painter(viewport());
        if (rows() == 0)
            return;
        QStyleOptionViewItem option;
        initViewItemOption(&option);
        const int last = rowAtHeight(event->rect().bottom());
        for (int row = rowAtHeight(event->rect().top()); row <= last; ++row) {
            option.features.setFlag(QStyleOptionViewItem::Alternate, alternatingRowColors() && row % 2 == 1);
            for (int column = 0; column < model()->columnCount(); ++column)
                paintCell(painter, option, model()->index(row, column, rootIndex()));
        }
    });
}

void ZELKUniformTableView::paintCell(QPainter &painter, const QStyleOptionViewItem &option,
                                     const QModelIndex &index)
{
    QStyleOptionViewItem cell = option;
    cell.rect = visualRect(index);
    if (cell.rect.isEmpty())
        return;
    const bool isCurrent = index == currentIndex();
    cell.state.setFlag(QStyle::State_Selected, selectionModel() && selectionModel()->isSelected(index));
    cell.state.setFlag(QStyle::State_HasFocus, isCurrent && (hasFocus() || viewport()->hasFocus()));
    style()->drawPrimitive(QStyle::PE_PanelItemViewRow, &cell, &painter, this);
    if (QAbstractItemDelegate *delegate = itemDelegateForIndex(index))
        delegate->paint(&painter, cell, index);
}
