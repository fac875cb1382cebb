#pragma once

#include <QObject>
#include <QPersistentModelIndex>

class QAbstractItemModel;
class QAbstractItemView;

/// Keeps the newest row of a list in view, as long as the user does not scroll away from it; then keeps what
/// the user is looking at in its place, whatever rows come and go. A list that is in no order of time has no
/// newest row.
class ZELKTailFollower : public QObject
{
    Q_OBJECT

public:
    enum class NewestEnd { Bottom, Top, None };

    /// `view` owns the follower, and is to be given its model after this: when its current row goes, it moves
    /// on to another one, and scrolls there before anybody behind it is asked.
    ZELKTailFollower(QAbstractItemView &view, const QAbstractItemModel &model);

    /// The bottom at first.
    void setNewestEnd(NewestEnd end);
    bool isAtTail() const { return m_atTail; }
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void rowsWillChange();
    void rowsDidChange();
    void settle();
    bool isAtNewestEnd() const;
    void moveToTail();
    void moveCurrentToTail();

    QAbstractItemView &m_view;
    NewestEnd m_newestEnd = NewestEnd::Bottom;
    bool m_atTail = true;
    bool m_changing = false;
    QPersistentModelIndex m_top;
};
