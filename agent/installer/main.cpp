#include "ZELKInstaller.h"
#include "ZELKOwnership.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

constexpr int wrongArguments = 2;
constexpr const char *usage =
    "usage: lullwatch-installer install | remove [--purge] | remove-files\n"
    "\n"
    "Installs the recording agent that stands beside this program for all users, or\n"
    "removes it; --purge also an agent that does not answer. It is run by lullwatch;\n"
    "only the administrator can run it.\n";

/// Somebody else was allowed to install what the administrator put there, not what he put there himself.
std::optional<QString> problemOfPlace(const QString &program, const QString &bundle)
{
    const QByteArray whoAsks = qgetenv("PKEXEC_UID");
    if (whoAsks.isEmpty() || whoAsks == "0")
        return std::nullopt;
    const auto problem = ZELKOwnership::problem(program);
    return problem ? problem : ZELKOwnership::problem(bundle);
}

std::optional<QString> install(const ZELKInstaller &installer)
{
    const QString program = QCoreApplication::applicationFilePath();
    const QString bundle = QFileInfo(program).path() + QStringLiteral("/agents/") +
                           ZELKInstalledAgent::label() + QStringLiteral(".app");
    const auto problem = problemOfPlace(program, bundle);
    // The program that runs, even when another file has its name by now.
    return problem ? problem : installer.install(bundle, QStringLiteral("/proc/self/exe"));
}

/// What is half installed is no agent, and nobody's to remove. A terminal would end this program with its
/// own.
void endOnlyWhenDone()
{
    for (const int signal : {SIGINT, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
}

/// Of two that run together the one would take away what the other has just made. It holds as long as the
/// program runs. The removal of files, which may write nowhere else, goes without: it only deletes.
void waitForOthers()
{
    const int lock = ::open("/run/lullwatch-installer.lock", O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (lock >= 0)
        ::flock(lock, LOCK_EX);
}

/// Nothing when the arguments are wrong.
std::optional<std::function<std::optional<QString>(const ZELKInstaller &)>>
operation(const QStringList &arguments)
{
    const QString command = arguments.join(QLatin1Char(' '));
    if (command == QLatin1String("install"))
        return &install;
    if (command == QLatin1String("remove"))
        return &ZELKInstaller::remove;
    if (command == QLatin1String("remove --purge"))
        return &ZELKInstaller::purge;
    if (command == QLatin1String("remove-files"))
        return [](const ZELKInstaller &installer) { return installer.removeFiles(); };
    return std::nullopt;
}

} // namespace

/// Nothing but the command is taken from whoever runs this: what is installed stands beside the program, and
/// what is run stands in the system's folders.
int main(int argc, char **argv)
{
    ::umask(022);
    qputenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin");
    QCoreApplication application(argc, argv);
    const auto perform = operation(QCoreApplication::arguments().mid(1));
    if (!perform) {
        std::fputs(usage, stderr);
        return wrongArguments;
    }
    endOnlyWhenDone();
    waitForOthers();
    const auto problem = (*perform)(ZELKInstaller(ZELKInstalledAgent(), &ZELKInstaller::run));
    if (problem)
        std::fprintf(stderr, "%s\n", qPrintable(*problem));
    return problem ? EXIT_FAILURE : EXIT_SUCCESS;
}
