#pragma once

#include "ZELKAgentError.h"
#include "ZELKAgentPorts.h"
#include "ZELKDictionary.h"

#include <QObject>
#include <QTimer>
#include <QUrl>

#include <memory>
#include <optional>

/// Starts and stops the background agent and knows what state it is in. Texts come from the main bundle's
/// string table "ZELKAgentController". Faults of the configuration throw ZELKAssertionFailure.
class ZELKAgentController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int state READ state NOTIFY stateChanged)
    Q_PROPERTY(bool installed READ installed NOTIFY installedChanged)
    Q_PROPERTY(bool enabled READ enabled NOTIFY enabledChanged)
    Q_PROPERTY(QString agentVersion READ agentVersion NOTIFY agentVersionChanged)
    Q_PROPERTY(QString localisedState READ localisedState NOTIFY stateChanged)
    Q_PROPERTY(QString localisedStartStopLabel READ localisedStartStopLabel NOTIFY installedChanged)
    Q_PROPERTY(bool canUpdate READ canUpdate NOTIFY canUpdateChanged)

public:
    /// The numbers are fixed: they stand in keys of string tables. 5 is left out.
    enum State {
        NotInstalled = 1,       ///< no job, no instance, no service
        PrivilegedJob = 2,      ///< a job of the system
        UserJob = 3,            ///< a job of the user
        SessionApplication = 4, ///< no job, but an instance runs in the session
        Inconsistent = 6,       ///< a job or instance without a service, or a service without either
    };

    /// An empty `agentName` stands for ZELKAgentControllerAgentName of the main bundle's Info.plist, which is
    /// read when it is first needed. Probes the agent once, which may block for the time limit of a remote
    /// call.
    explicit ZELKAgentController(const ZELKAgentPorts &ports, const QString &agentName = {},
                                 QObject *parent = nullptr);
    ~ZELKAgentController() override;

    /// Job label, bundle identifier and bus name of the agent.
    QString agentName() const;
    /// What the control service reported; "0" when it was there but reported nothing; null when it is not
    /// known and after a stop.
    QString agentVersion() const { return m_agentVersion; }
    /// One of State.
    int state() const { return m_state; }
    /// The state is another one than NotInstalled; true when it is Inconsistent.
    bool installed() const { return m_installed; }
    /// The state is another one than Inconsistent.
    bool enabled() const { return m_enabled; }
    QString localisedState() const;
    QString localisedStartStopLabel() const;
    /// Installed, and its version is known and not the main bundle's CFBundleVersion. Any difference counts,
    /// so an older application offers its own agent too.
    bool canUpdate() const;

    /// Probes job, instance and service, and takes over what they say. Blocks.
    void updateState();
    /// Starts the agent in that form and watches until the state has changed. SessionApplication is the form
    /// there is; any other is a console line, and no error. An error is the caller's to present.
    std::optional<ZELKAgentError> startWithState(int state);
    /// Stops the agent in the form it runs in, forgets its version and watches until the state has changed.
    /// An error is both presented and handed back; a state that cannot be stopped is a console line, and no
    /// error.
    std::optional<ZELKAgentError> stop();
    /// Passes defaults on to the agent, or keeps them until a probe finds it installed; a later value of a
    /// key then replaces an earlier one. Defaults that a service refuses are lost, with a console line.
    void setDefaultsWithDictionary(const ZELKDictionary &defaults);
    const ZELKDictionary &pendingDefaults() const { return m_pendingDefaults; }

    /// Looks every 0.1 s, without a limit, until the state is another one than now and not Inconsistent.
    void expectStateChange();
    void forgetExpectedStateChange();
    bool isStateChangeExpected() const { return m_updateTimer.isActive(); }
    /// One look of the watch; nothing when no change is expected. Unlike updateState() it does not wait for
    /// an agent that is slow to tell its version: the state follows when the answer is there or its time is
    /// up, and looks until then do nothing.
    void checkForStateChange();

    /// The probes. A null name throws.
    bool isLaunchdJobForAgentName(const QString &anAgentName, ZELKServiceDomain domain) const;
    bool isAgentRunningInUserSessionWithName(const QString &anAgentName) const;
    /// Blocks; takes over agentVersion. A service that is registered counts as communicating even when it
    /// cannot tell its version, so that such an agent can be replaced.
    bool isAgentCommunicatingWithName(const QString &anAgentName);
    /// The control service of that agent; null when there is none.
    std::unique_ptr<ZELKAgentConnection> agentConnectionWithName(const QString &anAgentName) const;

    /// Where the main bundle carries the agent: its folder ZELKAgentControllerAgentFolder, AGENTNAME.app.
    QUrl embeddedAgentURL() const;
    /// A failure is a console line.
    void registerEmbeddedAgentWithLaunchServices();
    /// What the user calls the application.
    QString applicationName() const;

    /// The session form, without watching: true, or false with `error` filled. An instance that runs already
    /// is left as it is; it is stopped only when it is the only one.
    bool runAgentWithError(ZELKAgentError *error);
    bool stopAgentWithError(ZELKAgentError *error);

Q_SIGNALS:
    /// Each is emitted only when the value became another one. A probe changes the version first, then the
    /// state, then these two.
    void agentVersionChanged();
    void stateChanged();
    void installedChanged();
    void enabledChanged();
    /// Emitted with installedChanged and agentVersionChanged.
    void canUpdateChanged();
    /// The application shows it.
    void errorPresented(const ZELKAgentError &error);

private:
    int location() const;
    void takeState(int location, bool answering);
    void takeVersion(const std::optional<QString> &version);
    void setAgentVersion(const QString &version);
    void deliverPendingDefaults();
    void endCheck(bool answering);
    void updateTimerDidNotify();

    ZELKAgentPorts m_ports;
    mutable QString m_agentName;
    QString m_agentVersion;
    int m_state = 0;
    bool m_installed = false;
    bool m_enabled = false;
    ZELKDictionary m_pendingDefaults;
    QTimer m_updateTimer;
    int m_stateBeforeChange = 0;
    std::unique_ptr<QObject> m_probe; // a question for the version is under way
};
