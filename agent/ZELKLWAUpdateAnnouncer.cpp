#include "ZELKLWAUpdateAnnouncer.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKServiceNames.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QRegularExpression>

namespace {

/// Before a name goes into a match rule.
bool isBusName(const QString &name)
{
    constexpr qsizetype longest = 255;
    static const QRegularExpression form(QStringLiteral("\\A(:[A-Za-z0-9_-]+(\\.[A-Za-z0-9_-]+)+|[A-Za-z_-]["
                                                        "A-Za-z0-9_-]*(\\.[A-Za-z_-][A-Za-z0-9_-]*)+)\\z"));
    return name.size() <= longest && form.match(name).hasMatch();
}

QDBusMessage ownerQuestion(const QString &name)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    question << name;
    return question;
}

} // namespace

ZELKLWAUpdateAnnouncer::ZELKLWAUpdateAnnouncer(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
    m_watcher.setConnection(m_bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &name, const QString &oldOwner) {
                zelkGuard([&] {
                    if (!oldOwner.isEmpty())
                        forget(name);
                });
            });
}

void ZELKLWAUpdateAnnouncer::add(const QString &serviceName, const QString &caller)
{
    if (!isBusName(serviceName)) {
        ZELKConsole::log(ZELKFormat("'%@' can not be told of events: it is no bus name.", {serviceName}));
        return;
    }
    if (m_callers.value(serviceName) == caller)
        return;
    if (m_asking.size() >= 2 * mostRegistrations || m_callers.values().count(caller) >= mostOfACaller) {
        ZELKConsole::log(ZELKFormat("'%@' can not be told of events: too many are.", {serviceName}));
        return;
    }
    // Watched before it is asked for, so that it can not leave unseen in between.
    for (const QString &name : {serviceName, caller}) {
        m_asking.append(name);
        m_watcher.addWatchedService(name);
    }
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(ownerQuestion(serviceName)), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this, serviceName, caller](QDBusPendingCallWatcher *it) {
                zelkGuard([&] {
                    it->deleteLater();
                    m_asking.removeOne(serviceName);
                    m_asking.removeOne(caller);
                    const QDBusPendingReply<QString> owner = *it;
                    if (owner.isValid() && owner.value() == caller)
                        addOwned(serviceName, caller);
                    else
                        ZELKConsole::log(ZELKFormat("'%@' can not be told of events: %@ does not own it.",
                                                    {serviceName, caller}));
                    unwatchUnused();
                });
            });
}

void ZELKLWAUpdateAnnouncer::addOwned(const QString &serviceName, const QString &caller)
{
    if (m_callers.size() >= mostRegistrations && !m_callers.contains(serviceName)) {
        ZELKConsole::log(ZELKFormat("'%@' can not be told of events: too many are.", {serviceName}));
        return;
    }
    m_callers.insert(serviceName, caller);
    Q_EMIT registrationsChanged();
}

void ZELKLWAUpdateAnnouncer::remove(const QString &serviceName, const QString &caller)
{
    if (m_callers.value(serviceName) != caller || !m_callers.remove(serviceName))
        return;
    unwatchUnused();
    Q_EMIT registrationsChanged();
}

void ZELKLWAUpdateAnnouncer::forget(const QString &name)
{
    const qsizetype before = m_callers.size();
    m_callers.removeIf([&](const auto &entry) { return entry.key() == name || entry.value() == name; });
    unwatchUnused();
    if (m_callers.size() != before)
        Q_EMIT registrationsChanged();
}

void ZELKLWAUpdateAnnouncer::unwatchUnused()
{
    const QStringList used = m_callers.keys() + m_callers.values() + m_asking;
    for (const QString &name : m_watcher.watchedServices())
        if (!used.contains(name))
            m_watcher.removeWatchedService(name);
}

bool ZELKLWAUpdateAnnouncer::eventsDidChange()
{
    for (auto entry = m_callers.begin(); entry != m_callers.end(); ++entry) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            entry.key(), ZELKServiceNames::storeServicePath(), ZELKServiceNames::storeServiceInterface(),
            QStringLiteral("eventsDidChange"));
        message.setAutoStartService(false);
        m_bus.send(message);
    }
    return !m_callers.isEmpty();
}
