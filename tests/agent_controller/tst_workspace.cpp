#include "TestBundle.h"
#include "ZELKSessionWorkspace.h"

#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>

namespace {

const QString identifier = QStringLiteral("org.test.agent");

} // namespace

class AgentControllerWorkspace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void scan_data();
    void scan();
    void scanPassesOverWhatIsNoProcess();
    void childrenBelongToTheirInstance();
    void sessionsHaveTheirOwnBus();
    void registration_data();
    void registration();
    void launchAndTerminate();
    void launchFailures();
    void terminatesNobodyElse();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void addProcess(const QString &pid, const QString &executable, const QString &state = QStringLiteral("S"),
                    int user = 7, int parent = 1)
    {
        const QString folder = path(QStringLiteral("proc/") + pid);
        writeTestFile(
            folder + QStringLiteral("/stat"),
            QStringLiteral("%1 (odd ) name) %2 %3 1 1 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 77%1 9 9\n")
                .arg(pid, state)
                .arg(parent)
                .toUtf8());
        writeTestFile(folder + QStringLiteral("/status"),
                      QStringLiteral("Name:\todd ) name\nState:\t%1\nUid:\t%2\t9\t9\t9\nGid:\t0\t0\t0\t0\n")
                          .arg(state)
                          .arg(user)
                          .toUtf8());
        if (!executable.isEmpty())
            QVERIFY(QFile::link(executable, folder + QStringLiteral("/exe")));
    }
    ZELKSessionWorkspace fakeWorkspace() const
    {
        return ZELKSessionWorkspace(path(QStringLiteral("proc")), 7);
    }
    /// A bundle whose program sleeps.
    QUrl sleeper() const
    {
        const QString bundle = path(QStringLiteral("agents/sleeper.app"));
        writeTestBundle(bundle, {{QStringLiteral("CFBundleIdentifier"), identifier},
                                 {QStringLiteral("CFBundleExecutable"), QStringLiteral("agent")}});
        const QString program = ZELKBundle(bundle).executablePath();
        QDir().mkpath(QFileInfo(program).path());
        QFile::copy(QFileInfo(QStringLiteral("/bin/sleep")).canonicalFilePath(), program);
        return QUrl::fromLocalFile(bundle);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void AgentControllerWorkspace::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QDir().mkpath(path(QStringLiteral("proc")));
    writeTestBundle(path(QStringLiteral("main")),
                    {{QStringLiteral("CFBundleIdentifier"), QStringLiteral("org.test")}});
    writeTestBundle(path(QStringLiteral("main/a.app")), {{QStringLiteral("CFBundleIdentifier"), identifier}});
    writeTestFile(path(QStringLiteral("main/a.app/bin/agent (deleted)")), "");
    writeTestBundle(path(QStringLiteral("main/org.test.agent.app")),
                    {{QStringLiteral("CFBundleIdentifier"), QStringLiteral("org.test.renamed")}});
}

void AgentControllerWorkspace::scan_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("state");
    QTest::addColumn<int>("user");
    QTest::addColumn<bool>("found");
    const QString sleeping = QStringLiteral("S");
    const auto inMain = [](const char *name) { return QStringLiteral("main/") + QLatin1String(name); };
    QTest::newRow("in its bundle") << inMain("a.app/agent") << sleeping << 7 << true;
    QTest::newRow("deep in its bundle") << inMain("a.app/x/y/agent") << sleeping << 7 << true;
    QTest::newRow("runs") << inMain("a.app/agent") << QStringLiteral("R") << 7 << true;
    QTest::newRow("zombie") << inMain("a.app/agent") << QStringLiteral("Z") << 7 << false;
    QTest::newRow("somebody else's") << inMain("a.app/agent") << sleeping << 9 << false;
    QTest::newRow("the application's own") << inMain("bin/lullwatch") << sleeping << 7 << false;
    QTest::newRow("no bundle") << QStringLiteral("bin/agent") << sleeping << 7 << false;
    QTest::newRow("Info.plist goes before the name")
        << inMain("org.test.agent.app/x") << sleeping << 7 << false;
    QTest::newRow("name without Info.plist")
        << QStringLiteral("gone/org.test.agent.app/x") << sleeping << 7 << true;
    QTest::newRow("deleted") << inMain("org.test.agent.app/bin/x (deleted)") << sleeping << 7 << true;
    QTest::newRow("deleted, other folder") << inMain("a.app/bin/x (deleted)") << sleeping << 7 << false;
    QTest::newRow("called so") << inMain("a.app/bin/agent (deleted)") << sleeping << 7 << true;
    QTest::newRow("deleted, no bundle") << QStringLiteral("bin/x (deleted)") << sleeping << 7 << false;
    QTest::newRow("no executable to be seen") << QString() << sleeping << 7 << false;
}

void AgentControllerWorkspace::scan()
{
    QFETCH(QString, executable);
    QFETCH(QString, state);
    QFETCH(int, user);
    addProcess(QStringLiteral("42"), executable.isEmpty() ? executable : path(executable), state, user);
    const auto instances = fakeWorkspace().runningApplicationsWithBundleIdentifier(identifier);
    QTEST(!instances.empty(), "found");
    if (!instances.empty())
        QVERIFY(instances.front() == (ZELKRunningApplication{42, 7742}));
    QVERIFY(fakeWorkspace().runningApplicationsWithBundleIdentifier(QString()).empty());
}

void AgentControllerWorkspace::scanPassesOverWhatIsNoProcess()
{
    const QString executable = path(QStringLiteral("main/a.app/agent"));
    addProcess(QStringLiteral("self"), executable);
    addProcess(QStringLiteral("-3"), executable);
    addProcess(QStringLiteral("0"), executable);
    addProcess(QStringLiteral("43"), executable);
    addProcess(QStringLiteral("44"), executable);
    addProcess(QStringLiteral("45"), executable);
    writeTestFile(path(QStringLiteral("proc/43/stat")), "43 (cut short) S 1");
    QFile::remove(path(QStringLiteral("proc/44/status")));
    writeTestFile(path(QStringLiteral("proc/45/status")), "Name:\tx\nUid:\tnone");
    QVERIFY(fakeWorkspace().runningApplicationsWithBundleIdentifier(identifier).empty());
    QVERIFY(ZELKSessionWorkspace(path(QStringLiteral("nowhere")), 7)
                .runningApplicationsWithBundleIdentifier(identifier)
                .empty());
}

void AgentControllerWorkspace::childrenBelongToTheirInstance()
{
    const QString executable = path(QStringLiteral("main/a.app/agent"));
    addProcess(QStringLiteral("9"), executable, QStringLiteral("S"), 7, 52); // numbers wrap around
    addProcess(QStringLiteral("50"), executable);
    addProcess(QStringLiteral("51"), executable);
    addProcess(QStringLiteral("52"), executable, QStringLiteral("S"), 7, 50);
    const auto instances = fakeWorkspace().runningApplicationsWithBundleIdentifier(identifier);
    QCOMPARE(instances.size(), 2U);
    QCOMPARE(instances[0].processIdentifier, 50);
    QCOMPARE(instances[1].processIdentifier, 51);
}

void AgentControllerWorkspace::sessionsHaveTheirOwnBus()
{
    const QString executable = path(QStringLiteral("main/a.app/agent"));
    const auto addProcessOf = [&](const QString &pid, const QByteArray &environment) {
        addProcess(pid, executable);
        writeTestFile(path(QStringLiteral("proc/%1/environ").arg(pid)),
                      QByteArray(environment).replace('|', '\0'));
    };
    addProcessOf(QStringLiteral("50"), "HOME=/|DBUS_SESSION_BUS_ADDRESS=unix:path=/ours,guid=1|");
    addProcessOf(QStringLiteral("51"), "DBUS_SESSION_BUS_ADDRESS=unix:path=/theirs,guid=2|");
    addProcessOf(QStringLiteral("52"), "HOME=/|");
    const auto countFor = [this](const QByteArray &bus) {
        return ZELKSessionWorkspace(path(QStringLiteral("proc")), 7, bus)
            .runningApplicationsWithBundleIdentifier(identifier)
            .size();
    };
    QCOMPARE(countFor("unix:path=/ours,guid=3"), 2U);
    QCOMPARE(countFor({}), 3U);
}

void AgentControllerWorkspace::registration_data()
{
    QTest::addColumn<ZELKDictionary>("info");
    QTest::addColumn<bool>("hasProgram");
    QTest::addColumn<int>("permissions");
    QTest::addColumn<int>("status");
    const ZELKDictionary::Item name{QStringLiteral("CFBundleIdentifier"), identifier};
    const ZELKDictionary::Item program{QStringLiteral("CFBundleExecutable"), QStringLiteral("agent")};
    QTest::newRow("sound") << ZELKDictionary{name, program} << true << 0x5000 << 0;
    QTest::newRow("no identifier") << ZELKDictionary{program} << true << 0x5000 << EINVAL;
    QTest::newRow("no executable named") << ZELKDictionary{name} << true << 0x5000 << EINVAL;
    QTest::newRow("no executable there") << ZELKDictionary{name, program} << false << 0 << ENOENT;
    QTest::newRow("may not be run") << ZELKDictionary{name, program} << true << 0x4000 << EACCES;
}

void AgentControllerWorkspace::registration()
{
    QFETCH(ZELKDictionary, info);
    QFETCH(bool, hasProgram);
    QFETCH(int, permissions);
    const QString bundle = path(QStringLiteral("agents/x.app"));
    writeTestBundle(bundle, info);
    const QString program = ZELKBundle(bundle).executablePath();
    if (hasProgram && !program.isEmpty()) {
        writeTestFile(program, "#!/bin/false\n");
        QVERIFY(QFile::setPermissions(program, QFile::Permissions(permissions)));
    }
    ZELKSessionWorkspace workspace = fakeWorkspace();
    QTEST(workspace.registerBundle(QUrl::fromLocalFile(bundle)), "status");
    QCOMPARE(workspace.registerBundle(QUrl::fromLocalFile(path(QStringLiteral("agents/none.app")))), ENOENT);
}

void AgentControllerWorkspace::launchAndTerminate()
{
    const QUrl bundle = sleeper();
    ZELKSessionWorkspace workspace;
    QCOMPARE(workspace.registerBundle(bundle), 0);
    const QStringList arguments{QStringLiteral("300")};
    QVERIFY(!workspace.launchApplicationWithBundleIdentifier(identifier, arguments));
    const auto instances = workspace.runningApplicationsWithBundleIdentifier(identifier);
    QCOMPARE(instances.size(), 1U);
    QVERIFY(!workspace.launchApplicationAtURL(bundle, arguments));
    QVERIFY(workspace.runningApplicationsWithBundleIdentifier(identifier) == instances);

    QVERIFY(workspace.terminate(instances.front()));
    QTRY_VERIFY(workspace.runningApplicationsWithBundleIdentifier(identifier).empty());
    QVERIFY(workspace.terminate(instances.front())); // has ended
}

void AgentControllerWorkspace::launchFailures()
{
    const QUrl bundle = sleeper();
    ZELKSessionWorkspace workspace = fakeWorkspace();
    const auto unknown = workspace.launchApplicationWithBundleIdentifier(identifier, {});
    QVERIFY(unknown);
    QCOMPARE(unknown->code(), ENOENT);

    writeTestFile(ZELKBundle(bundle.toLocalFile()).executablePath(), "\x7f"
                                                                     "ELF is not what follows");
    const auto error = workspace.launchApplicationAtURL(bundle, {});
    QVERIFY(error);
    QCOMPARE(error->domain(), QStringLiteral("ZELKWorkspace"));
    QCOMPARE(error->localisedDescription(), QStringLiteral("ZELKAgentController.launch.failed"));
    QVERIFY(!error->underlyingText().isEmpty());
}

void AgentControllerWorkspace::terminatesNobodyElse()
{
    // The number of this very process, as if it had been somebody else's before.
    static volatile std::sig_atomic_t isAsked = 0;
    const auto former = std::signal(SIGTERM, [](int) { isAsked = 1; });
    QVERIFY(ZELKSessionWorkspace().terminate({QCoreApplication::applicationPid(), 1}));
    std::signal(SIGTERM, former);
    QCOMPARE(int(isAsked), 0);
}

QTEST_GUILESS_MAIN(AgentControllerWorkspace)
#include "tst_workspace.moc"
