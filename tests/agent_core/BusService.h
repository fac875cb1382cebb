#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

/// A service of the system on a bus that the test may end, on a connection of its own: answers whatever it is
/// asked, and keeps what that was.
class BusService : public QDBusVirtualObject
{
public:
    BusService(const QString &address, const QString &service, const QString &path)
        : m_path(path)
        , m_bus(QDBusConnection::connectToBus(address, service))
    {
        m_bus.registerVirtualObject(path, this);
        m_bus.registerService(service);
    }
    ~BusService() override { QDBusConnection::disconnectFromBus(m_bus.name()); }

    int asked(const char *method) const { return int(m_asked.count(QString::fromLatin1(method))); }
    void emitSignal(const QString &interface, const QString &name, const QVariantList &arguments)
    {
        QDBusMessage signal = QDBusMessage::createSignal(m_path, interface, name);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        m_asked.append(message.member());
        return bus.send(message.createReply(answerTo(message.member())));
    }

private:
    static QVariant answerTo(const QString &method)
    {
        if (method == u"EnumerateDevices"_s)
            return QVariant::fromValue(QList<QDBusObjectPath>());
        if (method != u"Inhibit"_s)
            return QVariantMap();
        QDBusUnixFileDescriptor lock;
        lock.giveFileDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        return QVariant::fromValue(lock);
    }

    QString m_path;
    QDBusConnection m_bus;
    QStringList m_asked;
};
