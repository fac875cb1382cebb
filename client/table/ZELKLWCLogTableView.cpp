#include "ZELKLWCLogTableView.h"

#include "ZELKAssertion.h"
#include "ZELKTableHeader.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>

#include <algorithm>

namespace {

constexpr QChar lineFeed(0x0A);

} // namespace

ZELKLWCLogTableView::ZELKLWCLogTableView(QWidget *parent)
    : ZELKUniformTableView(parent)
    , m_dragRunner([](QDrag &drag, Qt::DropActions actions) { drag.exec(actions); })
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setShowGrid(false);
    setDragEnabled(true);
    setDragDropMode(DragOnly);
    setHorizontalHeader(new ZELKTableHeader(this));
    horizontalHeader()->setStretchLastSection(true);
    connect(this, &QTableView::doubleClicked, this, &ZELKLWCLogTableView::doubleAction);
}

// MARK: menu

bool ZELKLWCLogTableView::validateMenuItem(MenuItem item) const
{
    return item != MenuItem::Copy ||
           (dynamic_cast<const ZELKLWCLogTableViewCopy *>(m_delegate) && hasSelectedRows());
}

void ZELKLWCLogTableView::copy()
{
    if (hasSelectedRows()) {
        QMimeData pasteboard;
        tableViewWriteRowsToPasteboard(selectedRows(), pasteboard);
    }
}

bool ZELKLWCLogTableView::tableViewWriteRowsToPasteboard(const ZELKRowRanges &, QMimeData &)
{
    return false;
}

void ZELKLWCLogTableView::cancelOperation()
{
    if (m_delegate)
        m_delegate->tableViewCancel(*this);
}

// MARK: keys

/// Copying belongs to the menu; a view would put one cell on the clipboard.
bool ZELKLWCLogTableView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy)) {
        event->ignore();
        return false;
    }
    return ZELKUniformTableView::event(event);
}

void ZELKLWCLogTableView::changeEvent(QEvent *event)
{
    ZELKUniformTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        Q_EMIT fontChanged();
}

void ZELKLWCLogTableView::keyPressEvent(QKeyEvent *event)
{
    bool isDone = false;
    zelkGuard([&] { isDone = keyDown(*event); });
    if (isDone)
        event->accept();
    else if (event->matches(QKeySequence::Copy))
        event->ignore();
    else
        ZELKUniformTableView::keyPressEvent(event);
}

bool ZELKLWCLogTableView::keyDown(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Home:
        moveToBeginningOfDocument();
        return true;
    case Qt::Key_End:
        moveToEndOfDocument();
        return true;
    case Qt::Key_Enter:
    case Qt::Key_Return:
        Q_EMIT doubleAction();
        return true;
    case Qt::Key_Escape:
        cancelOperation();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        return (event.modifiers() & ~Qt::KeypadModifier) == 0 && selectCurrentRow();
    case Qt::Key_F10: // what keyboards without a key for menus have instead
        if (event.modifiers() != Qt::ShiftModifier)
            return false;
        Q_EMIT customContextMenuRequested(visualRect(currentIndex()).center());
        return true;
    default:
        // A line feed without the key of a letter that makes one.
        if (event.key() < Qt::Key_Space || event.key() > Qt::Key_ydiaeresis)
            if (event.text() == lineFeed) {
                Q_EMIT doubleAction();
                return true;
            }
        return false;
    }
}

/// Where nothing is selected, the first arrow key selects the row at which the keys are, and moves nowhere.
bool ZELKLWCLogTableView::selectCurrentRow()
{
    const QModelIndex current = currentIndex();
    if (!current.isValid() || hasSelectedRows())
        return false;
    selectionModel()->select(current, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(current);
    return true;
}

void ZELKLWCLogTableView::moveToBeginningOfDocument()
{
    scrollToTop();
}

void ZELKLWCLogTableView::moveToEndOfDocument()
{
    scrollToBottom();
}

// MARK: rows

bool ZELKLWCLogTableView::hasSelectedRows() const
{
    return selectionModel() && selectionModel()->hasSelection();
}

ZELKRowRanges ZELKLWCLogTableView::selectedRows() const
{
    ZELKRowRanges rows;
    if (!selectionModel())
        return rows;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        if (range.isValid())
            rows.push_back({range.top(), range.bottom()});
    std::sort(rows.begin(), rows.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    ZELKRowRanges joined;
    for (const ZELKRowRange &range : rows) {
        if (!joined.empty() && range.first <= joined.back().last + 1)
            joined.back().last = std::max(joined.back().last, range.last);
        else
            joined.push_back(range);
    }
    return joined;
}

// MARK: dragging

Qt::DropActions ZELKLWCLogTableView::draggingSourceOperationMaskForLocal(bool isLocal) const
{
    if (isLocal && model())
        return model()->supportedDragActions();
    return Qt::CopyAction;
}

void ZELKLWCLogTableView::mousePressEvent(QMouseEvent *event)
{
    m_pressedAt = event->position().toPoint();
    m_isMotionUndecided = event->button() == Qt::LeftButton;
    setDragEnabled(true);
    ZELKUniformTableView::mousePressEvent(event);
}

/// Only a motion along the row takes rows with it; one across rows selects them.
void ZELKLWCLogTableView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isMotionUndecided && event->buttons().testFlag(Qt::LeftButton)) {
        const QPoint way = event->position().toPoint() - m_pressedAt;
        if (way.manhattanLength() < QApplication::startDragDistance())
            return;
        m_isMotionUndecided = false;
        setDragEnabled(std::abs(way.x()) > std::abs(way.y()));
        ZELKUniformTableView::mouseMoveEvent(event); // says that this is a drag; the next one begins it
    }
    ZELKUniformTableView::mouseMoveEvent(event);
}

void ZELKLWCLogTableView::mouseReleaseEvent(QMouseEvent *event)
{
    m_isMotionUndecided = false;
    ZELKUniformTableView::mouseReleaseEvent(event);
    setDragEnabled(true);
}

void ZELKLWCLogTableView::startDrag(Qt::DropActions)
{
    zelkGuard([this] {
        auto pasteboard = std::make_unique<QMimeData>();
        if (!m_delegate || !m_delegate->tableViewWriteRowsToPasteboard(selectedRows(), *pasteboard))
            return;
        auto *drag = new QDrag(this); // goes by itself once it has ended
        drag->setMimeData(pasteboard.release());
        const int top = visualRect(indexAt(m_pressedAt)).top();
        drag->setPixmap(viewport()->grab({0, top, viewport()->width(), uniformRowHeight()}));
        drag->setHotSpot(m_pressedAt - QPoint(0, top));
        m_dragRunner(*drag, draggingSourceOperationMaskForLocal(false));
    });
}
