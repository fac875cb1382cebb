#include "AgentFixture.h"
#include "ZELKSessionWorkspace.h"

#include <cerrno>
#include <csignal>

class AgentControllerWorkspace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QDir().mkpath(path(u"proc"_s));
        const QString identifier = u"CFBundleIdentifier"_s;
        writeList(path(u"main/Info.plist"_s), {{identifier, u"org.test"_s}});
        writeList(path(u"main/a.app/Info.plist"_s), {{identifier, agentName}});
        writeFile(path(u"main/a.app/bin/agent (deleted)"_s), "");
        writeList(path(u"main/org.test.agent.app/Info.plist"_s), {{identifier, u"org.test.renamed"_s}});
    }

    void scan_data()
    {
        const Rows<QString, bool, QString, int, QByteArray> row; // executable; found; state, user, words
        row("in its bundle", "main/a.app/x/y/agent", true, "R", 7);
        row("zombie", "main/a.app/agent", false, "Z", 7);
        row("somebody else's", "main/a.app/agent", false, "S", 9);
        row("the application's own", "main/bin/lullwatch", false, "S", 7);
        row("no bundle", "bin/agent", false, "S", 7);
        row("Info.plist goes before the name", "main/org.test.agent.app/x", false, "S", 7);
        row("name without Info.plist", "gone/org.test.agent.app/x", true, "S", 7);
        row("deleted", "main/org.test.agent.app/bin/x (deleted)", true, "S", 7);
        row("deleted, other folder", "main/a.app/bin/x (deleted)", false, "S", 7);
        row("called so", "main/a.app/bin/agent (deleted)", true, "S", 7);
        row("deleted, no bundle", "bin/x (deleted)", false, "S", 7);
        row("no executable to be seen", "", false, "S", 7);
        row("recording", "main/a.app/agent", true, "S", 7, "agent|--database|x");
        // One that only reads the past, or tells of itself, is no agent that could be stopped.
        for (const char *words : {"agent|--backfill-wtmp|x", "agent|--backfill-upower=x", "agent|--version",
                                  "agent|--read-journal|1"})
            row(words, "main/a.app/agent", false, "S", 7, words);
    }
    void scan()
    {
        auto [executable, found, state, user, words] = Rows<QString, bool, QString, int, QByteArray>::fetch();
        addProcess(u"42"_s, executable, state, user);
        writeFile(path(u"proc/42/cmdline"_s), words.replace('|', '\0') + '\0');
        const auto instances = fakeWorkspace().runningApplicationsWithBundleIdentifier(agentName);
        QCOMPARE(!instances.empty(), found);
        QVERIFY(!found || instances.front() == (ZELKRunningApplication{42, 7742}));
        QVERIFY(fakeWorkspace().runningApplicationsWithBundleIdentifier(QString()).empty());
    }

    void scanPassesOverWhatIsNoProcess()
    {
        for (const QString &name : {u"self"_s, u"-3"_s, u"0"_s, u"43"_s, u"44"_s, u"45"_s})
            addProcess(name);
        writeFile(path(u"proc/43/stat"_s), "43 (cut short) S 1");
        QFile::remove(path(u"proc/44/status"_s));
        writeFile(path(u"proc/45/status"_s), "Name:\tx\nUid:\tnone");
        QVERIFY(fakeWorkspace().runningApplicationsWithBundleIdentifier(agentName).empty());
        const ZELKSessionWorkspace nowhere(path(u"nowhere"_s), 7);
        QVERIFY(nowhere.runningApplicationsWithBundleIdentifier(agentName).empty());
    }

    void childrenBelongToTheirInstance()
    {
        addProcess(u"9"_s, u"main/a.app/agent"_s, u"S"_s, 7, 52); // numbers wrap around
        addProcess(u"50"_s);
        addProcess(u"51"_s);
        addProcess(u"52"_s, u"main/a.app/agent"_s, u"S"_s, 7, 50);
        const auto instances = fakeWorkspace().runningApplicationsWithBundleIdentifier(agentName);
        QCOMPARE(instances.size(), 2U);
        QCOMPARE(instances[0].processIdentifier, 50);
        QCOMPARE(instances[1].processIdentifier, 51);
    }

    void sessionsHaveTheirOwnBus()
    {
        const QByteArray environments[] = {"HOME=/|DBUS_SESSION_BUS_ADDRESS=unix:path=/ours,guid=1|",
                                           "DBUS_SESSION_BUS_ADDRESS=unix:path=/theirs,guid=2|", "HOME=/|"};
        int pid = 50;
        for (QByteArray environment : environments) {
            addProcess(QString::number(pid));
            writeFile(path(u"proc/%1/environ"_s.arg(pid++)), environment.replace('|', '\0'));
        }
        const auto countFor = [this](const QByteArray &bus) {
            const ZELKSessionWorkspace workspace(path(u"proc"_s), 7, bus);
            return workspace.runningApplicationsWithBundleIdentifier(agentName).size();
        };
        QCOMPARE(countFor("unix:path=/ours,guid=3"), 2U);
        QCOMPARE(countFor({}), 3U);
    }

    void registration_data()
    {
        const Rows<ZELKDictionary, int, int> row;
        const ZELKDictionary::Item name{u"CFBundleIdentifier"_s, agentName};
        const ZELKDictionary::Item program{u"CFBundleExecutable"_s, u"agent"_s};
        row("sound", ZELKDictionary{name, program}, 0x5000, 0);
        row("no identifier", ZELKDictionary{program}, 0x5000, EINVAL);
        row("no executable named", ZELKDictionary{name}, 0x5000, EINVAL);
        row("no executable there", ZELKDictionary{name, program}, 0, ENOENT);
        row("may not be run", ZELKDictionary{name, program}, 0x4000, EACCES);
    }
    void registration()
    {
        const auto [info, permissions, status] = Rows<ZELKDictionary, int, int>::fetch();
        const QString bundle = path(u"agents/x.app"_s);
        writeList(bundle + u"/Info.plist"_s, info);
        const QString program = ZELKBundle(bundle).executablePath();
        if (permissions && !program.isEmpty()) {
            writeFile(program, "#!/bin/false\n");
            QVERIFY(QFile::setPermissions(program, QFile::Permissions(permissions)));
        }
        ZELKSessionWorkspace workspace = fakeWorkspace();
        QCOMPARE(workspace.registerBundle(QUrl::fromLocalFile(bundle)), status);
        QCOMPARE(workspace.registerBundle(QUrl::fromLocalFile(path(u"agents/none.app"_s))), ENOENT);
    }

    void launchAndTerminate()
    {
        const QUrl bundle = sleeper();
        ZELKSessionWorkspace workspace;
        QCOMPARE(workspace.registerBundle(bundle), 0);
        QVERIFY(!workspace.launchApplicationWithBundleIdentifier(agentName, {u"300"_s}));
        const auto instances = workspace.runningApplicationsWithBundleIdentifier(agentName);
        QCOMPARE(instances.size(), 1U);
        QVERIFY(!workspace.launchApplicationAtURL(bundle, {u"300"_s}));
        QVERIFY(workspace.runningApplicationsWithBundleIdentifier(agentName) == instances);
        QVERIFY(workspace.terminate(instances.front()));
        QTRY_VERIFY(workspace.runningApplicationsWithBundleIdentifier(agentName).empty());
        QVERIFY(workspace.terminate(instances.front())); // has ended
    }

    void launchFailures()
    {
        const QUrl bundle = sleeper();
        ZELKSessionWorkspace workspace = fakeWorkspace();
        QCOMPARE(workspace.launchApplicationWithBundleIdentifier(agentName, {}).value().code(), ENOENT);
        writeFile(ZELKBundle(bundle.toLocalFile()).executablePath(), "\177ELF is not what follows");
        const auto error = workspace.launchApplicationAtURL(bundle, {});
        QVERIFY(error);
        QCOMPARE(error->domain(), u"ZELKWorkspace"_s);
        QCOMPARE(error->localisedDescription(), u"ZELKAgentController.launch.failed"_s);
        QVERIFY(!error->underlyingText().isEmpty());
    }

    void terminatesNobodyElse()
    {
        // The number of this very process, as if it had been somebody else's before.
        static volatile std::sig_atomic_t isAsked = 0;
        const auto former = std::signal(SIGTERM, [](int) { isAsked = 1; });
        QVERIFY(ZELKSessionWorkspace().terminate({QCoreApplication::applicationPid(), 1}));
        std::signal(SIGTERM, former);
        QCOMPARE(int(isAsked), 0);
    }

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void addProcess(const QString &pid, const QString &executable = u"main/a.app/agent"_s,
                    const QString &state = u"S"_s, int user = 7, int parent = 1)
    {
        const QString folder = path(u"proc/"_s + pid);
        writeFile(folder + u"/stat"_s,
                  u"%1 (odd ) name) %2 %3 1 1 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 77%1 9 9\n"_s
                      .arg(pid, state, QString::number(parent))
                      .toUtf8());
        writeFile(folder + u"/status"_s,
                  u"Name:\todd ) name\nState:\t%1\nUid:\t%2\t9\t9\t9\nGid:\t0\t0\t0\t0\n"_s
                      .arg(state, QString::number(user))
                      .toUtf8());
        if (!executable.isEmpty())
            QVERIFY(QFile::link(path(executable), folder + u"/exe"_s));
    }
    ZELKSessionWorkspace fakeWorkspace() const { return ZELKSessionWorkspace(path(u"proc"_s), 7); }
    /// A bundle whose program sleeps.
    QUrl sleeper() const
    {
        const QString bundle = path(u"agents/sleeper.app"_s);
        writeList(bundle + u"/Info.plist"_s,
                  {{u"CFBundleIdentifier"_s, agentName}, {u"CFBundleExecutable"_s, u"agent"_s}});
        const QString program = ZELKBundle(bundle).executablePath();
        QDir().mkpath(QFileInfo(program).path());
        QFile::copy(QFileInfo(u"/bin/sleep"_s).canonicalFilePath(), program);
        return QUrl::fromLocalFile(bundle);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(AgentControllerWorkspace)
#include "tst_workspace.moc"
