#include "ZELKNotificationQueue.h"

#include "ZELKAssertion.h"

#include <QTimer>

void ZELKNotificationQueue::enqueue(const QString &name)
{
    if (m_waiting.contains(name))
        return;
    auto *timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, name] { zelkGuard([&] { deliver(name); }); });
    m_waiting.insert(name, timer);
    timer->start(0);
}

void ZELKNotificationQueue::dequeue(const QString &name)
{
    if (QTimer *timer = m_waiting.take(name)) {
        timer->stop();
        timer->deleteLater();
    }
}

void ZELKNotificationQueue::deliver(const QString &name)
{
    dequeue(name);
    Q_EMIT posted(name);
}
