#pragma once

#include "ApplicationFixture.h"

#include <QSet>

/// A service manager that does what it is asked for where the test lets it, for everybody, and gives nobody
/// the rights of an administrator.
class WillingServiceManagement final : public ZELKServiceManagement, public ZELKAuthorizationService
{
public:
    bool hasSystem = true;
    bool hasUser = true;
    QSet<QString> jobs[2]; ///< their labels: of the system, of the user
    QString removalProblem;
    std::function<void(bool isThere)> changed; ///< after a job was made or removed

    bool hasJob(const QString &label, ZELKServiceDomain domain) const override
    {
        return jobs[int(domain)].contains(label);
    }
    bool isAvailable(ZELKServiceDomain domain) const override
    {
        return domain == ZELKServiceDomain::System ? hasSystem : hasUser;
    }
    std::optional<ZELKAgentError> submitJob(const ZELKDictionary &ticket, ZELKServiceDomain domain,
                                            const ZELKAuthorization &) override
    {
        if (!isAvailable(domain))
            return unavailable();
        jobs[int(domain)].insert(ticket.string(u"Label"_s));
        changed(true);
        return std::nullopt;
    }
    std::optional<ZELKAgentError> removeJob(const QString &label, ZELKServiceDomain domain,
                                            const ZELKAuthorization &) override
    {
        if (!removalProblem.isEmpty())
            return ZELKAgentError(u"test"_s, 1, removalProblem);
        jobs[int(domain)].remove(label);
        changed(false);
        return std::nullopt;
    }
    ZELKAuthorization authorization() override { return ZELKAuthorization(ZELKAuthorizationForm()); }
    std::optional<ZELKAgentError> obtainRight(const ZELKAuthorization &, const QString &, unsigned) override
    {
        return ZELKAgentError(u"test"_s, 1, u"no password"_s);
    }
    QByteArray externalForm(const ZELKAuthorization &, int *) override { return {}; }
};

/// The application's fixture with that service manager; an agent that a job starts answers at once.
struct AgentBed : ApplicationFixture
{
    std::shared_ptr<WillingServiceManagement> services = std::make_shared<WillingServiceManagement>();
    QObject later; ///< for what happens only when the event loop runs

    AgentBed()
    {
        world.ports.serviceManagement = services;
        world.ports.authorization = services;
        world.ports.folders = ZELKAgentFolders::ofUser();
        services->changed = [this](bool isThere) { letServiceAnswer(isThere); };
    }
    static QString agentName() { return u"org.zelk.lullwatch.agent"_s; }
    static QString version()
    {
        return ZELKEnvironment::current().mainBundle->infoDictionary().string(u"CFBundleVersion"_s);
    }
    void letUserJobAnswer(const QString &itsVersion)
    {
        services->jobs[1].insert(agentName());
        letServiceAnswer(true, itsVersion);
    }
    void letServiceAnswer(bool answers, const QString &itsVersion = version())
    {
        lookup->serviceName = answers ? agentName() + u"._service"_s : QString();
        lookup->version = itsVersion;
    }
};
