#pragma once

#include <QString>

/// Object paths and interfaces of the three services; their XML stands beside this file. The bus names are
/// made from the agent's name (Info.plist) and the main bundle's identifier.
namespace ZELKServiceNames {

/// Event service: bus name = the agent's name.
inline QString eventServicePath()
{
    return QStringLiteral("/org/zelk/lullwatch/agent");
}
inline QString eventServiceInterface()
{
    return QStringLiteral("org.zelk.lullwatch.ZELKLWAServiceProtocol");
}

/// Control service: bus name = the agent's name followed by "._service".
inline QString controlServiceName(const QString &agentName)
{
    return agentName + QStringLiteral("._service");
}
inline QString controlServicePath()
{
    return QStringLiteral("/org/zelk/lullwatch/agent/service");
}
inline QString controlServiceInterface()
{
    return QStringLiteral("org.zelk.ZELKAgentServiceProtocol");
}

/// The store's call-back service: bus name = the main bundle's identifier followed by "._store".
inline QString storeServiceName(const QString &bundleIdentifier)
{
    return bundleIdentifier + QStringLiteral("._store");
}
inline QString storeServicePath()
{
    return QStringLiteral("/org/zelk/lullwatch/store");
}
inline QString storeServiceInterface()
{
    return QStringLiteral("org.zelk.lullwatch.ZELKLWAUpdateProtocol");
}

/// Every remote call answers within this time or has failed.
inline constexpr int callTimeoutMilliseconds = 5000;

} // namespace ZELKServiceNames
