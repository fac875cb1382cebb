#pragma once

#include "ZELKProcessTable.h"
#include "ZELKWorkspace.h"

#include <QByteArray>
#include <QHash>

#include <unistd.h>

/// Applications as processes. A process is an instance of the application in whose bundle folder its
/// executable stands; where the executable or Info.plist is gone, the folder's name without ".app" tells the
/// identifier. A process of another user, or one that was started under another session bus, belongs to
/// another session. Processes that an instance forked belong to it and are not counted, and neither are those
/// that were started to do one thing and end: to read the past, or to tell their version.
class ZELKSessionWorkspace final : public ZELKWorkspace
{
public:
    /// `sessionBus` is the bus's address; a process of the user that names none counts as of this session,
    /// and so does every one when this is empty.
    explicit ZELKSessionWorkspace(const QString &procFolder = QStringLiteral("/proc"),
                                  uint userIdentifier = ::getuid(),
                                  const QByteArray &sessionBus = qgetenv("DBUS_SESSION_BUS_ADDRESS"));

    std::vector<ZELKRunningApplication>
    runningApplicationsWithBundleIdentifier(const QString &identifier) const override;
    int registerBundle(const QUrl &bundle) override;
    std::optional<ZELKAgentError>
    launchApplicationWithBundleIdentifier(const QString &identifier, const QStringList &arguments) override;
    /// Standard input, output and error of what is launched lead nowhere: it outlives the application and
    /// whatever that was writing to. Its folder is "/".
    std::optional<ZELKAgentError> launchApplicationAtURL(const QUrl &bundle,
                                                         const QStringList &arguments) override;
    /// SIGTERM.
    bool terminate(const ZELKRunningApplication &instance) override;

private:
    bool isOfThisSession(qint64 identifier, const ZELKProcessTable::Process &process) const;
    bool isErrand(qint64 identifier) const;

    ZELKProcessTable m_processes;
    QString m_procFolder;
    uint m_userIdentifier;
    QByteArray m_sessionBus; // without its unique identifier
    QHash<QString, QUrl> m_registered;
};
