#pragma once

#include <QDBusConnection>

using namespace Qt::StringLiterals;

/// A connection of the test's own, which ends with its scope as a process's do.
struct BusConnection
{
    explicit BusConnection(const QString &aName, QDBusConnection::BusType type = QDBusConnection::SessionBus)
        : name(aName)
        , bus(QDBusConnection::connectToBus(type, aName))
    {
    }
    ~BusConnection() { close(); }
    void close()
    {
        bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
    }

    QString name;
    QDBusConnection bus;
};
