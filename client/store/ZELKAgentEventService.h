#pragma once

#include "ZELKDate.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QList>
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

    /// Called once, with null when nobody owns the agent's name on any of the buses.
    using Found = std::function<void(std::unique_ptr<ZELKAgentEventService> agent)>;

    /// Asks one bus after the other, at least one of them connected, who owns the agent's name; the first
    /// that knows an owner counts. Each bus has the limit, in milliseconds, for its answer. Never starts a
    /// program. What it returns is the question: nothing is found when it is destroyed first.
    static std::unique_ptr<QObject> lookUp(const QList<QDBusConnection> &buses, const QString &agentName,
                                           int limit, const Found &found);

    /// The owner is a connection's unique name: who takes the agent's name over later is not met here.
    ZELKAgentEventService(const QDBusConnection &bus, const QString &owner, int limit);

    bool isOn(const QDBusConnection &bus) const { return m_bus.name() == bus.name(); }

    /// One-way.
    void registerForEventUpdates(const QString &serviceName);
    /// Dates are inclusive. Not answered when this object is destroyed first.
    void sortedEventsFromDate(ZELKDate from, ZELKDate to, const Answer &answer);

private:
    static void deliver(const QDBusPendingCallWatcher &call, const Answer &answer);

    QDBusConnection m_bus;
    QString m_owner;
    int m_limit;
};
