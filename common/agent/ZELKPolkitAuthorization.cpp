#include "ZELKPolkitAuthorization.h"

#include "ZELKEnvironment.h"
#include "ZELKPolkit.h"
#include "ZELKServiceNames.h"

#include <cerrno>

#include <unistd.h>

namespace {

ZELKAgentError refusal(const char *key, int number, const QString &underlying = {})
{
    const QString table = ZELKAgentError::controllerDomain();
    const QString text = ZELKEnvironment::current().mainBundle->localizedStringForKey(
        table + QLatin1Char('.') + QLatin1String(key), QString(), table);
    return {QStringLiteral("ZELKAuthorization"), number, text, underlying};
}

} // namespace

ZELKPolkitAuthorization::ZELKPolkitAuthorization(const QDBusConnection &systemBus, bool isAdministrator)
    : m_systemBus(systemBus)
    , m_isAdministrator(isAdministrator)
{
}

ZELKPolkitAuthorization::ZELKPolkitAuthorization(const QDBusConnection &systemBus)
    : ZELKPolkitAuthorization(systemBus, ::geteuid() == 0)
{
}

ZELKAuthorization ZELKPolkitAuthorization::authorization()
{
    const auto form = ZELKAuthorizationForm::ofProcess(::getpid());
    return form ? ZELKAuthorization(*form) : ZELKAuthorization();
}

std::optional<ZELKAgentError> ZELKPolkitAuthorization::obtainRight(const ZELKAuthorization &authorization,
                                                                   const QString &right, unsigned flags)
{
    if (m_isAdministrator)
        return std::nullopt;
    const bool mayAsk = (flags & InteractionAllowed) != 0;
    const QDBusMessage reply =
        m_systemBus.call(ZELKPolkit::question(authorization.form(), right, mayAsk), QDBus::Block,
                         mayAsk ? millisecondsToAsk : ZELKServiceNames::callTimeoutMilliseconds);
    const auto answer = ZELKPolkit::answer(reply);
    if (ZELKPolkit::isUnknownAction(reply))
        return refusal("polkit.unknownAction", ENOENT);
    if (!answer)
        return refusal("polkit.absent", ENOTSUP, reply.errorMessage());
    if (answer->isAuthorized)
        return std::nullopt;
    if (answer->wasDismissed)
        return refusal("polkit.dismissed", ECANCELED);
    return refusal(mayAsk && answer->wouldAsk ? "polkit.nobodyAsks" : "polkit.refused", EACCES);
}

QByteArray ZELKPolkitAuthorization::externalForm(const ZELKAuthorization &authorization, int *status)
{
    *status = authorization.isNull() ? EINVAL : 0;
    return authorization.isNull() ? QByteArray() : authorization.form().encode();
}
