#include "ZELKAgentInstallation.h"

#include "ZELKAgentConfiguration.h"
#include "ZELKConsole.h"
#include "ZELKServiceNames.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace ZELKAgentConfiguration;

namespace {

bool failed(const std::optional<ZELKAgentError> &failure, ZELKAgentError *error)
{
    if (failure && error)
        *error = *failure;
    return failure.has_value();
}

} // namespace

ZELKAgentInstallation::ZELKAgentInstallation(const ZELKAgentPorts &ports, const QString &agentName)
    : m_ports(ports)
    , m_agentName(agentName)
{
}

QString ZELKAgentInstallation::agentName() const
{
    if (m_agentName.isEmpty())
        m_agentName = infoString(QStringLiteral("ZELKAgentControllerAgentName"));
    return m_agentName;
}

// Probes

bool ZELKAgentInstallation::isLaunchdJobForAgentName(const QString &anAgentName,
                                                     ZELKServiceDomain domain) const
{
    require(!anAgentName.isNull(), "anAgentName");
    return m_ports.serviceManagement->hasJob(anAgentName, domain);
}

bool ZELKAgentInstallation::isAgentRunningInUserSessionWithName(const QString &anAgentName) const
{
    require(!anAgentName.isNull(), "anAgentName");
    return !m_ports.workspace->runningApplicationsWithBundleIdentifier(anAgentName).empty();
}

std::unique_ptr<ZELKAgentConnection>
ZELKAgentInstallation::agentConnectionWithName(const QString &anAgentName) const
{
    require(!anAgentName.isNull(), "anAgentName");
    return m_ports.lookup->connectionWithServiceName(ZELKServiceNames::controlServiceName(anAgentName));
}

bool ZELKAgentInstallation::isAvailable(ZELKServiceDomain domain) const
{
    return m_ports.serviceManagement->isAvailable(domain);
}

// The session's form

bool ZELKAgentInstallation::runAgentWithError(ZELKAgentError *error)
{
    registerEmbeddedAgentWithLaunchServices();
    const QUrl agent = embeddedAgentURL();
    const QString identifier = ZELKBundle(agent.toLocalFile()).bundleIdentifier();
    auto failure =
        m_ports.workspace->launchApplicationWithBundleIdentifier(identifier, m_ports.agentArguments);
    if (failure)
        failure = m_ports.workspace->launchApplicationAtURL(agent, m_ports.agentArguments);
    return !failed(failure, error);
}

bool ZELKAgentInstallation::stopAgentWithError(ZELKAgentError *error)
{
    std::optional<ZELKAgentError> failure;
    const auto instances = m_ports.workspace->runningApplicationsWithBundleIdentifier(agentName());
    if (instances.size() != 1)
        failure = ZELKAgentError::withCode(ZELKAgentError::InstanceCountIsNotOne);
    else if (!m_ports.workspace->terminate(instances.front()))
        failure = ZELKAgentError::withCode(ZELKAgentError::InstanceRefusedToTerminate);
    return !failed(failure, error);
}

// The embedded agent

QUrl ZELKAgentInstallation::embeddedAgentURL() const
{
    const QString folder = infoString(QStringLiteral("ZELKAgentControllerAgentFolder"));
    return QUrl::fromLocalFile(mainBundle().path() + QLatin1Char('/') + folder + QLatin1Char('/') +
                               agentName() + QStringLiteral(".app"));
}

void ZELKAgentInstallation::registerEmbeddedAgentWithLaunchServices()
{
    const QUrl agent = embeddedAgentURL();
    if (const int status = m_ports.workspace->registerBundle(agent))
        ZELKConsole::log(
            ZELKFormat("Helper agent URL registration failed: %ld with URL: %@", {status, agent.toString()}));
}

QString ZELKAgentInstallation::applicationName() const
{
    // A property of the graphical application object; a command-line one has none.
    QString running;
    if (const QCoreApplication *application = QCoreApplication::instance())
        running = application->property("applicationDisplayName").toString();
    if (!running.isEmpty())
        return running;
    const QString ofBundle = mainBundle().infoDictionary().string(QStringLiteral("CFBundleName"));
    return ofBundle.isEmpty() ? QFileInfo(mainBundle().path()).fileName() : ofBundle;
}
