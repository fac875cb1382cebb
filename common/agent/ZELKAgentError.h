#pragma once

#include <QMetaType>
#include <QString>

/// Why the agent could not be started, stopped or installed. A value.
class ZELKAgentError
{
public:
    /// Domain of the controller's own numbered errors.
    static QString controllerDomain() { return QStringLiteral("ZELKAgentController"); }

    /// The numbers are fixed; 15 and 16 are left out.
    enum Code {
        // Starting and stopping the job of the system.
        BlessRightRefused = 1,
        BlessFailed = 2,
        ModifyRightRefused = 3,
        NoExternalForm = 4,
        ServiceNotReached = 5,
        FilesNotRemoved = 6,
        SystemJobNotRemoved = 7,
        // The user's job.
        NoApplicationSupportFolder = 8,
        AgentNotCopied = 9,
        NoJobTicket = 10,
        NoLaunchAgentsFolder = 11,
        TicketNotWritten = 12,
        NoAuthorization = 13,
        SubmitFailed = 14,
        AgentCopyNotRemoved = 17,
        TicketNotRemoved = 18,
        UserJobNotRemoved = 19,
        // Stopping the application of the session.
        InstanceCountIsNotOne = 20,
        InstanceRefusedToTerminate = 21,
    };

    ZELKAgentError() = default;
    ZELKAgentError(const QString &domain, int code, const QString &localisedDescription,
                   const QString &underlyingText = {});
    /// An error of the controller's domain; its text is "ZELKAgentController.error.CODE" of the string table
    /// "ZELKAgentController".
    static ZELKAgentError withCode(Code code, const QString &underlyingText = {});

    /// False of an object that tells of nothing.
    bool isError() const { return m_code != 0; }
    QString domain() const { return m_domain; }
    int code() const { return m_code; }
    /// One sentence for the user.
    QString localisedDescription() const { return m_localisedDescription; }
    /// What the system said; empty where nothing did.
    QString underlyingText() const { return m_underlyingText; }
    /// The error's own words and what the system said under them.
    QString fullText() const;

    bool operator==(const ZELKAgentError &) const = default;

private:
    QString m_domain;
    int m_code = 0;
    QString m_localisedDescription;
    QString m_underlyingText;
};

Q_DECLARE_METATYPE(ZELKAgentError)
