#pragma once

#include "ZELKAgentError.h"
#include "ZELKAuthorizationForm.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// That this process asks for something, and as what. It carries no rights itself: whoever does what is asked
/// for asks polkit again. A value.
class ZELKAuthorization
{
public:
    ZELKAuthorization() = default;
    explicit ZELKAuthorization(const ZELKAuthorizationForm &form)
        : m_form(form)
    {
    }

    bool isNull() const { return !m_form; }
    /// Of an authorization that is not null.
    const ZELKAuthorizationForm &form() const { return *m_form; }

private:
    std::optional<ZELKAuthorizationForm> m_form;
};

/// Where authorizations come from.
class ZELKAuthorizationService
{
public:
    enum Flag : unsigned {
        InteractionAllowed = 1, ///< the user may be asked for a password
        ExtendRights = 2,       ///< the right is obtained, not only looked for
    };

    virtual ~ZELKAuthorizationService() = default;

    /// Without rights; null when none could be made.
    virtual ZELKAuthorization authorization() = 0;
    /// Blocks, with interaction for as long as the user takes. Why the right was not given, else nothing.
    virtual std::optional<ZELKAgentError> obtainRight(const ZELKAuthorization &authorization,
                                                      const QString &right, unsigned flags) = 0;
    /// The 32 bytes by which another program knows the authorization; empty, and `status` an error number,
    /// when they cannot be made.
    virtual QByteArray externalForm(const ZELKAuthorization &authorization, int *status) = 0;
};
