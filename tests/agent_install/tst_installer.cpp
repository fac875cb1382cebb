#include "Files.h"
#include "Rows.h"
#include "ZELKDictionary.h"
#include "ZELKFileManager.h"
#include "ZELKInstaller.h"
#include "ZELKOwnership.h"
#include "ZELKPropertyList.h"

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
            commands.append(command.join(u' '));
            *complaint = u"no"_s;
            return failing.isEmpty() || !commands.last().contains(failing) ? 0 : status;
        })
    {
        const ZELKDictionary info{{u"CFBundleIdentifier"_s, identifier},
                                  {u"CFBundleExecutable"_s, executable}};
        writeFile(bundle + u"/Info.plist"_s, ZELKPropertyList::writeXml(QVariant::fromValue(info)).bytes);
        writeFile(program, "program");
        ::chmod(qPrintable(program), 04755);
        writeFile(bundle + u"/deeper/text"_s, "text");
        writeFile(source, "installer");
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

mode_t modeOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(qPrintable(path), &status) == 0 ? status.st_mode & 07777 : 0;
}

const QString restartPath = u"systemctl restart org.zelk.lullwatch.agent-removal.path"_s;
const QString restartAgent = u"systemctl restart org.zelk.lullwatch.agent.service"_s;
const QString stopPath = u"systemctl stop org.zelk.lullwatch.agent-removal.path"_s;
const QString stopAgent = u"systemctl stop org.zelk.lullwatch.agent.service"_s;
const QString reloadBus =
    u"busctl call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus ReloadConfig"_s;
const QString reloadUnits = u"systemctl daemon-reload"_s;
const QString forget = u"systemctl reset-failed org.zelk.lullwatch.agent.service"_s;
const QString makeUser =
    u"systemd-sysusers --inline u _lullwatch - \"Lullwatch recording agent\" /var/lib/lullwatch"_s;

} // namespace

class Installer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installedAndRemovedInOrder()
    {
        World world;
        QVERIFY(!world.install());
        QCOMPARE(world.commands,
                 (QStringList{makeUser, reloadBus, reloadUnits, forget, restartPath, restartAgent}));
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
        QCOMPARE(world.commands, (QStringList{stopAgent, stopPath, reloadBus, reloadUnits, forget}));
        QCOMPARE(world.files(), QStringList());
    }

    void removalWaitsUntilTheRequestIsWithdrawn()
    {
        World world;
        QVERIFY(!world.install());
        writeFile(world.place.request(), "");
        std::unique_ptr<QThread> removal(QThread::create([&] { world.installer.removeFiles(20000); }));
        removal->start();
        QTRY_VERIFY(!QFile::exists(world.place.bundle()));
        QVERIFY(!removal->wait(100));
        QVERIFY(QFile::remove(world.place.request()));
        QVERIFY(removal->wait());
    }

    void jobAloneIsRemovedAndTheFilesStay()
    {
        World world;
        QVERIFY(!world.install());
        QVERIFY(!world.installer.remove());
        QVERIFY(QFile::exists(world.place.bundle()) && !QFile::exists(world.place.unit()));
        QVERIFY(!world.install()); // over what is left
        QVERIFY(!world.installer.purge());
        QCOMPARE(world.files(), QStringList());
    }

    void whatOthersKeepThereStays()
    {
        World world;
        writeFile(world.place.home() + u"/bin/tool"_s, "theirs");
        writeFile(world.place.bundleFolder() + u"/other"_s, "theirs");
        QVERIFY(!world.install());
        QVERIFY(!world.installer.purge());
        QVERIFY(QFile::exists(world.place.home() + u"/bin/tool"_s));
        QVERIFY(QFile::exists(world.place.bundleFolder() + u"/other"_s));
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

    void failedInstallationLeavesNothing_data()
    {
        const Rows<QString> row;
        row("user", "sysusers");
        row("bus", "busctl");
        row("start", "restart org.zelk.lullwatch.agent.service");
    }
    void failedInstallationLeavesNothing()
    {
        const auto [failing] = Rows<QString>::fetch();
        World world;
        world.failing = failing;
        QVERIFY(world.install());
        QCOMPARE(world.files(), QStringList());
    }

    void failedReplacementBringsTheEarlierAgentBack_data()
    {
        const Rows<QString> row;
        row("copy", "");
        row("user", "sysusers");
        row("bus", "busctl");
        row("start", "restart org.zelk.lullwatch.agent.service");
    }
    void failedReplacementBringsTheEarlierAgentBack()
    {
        const auto [failing] = Rows<QString>::fetch();
        World world;
        QVERIFY(!world.install());
        QStringList files = world.files();
        const QByteArray unit = readFile(world.place.unit()) + "# of a version before\n";
        writeFile(world.place.unit(), unit);
        writeFile(world.program, "new program");
        if (failing.isEmpty())
            QVERIFY(QFile::link(u"/bin/true"_s, world.bundle + u"/link"_s));
        world.failing = failing;
        world.commands.clear();
        QVERIFY(world.install());
        QCOMPARE(readFile(world.place.program()), "program");
        QCOMPARE(modeOf(world.place.program()), mode_t(0755));
        QCOMPARE(modeOf(world.place.installer()), mode_t(0755));
        QCOMPARE(readFile(world.place.unit()), unit);
        QStringList found = world.files();
        files.sort();
        found.sort();
        QCOMPARE(found, files);
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
        const Rows<QString, QString> row;
        row("another bundle", "org.zelk.other");
        row("another program", "", "other");
        row("lines for the unit", "", "lullwatch-agent --system\nUser=root");
        row("no program", "", "missing");
        row("a link as bundle", "", "bundle");
        row("a link as program", "", "link");
        row("a link in the bundle", "", "deeper/link");
        row("a pipe in the bundle", "", "pipe");
    }
    void whatIsNotTheAgentIsRefused()
    {
        const auto [identifier, fault] = Rows<QString, QString>::fetch();
        const bool isOther = fault == "other"_L1 || fault.contains(u'\n');
        World world(identifier.isEmpty() ? ZELKInstalledAgent::label() : identifier,
                    isOther ? fault : ZELKInstalledAgent::programName());
        if (isOther) {
            writeFile(world.bundle + u'/' + fault, "x");
            ::chmod(qPrintable(world.bundle + u'/' + fault), 0755);
        }
        if (fault == "bundle"_L1) {
            QVERIFY(QFile::rename(world.bundle, world.bundle + u"2"_s));
            QVERIFY(QFile::link(world.bundle + u"2"_s, world.bundle));
        }
        if (fault == "missing"_L1 || fault == "link"_L1)
            QVERIFY(QFile::remove(world.program));
        if (fault.endsWith("link"_L1))
            QVERIFY(QFile::link(u"/bin/true"_s,
                                fault == "link"_L1 ? world.program : world.bundle + u'/' + fault));
        if (fault == "pipe"_L1)
            QCOMPARE(::mkfifo(qPrintable(world.bundle + u"/pipe"_s), 0600), 0);
        QVERIFY(world.install());
        QCOMPARE(world.files(), QStringList());
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
