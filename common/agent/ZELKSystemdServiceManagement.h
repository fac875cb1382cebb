#pragma once

#include "ZELKInstallerProgram.h"
#include "ZELKServiceManagement.h"
#include "ZELKSystemdManager.h"
#include "ZELKUnitFile.h"

#include <QDBusConnection>

/// Jobs as services of systemd: LABEL.service of the manager on the system bus or on the user's session bus.
/// The user's are made by the user's manager from their ticket, the system's by the installer program.
class ZELKSystemdServiceManagement final : public ZELKServiceManagement
{
public:
    struct Places
    {
        QString userUnits; ///< for the user's own units, where their manager does not tell where it looks
        ZELKUnitFile::Surroundings surroundings;
        ZELKInstallerProgram installer;

        /// The user's folders, and what the agent that the main bundle names keeps its records in.
        static Places usual();
    };

    /// The time limit holds for each call; a look takes three.
    ZELKSystemdServiceManagement(const QDBusConnection &systemBus, const QDBusConnection &sessionBus,
                                 int timeoutMilliseconds = ZELKServiceNames::callTimeoutMilliseconds,
                                 const Places &places = Places::usual());

    /// A job is a service whose file is there and sound, or one that still runs after its file was removed.
    bool hasJob(const QString &label, ZELKServiceDomain domain) const override;
    bool isAvailable(ZELKServiceDomain domain) const override;
    /// Of the user's domain.
    std::optional<ZELKAgentError> submitJob(const ZELKDictionary &ticket, ZELKServiceDomain domain,
                                            const ZELKAuthorization &authorization) override;
    /// The manager is told to look for changes only when the job has ended: until then the job is known by
    /// what was loaded.
    std::optional<ZELKAgentError> removeJob(const QString &label, ZELKServiceDomain domain,
                                            const ZELKAuthorization &authorization) override;
    /// Of the system's domain.
    std::optional<ZELKAgentError> purgeJob(const QString &label, ZELKServiceDomain domain,
                                           const ZELKAuthorization &authorization) override;
    /// Of the system's domain.
    std::optional<ZELKAgentError> blessJob(const QString &label, ZELKServiceDomain domain,
                                           const ZELKAuthorization &authorization) override;

private:
    const ZELKSystemdManager &manager(ZELKServiceDomain domain) const;
    QString userUnitFile(const QString &unit) const;
    std::optional<QString> submitUnit(const QString &unit, const ZELKDictionary &ticket) const;
    std::optional<QString> removeUnit(const QString &unit) const;
    std::optional<QString> forgetUnit(const QString &unit) const;

    ZELKSystemdManager m_systemManager;
    ZELKSystemdManager m_userManager;
    Places m_places;
};
