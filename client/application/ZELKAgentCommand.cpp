#include "ZELKAgentCommand.h"

#include "ZELKAssertion.h"
#include "ZELKCommandLineText.h"
#include "ZELKEntryJson.h"
#include "ZELKFormat.h"
#include "ZELKTerminalAuthentication.h"
#include "ZELKTextOutput.h"

#include <QEventLoop>

namespace {

using Agent = ZELKAgentController;

/// What the controller says of a service that is there but did not tell its version when it was asked.
bool isMute(const QString &version)
{
    return version == QLatin1String("0");
}

bool isKnown(const QString &version)
{
    return !version.isEmpty() && !isMute(version);
}

} // namespace

ZELKAgentCommand::ZELKAgentCommand(ZELKAgentController &agent, ZELKTextOutput &output,
                                   const Complaint &complain, int seconds)
    : m_agent(agent)
    , m_output(output)
    , m_complain(complain)
    , m_seconds(seconds)
{
}

bool ZELKAgentCommand::run(const ZELKAgentRequest &request)
{
    switch (request.action) {
    case ZELKAgentRequest::Action::Status:
        return status(request.asJson);
    case ZELKAgentRequest::Action::Install:
        return install(request.form);
    case ZELKAgentRequest::Action::Remove:
        return remove();
    case ZELKAgentRequest::Action::Update:
        return update();
    }
    return false;
}

// MARK: status

/// The controller counts a mute service as there, so that it can be replaced; to its user it does not answer.
bool ZELKAgentCommand::isAnswering() const
{
    return !m_agent.agentVersion().isNull() && !isMute(m_agent.agentVersion());
}

bool ZELKAgentCommand::status(bool asJson)
{
    const QString version = m_agent.agentVersion();
    if (asJson) {
        ZELKDictionary values;
        values.insert(QStringLiteral("state"), m_agent.state());
        values.insert(QStringLiteral("localisedState"), m_agent.localisedState());
        values.insert(QStringLiteral("version"), isKnown(version) ? QVariant(version) : QVariant());
        values.insert(QStringLiteral("answers"), isAnswering());
        values.insert(QStringLiteral("canUpdate"), m_agent.canUpdate());
        QByteArray json;
        ZELKEntryJson::appendValue(json, QVariant::fromValue(values));
        print(QString::fromUtf8(json));
        return works() && isAnswering();
    }
    print(ZELKFormat(ZELKCommandLineText("State:    %@"), {m_agent.localisedState()}));
    print(ZELKFormat(ZELKCommandLineText("Version:  %@"),
                     {isKnown(version) ? version : ZELKCommandLineText("unknown")}));
    print(ZELKFormat(ZELKCommandLineText("Answers:  %@"),
                     {isAnswering() ? ZELKCommandLineText("yes") : ZELKCommandLineText("no")}));
    if (m_agent.canUpdate())
        print(
            ZELKCommandLineText("\"lullwatch agent update\" replaces it by the agent of this application."));
    return works() && isAnswering();
}

// MARK: install

bool ZELKAgentCommand::install(Agent::State form)
{
    if (m_agent.state() == form) {
        printState();
        return true;
    }
    if (m_agent.installed()) {
        m_complain(ZELKFormat(
            ZELKCommandLineText(
                "The recording agent is there already (%@). \"lullwatch agent remove\" removes it."),
            {m_agent.localisedState()}));
        return false;
    }
    if (!isPossible(form) || !start(form) || !settle(true))
        return false;
    printState();
    return true;
}

bool ZELKAgentCommand::start(Agent::State form)
{
    std::optional<ZELKTerminalAuthentication> password;
    if (form == Agent::PrivilegedJob)
        password.emplace();
    return told(m_agent.startWithState(form));
}

bool ZELKAgentCommand::isPossible(Agent::State form)
{
    if (form == Agent::PrivilegedJob && !m_agent.isAvailable(ZELKServiceDomain::System)) {
        m_complain(ZELKCommandLineText("systemd does not run this computer, so the recording agent cannot be "
                                       "installed for all users. \"--as session\" does without systemd."));
        return false;
    }
    if (form == Agent::UserJob && !m_agent.isAvailable(ZELKServiceDomain::User)) {
        m_complain(ZELKCommandLineText("No systemd runs in this session, so the recording agent cannot be "
                                       "installed for you. \"--as session\" does without systemd."));
        return false;
    }
    return true;
}

// MARK: remove

bool ZELKAgentCommand::remove()
{
    if (!m_agent.installed()) {
        printState();
        return true;
    }
    const auto password = passwordForSystemJob();
    // One that hangs would have to delete its own files.
    const bool isMuteForAll = m_agent.state() == Agent::PrivilegedJob && !isAnswering();
    const bool wasRemoved = m_agent.enabled() && !isMuteForAll ? told(m_agent.stop()) : removeRemains();
    if (!settle() || !wasRemoved)
        return false;
    printState();
    return true;
}

/// A command stands often where no desktop could ask.
std::unique_ptr<ZELKTerminalAuthentication> ZELKAgentCommand::passwordForSystemJob() const
{
    const bool isSystemJob = m_agent.isLaunchdJobForAgentName(m_agent.agentName(), ZELKServiceDomain::System);
    return isSystemJob ? std::make_unique<ZELKTerminalAuthentication>() : nullptr;
}

/// The controller leaves an agent alone that is half there. Here somebody asks for exactly that half.
bool ZELKAgentCommand::removeRemains()
{
    const QString name = m_agent.agentName();
    ZELKAgentError error;
    m_agent.expectStateChange();
    if (m_agent.isLaunchdJobForAgentName(name, ZELKServiceDomain::System))
        m_agent.purgePrivilegedWithError(&error);
    else if (m_agent.isLaunchdJobForAgentName(name, ZELKServiceDomain::User))
        m_agent.stopUserWithError(&error);
    else if (m_agent.isAgentRunningInUserSessionWithName(name))
        m_agent.stopAgentWithError(&error);
    else
        error =
            ZELKAgentError({}, 1,
                           ZELKCommandLineText("Something answers for the recording agent, but it was not "
                                               "started from this session; whoever started it can end it."));
    if (error.isError())
        m_agent.forgetExpectedStateChange();
    m_agent.checkForStateChange();
    return told(error.isError() ? std::optional(error) : std::nullopt);
}

// MARK: update

bool ZELKAgentCommand::update()
{
    if (!works()) {
        m_complain(ZELKFormat(ZELKCommandLineText("There is no recording agent to update (%@)."),
                              {m_agent.localisedState()}));
        return false;
    }
    if (!m_agent.canUpdate()) {
        print(ZELKCommandLineText("The recording agent is this application's own already."));
        return true;
    }
    const auto password = passwordForSystemJob();
    bool failed = false;
    connect(&m_agent, &Agent::errorPresented, this,
            [&](const ZELKAgentError &error) { zelkGuard([&] { failed = !told(error); }); });
    m_agent.updateAgent();
    const bool settled = settle();
    m_agent.disconnect(this);
    if (!settled || failed)
        return false;
    printState();
    return works();
}

// MARK: waiting and telling

/// The watch has no limit of its own. An agent that came and went again will not come any more.
bool ZELKAgentCommand::settle(bool endsWhenGone)
{
    bool wasThere = m_agent.installed();
    bool hasGone = false;
    QEventLoop loop;
    const auto look = [&] {
        hasGone = hasGone || (endsWhenGone && wasThere && !m_agent.installed());
        wasThere = m_agent.installed();
        if (hasGone || !m_agent.isStateChangeExpected())
            loop.quit();
    };
    // Queued, since the watch ends after it has told of the change, or begins anew.
    connect(
        &m_agent, &Agent::stateChanged, &loop, [&] { zelkGuard(look); }, Qt::QueuedConnection);
    QTimer::singleShot(m_seconds * 1000, &loop, &QEventLoop::quit);
    if (m_agent.isStateChangeExpected())
        loop.exec();
    const bool settled = !hasGone && !m_agent.isStateChangeExpected();
    m_agent.forgetExpectedStateChange();
    if (hasGone)
        m_complain(ZELKCommandLineText("The recording agent was started, but has ended again."));
    else if (!settled)
        m_complain(
            ZELKFormat(ZELKCommandLineText("The recording agent did not follow within %d seconds (%@)."),
                       {m_seconds, m_agent.localisedState()}));
    return settled;
}

/// True when there is nothing to tell.
bool ZELKAgentCommand::told(const std::optional<ZELKAgentError> &error)
{
    if (error)
        m_complain(error->fullText());
    return !error;
}

void ZELKAgentCommand::printState()
{
    print(m_agent.localisedState());
}

void ZELKAgentCommand::print(const QString &line)
{
    m_output.write(ZELKTextOutput::safe(line) + QLatin1Char('\n'));
}
