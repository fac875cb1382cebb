#include "ZELKTailFollower.h"

#include "ZELKAssertion.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QItemSelectionModel>
#include <QScrollBar>
#include <QTimer>

ZELKTailFollower::ZELKTailFollower(QAbstractItemView &view, const QAbstractItemModel &model)
    : QObject(&view)
    , m_view(view)
{
    const auto will = [this] { zelkGuard([this] { rowsWillChange(); }); };
    const auto did = [this] { zelkGuard([this] { rowsDidChange(); }); };
    connect(&model, &QAbstractItemModel::rowsAboutToBeInserted, this, will);
    connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved, this, will);
    connect(&model, &QAbstractItemModel::rowsInserted, this, did);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, did);
    connect(view.verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        zelkGuard([this] {
            if (!m_changing)
                m_atTail = isAtNewestEnd();
        });
    });
    view.viewport()->installEventFilter(this);
}

void ZELKTailFollower::setNewestEnd(NewestEnd end)
{
    m_newestEnd = end;
    m_atTail = isAtNewestEnd();
}

bool ZELKTailFollower::isAtNewestEnd() const
{
    const QScrollBar &bar = *m_view.verticalScrollBar();
    if (m_newestEnd == NewestEnd::None)
        return false;
    return m_newestEnd == NewestEnd::Top ? bar.value() <= bar.minimum() : bar.value() >= bar.maximum();
}

bool ZELKTailFollower::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && m_atTail)
        zelkGuard([this] { rowsDidChange(); });
    return QObject::eventFilter(watched, event);
}

void ZELKTailFollower::rowsWillChange()
{
    if (m_changing)
        return;
    m_changing = true;
    m_top = m_atTail ? QModelIndex() : m_view.indexAt({0, 0});
}

/// Rows come in bursts, and the view lays itself out after them: one look behind it all is enough.
void ZELKTailFollower::rowsDidChange()
{
    m_changing = true;
    QTimer::singleShot(0, this, [this] { zelkGuard([this] { settle(); }); });
}

void ZELKTailFollower::settle()
{
    if (!m_changing)
        return;
    if (m_top.isValid()) {
        m_view.scrollTo(m_top, QAbstractItemView::PositionAtTop);
    } else {
        moveToTail();
    }
    m_top = QModelIndex();
    m_changing = false;
}

void ZELKTailFollower::moveToTail()
{
    if (m_newestEnd == NewestEnd::None)
        return;
    moveCurrentToTail();
    if (m_newestEnd == NewestEnd::Top)
        m_view.scrollToTop();
    else
        m_view.scrollToBottom();
    m_atTail = true;
}

/// So that the arrow keys go on from what is seen. A selection is the user's and stays.
void ZELKTailFollower::moveCurrentToTail()
{
    QItemSelectionModel *selection = m_view.selectionModel();
    const int rows = m_view.model()->rowCount();
    if (rows > 0 && !selection->hasSelection())
        selection->setCurrentIndex(m_view.model()->index(m_newestEnd == NewestEnd::Top ? 0 : rows - 1, 0),
                                   QItemSelectionModel::NoUpdate);
}
