#pragma once

#include "BusConnection.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QMap>
#include <QString>
#include <QVariantMap>

#include <functional>

using namespace Qt::StringLiterals;

/// A UPower that says what a test wants, on a connection of its own.
class FakeUPower : public QDBusVirtualObject
{
public:
    FakeUPower() { m_bus.registerVirtualObject(daemonPath(), this, QDBusConnection::SubPath); }

    QMap<QString, QVariantMap> devices; ///< by object path
    bool answersNonsense = false;
    /// What it does when it is asked to look again; a version that can not be asked has none.
    std::function<void(const QString &)> refresh;

    bool come() { return m_bus.registerService(u"org.freedesktop.UPower"_s); }
    void leave() { m_bus.unregisterService(u"org.freedesktop.UPower"_s); }
    /// Tells of `changes`, and of `unsaid` that they changed.
    void change(const QString &path, const QVariantMap &changes, const QStringList &unsaid = {})
    {
        devices[path].insert(changes);
        tell(path, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
             {u"org.freedesktop.UPower.Device"_s, changes, unsaid});
    }
    void remove(const QString &path)
    {
        devices.remove(path);
        tell(daemonPath(), u"org.freedesktop.UPower"_s, u"DeviceRemoved"_s,
             {QVariant::fromValue(QDBusObjectPath(path))});
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        if (message.member() == "EnumerateDevices"_L1)
            return bus.send(message.createReply(answersNonsense ? QVariant(7) : paths()));
        if (message.member() == "GetAll"_L1)
            return bus.send(message.createReply(devices.value(message.path())));
        if (message.member() != "Refresh"_L1 || !refresh)
            return false;
        refresh(message.path());
        return bus.send(message.createReply());
    }

private:
    static QString daemonPath() { return u"/org/freedesktop/UPower"_s; }
    void tell(const QString &path, const QString &interface, const QString &name, const QVariantList &words)
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(words);
        m_bus.send(signal);
    }
    QVariant paths() const
    {
        QList<QDBusObjectPath> list;
        for (const QString &path : devices.keys())
            list.append(QDBusObjectPath(path));
        return QVariant::fromValue(list);
    }

    BusConnection m_connection{u"upower"_s, QDBusConnection::SystemBus};
    QDBusConnection &m_bus = m_connection.bus;
};
