#pragma once

#include "ZELKAgentController.h"

using namespace Qt::StringLiterals;

const QString agentName = u"org.test.agent"_s;

/// Every port but the workspace in one: does what it is told and keeps what it was asked, in order. What
/// `failing` names fails.
class FakeSystem final : public ZELKServiceManagement, public ZELKAuthorizationService, public ZELKAgentLookup
{
public:
    using Problem = std::optional<ZELKAgentError>;
    using Proof = ZELKAuthorization;

    QStringList calls;
    QString failing;
    QString version = u"1.0"_s;
    bool hasManager = true;
    bool systemJob = false, userJob = false;
    bool serves = false; ///< else the service is there when a job is
    ZELKDictionary ticket;
    QByteArray form;

    bool hasJob(const QString &label, ZELKServiceDomain domain) const override
    {
        return label == agentName && (domain == ZELKServiceDomain::System ? systemJob : userJob);
    }
    bool isAvailable(ZELKServiceDomain) const override { return hasManager; }
    Problem submitJob(const ZELKDictionary &job, ZELKServiceDomain, const Proof &) override
    {
        if (!hasManager)
            return unavailable();
        ticket = job;
        return done(u"submit"_s, userJob, true);
    }
    Problem removeJob(const QString &, ZELKServiceDomain domain, const Proof &) override
    {
        return done(u"remove"_s, domain == ZELKServiceDomain::System ? systemJob : userJob, false);
    }
    Problem purgeJob(const QString &, ZELKServiceDomain, const Proof &) override
    {
        return done(u"purge"_s, systemJob, false);
    }
    Problem blessJob(const QString &, ZELKServiceDomain, const Proof &) override
    {
        return hasManager ? done(u"bless"_s, systemJob, true) : unavailable();
    }

    ZELKAuthorization authorization() override
    {
        return fails(u"authorization"_s) ? ZELKAuthorization()
                                         : ZELKAuthorization(ZELKAuthorizationForm{1, 2, 3, "nonce"});
    }
    Problem obtainRight(const Proof &, const QString &right, unsigned flags) override
    {
        if (fails(u"right %1 %2"_s.arg(right).arg(flags)))
            return error(u"right"_s);
        return std::nullopt;
    }
    QByteArray externalForm(const Proof &authorization, int *status) override
    {
        *status = 5;
        return fails(u"form"_s) ? QByteArray() : authorization.form().encode();
    }

    std::unique_ptr<ZELKAgentConnection> connectionWithServiceName(const QString &) override
    {
        return serves || systemJob || userJob ? std::make_unique<Connection>(*this) : nullptr;
    }

private:
    class Connection final : public ZELKAgentConnection
    {
    public:
        explicit Connection(FakeSystem &system)
            : m_system(system)
        {
        }
        std::optional<QString> version() override { return m_system.version; }
        void requestVersion(QObject *, const VersionHandler &answered) override { answered(version()); }
        std::optional<bool> removeAgentFiles(const QByteArray &form, QString *reason) override
        {
            m_system.form = form;
            if (m_system.fails(u"files"_s))
                return false;
            *reason = u"no answer"_s;
            return m_system.fails(u"call"_s) ? std::nullopt : std::optional(true);
        }
        std::optional<QString> setDefaultsWithDictionary(const ZELKDictionary &) override { return {}; }

    private:
        FakeSystem &m_system;
    };

    bool fails(const QString &call)
    {
        calls.append(call);
        return !failing.isEmpty() && call.startsWith(failing);
    }
    static ZELKAgentError error(const QString &call) { return {u"Fake"_s, 1, call + u" failed"_s}; }
    Problem done(const QString &call, bool &job, bool state)
    {
        if (fails(call))
            return error(call);
        job = state;
        return std::nullopt;
    }
};
