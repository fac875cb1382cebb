#include "ZELKLogind.h"

#include "ZELKAssertion.h"
#include "ZELKBusCall.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"

#include <QDBusArgument>
#include <QVariantMap>

#include <utility>

namespace {

constexpr QLatin1String service("org.freedesktop.login1");
constexpr QLatin1String managerPath("/org/freedesktop/login1");
constexpr QLatin1String managerInterface("org.freedesktop.login1.Manager");
constexpr QLatin1String idleHint("IdleHint");

QDBusMessage managerCall(const char *method)
{
    return QDBusMessage::createMethodCall(service, managerPath, managerInterface,
                                          QString::fromLatin1(method));
}

/// Microseconds since 1970; 0 says that nobody knows.
std::optional<ZELKDate> idleSince(const QVariantMap &properties)
{
    const qulonglong microseconds = properties.value(QStringLiteral("IdleSinceHint")).toULongLong();
    if (microseconds == 0)
        return std::nullopt;
    return ZELKDate::fromSecondsSince1970(double(microseconds) / 1e6);
}

} // namespace

ZELKLogind::ZELKLogind(const QDBusConnection &systemBus, QObject *parent)
    : QObject(parent)
    , m_bus(systemBus)
    , m_service(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange)
    , m_sleepLock(m_bus, QStringLiteral("sleep"))
    , m_shutdownLock(m_bus, QStringLiteral("shutdown"))
{
    connect(&m_service, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                zelkGuard([&] { setThere(!owner.isEmpty()); });
            });
}

void ZELKLogind::start()
{
    if (m_running)
        return;
    m_running = true;
    connectSignals(true);
    ZELKBusCall::askForOwner(m_bus, service, this, [this](bool isThere) { setThere(isThere); });
}

void ZELKLogind::stop()
{
    if (!m_running)
        return;
    m_running = m_isThere = false;
    connectSignals(false);
    releaseLocks();
}

void ZELKLogind::setBus(const QDBusConnection &systemBus)
{
    const bool runs = std::exchange(m_running, false);
    if (runs)
        connectSignals(false);
    m_isThere = false;
    m_bus = systemBus;
    m_service.setConnection(systemBus);
    m_sleepLock.setBus(systemBus);
    m_shutdownLock.setBus(systemBus);
    if (runs)
        start();
}

void ZELKLogind::connectSignals(bool connects)
{
    const auto follow = [&](const QString &interface, const char *signal, const char *slot) {
        const QString name = QString::fromLatin1(signal);
        if (connects)
            m_bus.connect(service, managerPath, interface, name, this, slot);
        else
            m_bus.disconnect(service, managerPath, interface, name, this, slot);
    };
    follow(managerInterface, "PrepareForSleep", SLOT(didPrepareForSleep(bool)));
    follow(managerInterface, "PrepareForShutdown", SLOT(didPrepareForShutdown(bool)));
    follow(managerInterface, "PrepareForShutdownWithMetadata",
           SLOT(didPrepareForShutdownWithMetadata(bool, QVariantMap)));
    follow(QStringLiteral("org.freedesktop.DBus.Properties"), "PropertiesChanged",
           SLOT(propertiesDidChange(QString, QVariantMap, QStringList)));
}

/// The locks of one that left are kept until its successor's are there: logind restarted by an upgrade takes
/// the old locks over.
void ZELKLogind::setThere(bool isThere)
{
    m_isThere = isThere && m_running;
    m_sleepLock.forget();
    m_shutdownLock.forget();
    if (m_isThere)
        Q_EMIT arrived();
}

void ZELKLogind::didPrepareForSleep(bool begins)
{
    zelkGuard([&] { Q_EMIT preparesForSleep(begins); });
}

void ZELKLogind::didPrepareForShutdown(bool begins)
{
    zelkGuard([&] { Q_EMIT preparesForShutdown(begins, std::exchange(m_shutdownKind, std::nullopt)); });
}

void ZELKLogind::didPrepareForShutdownWithMetadata(bool, const QVariantMap &metadata)
{
    zelkGuard([&] {
        const QString type = metadata.value(QStringLiteral("type")).toString();
        m_shutdownKind = ZELKShutdownKindOfTarget(type + QLatin1String(".target"));
    });
}

void ZELKLogind::propertiesDidChange(const QString &interface, const QVariantMap &changed,
                                     const QStringList &invalidated)
{
    zelkGuard([&] {
        if (interface == managerInterface && (changed.contains(idleHint) || invalidated.contains(idleHint)))
            Q_EMIT idleHintChanged();
        else
            Q_EMIT somethingChanged();
    });
}

void ZELKLogind::takeLocks()
{
    if (!m_isThere)
        return;
    m_sleepLock.take();
    m_shutdownLock.take();
}

void ZELKLogind::releaseLocks()
{
    m_sleepLock.release();
    m_shutdownLock.release();
}

bool ZELKLogind::holdsLocks() const
{
    const auto settled = [](const ZELKDelayLock &lock) { return lock.isHeld() || lock.isDenied(); };
    return settled(m_sleepLock) && settled(m_shutdownLock) &&
           (m_sleepLock.isHeld() || m_shutdownLock.isHeld());
}

/// While somebody blocks idleness, logind's own hint says that nothing idles; then the seat is asked, which
/// looks at its sessions only.
void ZELKLogind::requestIdleHint(const IdleAnswer &answered)
{
    const QDBusMessage ask = ZELKBusCall::getAll(service, managerPath, managerInterface);
    ZELKBusCall::send(m_bus, ask, this, [this, answered](const QDBusMessage &answer) {
        const auto argument = ZELKBusCall::argument(answer, "a{sv}", service);
        if (!argument || !m_running)
            return;
        const auto properties = qdbus_cast<QVariantMap>(*argument);
        const QStringList blocked =
            properties.value(QStringLiteral("BlockInhibited")).toString().split(QLatin1Char(':'));
        const bool isIdle = properties.value(idleHint).toBool();
        if (!isIdle && blocked.contains(QLatin1String("idle")))
            requestSeatIdleHint(answered);
        else
            answered(isIdle, idleSince(properties));
    });
}

/// A computer without a seat has nobody who could idle at it.
void ZELKLogind::requestSeatIdleHint(const IdleAnswer &answered)
{
    const QDBusMessage ask =
        ZELKBusCall::getAll(service, QStringLiteral("/org/freedesktop/login1/seat/seat0"),
                            QStringLiteral("org.freedesktop.login1.Seat"));
    ZELKBusCall::send(m_bus, ask, this, [this, answered](const QDBusMessage &answer) {
        if (!m_running)
            return;
        QVariantMap properties;
        if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("a{sv}"))
            properties = qdbus_cast<QVariantMap>(answer.arguments().constFirst());
        answered(properties.value(idleHint).toBool(), idleSince(properties));
    });
}

void ZELKLogind::requestInhibitors(const std::function<void(const std::vector<ZELKInhibitor> &)> &answered)
{
    ZELKBusCall::send(m_bus, managerCall("ListInhibitors"), this,
                      [this, answered](const QDBusMessage &answer) {
                          const auto argument = ZELKBusCall::argument(answer, "a(ssssuu)", service);
                          if (!argument || !m_running)
                              return;
                          std::vector<ZELKInhibitor> inhibitors;
                          const auto list = argument->value<QDBusArgument>();
                          for (list.beginArray(); !list.atEnd();) {
                              ZELKInhibitor inhibitor;
                              quint32 user = 0;
                              list.beginStructure();
                              list >> inhibitor.what >> inhibitor.who >> inhibitor.why >> inhibitor.mode >>
                                  user >> inhibitor.pid;
                              list.endStructure();
                              inhibitors.push_back(inhibitor);
                          }
                          list.endArray();
                          answered(inhibitors);
                      });
}
