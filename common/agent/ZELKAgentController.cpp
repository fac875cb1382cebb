#include "ZELKAgentController.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKServiceNames.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds updateInterval(100);

QString className()
{
    return QStringLiteral("ZELKAgentController");
}

QString sourceFile()
{
    return QStringLiteral("common/agent/ZELKAgentController");
}

const ZELKBundle &mainBundle()
{
    return *ZELKEnvironment::current().mainBundle;
}

void requireName(const QString &name)
{
    if (name.isNull())
        ZELKAssertion::failParameter(sourceFile(), 0, "anAgentName");
}

QString infoString(const QString &key)
{
    const QVariant value = mainBundle().objectForInfoDictionaryKey(key);
    if (!value.isValid())
        ZELKAssertion::fail(sourceFile(), 0, ZELKFormat("%@ Info.plist is missing %@", {className(), key}));
    if (value.metaType() != QMetaType::fromType<QString>())
        ZELKAssertion::fail(sourceFile(), 0,
                            ZELKFormat("%@ Info.plist %@ must be a string", {className(), key}));
    return value.toString();
}

QString localised(const QString &key)
{
    return mainBundle().localizedStringForKey(key, QString(), className());
}

bool failed(const std::optional<ZELKAgentError> &failure, ZELKAgentError *error)
{
    if (failure && error)
        *error = *failure;
    return failure.has_value();
}

} // namespace

ZELKAgentController::ZELKAgentController(const ZELKAgentPorts &ports, const QString &agentName,
                                         QObject *parent)
    : QObject(parent)
    , m_ports(ports)
    , m_agentName(agentName)
{
    m_updateTimer.setInterval(updateInterval);
    connect(&m_updateTimer, &QTimer::timeout, this, &ZELKAgentController::updateTimerDidNotify);
    connect(this, &ZELKAgentController::installedChanged, this, &ZELKAgentController::canUpdateChanged);
    connect(this, &ZELKAgentController::agentVersionChanged, this, &ZELKAgentController::canUpdateChanged);
    updateState();
}

ZELKAgentController::~ZELKAgentController() = default;

QString ZELKAgentController::agentName() const
{
    if (m_agentName.isEmpty())
        m_agentName = infoString(QStringLiteral("ZELKAgentControllerAgentName"));
    return m_agentName;
}

QString ZELKAgentController::localisedState() const
{
    return localised(ZELKFormat("%@.state.%d", {className(), m_state}));
}

QString ZELKAgentController::localisedStartStopLabel() const
{
    return localised(ZELKFormat("%@.startStop.label.installed.%d", {className(), int(m_installed)}));
}

bool ZELKAgentController::canUpdate() const
{
    return m_installed && !m_agentVersion.isNull() &&
           m_agentVersion != mainBundle().infoDictionary().string(QStringLiteral("CFBundleVersion"));
}

// State

void ZELKAgentController::updateState()
{
    const int found = location();
    takeState(found, isAgentCommunicatingWithName(agentName()));
}

int ZELKAgentController::location() const
{
    const QString name = agentName();
    if (isLaunchdJobForAgentName(name, ZELKServiceDomain::System))
        return PrivilegedJob;
    if (isLaunchdJobForAgentName(name, ZELKServiceDomain::User))
        return UserJob;
    return isAgentRunningInUserSessionWithName(name) ? SessionApplication : NotInstalled;
}

void ZELKAgentController::takeState(int location, bool answering)
{
    const bool isSomewhere = location != NotInstalled;
    const int newState = answering == isSomewhere ? location : int(Inconsistent);
    if (std::exchange(m_state, newState) != newState)
        Q_EMIT stateChanged();
    const bool newInstalled = m_state != NotInstalled;
    if (std::exchange(m_installed, newInstalled) != newInstalled)
        Q_EMIT installedChanged();
    const bool newEnabled = m_state != Inconsistent;
    if (std::exchange(m_enabled, newEnabled) != newEnabled)
        Q_EMIT enabledChanged();
    deliverPendingDefaults();
}

void ZELKAgentController::takeVersion(const std::optional<QString> &version)
{
    if (version)
        setAgentVersion(version->isNull() ? QLatin1String("") : *version);
    else
        ZELKConsole::log(QStringLiteral("No agent version available"));
    if (m_agentVersion.isNull())
        setAgentVersion(QStringLiteral("0"));
}

void ZELKAgentController::setAgentVersion(const QString &version)
{
    const bool isSame = version == m_agentVersion && version.isNull() == m_agentVersion.isNull();
    m_agentVersion = version;
    if (!isSame)
        Q_EMIT agentVersionChanged();
}

// Start and stop

std::optional<ZELKAgentError> ZELKAgentController::startWithState(int state)
{
    expectStateChange();
    std::optional<ZELKAgentError> failure;
    if (state == SessionApplication) {
        ZELKAgentError error;
        if (!runAgentWithError(&error))
            failure = error;
    } else {
        ZELKConsole::log(ZELKFormat("%@ can not start agent: %@", {className(), localisedState()}));
        forgetExpectedStateChange();
    }
    if (failure)
        forgetExpectedStateChange();
    checkForStateChange();
    return failure;
}

std::optional<ZELKAgentError> ZELKAgentController::stop()
{
    expectStateChange();
    std::optional<ZELKAgentError> failure;
    if (m_state == SessionApplication) {
        ZELKAgentError error;
        if (!stopAgentWithError(&error))
            failure = error;
    } else {
        ZELKConsole::log(ZELKFormat("%@ can not stop agent: %@", {className(), localisedState()}));
        forgetExpectedStateChange();
    }
    if (failure) {
        forgetExpectedStateChange();
        Q_EMIT errorPresented(*failure);
    }
    checkForStateChange();
    m_probe.reset(); // it would bring back the version of the agent that was stopped
    setAgentVersion(QString());
    return failure;
}

bool ZELKAgentController::runAgentWithError(ZELKAgentError *error)
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

bool ZELKAgentController::stopAgentWithError(ZELKAgentError *error)
{
    std::optional<ZELKAgentError> failure;
    const auto instances = m_ports.workspace->runningApplicationsWithBundleIdentifier(agentName());
    if (instances.size() != 1)
        failure = ZELKAgentError::withCode(ZELKAgentError::InstanceCountIsNotOne);
    else if (!m_ports.workspace->terminate(instances.front()))
        failure = ZELKAgentError::withCode(ZELKAgentError::InstanceRefusedToTerminate);
    return !failed(failure, error);
}

// Watching for the change

void ZELKAgentController::expectStateChange()
{
    m_stateBeforeChange = m_state;
    m_updateTimer.start();
}

void ZELKAgentController::forgetExpectedStateChange()
{
    m_updateTimer.stop();
}

void ZELKAgentController::checkForStateChange()
{
    if (!isStateChangeExpected() || m_probe)
        return;
    const auto connection = agentConnectionWithName(agentName());
    if (!connection) {
        endCheck(false);
        return;
    }
    m_probe = std::make_unique<QObject>();
    connection->requestVersion(m_probe.get(), [this](const std::optional<QString> &version) {
        m_probe.release()->deleteLater(); // its own slot is running
        takeVersion(version);
        endCheck(true);
    });
}

void ZELKAgentController::endCheck(bool answering)
{
    takeState(location(), answering);
    if (!isStateChangeExpected() || m_state == m_stateBeforeChange || m_state == Inconsistent)
        return;
    forgetExpectedStateChange();
    if (m_state == NotInstalled)
        setAgentVersion(QString()); // an agent that is on its way out may still have told it
}

void ZELKAgentController::updateTimerDidNotify()
{
    zelkGuard([this] { checkForStateChange(); });
}

// Defaults

void ZELKAgentController::setDefaultsWithDictionary(const ZELKDictionary &defaults)
{
    if (defaults.isEmpty())
        return;
    const auto connection = agentConnectionWithName(agentName());
    if (!connection) {
        for (const auto &[key, value] : defaults)
            m_pendingDefaults.insert(key, value);
        return;
    }
    if (const auto problem = connection->setDefaultsWithDictionary(defaults))
        ZELKConsole::log(ZELKFormat("Unable to set agent defaults: %@", {*problem}));
}

void ZELKAgentController::deliverPendingDefaults()
{
    if (m_installed && !m_pendingDefaults.isEmpty())
        setDefaultsWithDictionary(std::exchange(m_pendingDefaults, {}));
}

// Probes

bool ZELKAgentController::isLaunchdJobForAgentName(const QString &anAgentName, ZELKServiceDomain domain) const
{
    requireName(anAgentName);
    return m_ports.serviceManagement->hasJob(anAgentName, domain);
}

bool ZELKAgentController::isAgentRunningInUserSessionWithName(const QString &anAgentName) const
{
    requireName(anAgentName);
    return !m_ports.workspace->runningApplicationsWithBundleIdentifier(anAgentName).empty();
}

bool ZELKAgentController::isAgentCommunicatingWithName(const QString &anAgentName)
{
    const auto connection = agentConnectionWithName(anAgentName);
    if (!connection)
        return false;
    takeVersion(connection->version());
    return true;
}

std::unique_ptr<ZELKAgentConnection>
ZELKAgentController::agentConnectionWithName(const QString &anAgentName) const
{
    requireName(anAgentName);
    return m_ports.lookup->connectionWithServiceName(ZELKServiceNames::controlServiceName(anAgentName));
}

// The embedded agent

QUrl ZELKAgentController::embeddedAgentURL() const
{
    const QString folder = infoString(QStringLiteral("ZELKAgentControllerAgentFolder"));
    return QUrl::fromLocalFile(mainBundle().path() + QLatin1Char('/') + folder + QLatin1Char('/') +
                               agentName() + QStringLiteral(".app"));
}

void ZELKAgentController::registerEmbeddedAgentWithLaunchServices()
{
    const QUrl agent = embeddedAgentURL();
    if (const int status = m_ports.workspace->registerBundle(agent))
        ZELKConsole::log(
            ZELKFormat("Helper agent URL registration failed: %ld with URL: %@", {status, agent.toString()}));
}

QString ZELKAgentController::applicationName() const
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
