#pragma once

#include "ZELKAgentConnection.h"
#include "ZELKAgentFolders.h"
#include "ZELKAuthorization.h"
#include "ZELKServiceManagement.h"
#include "ZELKWorkspace.h"

#include <QDBusConnection>
#include <QStringList>

#include <memory>

/// The world as the agent controller sees it. The first three may not be null.
struct ZELKAgentPorts
{
    std::shared_ptr<ZELKServiceManagement> serviceManagement;
    std::shared_ptr<ZELKWorkspace> workspace;
    std::shared_ptr<ZELKAgentLookup> lookup;
    /// What an agent that is launched into the session gets on its command line.
    QStringList agentArguments = {};
    /// Null where nobody gives authorizations.
    std::shared_ptr<ZELKAuthorizationService> authorization = {};
    ZELKAgentFolders folders = ZELKAgentFolders::ofUser();

    /// systemd, polkit, /proc and D-Bus over these buses; a bus that is not connected has no jobs and no
    /// services.
    static ZELKAgentPorts onBuses(const QDBusConnection &systemBus, const QDBusConnection &sessionBus);
};
