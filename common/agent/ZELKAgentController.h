#pragma once

#include "ZELKAgentAlert.h"
#include "ZELKAgentError.h"
#include "ZELKAgentInstallation.h"
#include "ZELKAgentPorts.h"
#include "ZELKDictionary.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

/// Starts, stops and updates the background agent and knows what state it is in. Texts come from the main
/// bundle's string table "ZELKAgentController". Faults of the configuration throw ZELKAssertionFailure.
class ZELKAgentController : public QObject, public ZELKAgentInstallation
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

    /// Probes the agent once, which may block for the time limit of a remote call.
    explicit ZELKAgentController(const ZELKAgentPorts &ports, const QString &agentName = {},
                                 QObject *parent = nullptr);
    ~ZELKAgentController() override;

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
    /// How many offers of an update may still be shown.
    unsigned updateNotifications() const { return m_updateNotifications; }

    /// Probes job, instance and service, and takes over what they say; offers an update at the next turn of
    /// the event loop. Blocks.
    void updateState();
    /// Starts the agent in that form and watches until the state has changed; no update is offered after it.
    /// Another form than PrivilegedJob, UserJob and SessionApplication is a console line, and no error. An
    /// error is the caller's to present.
    std::optional<ZELKAgentError> startWithState(int state);
    /// Stops the agent in the form it runs in, forgets its version and watches until the state has changed.
    /// An error is both presented and handed back, even one that comes with success; a state that cannot be
    /// stopped is a console line, and no error.
    std::optional<ZELKAgentError> stop();
    /// Where an update is possible: stops the agent and starts it in the form it had, as soon as it is gone.
    void updateAgent();
    /// Passes defaults on to the agent, or keeps them until a probe finds it installed; a later value of a
    /// key then replaces an earlier one. Defaults that a service refuses are lost, with a console line.
    void setDefaultsWithDictionary(const ZELKDictionary &defaults);
    const ZELKDictionary &pendingDefaults() const { return m_pendingDefaults; }

    /// Where alerts are shown; not owned. Null shows none.
    void setAlerts(ZELKAgentAlerts *alerts) { m_alerts = alerts; }
    /// Asks how to install when the agent is not installed, else stops it.
    void startStop();
    /// Offers the update, if there is one.
    void update();
    /// One offer may be made now; it comes after a second if there is something to offer.
    void applicationDidFinishLaunching();
    void showInstallAlert();
    /// SecondButton starts the session form; a `locationTag` that is unknown to FirstButton throws.
    void installAlertDidEnd(int returnCode, int locationTag);
    bool isInstallAlertShown() const { return m_installAlert.has_value(); }
    void showUpdateAlert();
    void updateAlertDidEnd(int returnCode);
    bool isUpdateAlertShown() const { return m_updateAlert.has_value(); }

    /// Looks every 0.1 s, without a limit, until the state is another one than now and not Inconsistent.
    void expectStateChange();
    void forgetExpectedStateChange();
    bool isStateChangeExpected() const { return m_updateTimer.isActive(); }
    /// One look of the watch; nothing when no change is expected. Unlike updateState() it does not wait for
    /// an agent that is slow to tell its version: the state follows when the answer is there or its time is
    /// up, and looks until then do nothing.
    void checkForStateChange();
    /// Blocks; takes over agentVersion. A service that is registered counts as communicating even when it
    /// cannot tell its version, so that such an agent can be replaced.
    bool isAgentCommunicatingWithName(const QString &anAgentName);

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
    void offerUpdateAfter(int milliseconds);
    std::optional<ZELKAgentError> start(int state);
    void startAndPresent(int state);
    void begin(std::optional<ZELKAgentAlert> &alert, const ZELKAgentAlerts::EndHandler &ended);
    void endCheck(bool answering);
    void updateTimerDidNotify();

    QString m_agentVersion;
    int m_state = 0;
    bool m_installed = false;
    bool m_enabled = false;
    unsigned m_updateNotifications = 0;
    ZELKDictionary m_pendingDefaults;
    ZELKAgentAlerts *m_alerts = nullptr;
    std::optional<ZELKAgentAlert> m_installAlert;
    std::optional<ZELKAgentAlert> m_updateAlert;
    QTimer m_updateTimer;
    int m_stateBeforeChange = 0;
    std::optional<int> m_formToStart; // when what runs now is gone
    std::unique_ptr<QObject> m_probe; // a question for the version is under way
};
