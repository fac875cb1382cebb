#include "ZELKInstaller.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>
#include <cstdlib>

#include <sys/stat.h>

namespace {

constexpr int wrongArguments = 2;
constexpr const char *usage =
    "usage: lullwatch-installer install | remove | remove-files | purge\n"
    "\n"
    "Installs the recording agent that stands beside this program for all users, or\n"
    "removes it. It is run by lullwatch; only the administrator can run it.\n";

std::optional<QString> perform(const ZELKInstaller &installer, const QString &command)
{
    const QString program = QCoreApplication::applicationFilePath();
    if (command == QLatin1String("install"))
        return installer.install(QFileInfo(program).path() + QStringLiteral("/agents/") +
                                     ZELKInstalledAgent::label() + QStringLiteral(".app"),
                                 program);
    if (command == QLatin1String("remove"))
        return installer.remove();
    if (command == QLatin1String("remove-files"))
        return installer.removeFiles();
    return installer.purge();
}

} // namespace

/// Nothing but the command is taken from whoever runs this: what is installed stands beside the program.
int main(int argc, char **argv)
{
    ::umask(022);
    QCoreApplication application(argc, argv);
    const QString command = argc == 2 ? QString::fromLocal8Bit(argv[1]) : QString();
    if (!QStringList{QStringLiteral("install"), QStringLiteral("remove"), QStringLiteral("remove-files"),
                     QStringLiteral("purge")}
             .contains(command)) {
        std::fputs(usage, stderr);
        return wrongArguments;
    }
    const auto problem = perform(ZELKInstaller(ZELKInstalledAgent(), &ZELKInstaller::run), command);
    if (problem)
        std::fprintf(stderr, "%s\n", qPrintable(*problem));
    return problem ? EXIT_FAILURE : EXIT_SUCCESS;
}
