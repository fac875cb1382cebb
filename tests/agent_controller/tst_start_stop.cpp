#include "AgentFixture.h"

class AgentControllerStartStop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startWatchesUntilTheAgentAnswers()
    {
        AgentFixture world;
        ZELKAgentController controller(world.ports());
        QVERIFY(!controller.startWithState(ZELKAgentController::SessionApplication));
        QCOMPARE(world.workspace->registered.size(), 1);
        QCOMPARE(world.workspace->launches, QStringList{agentName});
        QCOMPARE(world.workspace->lastArguments, QStringList{u"--database=x"_s});
        QCOMPARE(controller.state(), 6); // it runs and has no service yet
        QVERIFY(controller.isStateChangeExpected());

        world.agentAnswers();
        QTRY_COMPARE(controller.state(), 4);
        QVERIFY(!controller.isStateChangeExpected());
        QCOMPARE(controller.agentVersion(), u"1.0"_s);
    }

    void startFallsBackToThePlaceOrHandsItsErrorBack()
    {
        AgentFixture world;
        world.workspace->launchesByIdentifier = false;
        world.workspace->registrationStatus = 2;
        ZELKAgentController controller(world.ports());
        const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
        const QString place = world.folder.filePath(u"agents/org.test.agent.app"_s);
        const QString line = u"Helper agent URL registration failed: 2 with URL: file://"_s + place;
        const ZELKAgentError error(u"ZELKWorkspace"_s, 13, u"not started"_s);
        world.workspace->launchError = error;
        world.expectLine(line);
        QVERIFY(controller.startWithState(ZELKAgentController::SessionApplication) == error);
        QCOMPARE(presented.count(), 0);
        QVERIFY(!controller.isStateChangeExpected());
        QCOMPARE(controller.state(), 1);

        world.workspace->launchError.reset();
        world.expectLine(line);
        QVERIFY(!controller.startWithState(ZELKAgentController::SessionApplication));
        QCOMPARE(world.workspace->launches, (QStringList{agentName, place, agentName, place}));
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
        AgentFixture world;
        world.agentRuns();
        ZELKAgentController controller(world.ports());
        const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
        world.workspace->instances[agentName] = instances;
        world.workspace->refusesToTerminate = refuses;

        const auto error = controller.stop();
        QVERIFY(error);
        QCOMPARE(error->domain(), u"ZELKAgentController"_s);
        QCOMPARE(error->code(), code);
        QCOMPARE(error->localisedDescription(), u"ZELKAgentController.error.%1"_s.arg(code));
        QCOMPARE(presented.count(), 1);
        QVERIFY(presented.first().first().value<ZELKAgentError>() == *error);
        QCOMPARE(world.workspace->terminations, 0);
        QVERIFY(!controller.isStateChangeExpected());
        QVERIFY(controller.agentVersion().isNull());
    }

    void stopWatchesUntilNothingIsLeft()
    {
        AgentFixture world;
        world.agentRuns();
        ZELKAgentController controller(world.ports());
        world.workspace->terminatesLate = true;
        QVERIFY(!controller.stop());
        QCOMPARE(world.workspace->terminations, 1);
        QVERIFY(controller.agentVersion().isNull());
        QTRY_VERIFY(!controller.agentVersion().isNull()); // it still answers
        QCOMPARE(controller.state(), 4);

        world.workspace->instances.clear(); // the bus has not noticed yet
        QTRY_COMPARE(controller.state(), 6);
        QVERIFY(controller.isStateChangeExpected());
        world.lookup->serviceName.clear();
        QTRY_COMPARE(controller.state(), 1);
        QVERIFY(!controller.isStateChangeExpected());
        QVERIFY(controller.agentVersion().isNull());
    }

    /// Starting in a form that cannot be started, stopping what is not there to be stopped.
    void whatCannotBeDoneIsALine()
    {
        AgentFixture world;
        ZELKAgentController controller(world.ports());
        const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
        for (const int form : {1, 5, 6, -1}) {
            world.expectLine(u"ZELKAgentController can not start agent: ZELKAgentController.state.1"_s);
            QVERIFY(!controller.startWithState(form));
        }
        QVERIFY(world.workspace->launches.isEmpty());
        for (const int instances : {0, 1}) {
            world.workspace->instances[agentName] = instances;
            controller.updateState();
            world.expectLine(u"ZELKAgentController can not stop agent: ZELKAgentController.state.%1"_s.arg(
                instances ? 6 : 1));
            QVERIFY(!controller.stop());
        }
        QCOMPARE(presented.count() + world.workspace->terminations, 0);
        QVERIFY(!controller.isStateChangeExpected());
    }

    void slowServiceIsAskedOnceAtATime()
    {
        AgentFixture world;
        ZELKAgentController controller(world.ports());
        world.agentRuns();
        world.lookup->isSlow = true;
        controller.expectStateChange();
        for (int look = 0; look < 3; ++look)
            controller.checkForStateChange();
        QCOMPARE(world.lookup->questions, 1);
        QCOMPARE(controller.state(), 1);
        world.lookup->answerQuestions();
        QCOMPARE(controller.state(), 4);
        QVERIFY(!controller.isStateChangeExpected());
        controller.checkForStateChange(); // no change is expected any more
        QCOMPARE(world.lookup->questions, 1);
    }

    void stopForgetsTheQuestionUnderWay()
    {
        AgentFixture world;
        world.agentRuns();
        ZELKAgentController controller(world.ports());
        world.lookup->isSlow = true;
        world.workspace->terminatesLate = true;
        controller.stop();
        world.lookup->answerQuestions();
        QVERIFY(controller.agentVersion().isNull());
        QVERIFY(controller.isStateChangeExpected());
        controller.checkForStateChange();
        QCOMPARE(world.lookup->questions, 3);
    }
};

QTEST_GUILESS_MAIN(AgentControllerStartStop)
#include "tst_start_stop.moc"
