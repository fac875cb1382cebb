#include "ZELKAgentEventService.h"

#include "ZELKAssertion.h"
#include "ZELKServiceNames.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

QString ownerOf(const QDBusConnection &bus, const QString &name)
{
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(name))
        return {};
    return bus.interface()->serviceOwner(name);
}

} // namespace

ZELKAgentEventService::ZELKAgentEventService(const QDBusConnection &bus, const QString &agentName,
                                             const QString &owner, int limit)
    : m_bus(bus)
    , m_agentName(agentName)
    , m_owner(owner)
    , m_limit(limit)
{
}

std::unique_ptr<ZELKAgentEventService> ZELKAgentEventService::lookUp(const QDBusConnection &bus,
                                                                     const QString &agentName, int limit)
{
    const QString owner = ownerOf(bus, agentName);
    if (owner.isEmpty())
        return nullptr;
    return std::unique_ptr<ZELKAgentEventService>(new ZELKAgentEventService(bus, agentName, owner, limit));
}

bool ZELKAgentEventService::isValid() const
{
    return ownerOf(m_bus, m_agentName) == m_owner;
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
