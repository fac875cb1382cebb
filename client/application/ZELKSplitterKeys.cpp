#include "ZELKSplitterKeys.h"

#include "ZELKAssertion.h"

#include <QKeyEvent>
#include <QSplitter>

ZELKSplitterKeys::ZELKSplitterKeys(QSplitter &splitter, const QString &name)
    : QObject(&splitter)
    , m_splitter(splitter)
    , m_handle(splitter.handle(1))
{
    m_handle->setObjectName(splitter.objectName() + QStringLiteral("Handle"));
    m_handle->setAccessibleName(name);
    m_handle->setToolTip(name);
    m_handle->setFocusPolicy(Qt::TabFocus);
    m_handle->setBackgroundRole(QPalette::Highlight); // while it has the focus
    m_handle->installEventFilter(this);
}

bool ZELKSplitterKeys::eventFilter(QObject *watched, QEvent *event)
{
    bool isTaken = false;
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        m_handle->setAutoFillBackground(event->type() == QEvent::FocusIn);
        break;
    case QEvent::KeyPress:
        zelkGuard([&] { isTaken = move(static_cast<QKeyEvent *>(event)->key()); });
        break;
    default:
        break;
    }
    return isTaken || QObject::eventFilter(watched, event);
}

bool ZELKSplitterKeys::move(int key)
{
    if (key != Qt::Key_Up && key != Qt::Key_Down)
        return false;
    const int way = (key == Qt::Key_Down ? 1 : -1) * m_handle->fontMetrics().lineSpacing();
    QList<int> sizes = m_splitter.sizes();
    sizes[0] += way;
    sizes[1] -= way;
    m_splitter.setSizes(sizes); // as far as the parts give way
    return true;
}
