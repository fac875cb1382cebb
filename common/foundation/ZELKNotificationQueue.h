#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

/// Notifications posted when the event loop is idle, coalesced on their name: a burst becomes one delivery.
class ZELKNotificationQueue : public QObject
{
    Q_OBJECT

public:
    explicit ZELKNotificationQueue(QObject *parent = nullptr)
        : QObject(parent)
    {
    }

    /// Delivers `name` once the loop is idle; does nothing when it is already waiting.
    void enqueue(const QString &name);
    /// Takes back what waits under `name`.
    void dequeue(const QString &name);

Q_SIGNALS:
    void posted(const QString &name);

private:
    void deliver(const QString &name);

    QHash<QString, class QTimer *> m_waiting;
};
