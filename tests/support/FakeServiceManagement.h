#pragma once

#include "ZELKServiceManagement.h"

#include <QSet>

/// Jobs as the test says.
class FakeServiceManagement final : public ZELKServiceManagement
{
public:
    QSet<QString> systemJobs;
    QSet<QString> userJobs;

    bool hasJob(const QString &label, ZELKServiceDomain domain) const override
    {
        return (domain == ZELKServiceDomain::System ? systemJobs : userJobs).contains(label);
    }
};
