#include "ZELKAgentError.h"

#include "ZELKEnvironment.h"
#include "ZELKFormat.h"

ZELKAgentError::ZELKAgentError(const QString &domain, int code, const QString &localisedDescription,
                               const QString &underlyingText)
    : m_domain(domain)
    , m_code(code)
    , m_localisedDescription(localisedDescription)
    , m_underlyingText(underlyingText)
{
}

ZELKAgentError ZELKAgentError::withCode(Code code, const QString &underlyingText)
{
    const QString key = ZELKFormat("%@.error.%d", {controllerDomain(), int(code)});
    const auto bundle = ZELKEnvironment::current().mainBundle;
    return ZELKAgentError(controllerDomain(), code,
                          bundle->localizedStringForKey(key, QString(), controllerDomain()), underlyingText);
}

QString ZELKAgentError::fullText() const
{
    if (m_underlyingText.isEmpty())
        return m_localisedDescription;
    return ZELKFormat("%@ (%@)", {m_localisedDescription, m_underlyingText});
}
