#include "ZELKAgentPorts.h"

#include "ZELKBusAgentLookup.h"
#include "ZELKSessionWorkspace.h"
#include "ZELKSystemdServiceManagement.h"

ZELKAgentPorts ZELKAgentPorts::onBuses(const QDBusConnection &systemBus, const QDBusConnection &sessionBus)
{
    return {std::make_shared<ZELKSystemdServiceManagement>(systemBus, sessionBus),
            std::make_shared<ZELKSessionWorkspace>(),
            std::make_shared<ZELKBusAgentLookup>(QList{systemBus, sessionBus})};
}
