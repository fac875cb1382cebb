#pragma once

#include "ZELKAuthorization.h"

#include <QDBusConnection>

/// Rights as actions of polkit, asked for this process. The administrator has them all.
class ZELKPolkitAuthorization final : public ZELKAuthorizationService
{
public:
    /// How long the user may take over a password.
    static constexpr int millisecondsToAsk = 300'000;

    explicit ZELKPolkitAuthorization(const QDBusConnection &systemBus, bool isAdministrator);
    /// Of the user that runs this process.
    explicit ZELKPolkitAuthorization(const QDBusConnection &systemBus);

    ZELKAuthorization authorization() override;
    std::optional<ZELKAgentError> obtainRight(const ZELKAuthorization &authorization, const QString &right,
                                              unsigned flags) override;
    QByteArray externalForm(const ZELKAuthorization &authorization, int *status) override;

private:
    QDBusConnection m_systemBus;
    bool m_isAdministrator;
};
