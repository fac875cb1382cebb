#include "ZELKServiceManagement.h"

#include "ZELKEnvironment.h"

#include <cerrno>

bool ZELKServiceManagement::isAvailable(ZELKServiceDomain) const
{
    return false;
}

std::optional<ZELKAgentError> ZELKServiceManagement::submitJob(const ZELKDictionary &, ZELKServiceDomain,
                                                               const ZELKAuthorization &)
{
    return unavailable();
}

std::optional<ZELKAgentError> ZELKServiceManagement::removeJob(const QString &, ZELKServiceDomain,
                                                               const ZELKAuthorization &)
{
    return unavailable();
}

std::optional<ZELKAgentError> ZELKServiceManagement::purgeJob(const QString &, ZELKServiceDomain,
                                                              const ZELKAuthorization &)
{
    return unavailable();
}

std::optional<ZELKAgentError> ZELKServiceManagement::blessJob(const QString &, ZELKServiceDomain,
                                                              const ZELKAuthorization &)
{
    return unavailable();
}

ZELKAgentError ZELKServiceManagement::unavailable()
{
    const QString table = ZELKAgentError::controllerDomain();
    const QString key = table + QStringLiteral(".systemd.absent");
    return {QStringLiteral("ZELKServiceManagement"), ENOTSUP,
            ZELKEnvironment::current().mainBundle->localizedStringForKey(key, QString(), table)};
}
