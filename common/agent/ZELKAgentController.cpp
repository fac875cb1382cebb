#include "ZELKAgentController.h"

#include "ZELKAgentConfiguration.h"
#include "ZELKConsole.h"

#include <chrono>
#include <utility>

using namespace ZELKAgentConfiguration;

namespace {

constexpr std::chrono::milliseconds updateInterval(100);

} // namespace

ZELKAgentController::ZELKAgentController(const ZELKAgentPorts &ports, const QString &agentName,
                                         QObject *parent)
    : QObject(parent)
    , ZELKAgentInstallation(ports, agentName)
{
    m_updateTimer.setInterval(updateInterval);
    connect(&m_updateTimer, &QTimer::timeout, this, &ZELKAgentController::updateTimerDidNotify);
    connect(this, &ZELKAgentController::installedChanged, this, &ZELKAgentController::canUpdateChanged);
    connect(this, &ZELKAgentController::agentVersionChanged, this, &ZELKAgentController::canUpdateChanged);
    updateState();
}

ZELKAgentController::~ZELKAgentController() = default;

QString ZELKAgentController::localisedState() const
{
    return localisedWithNumber("%@.state.%d", m_state);
}

QString ZELKAgentController::localisedStartStopLabel() const
{
    return localisedWithNumber("%@.startStop.label.installed.%d", m_installed ? 1 : 0);
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
    if (canUpdate() && m_updateNotifications != 0)
        offerUpdateAfter(0);
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
    m_formToStart.reset();
    expectStateChange();
    const auto failure = start(state);
    if (failure)
        forgetExpectedStateChange();
    m_updateNotifications = 0;
    checkForStateChange();
    return failure;
}

std::optional<ZELKAgentError> ZELKAgentController::start(int state)
{
    ZELKAgentError error;
    if (state == SessionApplication) {
        runAgentWithError(&error);
    } else if (state == UserJob) {
        startUserWithError(&error);
    } else if (state == PrivilegedJob) {
        startPrivilegedWithError(&error);
    } else {
        ZELKConsole::log(ZELKFormat("%@ can not start agent: %@", {className(), localisedState()}));
        forgetExpectedStateChange();
    }
    return error.isError() ? std::optional(error) : std::nullopt;
}

std::optional<ZELKAgentError> ZELKAgentController::stop()
{
    m_formToStart.reset();
    expectStateChange();
    ZELKAgentError error;
    if (m_state == SessionApplication) {
        stopAgentWithError(&error);
    } else if (m_state == UserJob) {
        stopUserWithError(&error);
    } else if (m_state == PrivilegedJob) {
        stopPrivilegedWithError(&error);
    } else {
        ZELKConsole::log(ZELKFormat("%@ can not stop agent: %@", {className(), localisedState()}));
        forgetExpectedStateChange();
    }
    if (error.isError()) {
        forgetExpectedStateChange();
        Q_EMIT errorPresented(error);
    }
    if (error.code() == ZELKAgentError::FilesNotRemoved)
        updateState(); // the job has gone all the same
    checkForStateChange();
    m_probe.reset(); // it would bring back the version of the agent that was stopped
    setAgentVersion(QString());
    return error.isError() ? std::optional(error) : std::nullopt;
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
    const auto form = std::exchange(m_formToStart, {});
    if (m_state != NotInstalled)
        return;
    setAgentVersion(QString()); // an agent that is on its way out may still have told it
    if (form)
        startAndPresent(*form);
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

bool ZELKAgentController::isAgentCommunicatingWithName(const QString &anAgentName)
{
    const auto connection = agentConnectionWithName(anAgentName);
    if (!connection)
        return false;
    takeVersion(connection->version());
    return true;
}
