#include "ZELKSystemdManager.h"

#include "ZELKBusNames.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QStringList>
#include <QThread>

namespace {

constexpr unsigned long millisecondsBetweenLooks = 20;

QString managerName()
{
    return QStringLiteral("org.freedesktop.systemd1");
}

QString managerPath()
{
    return QStringLiteral("/org/freedesktop/systemd1");
}

QString propertiesInterface()
{
    return QStringLiteral("org.freedesktop.DBus.Properties");
}

QDBusMessage call(const QString &path, const QString &interface, const QString &method)
{
    QDBusMessage message = QDBusMessage::createMethodCall(managerName(), path, interface, method);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage managerCall(const QString &method)
{
    return call(managerPath(), QStringLiteral("org.freedesktop.systemd1.Manager"), method);
}

bool isError(const QDBusMessage &reply, const char *name)
{
    return reply.type() == QDBusMessage::ErrorMessage && reply.errorName() == QLatin1String(name);
}

} // namespace

ZELKSystemdManager::ZELKSystemdManager(const QDBusConnection &bus, int timeoutMilliseconds)
    : m_bus(bus)
    , m_timeout(timeoutMilliseconds)
{
}

bool ZELKSystemdManager::isThere() const
{
    return ZELKBusNames::hasOwner(m_bus, managerName(), m_timeout);
}

QVariantMap ZELKSystemdManager::unitProperties(const QString &unit) const
{
    QDBusMessage load = managerCall(QStringLiteral("LoadUnit"));
    load << unit;
    const QDBusReply<QDBusObjectPath> loaded = m_bus.call(load, QDBus::Block, m_timeout);
    if (!loaded.isValid())
        return {};
    QDBusMessage get = call(loaded.value().path(), propertiesInterface(), QStringLiteral("GetAll"));
    get << QStringLiteral("org.freedesktop.systemd1.Unit");
    const QDBusReply<QVariantMap> properties = m_bus.call(get, QDBus::Block, m_timeout);
    return properties.isValid() ? properties.value() : QVariantMap();
}

QStringList ZELKSystemdManager::unitFolders() const
{
    QDBusMessage get = call(managerPath(), propertiesInterface(), QStringLiteral("Get"));
    get << QStringLiteral("org.freedesktop.systemd1.Manager") << QStringLiteral("UnitPath");
    const QDBusReply<QDBusVariant> folders = m_bus.call(get, QDBus::Block, m_timeout);
    return folders.isValid() ? folders.value().variant().toStringList() : QStringList();
}

std::optional<QString> ZELKSystemdManager::change(const QString &method, const QVariantList &arguments) const
{
    QDBusMessage message = managerCall(method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, m_timeout);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return std::nullopt;
    return method + QStringLiteral(": ") + reply.errorMessage();
}

std::optional<QString> ZELKSystemdManager::reload() const
{
    return change(QStringLiteral("Reload"), {});
}

std::optional<QString> ZELKSystemdManager::enable(const QString &unit) const
{
    return change(QStringLiteral("EnableUnitFiles"), {QStringList{unit}, false, true});
}

std::optional<QString> ZELKSystemdManager::disable(const QString &unit) const
{
    return change(QStringLiteral("DisableUnitFiles"), {QStringList{unit}, false});
}

std::optional<QString> ZELKSystemdManager::start(const QString &unit) const
{
    // One that failed too often would be refused; that there was none is no failure here.
    change(QStringLiteral("ResetFailedUnit"), {unit});
    if (const auto problem = runJob(QStringLiteral("StartUnit"), unit))
        return problem;
    const QString state = unitProperties(unit).value(QStringLiteral("ActiveState")).toString();
    // One that is to be started again after a failure is "activating" meanwhile.
    if (state != QLatin1String("active"))
        return QStringLiteral("%1 did not start (%2); see: journalctl -u %1").arg(unit, state);
    return std::nullopt;
}

std::optional<QString> ZELKSystemdManager::stop(const QString &unit) const
{
    return runJob(QStringLiteral("StopUnit"), unit);
}

std::optional<QString> ZELKSystemdManager::runJob(const QString &method, const QString &unit) const
{
    QDBusMessage message = managerCall(method);
    message << unit << QStringLiteral("replace");
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, m_timeout);
    if (isError(reply, "org.freedesktop.systemd1.NoSuchUnit") && method == QLatin1String("StopUnit"))
        return std::nullopt;
    const QDBusReply<QDBusObjectPath> job = reply;
    if (!job.isValid())
        return method + QStringLiteral(": ") + job.error().message();
    if (!waitForJob(job.value().path()))
        return method + QStringLiteral(": no end after %1 s").arg(millisecondsToSettle / 1000);
    return std::nullopt;
}

/// A job's object is there as long as the job is. The signal of its end would need an event loop, and with it
/// everything else would go on meanwhile.
bool ZELKSystemdManager::waitForJob(const QString &job) const
{
    QDBusMessage get = call(job, propertiesInterface(), QStringLiteral("Get"));
    get << QStringLiteral("org.freedesktop.systemd1.Job") << QStringLiteral("State");
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < millisecondsToSettle) {
        if (m_bus.call(get, QDBus::Block, m_timeout).type() != QDBusMessage::ReplyMessage)
            return true;
        QThread::msleep(millisecondsBetweenLooks);
    }
    return false;
}
