#include "ZELKSessionWorkspace.h"

#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKSystemErrorText.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <map>

namespace {

constexpr QLatin1String deletedMark(" (deleted)");
constexpr QLatin1String bundleSuffix(".app");
// What an agent is told that records nothing.
constexpr const char *errands[] = {"--backfill-", "--read-journal", "--version", "--help"};

/// Whose bundle an executable stands in; what was learnt about folders is kept for the next executable.
class BundleFinder
{
public:
    QString identifierForExecutable(const QString &executable)
    {
        if (executable.endsWith(deletedMark) && !QFileInfo::exists(executable))
            return identifierFromNames(executable.chopped(deletedMark.size()));
        return identifierForFolder(QFileInfo(executable).path());
    }

private:
    static QString identifierFromName(const QString &folder)
    {
        return folder.endsWith(bundleSuffix) ? QFileInfo(folder).fileName().chopped(bundleSuffix.size())
                                             : QString();
    }

    static QString identifierFromNames(const QString &executable)
    {
        QString folder = QFileInfo(executable).path();
        while (!folder.endsWith(bundleSuffix) && folder.size() > 1)
            folder = QFileInfo(folder).path();
        return identifierFromName(folder);
    }

    QString identifierForFolder(const QString &folder)
    {
        if (const auto known = m_known.find(folder); known != m_known.end())
            return known.value();
        QString identifier;
        if (QFileInfo::exists(folder + QStringLiteral("/Info.plist")))
            identifier = ZELKBundle(folder).bundleIdentifier();
        if (identifier.isEmpty())
            identifier = identifierFromName(folder);
        const QString above = QFileInfo(folder).path();
        if (identifier.isEmpty() && above != folder)
            identifier = identifierForFolder(above);
        m_known.insert(folder, identifier);
        return identifier;
    }

    QHash<QString, QString> m_known;
};

ZELKAgentError launchFailure(int errorNumber, const QString &reason)
{
    const QString table = ZELKAgentError::controllerDomain();
    const QString key = table + QStringLiteral(".launch.failed");
    return ZELKAgentError(QStringLiteral("ZELKWorkspace"), errorNumber,
                          ZELKEnvironment::current().mainBundle->localizedStringForKey(key, QString(), table),
                          reason);
}

/// "unix:path=…,guid=…": the part that names the place.
QByteArray withoutIdentifier(const QByteArray &busAddress)
{
    const qsizetype end = busAddress.indexOf(",guid=");
    return end < 0 ? busAddress : busAddress.left(end);
}

/// 0, or why the bundle has nothing that could be run.
int errorOfBundle(const ZELKBundle &bundle)
{
    if (!QFileInfo(bundle.path()).isDir())
        return ENOENT;
    if (!bundle.isValid() || bundle.bundleIdentifier().isEmpty() || bundle.executablePath().isEmpty())
        return EINVAL;
    const QFileInfo executable(bundle.executablePath());
    if (!executable.exists())
        return ENOENT;
    return executable.isFile() && executable.isExecutable() ? 0 : EACCES;
}

} // namespace

ZELKSessionWorkspace::ZELKSessionWorkspace(const QString &procFolder, uint userIdentifier,
                                           const QByteArray &sessionBus)
    : m_processes(procFolder)
    , m_procFolder(procFolder)
    , m_userIdentifier(userIdentifier)
    , m_sessionBus(withoutIdentifier(sessionBus))
{
}

bool ZELKSessionWorkspace::isOfThisSession(qint64 identifier, const ZELKProcessTable::Process &process) const
{
    if (process.userIdentifier != m_userIdentifier)
        return false;
    const QByteArray bus = withoutIdentifier(
        m_processes.environmentValue(identifier, QByteArrayLiteral("DBUS_SESSION_BUS_ADDRESS")));
    return bus.isEmpty() || m_sessionBus.isEmpty() || bus == m_sessionBus;
}

/// By its command line, which only the user's own processes show for certain.
bool ZELKSessionWorkspace::isErrand(qint64 identifier) const
{
    QFile file(QStringLiteral("%1/%2/cmdline").arg(m_procFolder).arg(identifier));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QList<QByteArray> words = file.readAll().split('\0').mid(1);
    return std::any_of(words.begin(), words.end(), [](const QByteArray &word) {
        const auto begins = [&](const char *option) { return word.startsWith(option); };
        return std::any_of(std::begin(errands), std::end(errands), begins);
    });
}

std::vector<ZELKRunningApplication>
ZELKSessionWorkspace::runningApplicationsWithBundleIdentifier(const QString &identifier) const
{
    if (identifier.isEmpty())
        return {};
    BundleFinder finder;
    std::map<qint64, ZELKProcessTable::Process> matches;
    for (const qint64 candidate : m_processes.identifiers()) {
        const QString executable = m_processes.executable(candidate);
        if (executable.isEmpty() || finder.identifierForExecutable(executable) != identifier)
            continue;
        const auto process = m_processes.process(candidate);
        if (process && !process->hasEnded && isOfThisSession(candidate, *process) && !isErrand(candidate))
            matches.emplace(candidate, *process);
    }
    std::vector<ZELKRunningApplication> instances;
    for (const auto &[candidate, process] : matches) {
        if (!matches.contains(process.parent))
            instances.push_back({candidate, process.startTime});
    }
    return instances;
}

int ZELKSessionWorkspace::registerBundle(const QUrl &bundle)
{
    const ZELKBundle candidate(bundle.toLocalFile());
    const int error = errorOfBundle(candidate);
    if (error == 0)
        m_registered.insert(candidate.bundleIdentifier(), bundle);
    return error;
}

std::optional<ZELKAgentError>
ZELKSessionWorkspace::launchApplicationWithBundleIdentifier(const QString &identifier,
                                                            const QStringList &arguments)
{
    const auto found = m_registered.constFind(identifier);
    if (found == m_registered.constEnd())
        return launchFailure(ENOENT, identifier);
    return launchApplicationAtURL(*found, arguments);
}

std::optional<ZELKAgentError> ZELKSessionWorkspace::launchApplicationAtURL(const QUrl &bundle,
                                                                           const QStringList &arguments)
{
    const ZELKBundle application(bundle.toLocalFile());
    if (const int error = errorOfBundle(application))
        return launchFailure(error, ZELKSystemErrorText(error));
    if (!runningApplicationsWithBundleIdentifier(application.bundleIdentifier()).empty())
        return std::nullopt;
    QProcess process;
    process.setProgram(application.executablePath());
    process.setArguments(arguments);
    process.setWorkingDirectory(QStringLiteral("/"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (process.startDetached())
        return std::nullopt;
    return launchFailure(ENOEXEC, process.errorString());
}

bool ZELKSessionWorkspace::terminate(const ZELKRunningApplication &instance)
{
    const auto process = m_processes.process(instance.processIdentifier);
    if (!process || process->startTime != instance.startTime)
        return true;
    return ::kill(pid_t(instance.processIdentifier), SIGTERM) == 0 || errno == ESRCH;
}
