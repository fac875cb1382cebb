#pragma once

#include "ZELKAgentController.h"

using namespace Qt::StringLiterals;

const QString agentName = u"org.test.agent"_s;

/// The system's services and its rights in one: does what it is told and keeps what it was asked, in order.
/// What `failing` names fails.
class FakeSystem final : public ZELKServiceManagement, public ZELKAuthorizationService
{
public:
    using Problem = std::optional<ZELKAgentError>;
    using Proof = ZELKAuthorization;

    QStringList calls;
    QString failing;
    bool hasManager = true;
    bool systemJob = false, userJob = false;
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

    /// What an agent answers that is to remove its files.
    std::optional<bool> removeFiles(const QByteArray &authorization, QString *reason)
    {
        form = authorization;
        if (fails(u"files"_s))
            return false;
        *reason = u"no answer"_s;
        return fails(u"call"_s) ? std::nullopt : std::optional(true);
    }

private:
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
