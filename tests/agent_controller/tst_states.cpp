#include "AgentFixture.h"

namespace {

/// A world in which the service's answers are the test's.
struct ServiceFixture : AgentFixture
{
    explicit ServiceFixture(bool runs = false)
    {
        lookup = std::make_shared<FakeAgentLookup>();
        if (runs)
            agentRuns();
        create();
    }
    void agentAnswers(const QString &version = u"1.0"_s)
    {
        lookup->serviceName = agentName + u"._service"_s;
        lookup->version = version;
    }
    void agentRuns()
    {
        workspace->instances[agentName] = 1;
        agentAnswers();
    }
};

} // namespace

class AgentControllerStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stateFollowsTheProbes_data()
    {
        const Rows<bool, bool, int, bool, int> row; // jobs of system and user, instances, whether it answers
        row("nothing", false, false, 0, false, 1);
        row("a service alone", false, false, 0, true, 6);
        row("instance, silent", false, false, 1, false, 6);
        row("two instances", false, false, 2, true, 4);
        row("user's job, silent", false, true, 0, false, 6);
        row("user's job, its instance seen", false, true, 1, true, 3);
        row("system's job", true, false, 0, true, 2);
        row("both jobs and an instance", true, true, 1, true, 2);
        row("both jobs and an instance, silent", true, true, 1, false, 6);
    }
    void stateFollowsTheProbes()
    {
        const auto [systemJob, userJob, instances, answers, state] =
            Rows<bool, bool, int, bool, int>::fetch();
        ServiceFixture world;
        world.system->systemJob = systemJob;
        world.system->userJob = userJob;
        world.workspace->instances[agentName] = instances;
        if (answers)
            world.agentAnswers();
        const ZELKAgentController &controller = world.create();
        QCOMPARE(controller.state(), state);
        QCOMPARE(controller.installed(), state != 1);
        QCOMPARE(controller.enabled(), state != 6);
        QCOMPARE(controller.localisedState(), u"ZELKAgentController.state.%1"_s.arg(state));
        QCOMPARE(controller.localisedStartStopLabel(),
                 u"ZELKAgentController.startStop.label.installed.%1"_s.arg(state == 1 ? 0 : 1));
    }

    void changesAreSignalledOnce()
    {
        ServiceFixture world(true);
        const QSignalSpy state(&*world.controller, &ZELKAgentController::stateChanged);
        const QSignalSpy installed(&*world.controller, &ZELKAgentController::installedChanged);
        const QSignalSpy enabled(&*world.controller, &ZELKAgentController::enabledChanged);
        const QSignalSpy version(&*world.controller, &ZELKAgentController::agentVersionChanged);
        const QSignalSpy canUpdate(&*world.controller, &ZELKAgentController::canUpdateChanged);
        const auto countsOfUpdate = [&] {
            world.controller->updateState();
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
        ServiceFixture world;
        world.agentRuns();
        world.lookup->version = answer;
        if (!answer)
            world.expectLine(u"No agent version available"_s);
        ZELKAgentController &controller = world.create();
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
        ServiceFixture world;
        const ZELKDictionary first{{u"a"_s, 1}, {u"b"_s, 2}};
        const ZELKDictionary both{{u"a"_s, 1}, {u"b"_s, 3}};
        ZELKAgentController &controller = world.create();
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
        ServiceFixture world;
        const QString name = u"ZELKAgentControllerAgentName"_s;
        const auto messageWith = [&](const ZELKDictionary &info) {
            world.info = info;
            world.useInfo();
            return raised([&] { ZELKAgentController(world.ports()).embeddedAgentURL(); });
        };
        const QString about = u"ZELKAgentController Info.plist "_s;
        QCOMPARE(messageWith({}), about + u"is missing ZELKAgentControllerAgentName"_s);
        QCOMPARE(messageWith({{name, 5}}), about + u"ZELKAgentControllerAgentName must be a string"_s);
        QCOMPARE(messageWith({{name, agentName}}), about + u"is missing ZELKAgentControllerAgentFolder"_s);
        ZELKAgentController controller(world.ports(), agentName);
        QVERIFY(!raised([&] { controller.isAgentCommunicatingWithName(QString()); }).isEmpty());
        QVERIFY(!raised([&] { controller.isAgentRunningInUserSessionWithName(QString()); }).isEmpty());
    }

    void startFallsBackToThePlaceOrHandsItsErrorBack()
    {
        ServiceFixture world;
        world.workspace->launchesByIdentifier = false;
        world.workspace->registrationStatus = 2;
        ZELKAgentController &controller = world.create();
        const QString place = world.folder.filePath(u"agents/org.test.agent.app"_s);
        const QString line = u"Helper agent URL registration failed: 2 with URL: file://"_s + place;
        const ZELKAgentError error(u"ZELKWorkspace"_s, 13, u"not started"_s);
        world.workspace->launchError = error;
        world.expectLine(line);
        QVERIFY(controller.startWithState(ZELKAgentController::SessionApplication) == error);
        QCOMPARE(world.presented->count(), 0);
        QVERIFY(!controller.isStateChangeExpected());
        QCOMPARE(controller.state(), 1);

        world.workspace->launchError.reset();
        world.expectLine(line);
        QVERIFY(!controller.startWithState(ZELKAgentController::SessionApplication));
        QCOMPARE(world.workspace->launches, (QStringList{agentName, place, agentName, place}));
        QCOMPARE(world.workspace->lastArguments, QStringList{u"--database=x"_s});
        QCOMPARE(controller.state(), 6); // it runs and has no service yet
        QVERIFY(controller.isStateChangeExpected());
    }

    void failedStopIsPresented_data()
    {
        const Rows<int, bool, int> row;
        row("none is left", 0, false, 20);
        row("two instances", 2, false, 20);
        row("refusal", 1, true, 21);
    }
    void failedStopIsPresented()
    {
        const auto [instances, refuses, code] = Rows<int, bool, int>::fetch();
        ServiceFixture world(true);
        world.workspace->instances[agentName] = instances;
        world.workspace->refusesToTerminate = refuses;

        const auto error = world.controller->stop();
        QVERIFY(error);
        QCOMPARE(error->domain(), u"ZELKAgentController"_s);
        QCOMPARE(error->code(), code);
        QCOMPARE(error->localisedDescription(), u"ZELKAgentController.error.%1"_s.arg(code));
        QCOMPARE(world.presented->count(), 1);
        QVERIFY(world.presented->first().first().value<ZELKAgentError>() == *error);
        QCOMPARE(world.workspace->terminations, 0);
        QVERIFY(!world.controller->isStateChangeExpected());
        QVERIFY(world.controller->agentVersion().isNull());
    }

    void stopWatchesUntilNothingIsLeft()
    {
        ServiceFixture world(true);
        world.workspace->terminatesLate = true;
        QVERIFY(!world.controller->stop());
        QCOMPARE(world.workspace->terminations, 1);
        QVERIFY(world.controller->agentVersion().isNull());
        QTRY_VERIFY(!world.controller->agentVersion().isNull()); // it still answers
        QCOMPARE(world.controller->state(), 4);

        world.workspace->instances.clear(); // the bus has not noticed yet
        QTRY_COMPARE(world.controller->state(), 6);
        QVERIFY(world.controller->isStateChangeExpected());
        world.lookup->serviceName.clear();
        QTRY_COMPARE(world.controller->state(), 1);
        QVERIFY(!world.controller->isStateChangeExpected());
        QVERIFY(world.controller->agentVersion().isNull());
    }

    /// Starting in a form that cannot be started, stopping what is not there to be stopped.
    void whatCannotBeDoneIsALine()
    {
        ServiceFixture world;
        for (const int form : {1, 5, 6, -1}) {
            world.expectLine(u"ZELKAgentController can not start agent: ZELKAgentController.state.1"_s);
            QVERIFY(!world.controller->startWithState(form));
            QVERIFY(!world.controller->isStateChangeExpected());
        }
        QVERIFY(world.workspace->launches.isEmpty());
        for (const int instances : {0, 1}) {
            world.workspace->instances[agentName] = instances;
            world.controller->updateState();
            world.expectLine(u"ZELKAgentController can not stop agent: ZELKAgentController.state.%1"_s.arg(
                instances ? 6 : 1));
            QVERIFY(!world.controller->stop());
        }
        QCOMPARE(world.presented->count() + world.workspace->terminations, 0);
        QVERIFY(!world.controller->isStateChangeExpected());
    }

    void slowServiceIsAskedOnceAtATime()
    {
        ServiceFixture world;
        world.agentRuns();
        world.lookup->isSlow = true;
        world.controller->expectStateChange();
        for (int look = 0; look < 3; ++look)
            world.controller->checkForStateChange();
        QCOMPARE(world.lookup->questions, 1);
        QCOMPARE(world.controller->state(), 1);
        world.lookup->answerQuestions();
        QCOMPARE(world.controller->state(), 4);
        QVERIFY(!world.controller->isStateChangeExpected());
        world.controller->checkForStateChange(); // no change is expected any more
        QCOMPARE(world.lookup->questions, 1);
    }

    void stopForgetsTheQuestionUnderWay()
    {
        ServiceFixture world(true);
        world.lookup->isSlow = true;
        world.workspace->terminatesLate = true;
        world.controller->stop();
        world.lookup->answerQuestions();
        QVERIFY(world.controller->agentVersion().isNull());
        QVERIFY(world.controller->isStateChangeExpected());
        world.controller->checkForStateChange();
        QCOMPARE(world.lookup->questions, 3);
    }
};

QTEST_GUILESS_MAIN(AgentControllerStates)
#include "tst_states.moc"
