#include "ZELKAgentPorts.h"

#include "ZELKBusAgentLookup.h"
#include "ZELKPolkitAuthorization.h"
#include "ZELKSessionWorkspace.h"
#include "ZELKSystemdServiceManagement.h"

#include <QStandardPaths>

ZELKAgentFolders ZELKAgentFolders::ofUser()
{
    return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
            QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)};
}

ZELKAgentPorts ZELKAgentPorts::onBuses(const QDBusConnection &systemBus, const QDBusConnection &sessionBus)
{
    return {std::make_shared<ZELKSystemdServiceManagement>(systemBus, sessionBus),
            std::make_shared<ZELKSessionWorkspace>(),
            std::make_shared<ZELKBusAgentLookup>(QList{systemBus, sessionBus}),
            {},
            std::make_shared<ZELKPolkitAuthorization>(systemBus)};
}
