#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariantMap>

#include <functional>

/// A UPower that says what a test wants, on a connection of its own.
class FakeUPower : public QDBusVirtualObject
{
public:
    FakeUPower()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("upower")))
    {
        m_bus.registerVirtualObject(daemonPath(), this, QDBusConnection::SubPath);
    }
    ~FakeUPower() override { QDBusConnection::disconnectFromBus(QStringLiteral("upower")); }

    QMap<QString, QVariantMap> devices; ///< by object path
    bool answersNonsense = false;
    /// What it does when it is asked to look again; a version that can not be asked has none.
    std::function<void(const QString &)> refresh;
    QStringList asked; ///< "MEMBER PATH" of every call

    bool come() { return m_bus.registerService(QStringLiteral("org.freedesktop.UPower")); }
    void leave() { m_bus.unregisterService(QStringLiteral("org.freedesktop.UPower")); }
    /// Tells of `changes`, and of `unsaid` that they changed.
    void change(const QString &path, const QVariantMap &changes, const QStringList &unsaid = {})
    {
        devices[path].insert(changes);
        QDBusMessage signal = QDBusMessage::createSignal(
            path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
        signal << QStringLiteral("org.freedesktop.UPower.Device") << changes << unsaid;
        m_bus.send(signal);
    }
    void remove(const QString &path)
    {
        devices.remove(path);
        QDBusMessage signal = QDBusMessage::createSignal(
            daemonPath(), QStringLiteral("org.freedesktop.UPower"), QStringLiteral("DeviceRemoved"));
        signal << QVariant::fromValue(QDBusObjectPath(path));
        m_bus.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        asked.append(message.member() + QLatin1Char(' ') + message.path());
        if (message.member() == QLatin1String("EnumerateDevices"))
            return bus.send(message.createReply(answersNonsense ? QVariant(7) : paths()));
        if (message.member() == QLatin1String("GetAll"))
            return bus.send(message.createReply(devices.value(message.path())));
        if (message.member() != QLatin1String("Refresh") || !refresh)
            return false;
        refresh(message.path());
        return bus.send(message.createReply());
    }

private:
    static QString daemonPath() { return QStringLiteral("/org/freedesktop/UPower"); }
    QVariant paths() const
    {
        QList<QDBusObjectPath> list;
        for (const QString &path : devices.keys())
            list.append(QDBusObjectPath(path));
        return QVariant::fromValue(list);
    }

    QDBusConnection m_bus;
};
