#pragma once

#include "ZELKRowRange.h"
#include "ZELKUniformTableView.h"

#include <QPoint>

#include <functional>

class QDrag;
class QMimeData;
class ZELKLWCLogTableView;

/// What a log table asks of whoever fills it.
class ZELKLWCLogTableViewDelegate
{
public:
    virtual ~ZELKLWCLogTableViewDelegate() = default;

    /// The cancel key was pressed.
    virtual void tableViewCancel(ZELKLWCLogTableView &view) = 0;
    /// Puts rows into `pasteboard`, in the order given. False when there is nothing to put there.
    virtual bool tableViewWriteRowsToPasteboard(const ZELKRowRanges &rows, QMimeData &pasteboard) = 0;
};

/// Marks a delegate that takes part in Copy.
class ZELKLWCLogTableViewCopy
{
public:
    virtual ~ZELKLWCLogTableViewCopy() = default;
};

/// The table of log entries: the keys that lists of documents have, dragging of rows, and Copy.
class ZELKLWCLogTableView : public ZELKUniformTableView
{
    Q_OBJECT

public:
    enum class MenuItem { Copy, Other };
    /// Carries a drag out; the usual one waits until it ends.
    using DragRunner = std::function<void(QDrag &drag, Qt::DropActions actions)>;

    explicit ZELKLWCLogTableView(QWidget *parent = nullptr);

    /// Not owned; may be null.
    ZELKLWCLogTableViewDelegate *tableDelegate() const { return m_delegate; }
    void setTableDelegate(ZELKLWCLogTableViewDelegate *delegate) { m_delegate = delegate; }
    void setDragRunner(const DragRunner &runner) { m_dragRunner = runner; }

    /// Whether rows are selected and the delegate takes part in Copy; other items are always valid.
    bool validateMenuItem(MenuItem item) const;
    /// Offers the selected rows to this view's own writer, which puts nothing anywhere: what is copied is the
    /// business of the menu, and of those who know the rows.
    void copy();
    static bool tableViewWriteRowsToPasteboard(const ZELKRowRanges &rows, QMimeData &pasteboard);
    void cancelOperation();
    void moveToBeginningOfDocument();
    void moveToEndOfDocument();
    /// Outside this program rows can only be copied.
    Qt::DropActions draggingSourceOperationMaskForLocal(bool isLocal) const;

    /// Rising, without overlap.
    ZELKRowRanges selectedRows() const;
    bool hasSelectedRows() const;

Q_SIGNALS:
    /// A double click on a row, Return or Enter.
    void doubleAction();
    /// Of the view or of the whole program.
    void fontChanged();

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void startDrag(Qt::DropActions actions) override;

private:
    bool keyDown(const QKeyEvent &event);
    bool selectCurrentRow();

    ZELKLWCLogTableViewDelegate *m_delegate = nullptr;
    DragRunner m_dragRunner;
    QPoint m_pressedAt;
    bool m_isMotionUndecided = false; // a button is down, and the pointer has hardly moved yet
};
