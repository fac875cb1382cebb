#include "AgentFixture.h"
#include "ZELKFileManager.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t nobody = 65534;

struct Installed : AgentFixture
{
    ZELKAgentInstallation installation{ports()};
    ZELKAgentError error;
};

} // namespace

/// Bringing the agent there and away again as a job of the system and of the user.
class Forms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFailureHasItsCodeAndEndsTheWork_data()
    {
        // What fails; the form, and whether it is started; the code, what the system said, and what was done.
        const Rows<QString, int, bool, int, QString, QString> row;
        row("system, started", "", 2, true, 0, "", "authorization, right bless 3, bless");
        row("1 no authorization", "authorization", 2, true, 1, "", "authorization");
        row("1 no right", "right", 2, true, 1, "right failed", "authorization, right bless 3");
        row("2", "bless", 2, true, 2, "bless failed", "authorization, right bless 3, bless");
        const QString asked = u"authorization, right modify 3"_s, files = asked + u", form, files"_s;
        row("system, stopped", "", 2, false, 0, "", files + u", call, remove"_s);
        row("3", "right", 2, false, 3, "right failed", asked);
        row("4", "form", 2, false, 4, "", asked + u", form"_s);
        row("6 answered no", "files", 2, false, 6, "", files + u", remove"_s);
        row("5 no answer", "call", 2, false, 5, "no answer", files + u", call"_s);
        row("7", "remove", 2, false, 7, "remove failed", files + u", call, remove"_s);
        row("user, started", "", 3, true, 0, "", "authorization, submit");
        row("13", "authorization", 3, true, 13, "", "authorization");
        row("14", "submit", 3, true, 14, "submit failed", "authorization, submit");
        row("user, stopped", "", 3, false, 0, "", "authorization, remove");
        row("19", "remove", 3, false, 19, "remove failed", "authorization, remove");
    }
    void everyFailureHasItsCodeAndEndsTheWork()
    {
        const auto [failing, state, isStart, code, underlying, calls] =
            Rows<QString, int, bool, int, QString, QString>::fetch();
        AgentFixture world;
        (state == 2 ? world.system->systemJob : world.system->userJob) = !isStart;
        world.system->failing = failing;
        if (code == 4)
            QTest::ignoreMessage(QtInfoMsg, "ZELKAgentController external form failed: 5");
        ZELKAgentController &controller = world.create();

        const auto error = isStart ? controller.startWithState(state) : controller.stop();
        QCOMPARE(world.system->calls.join(u", "_s).remove(u"org.zelk.lullwatch."_s), calls);
        QCOMPARE(error ? error->code() : 0, code);
        QCOMPARE(error ? error->underlyingText() : QString(), underlying);
        QCOMPARE(world.presented->count(), code != 0 && !isStart ? 1 : 0);
        // The job went although the files stayed.
        const bool isThere = isStart ? code == 0 : code != 0 && code != 6;
        QTRY_COMPARE(controller.state(), isThere ? state : 1);
        QVERIFY(!controller.isStateChangeExpected());
        if (calls.contains("files"_L1))
            QCOMPARE(world.system->form.size(), 32);
    }

    void silentPrivilegedAgentCannotRemoveItsFiles()
    {
        Installed world;
        QVERIFY(!world.installation.stopPrivilegedWithError(&world.error));
        QCOMPARE(world.error.code(), 5);
        QVERIFY(!world.system->calls.contains(u"remove"_s));
        // What somebody asks for who sees it so.
        world.system->systemJob = true;
        world.system->failing = u"right"_s;
        QVERIFY(!world.installation.purgePrivilegedWithError(&world.error));
        QCOMPARE(world.error.code(), 3);
        world.system->failing = u"purge"_s;
        QVERIFY(!world.installation.purgePrivilegedWithError(&world.error));
        QCOMPARE(world.error.code(), 7);
        world.system->failing.clear();
        QVERIFY(world.installation.purgePrivilegedWithError(&world.error));
        QVERIFY(!world.system->systemJob);
    }

    void userFormPutsItsFilesInPlaceAndTakesThemAway()
    {
        Installed world;
        const QString copy = world.path(u"data/org.test/org.test.agent.app"_s);
        const QString ticket = world.path(u"config/launch/org.test.agent.plist"_s);
        writeFile(copy + u"/old"_s, "x"); // of a version before
        QVERIFY(world.installation.startUserWithError(nullptr));
        QCOMPARE(readFile(copy + u"/agent"_s), "#!/bin/sh\n");
        QVERIFY(!QFile::exists(copy + u"/old"_s));
        const ZELKDictionary job{{u"Label"_s, agentName},
                                 {u"RunAtLoad"_s, true},
                                 {u"ProgramArguments"_s, QVariantList{copy + u"/agent"_s}}};
        QVERIFY(world.system->ticket == job);
        QVERIFY(listIn(readFile(ticket)) == job);

        QVERIFY(world.installation.stopUserWithError(nullptr));
        QVERIFY(!QFile::exists(copy) && !QFile::exists(ticket));
        QVERIFY(world.installation.stopUserWithError(nullptr)); // and again, with nothing left
        world.info.insert(u"ZELKAgentControllerApplicationSupportFolder"_s, u"named"_s);
        world.useInfo();
        QCOMPARE(world.installation.applicationSupportURLWithCreate(false)->toLocalFile(),
                 world.path(u"data/named"_s));
    }

    void everyFaultOfAPlaceHasItsCode_data()
    {
        // A file that stands where a folder is wanted, or one that is missing.
        const Rows<QString, QString, int> row;
        row("8", "data", "", 8);
        row("9", "", "agents/org.test.agent.app", 9);
        row("10", "", "agent.plist", 10);
        row("11", "config", "", 11);
        row("12", "config/launch/org.test.agent.plist/in the way", "", 12);
    }
    void everyFaultOfAPlaceHasItsCode()
    {
        const auto [inTheWay, missing, code] = Rows<QString, QString, int>::fetch();
        AgentFixture world;
        if (!inTheWay.isEmpty())
            writeFile(world.path(inTheWay), "");
        if (!missing.isEmpty())
            QVERIFY(QFile::rename(world.path(missing), world.path(u"elsewhere"_s)));
        ZELKAgentError error;
        QVERIFY(!ZELKAgentInstallation(world.ports()).startUserWithError(&error));
        QCOMPARE(error.code(), code);
        if (code == 8 || code == 11)
            QVERIFY2(error.underlyingText().endsWith(u": Not a directory"_s),
                     qPrintable(error.underlyingText()));
        QVERIFY(world.system->calls.isEmpty());
    }

    void everyFileThatStaysHasItsCode_data()
    {
        const Rows<QString, int> row;
        row("17", "data/org.test/org.test.agent.app/agent", 17);
        row("18", "config/launch/org.test.agent.plist", 18);
    }
    void everyFileThatStaysHasItsCode()
    {
        const auto [name, code] = Rows<QString, int>::fetch();
        Installed world;
        QVERIFY(world.installation.startUserWithError(nullptr));
        world.system->calls.clear();
        if (code == 18)
            QVERIFY(!ZELKFileManager::remove(world.path(u"data"_s)));
        // The administrator may write everywhere, and so is somebody else for a moment.
        const QString folder = QFileInfo(world.path(name)).path();
        const uid_t user = ::geteuid();
        ::chmod(qPrintable(world.folder.path()), 0755);
        ::chmod(qPrintable(folder), 0555);
        QCOMPARE(::seteuid(user == 0 ? nobody : user), 0);
        const bool stopped = world.installation.stopUserWithError(&world.error);
        QCOMPARE(::seteuid(user), 0);
        ::chmod(qPrintable(folder), 0755);
        QVERIFY(!stopped);
        QCOMPARE(world.error.code(), code);
        QVERIFY(world.system->calls.isEmpty());
    }

    void withoutAManagerNothingIsTouched()
    {
        AgentFixture world;
        world.system->hasManager = false;
        ZELKAgentController &controller = world.create();
        for (const int form : {2, 3}) {
            const auto error = controller.startWithState(form);
            QCOMPARE(error->code(), form == 2 ? 2 : 14);
            QCOMPARE(error->underlyingText(), u"ZELKAgentController.systemd.absent"_s);
        }
        QVERIFY(world.system->calls.isEmpty());
        QVERIFY(!QFile::exists(world.path(u"data"_s)) && !QFile::exists(world.path(u"config"_s)));
        QVERIFY(!controller.startWithState(4));
    }

    void faultsOfTheConfigurationAreRaised()
    {
        Installed world;
        const QUrl agent = world.installation.embeddedAgentURL();
        const auto ticket = [&] { world.installation.launchdJobTicketForAgent(agent); };
        const QString parameter = u"Invalid parameter not satisfying: "_s;
        QCOMPARE(raised([&] { world.installation.launchdJobTicketForAgent({}); }),
                 parameter + u"anAgentURL"_s);
        QCOMPARE(raised([&] { world.installation.authorizationForRight({}, 3); }), parameter + u"aRight"_s);
        QCOMPARE(raised([&] { world.installation.dataWithAuthorization({}); }),
                 parameter + u"anAuthorization"_s);
        QCOMPARE(raised([&] { world.installation.agentConnectionWithName({}); }),
                 parameter + u"anAgentName"_s);
        QFile::remove(agent.toLocalFile() + u"/Info.plist"_s);
        QCOMPARE(raised(ticket), u"ZELKAgentController bundle is malformed "_s + agent.toString());
        writeFile(world.path(u"agent.plist"_s), "no list");
        QVERIFY(raised(ticket).startsWith(u"ZELKAgentController plist is malformed: "_s));
        world.info.remove(u"ZELKAgentControllerLaunchAgentsFolder"_s);
        world.useInfo();
        QCOMPARE(raised([&] { world.installation.launchAgentsFolderURLWithCreate(true); }),
                 u"ZELKAgentController Info.plist missing ZELKAgentControllerLaunchAgentsFolder"_s);
    }
};

QTEST_GUILESS_MAIN(Forms)
#include "tst_forms.moc"
