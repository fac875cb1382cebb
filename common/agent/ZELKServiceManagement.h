#pragma once

#include <QString>

/// Whose jobs: the machine's or the user's.
enum class ZELKServiceDomain { System, User };

/// The manager of background jobs.
class ZELKServiceManagement
{
public:
    virtual ~ZELKServiceManagement() = default;

    /// True when the domain's manager knows a job of that label, running or not. No manager, no answer and an
    /// error count as no job.
    virtual bool hasJob(const QString &label, ZELKServiceDomain domain) const = 0;
};
