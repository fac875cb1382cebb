#include "Files.h"
#include "Rows.h"
#include "ZELKDictionary.h"
#include "ZELKFileManager.h"
#include "ZELKInstaller.h"
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
    explicit World(const QString &identifier = ZELKInstalledAgent::label())
        : place(folder.filePath(u"root"_s))
        , installer(place, [this](const QStringList &command, QString *complaint) {
            commands.append(command.join(u' '));
            *complaint = u"no"_s;
            return failing.isEmpty() || !commands.last().contains(failing) ? 0 : status;
        })
    {
        const ZELKDictionary info{{u"CFBundleIdentifier"_s, identifier},
                                  {u"CFBundleExecutable"_s, u"agent"_s}};
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
    QString program = bundle + u"/agent"_s;
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
const QString makeUser =
    u"systemd-sysusers --inline u lullwatch - \"Lullwatch recording agent\" /var/lib/lullwatch"_s;

} // namespace

class Installer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installedAndRemovedInOrder()
    {
        World world;
        QVERIFY(!world.install());
        QCOMPARE(world.commands, (QStringList{makeUser, reloadBus, reloadUnits, restartPath, restartAgent}));
        const ZELKInstalledAgent &place = world.place;
        QCOMPARE(readFile(place.bundle() + u"/deeper/text"_s), "text");
        QCOMPARE(modeOf(place.bundle() + u"/agent"_s), mode_t(0755)); // not what would make it somebody else
        QCOMPARE(modeOf(place.bundle() + u"/deeper/text"_s), mode_t(0644));
        QCOMPARE(modeOf(place.installer()), mode_t(0755));
        QVERIFY(
            readFile(place.unit()).contains("\nExecStart=" + place.bundle().toUtf8() + "/agent --system\n"));
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
        QVERIFY(!QFile::exists(place.bundle()) && !QFile::exists(place.unit()) &&
                !QFile::exists(place.policy()));
        QVERIFY(!world.installer.remove());
        QCOMPARE(world.commands, (QStringList{stopAgent, stopPath, reloadBus, reloadUnits}));
        QCOMPARE(world.files(), QStringList());
    }

    void policyStaysUntilTheRequestIsWithdrawn()
    {
        World world;
        QVERIFY(!world.install());
        writeFile(world.place.request(), "");
        std::unique_ptr<QThread> removal(QThread::create([&] { world.installer.removeFiles(20000); }));
        removal->start();
        QTRY_VERIFY(!QFile::exists(world.place.bundle()));
        QVERIFY(QFile::exists(world.place.policy()));
        QVERIFY(QFile::remove(world.place.request()));
        QVERIFY(removal->wait());
        QVERIFY(!QFile::exists(world.place.policy()));
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

    void whatIsNotTheAgentIsRefused_data()
    {
        const Rows<QString, QString> row;
        row("another bundle", "org.zelk.other");
        row("no program", "", "missing");
        row("a link as program", "", "link");
        row("a link in the bundle", "", "deeper/link");
        row("a pipe in the bundle", "", "pipe");
    }
    void whatIsNotTheAgentIsRefused()
    {
        const auto [identifier, fault] = Rows<QString, QString>::fetch();
        World world(identifier.isEmpty() ? ZELKInstalledAgent::label() : identifier);
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
