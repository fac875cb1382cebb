#pragma once

#include "ZELKAgentFiles.h"
#include "ZELKAuthorizationCheck.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

/// What the control service does when it is asked to remove the agent's files: checks that the caller may,
/// has them deleted, answers, and only then withdraws the request.
class ZELKAgentRemoval : public QObject
{
    Q_OBJECT

public:
    /// All of it has to be answered before the caller gives up, which it does after
    /// ZELKServiceNames::callTimeoutMilliseconds.
    static constexpr int usualTimeout = 4500;

    ZELKAgentRemoval(const QDBusConnection &bus, const ZELKInstalledAgent &place, QObject *parent = nullptr,
                     int timeoutMilliseconds = usualTimeout);

    /// Answers the call with a boolean, later. The call is to be marked as answered so (setDelayedReply).
    /// A no leaves a console line.
    void removeAgentFiles(const QByteArray &authorization, const QDBusMessage &call);

private:
    void reply(const QDBusMessage &call, bool removed);

    QDBusConnection m_bus;
    int m_timeout;
    ZELKAuthorizationCheck m_check;
    ZELKAgentFiles m_files;
};
