#include "AgentFixture.h"
#include "ZELKAgentController.h"

#include <QSignalSpy>

class AgentControllerStartStop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startWatchesUntilTheAgentAnswers();
    void startFallsBackToThePlace();
    void failedStartIsHandedBack();
    void unknownFormStartsNothing_data();
    void unknownFormStartsNothing();
    void failedStopIsPresented_data();
    void failedStopIsPresented();
    void stopWatchesUntilNothingIsLeft();
    void stopOfSomethingElseIsALine_data();
    void stopOfSomethingElseIsALine();
    void slowServiceIsAskedOnceAtATime();
    void stopForgetsTheQuestionUnderWay();
};

void AgentControllerStartStop::startWatchesUntilTheAgentAnswers()
{
    AgentFixture world;
    ZELKAgentController controller(world.ports());
    QVERIFY(!controller.startWithState(ZELKAgentController::SessionApplication));
    QCOMPARE(world.workspace->registered.size(), 1);
    QCOMPARE(world.workspace->launches, QStringList{world.agentName});
    QCOMPARE(world.workspace->lastArguments, QStringList{QStringLiteral("--database=x")});
    QCOMPARE(controller.state(), 6); // it runs and has no service yet
    QVERIFY(controller.isStateChangeExpected());

    world.agentAnswers();
    QTRY_COMPARE(controller.state(), 4);
    QVERIFY(!controller.isStateChangeExpected());
    QCOMPARE(controller.agentVersion(), QStringLiteral("1.0"));
}

void AgentControllerStartStop::startFallsBackToThePlace()
{
    AgentFixture world;
    world.workspace->launchesByIdentifier = false;
    world.workspace->registrationStatus = 2;
    ZELKAgentController controller(world.ports());
    const QString place = world.folder.filePath(QStringLiteral("agents/org.test.agent.app"));
    world.expectLine(QStringLiteral("Helper agent URL registration failed: 2 with URL: file://") + place);
    QVERIFY(!controller.startWithState(ZELKAgentController::SessionApplication));
    QCOMPARE(world.workspace->launches, (QStringList{world.agentName, place}));
    QVERIFY(controller.isStateChangeExpected());
}

void AgentControllerStartStop::failedStartIsHandedBack()
{
    AgentFixture world;
    const ZELKAgentError error(QStringLiteral("ZELKWorkspace"), 13, QStringLiteral("not started"));
    world.workspace->launchesByIdentifier = false;
    world.workspace->launchError = error;
    ZELKAgentController controller(world.ports());
    const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
    QVERIFY(controller.startWithState(ZELKAgentController::SessionApplication) == error);
    QCOMPARE(presented.count(), 0);
    QVERIFY(!controller.isStateChangeExpected());
    QCOMPARE(controller.state(), 1);
}

void AgentControllerStartStop::unknownFormStartsNothing_data()
{
    QTest::addColumn<int>("form");
    QTest::newRow("not installed") << 1;
    QTest::newRow("never produced") << 5;
    QTest::newRow("inconsistent") << 6;
    QTest::newRow("below all") << -1;
}

void AgentControllerStartStop::unknownFormStartsNothing()
{
    AgentFixture world;
    QFETCH(int, form);
    ZELKAgentController controller(world.ports());
    world.expectLine(QStringLiteral("ZELKAgentController can not start agent: ZELKAgentController.state.1"));
    QVERIFY(!controller.startWithState(form));
    QVERIFY(!controller.isStateChangeExpected());
    QVERIFY(world.workspace->launches.isEmpty());
}

void AgentControllerStartStop::failedStopIsPresented_data()
{
    QTest::addColumn<int>("instances");
    QTest::addColumn<bool>("refuses");
    QTest::addColumn<int>("code");
    QTest::newRow("none is left") << 0 << false << 20;
    QTest::newRow("two instances") << 2 << false << 20;
    QTest::newRow("refusal") << 1 << true << 21;
}

void AgentControllerStartStop::failedStopIsPresented()
{
    AgentFixture world;
    QFETCH(int, code);
    world.agentRuns();
    ZELKAgentController controller(world.ports());
    const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
    QFETCH(int, instances);
    QFETCH(bool, refuses);
    world.workspace->instances[world.agentName] = instances;
    world.workspace->refusesToTerminate = refuses;

    const auto error = controller.stop();
    QVERIFY(error);
    QCOMPARE(error->domain(), QStringLiteral("ZELKAgentController"));
    QCOMPARE(error->code(), code);
    QCOMPARE(error->localisedDescription(), QStringLiteral("ZELKAgentController.error.%1").arg(code));
    QCOMPARE(presented.count(), 1);
    QVERIFY(presented.first().first().value<ZELKAgentError>() == *error);
    QCOMPARE(world.workspace->terminations, 0);
    QVERIFY(!controller.isStateChangeExpected());
    QVERIFY(controller.agentVersion().isNull());
}

void AgentControllerStartStop::stopWatchesUntilNothingIsLeft()
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

void AgentControllerStartStop::stopOfSomethingElseIsALine_data()
{
    QTest::addColumn<int>("instances");
    QTest::addColumn<int>("state");
    QTest::newRow("not installed") << 0 << 1;
    QTest::newRow("inconsistent") << 1 << 6;
}

void AgentControllerStartStop::stopOfSomethingElseIsALine()
{
    AgentFixture world;
    QFETCH(int, instances);
    QFETCH(int, state);
    world.workspace->instances[world.agentName] = instances;
    ZELKAgentController controller(world.ports());
    const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
    world.expectLine(
        QStringLiteral("ZELKAgentController can not stop agent: ZELKAgentController.state.%1").arg(state));
    QVERIFY(!controller.stop());
    QCOMPARE(presented.count(), 0);
    QCOMPARE(world.workspace->terminations, 0);
    QVERIFY(!controller.isStateChangeExpected());
}

void AgentControllerStartStop::slowServiceIsAskedOnceAtATime()
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

void AgentControllerStartStop::stopForgetsTheQuestionUnderWay()
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

QTEST_GUILESS_MAIN(AgentControllerStartStop)
#include "tst_start_stop.moc"
