#pragma once

#include "ZELKServiceManagement.h"

#include "ZELKServiceNames.h"

#include <QDBusConnection>

/// Jobs as services of systemd: LABEL.service of the manager on the system bus or on the user's session bus.
class ZELKSystemdServiceManagement final : public ZELKServiceManagement
{
public:
    /// The time limit holds for each call; a look takes three.
    ZELKSystemdServiceManagement(const QDBusConnection &systemBus, const QDBusConnection &sessionBus,
                                 int timeoutMilliseconds = ZELKServiceNames::callTimeoutMilliseconds);

    /// A job is a service whose file is there and sound, or one that still runs after its file was removed.
    bool hasJob(const QString &label, ZELKServiceDomain domain) const override;

private:
    QDBusConnection m_systemBus;
    QDBusConnection m_sessionBus;
    int m_timeout;
};
