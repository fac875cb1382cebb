#pragma once

#include <QMetaType>
#include <QString>

/// Why the agent could not be started, stopped or installed. A value.
class ZELKAgentError
{
public:
    /// Domain of the controller's own numbered errors.
    static QString controllerDomain() { return QStringLiteral("ZELKAgentController"); }

    /// What stop() of the session form can answer. The numbers are fixed.
    enum Code {
        InstanceCountIsNotOne = 20,
        InstanceRefusedToTerminate = 21,
    };

    ZELKAgentError() = default;
    ZELKAgentError(const QString &domain, int code, const QString &localisedDescription,
                   const QString &underlyingText = {});
    /// An error of the controller's domain; its text is "ZELKAgentController.error.CODE" of the string table
    /// "ZELKAgentController".
    static ZELKAgentError withCode(Code code, const QString &underlyingText = {});

    QString domain() const { return m_domain; }
    int code() const { return m_code; }
    /// One sentence for the user.
    QString localisedDescription() const { return m_localisedDescription; }
    /// What the system said; empty where nothing did.
    QString underlyingText() const { return m_underlyingText; }

    bool operator==(const ZELKAgentError &) const = default;

private:
    QString m_domain;
    int m_code = 0;
    QString m_localisedDescription;
    QString m_underlyingText;
};

Q_DECLARE_METATYPE(ZELKAgentError)
