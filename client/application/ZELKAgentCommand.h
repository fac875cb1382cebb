#pragma once

#include "ZELKAgentController.h"

#include <functional>
#include <memory>

class ZELKTerminalAuthentication;
class ZELKTextOutput;

/// What "lullwatch agent" is asked for. A value.
struct ZELKAgentRequest
{
    enum class Action { Status, Install, Remove, Update };

    Action action = Action::Status;
    /// Install: PrivilegedJob, UserJob or SessionApplication.
    ZELKAgentController::State form = ZELKAgentController::NotInstalled;
    /// Status: as one JSON object instead of lines.
    bool asJson = false;

    bool operator==(const ZELKAgentRequest &) const = default;
};

/// Tells of the agent, installs, removes and updates it for a command that has no event loop of its own.
class ZELKAgentCommand : public QObject
{
    Q_OBJECT

public:
    /// What went wrong, in a sentence.
    using Complaint = std::function<void(const QString &)>;
    static constexpr int secondsToSettle = 30;

    /// `agent` and `output` must outlive the object. `seconds` is how long a change may take; what asks the
    /// user for a password takes its own time before that.
    ZELKAgentCommand(ZELKAgentController &agent, ZELKTextOutput &output, const Complaint &complain,
                     int seconds = secondsToSettle);

    /// Waits until what was asked for is done. False when it is not, which has been complained of; for a
    /// status, when the agent is not installed or does not answer.
    bool run(const ZELKAgentRequest &request);

private:
    bool status(bool asJson);
    bool install(ZELKAgentController::State form);
    bool start(ZELKAgentController::State form);
    bool isPossible(ZELKAgentController::State form);
    bool remove();
    bool removeRemains();
    bool update();
    std::unique_ptr<ZELKTerminalAuthentication> passwordForSystemJob() const;

    bool works() const { return m_agent.installed() && m_agent.enabled(); }
    bool isAnswering() const;
    bool settle(bool endsWhenGone = false);
    bool told(const std::optional<ZELKAgentError> &error);
    void printState();
    void print(const QString &line);

    ZELKAgentController &m_agent;
    ZELKTextOutput &m_output;
    Complaint m_complain;
    int m_seconds;
};
