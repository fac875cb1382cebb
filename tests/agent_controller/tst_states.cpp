#include "AgentFixture.h"
#include "Raised.h"

class AgentControllerStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stateFollowsTheProbes_data()
    {
        const Rows<QString, QString, int, bool, int> row;
        const QString none, other = u"org.test.other"_s;
        row("nothing", none, none, 0, false, 1);
        row("a service alone", none, none, 0, true, 6);
        row("instance, silent", none, none, 1, false, 6);
        row("two instances", none, none, 2, true, 4);
        row("user's job, silent", none, agentName, 0, false, 6);
        row("user's job, its instance seen", none, agentName, 1, true, 3);
        row("system's job", agentName, none, 0, true, 2);
        row("both jobs and an instance", agentName, agentName, 1, true, 2);
        row("both jobs and an instance, silent", agentName, agentName, 1, false, 6);
        row("somebody else's jobs", other, other, 0, false, 1);
    }
    void stateFollowsTheProbes()
    {
        const auto [systemJob, userJob, instances, answers, state] =
            Rows<QString, QString, int, bool, int>::fetch();
        AgentFixture world;
        world.services->systemJobs = {systemJob};
        world.services->userJobs = {userJob};
        world.workspace->instances[agentName] = instances;
        if (answers)
            world.agentAnswers();
        const ZELKAgentController controller(world.ports());
        QCOMPARE(controller.state(), state);
        QCOMPARE(controller.installed(), state != 1);
        QCOMPARE(controller.enabled(), state != 6);
        QCOMPARE(controller.localisedState(), u"ZELKAgentController.state.%1"_s.arg(state));
        QCOMPARE(controller.localisedStartStopLabel(),
                 u"ZELKAgentController.startStop.label.installed.%1"_s.arg(state == 1 ? 0 : 1));
    }

    void changesAreSignalledOnce()
    {
        AgentFixture world;
        world.agentRuns();
        ZELKAgentController controller(world.ports());
        const QSignalSpy state(&controller, &ZELKAgentController::stateChanged);
        const QSignalSpy installed(&controller, &ZELKAgentController::installedChanged);
        const QSignalSpy enabled(&controller, &ZELKAgentController::enabledChanged);
        const QSignalSpy version(&controller, &ZELKAgentController::agentVersionChanged);
        const QSignalSpy canUpdate(&controller, &ZELKAgentController::canUpdateChanged);
        const auto countsOfUpdate = [&] {
            controller.updateState();
            return QList{state.count(), installed.count(), enabled.count(), version.count(),
                         canUpdate.count()};
        };
        QCOMPARE(countsOfUpdate(), (QList<qsizetype>{0, 0, 0, 0, 0}));
        world.lookup->serviceName.clear(); // 4 to 6: still installed
        QCOMPARE(countsOfUpdate(), (QList<qsizetype>{1, 0, 1, 0, 0}));
        world.agentAnswers(u"2.0"_s);
        QCOMPARE(countsOfUpdate(), (QList<qsizetype>{2, 0, 2, 1, 1}));
        world.workspace->instances.clear();
        world.lookup->serviceName.clear();
        QCOMPARE(countsOfUpdate(), (QList<qsizetype>{3, 1, 2, 1, 2}));
    }

    void versionFollowsTheService_data()
    {
        const Rows<std::optional<QString>, QString, bool> row;
        row("same", u"1.0"_s, "1.0", false);
        row("newer", u"1.1"_s, "1.1", true);
        row("compared as texts", u"1.00"_s, "1.00", true);
        row("empty text", u""_s, "", true);
        row("no version", std::nullopt, "0", true);
    }
    void versionFollowsTheService()
    {
        const auto [answer, version, canUpdate] = Rows<std::optional<QString>, QString, bool>::fetch();
        AgentFixture world;
        world.agentRuns();
        world.lookup->version = answer;
        if (!answer)
            world.expectLine(u"No agent version available"_s);
        ZELKAgentController controller(world.ports());
        QCOMPARE(controller.state(), 4);
        QCOMPARE(controller.canUpdate(), canUpdate);
        world.lookup->version.reset(); // the last one outlives a call that fails
        world.expectLine(u"No agent version available"_s);
        controller.updateState();
        QCOMPARE(controller.agentVersion(), version);
        QVERIFY(!controller.agentVersion().isNull());
    }

    void defaultsWaitForTheAgent()
    {
        AgentFixture world;
        const ZELKDictionary first{{u"a"_s, 1}, {u"b"_s, 2}};
        const ZELKDictionary both{{u"a"_s, 1}, {u"b"_s, 3}};
        ZELKAgentController controller(world.ports());
        controller.setDefaultsWithDictionary(first);
        controller.setDefaultsWithDictionary({{u"b"_s, 3}});
        controller.updateState();
        QVERIFY(controller.pendingDefaults() == both);
        world.workspace->instances[agentName] = 1; // installed, but there is nobody to tell
        controller.updateState();
        QVERIFY(controller.pendingDefaults() == both);

        world.agentAnswers();
        controller.updateState();
        QVERIFY(controller.pendingDefaults().isEmpty());
        controller.setDefaultsWithDictionary(first);
        QVERIFY(world.lookup->defaults == (QList{both, first}));

        world.lookup->defaultsProblem = u"no room"_s;
        world.expectLine(u"Unable to set agent defaults: no room"_s);
        controller.setDefaultsWithDictionary(first);
        QVERIFY(controller.pendingDefaults().isEmpty());
    }

    void configurationFaults()
    {
        AgentFixture world;
        const QString name = u"ZELKAgentControllerAgentName"_s;
        const auto messageWith = [&](const ZELKDictionary &info) {
            world.useBundle(info);
            return raised([&] { ZELKAgentController(world.ports()).embeddedAgentURL(); });
        };
        const QString about = u"ZELKAgentController Info.plist "_s;
        QCOMPARE(messageWith({}), about + u"is missing ZELKAgentControllerAgentName"_s);
        QCOMPARE(messageWith({{name, 5}}), about + u"ZELKAgentControllerAgentName must be a string"_s);
        QCOMPARE(messageWith({{name, agentName}}), about + u"is missing ZELKAgentControllerAgentFolder"_s);
    }

    void namesOfApplicationAndAgent()
    {
        AgentFixture world;
        ZELKAgentController controller(world.ports(), u"org.test.other"_s);
        QCOMPARE(controller.embeddedAgentURL().toLocalFile(),
                 world.folder.filePath(u"agents/org.test.other.app"_s));
        QCOMPARE(controller.applicationName(), u"Test"_s);
        QCoreApplication::instance()->setProperty("applicationDisplayName", u"Der Test"_s);
        QCOMPARE(controller.applicationName(), u"Der Test"_s);
        QVERIFY(!raised([&] { controller.isAgentCommunicatingWithName(QString()); }).isEmpty());
        QVERIFY(!raised([&] { controller.isAgentRunningInUserSessionWithName(QString()); }).isEmpty());
    }
};

QTEST_GUILESS_MAIN(AgentControllerStates)
#include "tst_states.moc"
