#include "ZELKBusNames.h"

#include <QDBusMessage>
#include <QDBusReply>

bool ZELKBusNames::hasOwner(const QDBusConnection &bus, const QString &name, int timeoutMilliseconds)
{
    if (!bus.isConnected())
        return false;
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    question << name;
    const QDBusReply<bool> reply = bus.call(question, QDBus::Block, timeoutMilliseconds);
    return reply.isValid() && reply.value();
}
