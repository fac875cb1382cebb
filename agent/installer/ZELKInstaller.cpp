#include "ZELKInstaller.h"

#include "ZELKBundle.h"
#include "ZELKFileManager.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

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

Problem makeFolder(const QString &path)
{
    if (QDir().mkpath(path))
        return std::nullopt;
    return path + QStringLiteral(": cannot be made");
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
    Problem problem = copyAgent(bundle, installer);
    if (!problem)
        problem = makeUser();
    if (!problem)
        problem = writeFiles(ZELKBundle(m_place.bundle()).executablePath());
    if (!problem)
        problem = startJob();
    if (problem)
        purge();
    return problem;
}

/// What is executed has to lie in the bundle itself.
std::optional<QString> ZELKInstaller::checkBundle(const QString &bundle) const
{
    const ZELKBundle agent(bundle);
    const QFileInfo program(agent.executablePath());
    const bool isAgent = agent.isValid() && agent.bundleIdentifier() == ZELKInstalledAgent::label();
    const bool isProgram = program.isFile() && !program.isSymLink() && program.isExecutable() &&
                           program.absolutePath() == agent.path();
    if (isAgent && isProgram)
        return std::nullopt;
    return bundle + QStringLiteral(": not the recording agent");
}

std::optional<QString> ZELKInstaller::copyAgent(const QString &bundle, const QString &installer) const
{
    if (const Problem problem = makeFolder(m_place.bundleFolder()))
        return problem;
    if (const Problem problem = ZELKFileManager::copyFolder(bundle, m_place.bundle()))
        return problem;
    // The bundle's folder may be somebody's who goes on writing to it: what counts is what was copied.
    if (const Problem problem = checkBundle(m_place.bundle()))
        return problem;
    return copyProgram(installer, m_place.installer());
}

std::optional<QString> ZELKInstaller::writeFiles(const QString &program) const
{
    const std::pair<QString, QString> files[] = {
        {QStringLiteral("agent.service"), m_place.unit()},
        {QStringLiteral("removal.path"), m_place.removalPath()},
        {QStringLiteral("removal.service"), m_place.removalService()},
        {QStringLiteral("agent.conf"), m_place.policy()},
    };
    for (const QString &folder : {m_place.wantedFolder(), m_place.policyFolder()}) {
        if (const Problem problem = makeFolder(folder))
            return problem;
    }
    for (const auto &[name, path] : files) {
        if (const Problem problem = ZELKFileManager::writeFile(path, m_place.filledTemplate(name, program)))
            return problem;
    }
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
    for (const QString &unit : {ZELKInstalledAgent::removalPathName(), ZELKInstalledAgent::unitName()}) {
        if (const Problem problem = execute({systemctl, QStringLiteral("restart"), unit}))
            return problem;
    }
    return std::nullopt;
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
    // Until it has ended the job is known by what was loaded, so nothing is reloaded before.
    for (const QString &unit : {ZELKInstalledAgent::unitName(), ZELKInstalledAgent::removalPathName()}) {
        QString complaint;
        const int status = m_runner({QStringLiteral("systemctl"), QStringLiteral("stop"), unit}, &complaint);
        if (status != 0 && status != notLoaded)
            return QStringLiteral("systemctl stop %1 (%2): %3").arg(unit).arg(status).arg(complaint);
    }
    Problem problem = removeAll(m_place.unitFiles() + QStringList{m_place.policy()});
    const Problem reloaded = reload();
    if (!QFileInfo::exists(m_place.bundle()))
        problem = problem ? problem : ZELKFileManager::remove(m_place.home());
    return problem ? problem : reloaded;
}

std::optional<QString> ZELKInstaller::removeFiles(int millisecondsToWait) const
{
    // The units first: whoever waits for the bundle to go then finds all of it gone.
    if (const Problem problem = removeAll(m_place.unitFiles() + QStringList{m_place.bundle()}))
        return problem;
    waitUntilRequestIsGone(millisecondsToWait);
    return removeAll({m_place.policy(), m_place.installer()});
}

void ZELKInstaller::waitUntilRequestIsGone(int milliseconds) const
{
    QElapsedTimer time;
    time.start();
    while (QFileInfo::exists(m_place.request()) && time.elapsed() < milliseconds)
        QThread::msleep(millisecondsBetweenLooks);
}

std::optional<QString> ZELKInstaller::purge() const
{
    const Problem bundle = ZELKFileManager::remove(m_place.bundle());
    const Problem job = remove();
    return job ? job : bundle;
}
