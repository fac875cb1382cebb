#pragma once

#include "ZELKAgentConnection.h"

#include "ZELKServiceNames.h"

#include <QDBusConnection>
#include <QList>

/// Control services on D-Bus.
class ZELKBusAgentLookup final : public ZELKAgentLookup
{
public:
    /// The first bus with a service of the wanted name is the one that is asked; put the system bus first, as
    /// a job of the system goes before everything else.
    explicit ZELKBusAgentLookup(const QList<QDBusConnection> &buses,
                                int timeoutMilliseconds = ZELKServiceNames::callTimeoutMilliseconds);

    std::unique_ptr<ZELKAgentConnection> connectionWithServiceName(const QString &serviceName) override;

private:
    QList<QDBusConnection> m_buses;
    int m_timeout;
};
