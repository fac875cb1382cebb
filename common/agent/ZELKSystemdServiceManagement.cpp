#include "ZELKSystemdServiceManagement.h"

#include "ZELKAgentFolders.h"
#include "ZELKEnvironment.h"
#include "ZELKFileManager.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cerrno>

namespace {

QString unitOf(const QString &label)
{
    return label + QStringLiteral(".service");
}

/// A label becomes a file's name.
bool isLabel(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9_][A-Za-z0-9_.-]{0,200}\\z"));
    return form.match(text).hasMatch();
}

std::optional<ZELKAgentError> errorOf(const std::optional<QString> &problem)
{
    if (!problem)
        return std::nullopt;
    return ZELKAgentError(QStringLiteral("ZELKServiceManagement"), EIO, *problem);
}

std::optional<ZELKAgentError> invalid(const QString &what)
{
    return ZELKAgentError(QStringLiteral("ZELKServiceManagement"), EINVAL, what);
}

QString userFolder(QStandardPaths::StandardLocation location, const QString &name)
{
    return QStandardPaths::writableLocation(location) + QLatin1Char('/') + name;
}

/// The user's manager knows nothing of what only a shell has set.
QMap<QString, QString> usersFolders()
{
    const ZELKAgentFolders folders = ZELKAgentFolders::ofUser();
    return {{QStringLiteral("XDG_DATA_HOME"), folders.applicationSupport},
            {QStringLiteral("XDG_CONFIG_HOME"), folders.library}};
}

} // namespace

ZELKSystemdServiceManagement::Places ZELKSystemdServiceManagement::Places::usual()
{
    const QString agent = ZELKEnvironment::current().mainBundle->infoDictionary().string(
        QStringLiteral("ZELKAgentControllerAgentName"));
    QStringList folders;
    if (!agent.isEmpty())
        folders = {userFolder(QStandardPaths::GenericDataLocation, agent),
                   userFolder(QStandardPaths::GenericConfigLocation, agent)};
    return {userFolder(QStandardPaths::GenericConfigLocation, QStringLiteral("systemd/user")),
            {folders, ZELKUnitFile::usersHaveNamespaces(), usersFolders()},
            ZELKInstallerProgram(ZELKInstallerProgram::pathInMainBundle())};
}

ZELKSystemdServiceManagement::ZELKSystemdServiceManagement(const QDBusConnection &systemBus,
                                                           const QDBusConnection &sessionBus,
                                                           int timeoutMilliseconds, const Places &places)
    : m_systemManager(systemBus, timeoutMilliseconds)
    , m_userManager(sessionBus, timeoutMilliseconds)
    , m_places(places)
{
}

const ZELKSystemdManager &ZELKSystemdServiceManagement::manager(ZELKServiceDomain domain) const
{
    return domain == ZELKServiceDomain::System ? m_systemManager : m_userManager;
}

bool ZELKSystemdServiceManagement::hasJob(const QString &label, ZELKServiceDomain domain) const
{
    if (!manager(domain).isThere())
        return false;
    const QVariantMap properties = manager(domain).unitProperties(unitOf(label));
    const QString loadState = properties.value(QStringLiteral("LoadState")).toString();
    const QString activeState = properties.value(QStringLiteral("ActiveState")).toString();
    const bool runs = !activeState.isEmpty() && activeState != QLatin1String("inactive") &&
                      activeState != QLatin1String("failed");
    return loadState == QLatin1String("loaded") || runs;
}

bool ZELKSystemdServiceManagement::isAvailable(ZELKServiceDomain domain) const
{
    return manager(domain).isThere();
}

std::optional<ZELKAgentError> ZELKSystemdServiceManagement::submitJob(const ZELKDictionary &ticket,
                                                                      ZELKServiceDomain domain,
                                                                      const ZELKAuthorization &)
{
    const QString label = ticket.string(QStringLiteral("Label"));
    if (domain != ZELKServiceDomain::User || !isLabel(label))
        return invalid(label);
    if (!m_userManager.isThere())
        return unavailable();
    const QString unit = unitOf(label);
    // What the user masked, or keeps elsewhere, is not taken away, nor is anything written over what it leads
    // to.
    if (const QString file = userUnitFile(unit); QFileInfo(file).isSymLink())
        return errorOf(file + QStringLiteral(": a symbolic link, as that of a masked unit"));
    const auto problem = submitUnit(unit, ticket);
    if (problem) {
        m_userManager.stop(unit);
        forgetUnit(unit);
    }
    return errorOf(problem);
}

/// The manager may have been started with other folders than this program. The user's own comes before those
/// of the computer.
QString ZELKSystemdServiceManagement::userUnitFile(const QString &unit) const
{
    static const QRegularExpression ofUser(QStringLiteral("\\A(?!/(etc|run|usr)/).*/systemd/user\\z"));
    const QString folder = m_userManager.unitFolders().filter(ofUser).value(0, m_places.userUnits);
    return folder + QLatin1Char('/') + unit;
}

std::optional<QString> ZELKSystemdServiceManagement::submitUnit(const QString &unit,
                                                                const ZELKDictionary &ticket) const
{
    const QString file = userUnitFile(unit);
    for (const QString &folder :
         QStringList{QFileInfo(file).path()} + m_places.surroundings.writableFolders) {
        if (const auto problem = ZELKFileManager::makeFolder(folder))
            return problem;
    }
    const QString text = ZELKUnitFile::text(ticket, m_places.surroundings);
    if (const auto problem = ZELKFileManager::writeFile(file, text.toUtf8()))
        return problem;
    if (const auto problem = m_userManager.reload())
        return problem;
    if (const auto problem = m_userManager.enable(unit))
        return problem;
    return m_userManager.start(unit);
}

std::optional<ZELKAgentError> ZELKSystemdServiceManagement::removeJob(const QString &label,
                                                                      ZELKServiceDomain domain,
                                                                      const ZELKAuthorization &)
{
    if (!isLabel(label))
        return invalid(label);
    if (!isAvailable(domain))
        return unavailable();
    if (domain == ZELKServiceDomain::System)
        return errorOf(m_places.installer.run({QStringLiteral("remove")}));
    return errorOf(removeUnit(unitOf(label)));
}

std::optional<QString> ZELKSystemdServiceManagement::removeUnit(const QString &unit) const
{
    if (const auto problem = m_userManager.stop(unit))
        return problem;
    return forgetUnit(unit);
}

std::optional<QString> ZELKSystemdServiceManagement::forgetUnit(const QString &unit) const
{
    const auto disabled = m_userManager.disable(unit);
    if (const auto problem = ZELKFileManager::remove(userUnitFile(unit)))
        return problem;
    const auto reloaded = m_userManager.reload();
    return disabled ? disabled : reloaded;
}

std::optional<ZELKAgentError> ZELKSystemdServiceManagement::blessJob(const QString &label,
                                                                     ZELKServiceDomain domain,
                                                                     const ZELKAuthorization &)
{
    if (domain != ZELKServiceDomain::System || !isLabel(label))
        return invalid(label);
    if (!isAvailable(domain))
        return unavailable();
    return errorOf(m_places.installer.run({QStringLiteral("install")}));
}

std::optional<ZELKAgentError> ZELKSystemdServiceManagement::purgeJob(const QString &label,
                                                                     ZELKServiceDomain domain,
                                                                     const ZELKAuthorization &)
{
    if (domain != ZELKServiceDomain::System || !isLabel(label))
        return invalid(label);
    if (!isAvailable(domain))
        return unavailable();
    // One word more, and not another one first: polkit knows by that for which right it asks.
    return errorOf(m_places.installer.run({QStringLiteral("remove"), QStringLiteral("--purge")}));
}
