#include "ZELKSystemdServiceManagement.h"

#include "ZELKBusNames.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QVariantMap>

namespace {

QString managerName()
{
    return QStringLiteral("org.freedesktop.systemd1");
}

QDBusMessage managerCall(const QString &path, const QString &interface, const QString &method)
{
    QDBusMessage call = QDBusMessage::createMethodCall(managerName(), path, interface, method);
    call.setAutoStartService(false);
    return call;
}

/// Loads the unit, since one that is installed but idle need not be in the manager's memory. That succeeds
/// for any name, so the unit's properties decide.
QVariantMap unitProperties(const QDBusConnection &bus, const QString &unit, int timeout)
{
    QDBusMessage load =
        managerCall(QStringLiteral("/org/freedesktop/systemd1"),
                    QStringLiteral("org.freedesktop.systemd1.Manager"), QStringLiteral("LoadUnit"));
    load << unit;
    const QDBusReply<QDBusObjectPath> loaded = bus.call(load, QDBus::Block, timeout);
    if (!loaded.isValid())
        return {};
    QDBusMessage get = managerCall(loaded.value().path(), QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("GetAll"));
    get << QStringLiteral("org.freedesktop.systemd1.Unit");
    const QDBusReply<QVariantMap> properties = bus.call(get, QDBus::Block, timeout);
    return properties.isValid() ? properties.value() : QVariantMap();
}

} // namespace

ZELKSystemdServiceManagement::ZELKSystemdServiceManagement(const QDBusConnection &systemBus,
                                                           const QDBusConnection &sessionBus,
                                                           int timeoutMilliseconds)
    : m_systemBus(systemBus)
    , m_sessionBus(sessionBus)
    , m_timeout(timeoutMilliseconds)
{
}

bool ZELKSystemdServiceManagement::hasJob(const QString &label, ZELKServiceDomain domain) const
{
    const QDBusConnection &bus = domain == ZELKServiceDomain::System ? m_systemBus : m_sessionBus;
    if (!ZELKBusNames::hasOwner(bus, managerName(), m_timeout))
        return false;
    const QVariantMap properties = unitProperties(bus, label + QStringLiteral(".service"), m_timeout);
    const QString loadState = properties.value(QStringLiteral("LoadState")).toString();
    const QString activeState = properties.value(QStringLiteral("ActiveState")).toString();
    const bool runs = !activeState.isEmpty() && activeState != QLatin1String("inactive") &&
                      activeState != QLatin1String("failed");
    return loadState == QLatin1String("loaded") || runs;
}
