#include "PropertyLists.h"
#include "Rows.h"
#include "ZELKFileManager.h"
#include "ZELKInstaller.h"
#include "ZELKOwnership.h"

#include <QDirIterator>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// A bundle to install, a root to install it below, and a system that only remembers what it was told.
struct World
{
    explicit World(const QString &identifier = ZELKInstalledAgent::label(),
                   const QString &executable = ZELKInstalledAgent::programName())
        : place(folder.filePath(u"root"_s))
        , installer(place, [this](const QStringList &command, QString *complaint) {
            commands.append(command.join(u' ').remove(u"org.zelk.lullwatch."_s));
            *complaint = u"no"_s;
            return failing.isEmpty() || !commands.last().contains(failing) ? 0 : status;
        })
    {
        ::umask(022);
        writeList(bundle + u"/Info.plist"_s,
                  {{u"CFBundleIdentifier"_s, identifier}, {u"CFBundleExecutable"_s, executable}});
        writeFile(program, "program");
        ::chmod(qPrintable(program), 04755);
        writeFile(bundle + u"/deeper/text"_s, "text");
        writeFile(source, "installer");
    }

    /// Has the command of that kind fail, else the copy.
    void fail(const QString &command)
    {
        failing = command;
        commands.clear();
        if (command.isEmpty() && !QFile::link(u"/bin/true"_s, bundle + u"/link"_s))
            qFatal("no link");
    }
    std::optional<QString> install() { return installer.install(bundle, source); }
    /// What stands below the root, but for folders of the system's own.
    QStringList files() const
    {
        QStringList found;
        QDirIterator entry(folder.filePath(u"root"_s), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (entry.hasNext()) {
            entry.next();
            if (!entry.fileInfo().isDir() || entry.filePath().startsWith(place.home()))
                found.append(entry.filePath());
        }
        found.sort();
        return found;
    }

    QTemporaryDir folder;
    QString bundle = folder.filePath(u"agents/org.zelk.lullwatch.agent.app"_s);
    QString program = bundle + u"/lullwatch-agent"_s;
    QString source = folder.filePath(u"lullwatch-installer"_s);
    QStringList commands;
    QString failing;
    int status = 1;
    ZELKInstalledAgent place;
    ZELKInstaller installer;
};

constexpr uid_t nobody = 65534;

mode_t modeOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(qPrintable(path), &status) == 0 ? status.st_mode & 07777 : 0;
}

const QString restartAgent = u"systemctl restart agent.service"_s,
              stopAgent = u"systemctl stop agent.service"_s;
const QString reloadUnits = u"systemctl daemon-reload"_s;
const QString forget = u"systemctl reset-failed agent.service agent-removal.path agent-removal.service"_s;
const QString reloadBus =
    u"busctl call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus ReloadConfig"_s;

} // namespace

class Installer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installedAndRemovedInOrder()
    {
        World world;
        QVERIFY(!world.install());
        QCOMPARE(
            world.commands,
            (QStringList{
                u"systemd-sysusers --inline u _lullwatch - \"Lullwatch recording agent\" /var/lib/lullwatch"_s,
                reloadBus, reloadUnits, forget, u"systemctl restart agent-removal.path"_s, restartAgent}));
        const ZELKInstalledAgent &place = world.place;
        QCOMPARE(readFile(place.bundle() + u"/deeper/text"_s), "text");
        QCOMPARE(modeOf(place.program()), mode_t(0755)); // not what would make it somebody else
        QCOMPARE(modeOf(place.bundle() + u"/deeper/text"_s), mode_t(0644));
        QCOMPARE(modeOf(place.installer()), mode_t(0755));
        QVERIFY(
            readFile(place.unit()).contains("\nExecStart=\"" + place.program().toUtf8() + "\" --system\n"));
        QCOMPARE(QFile::symLinkTarget(place.wantedFolder() + u"/org.zelk.lullwatch.agent.service"_s),
                 place.unit());
        for (const QString &file :
             {place.unit(), place.removalPath(), place.removalService(), place.policy()})
            QVERIFY2(!readFile(file).isEmpty() && !readFile(file).contains('@' + QByteArray("LABEL")),
                     qPrintable(file));

        // The agent's request: everything but what the answer has to pass.
        world.commands.clear();
        QVERIFY(!world.installer.removeFiles(0));
        QVERIFY(world.commands.isEmpty());
        QVERIFY(!QFile::exists(place.bundle()) && !QFile::exists(place.unit()));
        QVERIFY(QFile::exists(place.policy()) && QFile::exists(place.installer()));
        QVERIFY(!world.installer.remove());
        QCOMPARE(world.commands, (QStringList{stopAgent, u"systemctl stop agent-removal.path"_s, reloadBus,
                                              reloadUnits, forget}));
        QCOMPARE(world.files(), QStringList());
    }

    void removalWaitsUntilTheRequestIsWithdrawn_data()
    {
        const Rows<bool> row; // may delete
        row("done", true);
        row("in vain", false);
    }
    void removalWaitsUntilTheRequestIsWithdrawn()
    {
        const auto [mayDelete] = Rows<bool>::fetch();
        World world;
        QVERIFY(!world.install());
        writeFile(world.place.request(), "");
        // The administrator may delete everything, and so is somebody else for a moment.
        ::chmod(qPrintable(world.folder.path()), 0755);
        ::chmod(qPrintable(world.place.bundle()), mayDelete ? 0755 : 0555);
        const uid_t user = ::geteuid();
        QCOMPARE(::seteuid(mayDelete || user != 0 ? user : nobody), 0);
        std::optional<QString> problem;
        std::unique_ptr<QThread> removal(
            QThread::create([&] { problem = world.installer.removeFiles(20000); }));
        removal->start();
        const bool isOver = removal->wait(100);
        QCOMPARE(::seteuid(user), 0);
        QVERIFY(!isOver);
        QTRY_COMPARE(QFile::exists(world.place.bundle()), !mayDelete);
        QVERIFY(QFile::remove(world.place.request()));
        QVERIFY(removal->wait());
        QCOMPARE(problem.has_value(), !mayDelete);
        ::chmod(qPrintable(world.place.bundle()), 0755);
    }

    void jobAloneIsRemovedAndWhatOthersKeepThereStays()
    {
        World world;
        QVERIFY(!world.install());
        QVERIFY(!world.installer.remove());
        QVERIFY(QFile::exists(world.place.bundle()) && !QFile::exists(world.place.unit()));
        QVERIFY(!world.install()); // over what is left
        QVERIFY(!world.installer.purge());
        QCOMPARE(world.files(), QStringList());

        const QStringList theirs{world.place.home() + u"/bin/tool"_s,
                                 world.place.bundleFolder() + u"/other"_s};
        for (const QString &file : theirs)
            writeFile(file, "theirs");
        QVERIFY(!world.install());
        QVERIFY(!world.installer.purge());
        QVERIFY(QFile::exists(theirs[0]) && QFile::exists(theirs[1]));
        QVERIFY(!QFile::exists(world.place.bundle()) && !QFile::exists(world.place.installer()));
    }

    void jobThatDoesNotStopKeepsItsFiles()
    {
        World world;
        QVERIFY(!world.install());
        world.failing = u"stop"_s;
        world.commands.clear();
        QCOMPARE(world.installer.remove(), u"systemctl stop org.zelk.lullwatch.agent.service (1): no"_s);
        QCOMPARE(world.commands, QStringList{stopAgent});
        QVERIFY(QFile::exists(world.place.unit()));
        world.status = 5; // it is not loaded
        QVERIFY(!world.installer.remove());
    }

    void failedInstallationLeavesWhatWasThere_data()
    {
        const Rows<QString> row;
        row("copy", "");
        row("user", "sysusers");
        row("bus", "busctl");
        row("start", "restart agent.service");
    }
    void failedInstallationLeavesWhatWasThere()
    {
        const auto [failing] = Rows<QString>::fetch();
        World fresh;
        fresh.fail(failing);
        QVERIFY(fresh.install());
        QCOMPARE(fresh.files(), QStringList());

        World world;
        QVERIFY(!world.install());
        const QStringList files = world.files();
        const QByteArray unit = readFile(world.place.unit()) + "# of a version before\n";
        writeFile(world.place.unit(), unit);
        writeFile(world.program, "new program");
        world.fail(failing);
        QVERIFY(world.install());
        QCOMPARE(readFile(world.place.program()), "program");
        QCOMPARE(modeOf(world.place.program()), mode_t(0755));
        QCOMPARE(modeOf(world.place.installer()), mode_t(0755));
        QCOMPARE(readFile(world.place.unit()), unit);
        QCOMPARE(world.files(), files);
        QVERIFY(!world.commands.contains(stopAgent));
        if (failing != "busctl"_L1) // without it nothing is started, neither the one nor the other
            QCOMPARE(world.commands.last(), restartAgent);
        world.failing.clear();
        QFile::remove(world.bundle + u"/link"_s);
        QVERIFY(!world.install());
        QCOMPARE(readFile(world.place.program()), "new program");
    }

    void onlyWhatNobodyElseCanChangeIsTheAdministrators()
    {
        QTemporaryDir folder;
        const QString program = folder.filePath(u"a/b/program"_s);
        writeFile(program, "x");
        QVERIFY(QFile::link(program, folder.filePath(u"a/b/link"_s)));
        const auto problem = [&](const QString &name, uid_t owner = ::getuid()) {
            return ZELKOwnership::problem(folder.filePath(name), owner, folder.path()).value_or(QString());
        };
        for (const char *name : {"a", "a/b", "a/b/program"})
            ::chmod(qPrintable(folder.filePath(QLatin1String(name))), 0755);
        QCOMPARE(problem(u"a/b/program"_s), QString());
        QVERIFY(problem(u"a/b/program"_s, ::getuid() + 1).contains("does not belong"_L1));
        QVERIFY(problem(u"a/b/link"_s).contains("symbolic link"_L1));
        QVERIFY(problem(u"a"_s).contains("symbolic link"_L1)); // inside
        QVERIFY(!problem(u"a/missing"_s).isEmpty() && ZELKOwnership::problem(u"a"_s));
        for (const char *name : {"a", "a/b", "a/b/program"}) {
            ::chmod(qPrintable(folder.filePath(QLatin1String(name))), 0775);
            QVERIFY(problem(u"a/b/program"_s).contains("can be changed"_L1));
            ::chmod(qPrintable(folder.filePath(QLatin1String(name))), 0755);
        }
    }

    void whatIsNotTheAgentIsRefused_data()
    {
        const QString agent = ZELKInstalledAgent::label(), program = ZELKInstalledAgent::programName();
        const QString lines = program + u" --system\nUser=root"_s;
        const Rows<QString, QString, QString> row; // identifier, program, what somebody did in the bundle
        row("another bundle", "org.zelk.other", program, "");
        row("another program", agent, "other", "cp -p lullwatch-agent other");
        row("lines for the unit", agent, lines, u"cp -p lullwatch-agent '%1'"_s.arg(lines));
        row("no program", agent, program, "rm lullwatch-agent");
        row("a link as bundle", agent, program, "mv $PWD $PWD.2; ln -s $PWD.2 $PWD");
        row("a link as program", agent, program, "ln -sf /bin/true lullwatch-agent");
        row("a link in the bundle", agent, program, "ln -s /bin/true deeper/link");
        row("a pipe in the bundle", agent, program, "mkfifo -m 600 pipe");
    }
    void whatIsNotTheAgentIsRefused()
    {
        const auto [identifier, program, command] = Rows<QString, QString, QString>::fetch();
        World world(identifier, program);
        QCOMPARE(QProcess::execute(u"/bin/sh"_s, {u"-c"_s, u"cd '%1'; %2"_s.arg(world.bundle, command)}), 0);
        QVERIFY(world.install());
        QCOMPARE(world.files(), QStringList());
    }

    void placeOfOthersIsLeftAlone_data()
    {
        const Rows<QString, bool> row; // what somebody did below the root; installed all the same
        const QString unit = u"; ln -s ../../outside etc/%1.%2"_s;
        row("masked unit", unit.arg(u"systemd/system/org.zelk.lullwatch.agent"_s, u"service"_s), false);
        row("link as bus policy", unit.arg(u"dbus-1/system.d/org.zelk.lullwatch.agent"_s, u"conf"_s), false);
        row("open home", "; mkdir -p opt/lullwatch; chmod 777 opt/lullwatch", false);
        row("open folder of bundles", "; mkdir -p opt/lullwatch/agents; chmod 775 opt/lullwatch/agents",
            false);
        row("link as home", "; mkdir opt home; ln -s ../home opt/lullwatch", false);
        row("link above", "; mkdir -p var/opt; ln -s var/opt opt", true);
        row("link above to an open folder", "; mkdir -p var/opt; chmod 777 var; ln -s var/opt opt", false);
    }
    void placeOfOthersIsLeftAlone()
    {
        const auto [command, isInstalled] = Rows<QString, bool>::fetch();
        World world;
        const QString before =
            u"mkdir -p '%1/etc/systemd/system' '%1/etc/dbus-1/system.d'; cd '%1'"_s.arg(world.place.root());
        QCOMPARE(QProcess::execute(u"/bin/sh"_s, {u"-c"_s, before + command}), 0);
        const QStringList files = world.files();
        QCOMPARE(!world.install(), isInstalled);
        QCOMPARE(world.files() == files, !isInstalled);
        QCOMPARE(world.commands.isEmpty(), !isInstalled);
    }

    void foldersAreRemovedWithoutFollowingLinks()
    {
        QTemporaryDir folder;
        writeFile(folder.filePath(u"outside/kept"_s), "x");
        writeFile(folder.filePath(u"tree/file"_s), "x");
        QVERIFY(QFile::link(folder.filePath(u"outside"_s), folder.filePath(u"tree/link"_s)));
        QVERIFY(!ZELKFileManager::remove(folder.filePath(u"tree"_s)));
        QVERIFY(!QFile::exists(folder.filePath(u"tree"_s)));
        QVERIFY(QFile::exists(folder.filePath(u"outside/kept"_s)));
        QVERIFY(!ZELKFileManager::remove(folder.filePath(u"tree"_s)));
    }

    void systemdUnderstandsTheUnits()
    {
        const QString analyze = QStandardPaths::findExecutable(u"systemd-analyze"_s);
        if (analyze.isEmpty())
            QSKIP("systemd-analyze is not installed");
        World world;
        QVERIFY(!world.install());
        const ZELKInstalledAgent &place = world.place;
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(
            analyze, {u"verify"_s, u"--man=no"_s, place.unit(), place.removalPath(), place.removalService()});
        QVERIFY(process.waitForFinished());
        const QString words = QString::fromUtf8(process.readAll());
        QVERIFY2(!words.contains(ZELKInstalledAgent::label()), qPrintable(words));
    }
};

QTEST_GUILESS_MAIN(Installer)
#include "tst_installer.moc"
