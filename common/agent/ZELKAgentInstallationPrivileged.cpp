// The agent as a job of the system.
#include "ZELKAgentConfiguration.h"
#include "ZELKAgentInstallation.h"
#include "ZELKConsole.h"
#include "ZELKPolkit.h"

using namespace ZELKAgentConfiguration;

namespace {

constexpr unsigned toAskForIt =
    ZELKAuthorizationService::InteractionAllowed | ZELKAuthorizationService::ExtendRights;

bool fail(ZELKAgentError *error, ZELKAgentError::Code code, const QString &underlying = {})
{
    if (error)
        *error = ZELKAgentError::withCode(code, underlying);
    return false;
}

} // namespace

QString ZELKAgentInstallation::blessRight()
{
    return ZELKPolkit::blessAction();
}

QString ZELKAgentInstallation::modifyRight()
{
    return ZELKPolkit::modifyAction();
}

std::optional<ZELKAuthorization>
ZELKAgentInstallation::authorizationForRight(const QString &aRight, unsigned flags, QString *reason) const
{
    require(!aRight.isNull(), "aRight");
    const ZELKAuthorization made =
        m_ports.authorization ? m_ports.authorization->authorization() : ZELKAuthorization();
    if (made.isNull())
        return std::nullopt;
    const auto refusal = m_ports.authorization->obtainRight(made, aRight, flags);
    if (!refusal)
        return made;
    if (reason)
        *reason = refusal->fullText();
    return std::nullopt;
}

QByteArray ZELKAgentInstallation::dataWithAuthorization(const ZELKAuthorization &anAuthorization) const
{
    require(!anAuthorization.isNull(), "anAuthorization");
    int status = 0;
    const QByteArray data = m_ports.authorization->externalForm(anAuthorization, &status);
    if (data.isEmpty())
        ZELKConsole::log(ZELKFormat("%@ external form failed: %d", {className(), status}));
    return data;
}

bool ZELKAgentInstallation::startPrivilegedWithError(ZELKAgentError *error)
{
    const QString name = agentName();
    std::optional<ZELKAuthorization> authorization = ZELKAuthorization();
    QString reason;
    // A password is not asked for when it leads nowhere: what there is tells so itself.
    if (isAvailable(ZELKServiceDomain::System))
        authorization = authorizationForRight(blessRight(), toAskForIt, &reason);
    if (!authorization)
        return fail(error, ZELKAgentError::BlessRightRefused, reason);
    if (const auto failure =
            m_ports.serviceManagement->blessJob(name, ZELKServiceDomain::System, *authorization))
        return fail(error, ZELKAgentError::BlessFailed, failure->fullText());
    return true;
}

bool ZELKAgentInstallation::stopPrivilegedWithError(ZELKAgentError *error)
{
    QString reason;
    const auto authorization = authorizationForRight(modifyRight(), toAskForIt, &reason);
    if (!authorization)
        return fail(error, ZELKAgentError::ModifyRightRefused, reason);
    const auto problem = removeAgentFiles(*authorization);
    if (problem && error)
        *error = *problem;
    // Files that stay do not keep the job from going.
    if (problem && problem->code() != ZELKAgentError::FilesNotRemoved)
        return false;
    if (const auto failure =
            m_ports.serviceManagement->removeJob(agentName(), ZELKServiceDomain::System, *authorization))
        return fail(error, ZELKAgentError::SystemJobNotRemoved, failure->fullText());
    return true;
}

std::optional<ZELKAgentError>
ZELKAgentInstallation::removeAgentFiles(const ZELKAuthorization &authorization) const
{
    const QByteArray data = dataWithAuthorization(authorization);
    if (data.isEmpty())
        return ZELKAgentError::withCode(ZELKAgentError::NoExternalForm);
    const auto connection = agentConnectionWithName(agentName());
    if (!connection)
        return ZELKAgentError::withCode(ZELKAgentError::ServiceNotReached);
    QString reason;
    const std::optional<bool> answer = connection->removeAgentFiles(data, &reason);
    if (!answer)
        return ZELKAgentError::withCode(ZELKAgentError::ServiceNotReached, reason);
    return *answer ? std::nullopt : std::optional(ZELKAgentError::withCode(ZELKAgentError::FilesNotRemoved));
}

bool ZELKAgentInstallation::purgePrivilegedWithError(ZELKAgentError *error)
{
    QString reason;
    const auto authorization = authorizationForRight(modifyRight(), toAskForIt, &reason);
    if (!authorization)
        return fail(error, ZELKAgentError::ModifyRightRefused, reason);
    if (const auto failure =
            m_ports.serviceManagement->purgeJob(agentName(), ZELKServiceDomain::System, *authorization))
        return fail(error, ZELKAgentError::SystemJobNotRemoved, failure->fullText());
    return true;
}
