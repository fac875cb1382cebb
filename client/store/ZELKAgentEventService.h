#pragma once

#include "ZELKDate.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QDBusPendingCallWatcher;

/// The store's client connection to the event service of a running agent. Calls never block: what answers
/// does so within the limit or has failed.
class ZELKAgentEventService : public QObject
{
public:
    /// Called once with the descriptor, or with an invalid one and the reason.
    using Answer = std::function<void(QDBusUnixFileDescriptor events, const QString &error)>;

    /// Null when nobody owns the agent's name on the bus; never starts a program. The limit is in
    /// milliseconds.
    static std::unique_ptr<ZELKAgentEventService> lookUp(const QDBusConnection &bus, const QString &agentName,
                                                         int limit);

    /// The name is still owned by the one it was when this was looked up.
    bool isValid() const;

    bool isOn(const QDBusConnection &bus) const { return m_bus.name() == bus.name(); }

    /// One-way.
    void registerForEventUpdates(const QString &serviceName);
    /// Dates are inclusive. Not answered when this object is destroyed first.
    void sortedEventsFromDate(ZELKDate from, ZELKDate to, const Answer &answer);

private:
    ZELKAgentEventService(const QDBusConnection &bus, const QString &agentName, const QString &owner,
                          int limit);
    static void deliver(const QDBusPendingCallWatcher &call, const Answer &answer);

    QDBusConnection m_bus;
    QString m_agentName;
    QString m_owner;
    int m_limit;
};
