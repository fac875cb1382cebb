#pragma once

#include "ZELKAgentError.h"
#include "ZELKAuthorization.h"
#include "ZELKDictionary.h"

#include <QString>

#include <optional>

/// Whose jobs: the machine's or the user's.
enum class ZELKServiceDomain { System, User };

/// The manager of background jobs. As it stands here there is none: no job is found and none can be made.
class ZELKServiceManagement
{
public:
    virtual ~ZELKServiceManagement() = default;

    /// True when the domain's manager knows a job of that label, running or not. No manager, no answer and an
    /// error count as no job.
    virtual bool hasJob(const QString &label, ZELKServiceDomain domain) const = 0;
    /// Whether jobs of the domain can be made at all.
    virtual bool isAvailable(ZELKServiceDomain domain) const;

    /// Each of these blocks until it is done, and tells what went wrong, else nothing. What failed has left
    /// nothing behind.

    /// Takes over a job as its ticket describes it, and starts it.
    virtual std::optional<ZELKAgentError> submitJob(const ZELKDictionary &ticket, ZELKServiceDomain domain,
                                                    const ZELKAuthorization &authorization);
    /// Stops the job, waits until it has ended, and forgets it.
    virtual std::optional<ZELKAgentError> removeJob(const QString &label, ZELKServiceDomain domain,
                                                    const ZELKAuthorization &authorization);
    /// Removes a job of the system with the files of its installation, whatever state they are in.
    virtual std::optional<ZELKAgentError> purgeJob(const QString &label, ZELKServiceDomain domain,
                                                   const ZELKAuthorization &authorization);
    /// Installs the program that the main bundle carries under that label where only the administrator can
    /// write, as a job of the domain, and starts it.
    virtual std::optional<ZELKAgentError> blessJob(const QString &label, ZELKServiceDomain domain,
                                                   const ZELKAuthorization &authorization);

protected:
    /// Why there are no jobs where systemd does not run.
    static ZELKAgentError unavailable();
};
