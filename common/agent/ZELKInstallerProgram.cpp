#include "ZELKInstallerProgram.h"

#include "ZELKEnvironment.h"

#include <QProcess>

#include <unistd.h>

namespace {

// What pkexec itself ends with.
constexpr int dismissed = 126;
constexpr int refused = 127;

QString localised(const char *key)
{
    const QString table = QStringLiteral("ZELKAgentController");
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(
        table + QLatin1Char('.') + QLatin1String(key), QString(), table);
}

} // namespace

ZELKInstallerProgram::ZELKInstallerProgram(const QString &path, const QStringList &runner)
    : m_path(path)
    , m_runner(runner)
{
}

QString ZELKInstallerProgram::pathInMainBundle()
{
    return ZELKEnvironment::current().mainBundle->path() + QStringLiteral("/lullwatch-installer");
}

QStringList ZELKInstallerProgram::usualRunner()
{
    return ::geteuid() == 0 ? QStringList() : QStringList{QStringLiteral("pkexec")};
}

std::optional<QString> ZELKInstallerProgram::run(const QStringList &arguments) const
{
    QStringList words = m_runner + QStringList{m_path} + arguments;
    QProcess process;
    process.setProgram(words.takeFirst());
    process.setArguments(words);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start();
    if (!process.waitForFinished(-1))
        return process.program() + QStringLiteral(": ") + process.errorString();
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return std::nullopt;
    const bool isRunners = !m_runner.isEmpty() && process.exitStatus() == QProcess::NormalExit;
    if (isRunners && process.exitCode() == dismissed)
        return localised("polkit.dismissed");
    const QString complaint = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    if (isRunners && process.exitCode() == refused)
        return complaint.isEmpty() ? localised("polkit.refused") : complaint;
    return complaint.isEmpty() ? localised("installer.failed") : complaint;
}
