#include "ZELKInstaller.h"

#include "ZELKBundle.h"
#include "ZELKEarlierAgent.h"
#include "ZELKFileManager.h"
#include "ZELKOwnership.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

#include <unistd.h>

namespace {

using Problem = std::optional<QString>;

constexpr int notLoaded = 5;
constexpr unsigned long millisecondsBetweenLooks = 50;

/// The first that went wrong, after all have been tried.
Problem removeAll(const QStringList &paths)
{
    Problem first;
    for (const QString &path : paths) {
        const Problem problem = ZELKFileManager::remove(path);
        if (!first)
            first = problem;
    }
    return first;
}

Problem link(const QString &target, const QString &path)
{
    if (const Problem problem = ZELKFileManager::remove(path))
        return problem;
    return QFile::link(target, path) ? Problem() : path + QStringLiteral(": cannot be made");
}

Problem copyProgram(const QString &from, const QString &to)
{
    QFile file(from);
    if (!file.open(QIODevice::ReadOnly))
        return from + QStringLiteral(": ") + file.errorString();
    return ZELKFileManager::writeFile(to, file.readAll(), ZELKFileManager::Kind::Program);
}

} // namespace

int ZELKInstaller::run(const QStringList &command, QString *complaint)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit) {
        *complaint = process.errorString();
        return -1;
    }
    *complaint = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    return process.exitCode();
}

std::optional<QString> ZELKInstaller::execute(const QStringList &command) const
{
    QString complaint;
    const int status = m_runner(command, &complaint);
    if (status == 0)
        return std::nullopt;
    return QStringLiteral("%1 (%2): %3").arg(command.join(QLatin1Char(' '))).arg(status).arg(complaint);
}

// Installing

std::optional<QString> ZELKInstaller::install(const QString &bundle, const QString &installer) const
{
    if (const Problem problem = checkBundle(bundle))
        return problem;
    if (const Problem problem = checkPlace())
        return problem;
    ZELKEarlierAgent earlier(m_place);
    Problem problem = earlier.keep();
    if (!problem) {
        problem = replace(bundle, installer);
        if (problem && earlier.isThere())
            problem = bringBack(earlier, *problem);
        else if (problem)
            purge();
    }
    earlier.forget();
    return problem;
}

std::optional<QString> ZELKInstaller::replace(const QString &bundle, const QString &installer) const
{
    Problem problem = copyAgent(bundle, installer);
    if (!problem)
        problem = makeUser();
    if (!problem)
        problem = writeFiles();
    return problem ? problem : startJob();
}

/// Answers why the new agent failed, and if need be why the earlier one did not come back.
QString ZELKInstaller::bringBack(const ZELKEarlierAgent &earlier, const QString &failure) const
{
    Problem problem = earlier.restore();
    if (!problem)
        problem = makeLinks();
    if (!problem)
        problem = startJob();
    if (!problem)
        return failure;
    return failure + QStringLiteral("; the agent that was there could not be brought back: ") + *problem;
}

/// The program has its name here and not from Info.plist, which could make anything of the unit's lines.
std::optional<QString> ZELKInstaller::checkBundle(const QString &bundle) const
{
    const ZELKBundle agent(bundle);
    const QString name = ZELKInstalledAgent::programName();
    const QFileInfo program(bundle + QLatin1Char('/') + name);
    const bool isAgent = agent.isValid() && agent.bundleIdentifier() == ZELKInstalledAgent::label() &&
                         agent.infoDictionary().string(QStringLiteral("CFBundleExecutable")) == name;
    const bool isProgram = program.isFile() && !program.isSymLink() && program.isExecutable();
    if (isAgent && isProgram)
        return std::nullopt;
    return bundle + QStringLiteral(": not the recording agent");
}

/// What is written over a link goes where the link leads: in the case of a masked unit over /dev/null. And a
/// folder that is there already may be somebody else's, who would exchange what the administrator runs.
std::optional<QString> ZELKInstaller::checkPlace() const
{
    for (const QString &file : {m_place.unit(), m_place.removalPath(), m_place.removalService(),
                                m_place.policy(), m_place.installer()}) {
        if (QFileInfo(file).isSymLink())
            return file + QStringLiteral(": a symbolic link, as that of a masked unit");
    }
    // On some systems "/opt" is a link of the administrator's.
    const QString above = QFileInfo(m_place.home()).path();
    const QString really = QFileInfo(above).canonicalFilePath();
    if (really.isEmpty())
        return std::nullopt;
    return ZELKOwnership::problemOfFolder(really + m_place.bundleFolder().mid(above.size()), ::geteuid(),
                                          QFileInfo(m_place.root()).canonicalFilePath());
}

std::optional<QString> ZELKInstaller::copyAgent(const QString &bundle, const QString &installer) const
{
    if (const Problem problem = ZELKFileManager::makeFolder(m_place.bundleFolder()))
        return problem;
    // The bundle's folder may be somebody's who goes on writing to it: what counts is what was copied.
    const auto check = [this](const QString &copy) { return checkBundle(copy); };
    if (const Problem problem = ZELKFileManager::copyFolder(bundle, m_place.bundle(), check))
        return problem;
    return copyProgram(installer, m_place.installer());
}

std::optional<QString> ZELKInstaller::writeFiles() const
{
    const std::pair<QString, QString> files[] = {
        {QStringLiteral("agent.service"), m_place.unit()},
        {QStringLiteral("removal.path"), m_place.removalPath()},
        {QStringLiteral("removal.service"), m_place.removalService()},
        {QStringLiteral("agent.conf"), m_place.policy()},
    };
    for (const QString &folder : {m_place.wantedFolder(), m_place.policyFolder()}) {
        if (const Problem problem = ZELKFileManager::makeFolder(folder))
            return problem;
    }
    for (const auto &[name, path] : files) {
        if (const Problem problem = ZELKFileManager::writeFile(path, m_place.filledTemplate(name)))
            return problem;
    }
    return makeLinks();
}

std::optional<QString> ZELKInstaller::makeLinks() const
{
    for (const QString &wanted : {m_place.unit(), m_place.removalPath()}) {
        const QString path = m_place.wantedFolder() + QLatin1Char('/') + QFileInfo(wanted).fileName();
        if (const Problem problem = link(wanted, path))
            return problem;
    }
    return std::nullopt;
}

/// Has to be there before the bus reads its policy.
std::optional<QString> ZELKInstaller::makeUser() const
{
    const QString user = QStringLiteral("u %1 - \"Lullwatch recording agent\" /var/lib/lullwatch")
                             .arg(ZELKInstalledAgent::user());
    return execute({QStringLiteral("systemd-sysusers"), QStringLiteral("--inline"), user});
}

std::optional<QString> ZELKInstaller::startJob() const
{
    const QString systemctl = QStringLiteral("systemctl");
    if (const Problem problem = reload())
        return problem;
    forgetFailures();
    for (const QString &unit : {ZELKInstalledAgent::removalPathName(), ZELKInstalledAgent::unitName()}) {
        if (const Problem problem = execute({systemctl, QStringLiteral("restart"), unit}))
            return problem;
    }
    return std::nullopt;
}

/// Else an agent that could not be started again and again keeps the next one from being started, and the
/// manager goes on naming units that have gone. It is no failure when there were none.
void ZELKInstaller::forgetFailures() const
{
    QString ignored;
    m_runner({QStringLiteral("systemctl"), QStringLiteral("reset-failed"), ZELKInstalledAgent::unitName(),
              ZELKInstalledAgent::removalPathName(), ZELKInstalledAgent::removalServiceName()},
             &ignored);
}

std::optional<QString> ZELKInstaller::reload() const
{
    const Problem bus =
        execute({QStringLiteral("busctl"), QStringLiteral("call"), QStringLiteral("org.freedesktop.DBus"),
                 QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                 QStringLiteral("ReloadConfig")});
    const Problem units = execute({QStringLiteral("systemctl"), QStringLiteral("daemon-reload")});
    return bus ? bus : units;
}

// Removing

std::optional<QString> ZELKInstaller::remove() const
{
    return removeJob({});
}

/// Stops the job first, and reloads last: until it has ended the job is known by what was loaded.
std::optional<QString> ZELKInstaller::removeJob(const QStringList &more) const
{
    for (const QString &unit : {ZELKInstalledAgent::unitName(), ZELKInstalledAgent::removalPathName()}) {
        QString complaint;
        const int status = m_runner({QStringLiteral("systemctl"), QStringLiteral("stop"), unit}, &complaint);
        if (status != 0 && status != notLoaded)
            return QStringLiteral("systemctl stop %1 (%2): %3").arg(unit).arg(status).arg(complaint);
    }
    Problem problem = removeAll(m_place.unitFiles() + QStringList{m_place.policy()} + more);
    const Problem reloaded = reload();
    forgetFailures();
    if (!problem && !QFileInfo::exists(m_place.bundle()))
        problem = removeHome();
    return problem ? problem : reloaded;
}

/// What is ours by name. The folders stay when others keep something in them.
std::optional<QString> ZELKInstaller::removeHome() const
{
    const Problem problem = removeAll({m_place.installer(), m_place.earlierBundle(),
                                       ZELKFileManager::unfinishedCopy(m_place.bundle()),
                                       ZELKFileManager::unfinishedCopy(m_place.earlierBundle())});
    for (const QString &folder : {m_place.bundleFolder(), m_place.home()})
        QDir().rmdir(folder);
    return problem;
}

std::optional<QString> ZELKInstaller::removeFiles(int millisecondsToWait) const
{
    // The units first: whoever waits for the bundle to go then finds all of it gone.
    const Problem problem = removeAll(m_place.unitFiles() + QStringList{m_place.bundle()});
    waitUntilRequestIsGone(millisecondsToWait);
    return problem;
}

/// As long as the request stands, whoever watches it would run this again and again, and after some times no
/// more, whoever asks then.
void ZELKInstaller::waitUntilRequestIsGone(int milliseconds) const
{
    QElapsedTimer time;
    time.start();
    while (QFileInfo::exists(m_place.request()) && time.elapsed() < milliseconds)
        QThread::msleep(millisecondsBetweenLooks);
}

std::optional<QString> ZELKInstaller::purge() const
{
    return removeJob({m_place.bundle()});
}
