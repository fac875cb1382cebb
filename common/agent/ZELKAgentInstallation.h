#pragma once

#include "ZELKAgentError.h"
#include "ZELKAgentPorts.h"
#include "ZELKAuthorization.h"
#include "ZELKDictionary.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>

/// The ways in which the agent can be there, and what it takes to bring it there and away again. Knows no
/// state: whoever starts something looks afterwards. Faults of the configuration throw ZELKAssertionFailure,
/// and so does a null argument.
class ZELKAgentInstallation
{
public:
    /// An empty `agentName` stands for ZELKAgentControllerAgentName of the main bundle's Info.plist, which is
    /// read when it is first needed.
    explicit ZELKAgentInstallation(const ZELKAgentPorts &ports, const QString &agentName = {});

    /// Job label, bundle identifier and bus name of the agent.
    QString agentName() const;

    // The probes.
    bool isLaunchdJobForAgentName(const QString &anAgentName, ZELKServiceDomain domain) const;
    bool isAgentRunningInUserSessionWithName(const QString &anAgentName) const;
    /// The control service of that agent; null when there is none.
    std::unique_ptr<ZELKAgentConnection> agentConnectionWithName(const QString &anAgentName) const;

    // The forms. True, or false with `error` filled. All block.

    /// Launches into the session. An instance that runs already is left as it is.
    bool runAgentWithError(ZELKAgentError *error);
    /// An instance is asked to end only when it is the only one.
    bool stopAgentWithError(ZELKAgentError *error);
    /// A copy of the agent in the user's application support folder, its job ticket in the folder for launch
    /// agents, its job at the user's service manager. Nothing is copied where there is no such manager.
    bool startUserWithError(ZELKAgentError *error);
    /// Takes them away in the same order.
    bool stopUserWithError(ZELKAgentError *error);
    /// A job of the system. The user is asked for the right to it first, except where there are no such jobs.
    bool startPrivilegedWithError(ZELKAgentError *error);
    /// Has the agent remove its files, then removes the job. True with `error` filled when the job went and
    /// the files stayed.
    bool stopPrivilegedWithError(ZELKAgentError *error);
    /// Removes job and files of an agent of the system that does not answer, and so cannot remove them
    /// itself.
    bool purgePrivilegedWithError(ZELKAgentError *error);
    /// Whether jobs of that domain can be made on this computer; the session form always can.
    bool isAvailable(ZELKServiceDomain domain) const;

    /// Where the main bundle carries the agent: its folder ZELKAgentControllerAgentFolder, AGENTNAME.app.
    QUrl embeddedAgentURL() const;
    /// A failure is a console line.
    void registerEmbeddedAgentWithLaunchServices();
    /// What the user calls the application.
    QString applicationName() const;

    // Folders and files of the user's form. With `create`, folders that are missing are made; nothing, with
    // the reason, when one could not be.

    /// The folder ZELKAgentControllerApplicationSupportFolder of the user's, or the one named as the main
    /// bundle.
    std::optional<QUrl> applicationSupportURLWithCreate(bool create, QString *reason = nullptr) const;
    /// The folder ZELKAgentControllerLaunchAgentsFolder of the user's library.
    std::optional<QUrl> launchAgentsFolderURLWithCreate(bool create, QString *reason = nullptr) const;
    /// ANAGENTNAME.plist there.
    std::optional<QUrl> launchdJobTicketURLForAgentName(const QString &anAgentName, bool create,
                                                        QString *reason = nullptr) const;
    /// The bundle's name without its extension.
    QString launchdJobTicketLabelForAgent(const QUrl &anAgentURL) const;
    /// The main bundle's "agent.plist" with "Label" and "ProgramArguments" of that bundle, all else as it
    /// stands. Nothing without a template.
    std::optional<ZELKDictionary> launchdJobTicketForAgent(const QUrl &anAgentURL) const;

    /// The rights to install and to remove a job of the system.
    static QString blessRight();
    static QString modifyRight();
    /// A fresh authorization that has the right; `flags` are those of ZELKAuthorizationService.
    std::optional<ZELKAuthorization> authorizationForRight(const QString &aRight, unsigned flags,
                                                           QString *reason = nullptr) const;
    /// Its external form, 32 bytes. Empty, with a console line, when there is none.
    QByteArray dataWithAuthorization(const ZELKAuthorization &anAuthorization) const;

private:
    QUrl agentCopyURL(const QUrl &applicationSupport) const;
    bool writeTicket(const ZELKDictionary &ticket, ZELKAgentError *error) const;
    std::optional<ZELKAgentError> removeAgentFiles(const ZELKAuthorization &authorization) const;
    bool removeUserJob(ZELKAgentError *error);

    ZELKAgentPorts m_ports;
    mutable QString m_agentName;
};
