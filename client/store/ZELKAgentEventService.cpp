#include "ZELKAgentEventService.h"

#include "ZELKAssertion.h"
#include "ZELKServiceNames.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

class LookUp : public QObject
{
public:
    LookUp(const QList<QDBusConnection> &buses, const QString &agentName, int limit,
           ZELKAgentEventService::Found found)
        : m_buses(buses)
        , m_agentName(agentName)
        , m_limit(limit)
        , m_found(std::move(found))
    {
        askNext();
    }

private:
    void askNext()
    {
        while (!m_buses.isEmpty()) {
            const QDBusConnection bus = m_buses.takeFirst();
            if (bus.isConnected())
                return ask(bus);
        }
        m_found(nullptr);
    }

    void ask(const QDBusConnection &bus)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
        call << m_agentName;
        auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, m_limit), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [this, bus](QDBusPendingCallWatcher *finished) {
                    finished->deleteLater();
                    zelkGuard([&] { take(bus, *finished); });
                });
    }

    void take(const QDBusConnection &bus, const QDBusPendingReply<QString> &owner)
    {
        if (owner.isError())
            askNext();
        else
            m_found(std::make_unique<ZELKAgentEventService>(bus, owner.value(), m_limit));
    }

    QList<QDBusConnection> m_buses; // not yet asked
    QString m_agentName;
    int m_limit;
    ZELKAgentEventService::Found m_found;
};

} // namespace

ZELKAgentEventService::ZELKAgentEventService(const QDBusConnection &bus, const QString &owner, int limit)
    : m_bus(bus)
    , m_owner(owner)
    , m_limit(limit)
{
}

std::unique_ptr<QObject> ZELKAgentEventService::lookUp(const QList<QDBusConnection> &buses,
                                                       const QString &agentName, int limit,
                                                       const Found &found)
{
    return std::make_unique<LookUp>(buses, agentName, limit, found);
}

void ZELKAgentEventService::registerForEventUpdates(const QString &serviceName)
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_owner, ZELKServiceNames::eventServicePath(),
                                                       ZELKServiceNames::eventServiceInterface(),
                                                       QStringLiteral("registerForEventUpdates"));
    call.setAutoStartService(false);
    call << serviceName;
    m_bus.call(call, QDBus::NoBlock);
}

void ZELKAgentEventService::sortedEventsFromDate(ZELKDate from, ZELKDate to, const Answer &answer)
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_owner, ZELKServiceNames::eventServicePath(),
                                                       ZELKServiceNames::eventServiceInterface(),
                                                       QStringLiteral("sortedEventsFromDate"));
    call.setAutoStartService(false);
    call << from.timeIntervalSinceReferenceDate() << to.timeIntervalSinceReferenceDate();
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, m_limit), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [answer](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        zelkGuard([&] { deliver(*finished, answer); });
    });
}

void ZELKAgentEventService::deliver(const QDBusPendingCallWatcher &call, const Answer &answer)
{
    const QDBusPendingReply<QDBusUnixFileDescriptor> reply = call;
    if (reply.isError())
        answer({}, reply.error().message());
    else
        answer(reply.value(), {});
}
