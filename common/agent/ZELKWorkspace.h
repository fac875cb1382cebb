#pragma once

#include "ZELKAgentError.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>
#include <vector>

/// One running instance of an application: the process number, and the time the process started (clock ticks
/// since boot), which together name a process for good.
struct ZELKRunningApplication
{
    qint64 processIdentifier = 0;
    quint64 startTime = 0;

    bool operator==(const ZELKRunningApplication &) const = default;
};

/// The applications of the user's session, known by the identifier of their bundle.
class ZELKWorkspace
{
public:
    virtual ~ZELKWorkspace() = default;

    virtual std::vector<ZELKRunningApplication>
    runningApplicationsWithBundleIdentifier(const QString &identifier) const = 0;

    /// Makes a bundle known, so that it can be launched by its identifier. 0, or the system's error number
    /// (errno) when it is not a bundle with an executable that may be run.
    virtual int registerBundle(const QUrl &bundle) = 0;

    /// Starts a registered bundle's executable in the background, without waiting for it. An application that
    /// runs already is left as it is, and that is a success. The error tells why nothing was started.
    virtual std::optional<ZELKAgentError>
    launchApplicationWithBundleIdentifier(const QString &identifier, const QStringList &arguments) = 0;
    /// The same for the bundle at a place, registered or not.
    virtual std::optional<ZELKAgentError> launchApplicationAtURL(const QUrl &bundle,
                                                                 const QStringList &arguments) = 0;

    /// Asks an instance to end and does not wait for it. False when it could not even be asked; an instance
    /// that has ended meanwhile counts as asked.
    virtual bool terminate(const ZELKRunningApplication &instance) = 0;
};
