#include "AgentFixture.h"
#include "ZELKAgentController.h"
#include "ZELKAssertion.h"

#include <QSignalSpy>

namespace {

const QString otherName = QStringLiteral("org.test.other");

} // namespace

class AgentControllerStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stateFollowsTheProbes_data();
    void stateFollowsTheProbes();
    void changesAreSignalledOnce();
    void versionFollowsTheService_data();
    void versionFollowsTheService();
    void versionOutlivesAFailedCall();
    void defaultsWaitForTheAgent();
    void refusedDefaultsAreLost();
    void configurationFaults_data();
    void configurationFaults();
    void namesOfApplicationAndAgent();
};

void AgentControllerStates::stateFollowsTheProbes_data()
{
    const AgentFixture world;
    QTest::addColumn<QString>("systemJob");
    QTest::addColumn<QString>("userJob");
    QTest::addColumn<int>("instances");
    QTest::addColumn<bool>("answers");
    QTest::addColumn<int>("state");
    const QString none;
    QTest::newRow("nothing") << none << none << 0 << false << 1;
    QTest::newRow("a service alone") << none << none << 0 << true << 6;
    QTest::newRow("instance, silent") << none << none << 1 << false << 6;
    QTest::newRow("instance") << none << none << 1 << true << 4;
    QTest::newRow("two instances") << none << none << 2 << true << 4;
    QTest::newRow("user's job, silent") << none << world.agentName << 0 << false << 6;
    QTest::newRow("user's job") << none << world.agentName << 0 << true << 3;
    QTest::newRow("user's job, its instance seen") << none << world.agentName << 1 << true << 3;
    QTest::newRow("system's job, silent") << world.agentName << none << 0 << false << 6;
    QTest::newRow("system's job") << world.agentName << none << 0 << true << 2;
    QTest::newRow("both jobs and an instance") << world.agentName << world.agentName << 1 << true << 2;
    QTest::newRow("both jobs and an instance, silent")
        << world.agentName << world.agentName << 1 << false << 6;
    QTest::newRow("somebody else's jobs") << otherName << otherName << 0 << false << 1;
}

void AgentControllerStates::stateFollowsTheProbes()
{
    AgentFixture world;
    QFETCH(QString, systemJob);
    QFETCH(QString, userJob);
    QFETCH(int, instances);
    QFETCH(bool, answers);
    QFETCH(int, state);
    world.services->systemJobs = {systemJob};
    world.services->userJobs = {userJob};
    world.workspace->instances[world.agentName] = instances;
    if (answers)
        world.agentAnswers();

    const ZELKAgentController controller(world.ports());
    QCOMPARE(controller.state(), state);
    QCOMPARE(controller.installed(), state != 1);
    QCOMPARE(controller.enabled(), state != 6);
    QCOMPARE(controller.localisedState(), QStringLiteral("ZELKAgentController.state.%1").arg(state));
    QCOMPARE(controller.localisedStartStopLabel(),
             QStringLiteral("ZELKAgentController.startStop.label.installed.%1").arg(state == 1 ? 0 : 1));
}

void AgentControllerStates::changesAreSignalledOnce()
{
    AgentFixture world;
    world.agentRuns();
    ZELKAgentController controller(world.ports());
    const QSignalSpy state(&controller, &ZELKAgentController::stateChanged);
    const QSignalSpy installed(&controller, &ZELKAgentController::installedChanged);
    const QSignalSpy enabled(&controller, &ZELKAgentController::enabledChanged);
    const QSignalSpy version(&controller, &ZELKAgentController::agentVersionChanged);
    const QSignalSpy canUpdate(&controller, &ZELKAgentController::canUpdateChanged);
    const auto counts = [&] {
        return QList{state.count(), installed.count(), enabled.count(), version.count(), canUpdate.count()};
    };

    controller.updateState();
    QCOMPARE(counts(), (QList<qsizetype>{0, 0, 0, 0, 0}));
    world.lookup->serviceName.clear();
    controller.updateState(); // 4 to 6: still installed
    QCOMPARE(counts(), (QList<qsizetype>{1, 0, 1, 0, 0}));
    world.agentAnswers(QStringLiteral("2.0"));
    controller.updateState();
    QCOMPARE(counts(), (QList<qsizetype>{2, 0, 2, 1, 1}));
    world.workspace->instances.clear();
    world.lookup->serviceName.clear();
    controller.updateState();
    QCOMPARE(counts(), (QList<qsizetype>{3, 1, 2, 1, 2}));
}

void AgentControllerStates::versionFollowsTheService_data()
{
    QTest::addColumn<std::optional<QString>>("answer");
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("canUpdate");
    using Answer = std::optional<QString>;
    QTest::newRow("same") << Answer(QStringLiteral("1.0")) << QStringLiteral("1.0") << false;
    QTest::newRow("older") << Answer(QStringLiteral("0.9")) << QStringLiteral("0.9") << true;
    QTest::newRow("newer") << Answer(QStringLiteral("1.1")) << QStringLiteral("1.1") << true;
    QTest::newRow("compared as texts") << Answer(QStringLiteral("1.00")) << QStringLiteral("1.00") << true;
    QTest::newRow("empty text") << Answer(QLatin1String("")) << QStringLiteral("") << true;
    QTest::newRow("no version") << Answer() << QStringLiteral("0") << true;
}

void AgentControllerStates::versionFollowsTheService()
{
    AgentFixture world;
    QFETCH(std::optional<QString>, answer);
    world.agentRuns();
    world.lookup->version = answer;
    if (!answer)
        world.expectLine(QStringLiteral("No agent version available"));
    const ZELKAgentController controller(world.ports());
    QCOMPARE(controller.state(), 4);
    QTEST(controller.agentVersion(), "version");
    QVERIFY(!controller.agentVersion().isNull());
    QTEST(controller.canUpdate(), "canUpdate");
}

void AgentControllerStates::versionOutlivesAFailedCall()
{
    AgentFixture world;
    world.agentRuns();
    ZELKAgentController controller(world.ports());
    world.lookup->version.reset();
    world.expectLine(QStringLiteral("No agent version available"));
    controller.updateState();
    QCOMPARE(controller.agentVersion(), QStringLiteral("1.0"));
}

void AgentControllerStates::defaultsWaitForTheAgent()
{
    AgentFixture world;
    const ZELKDictionary first{{QStringLiteral("a"), 1}, {QStringLiteral("b"), 2}};
    const ZELKDictionary second{{QStringLiteral("b"), 3}};
    const ZELKDictionary both{{QStringLiteral("a"), 1}, {QStringLiteral("b"), 3}};
    ZELKAgentController controller(world.ports());
    controller.setDefaultsWithDictionary(first);
    controller.setDefaultsWithDictionary(second);
    controller.updateState();
    QVERIFY(controller.pendingDefaults() == both);

    world.workspace->instances[world.agentName] = 1; // installed, but there is nobody to tell
    controller.updateState();
    QVERIFY(controller.pendingDefaults() == both);

    world.agentAnswers();
    controller.updateState();
    QVERIFY(controller.pendingDefaults().isEmpty());
    controller.setDefaultsWithDictionary(first);
    QCOMPARE(world.lookup->defaults.size(), 2);
    QVERIFY(world.lookup->defaults[0] == both);
    QVERIFY(world.lookup->defaults[1] == first);
}

void AgentControllerStates::refusedDefaultsAreLost()
{
    AgentFixture world;
    world.agentRuns();
    ZELKAgentController controller(world.ports());
    world.lookup->defaultsProblem = QStringLiteral("no room");
    world.expectLine(QStringLiteral("Unable to set agent defaults: no room"));
    controller.setDefaultsWithDictionary({{QStringLiteral("a"), 1}});
    QVERIFY(controller.pendingDefaults().isEmpty());
}

void AgentControllerStates::configurationFaults_data()
{
    const AgentFixture world;
    QTest::addColumn<ZELKDictionary>("info");
    QTest::addColumn<QString>("message");
    const ZELKDictionary::Item name{QStringLiteral("ZELKAgentControllerAgentName"), world.agentName};
    QTest::newRow("no agent name") << ZELKDictionary()
                                   << QStringLiteral("ZELKAgentController Info.plist is missing "
                                                     "ZELKAgentControllerAgentName");
    QTest::newRow("agent name is a number")
        << ZELKDictionary{{name.first, 5}}
        << QStringLiteral("ZELKAgentController Info.plist ZELKAgentControllerAgentName must be a string");
    QTest::newRow("no agent folder") << ZELKDictionary{name}
                                     << QStringLiteral("ZELKAgentController Info.plist is missing "
                                                       "ZELKAgentControllerAgentFolder");
}

void AgentControllerStates::configurationFaults()
{
    AgentFixture world;
    QFETCH(ZELKDictionary, info);
    world.useBundle(info);
    QString message;
    QString file;
    try {
        const ZELKAgentController controller(world.ports());
        controller.embeddedAgentURL();
    } catch (const ZELKAssertionFailure &failure) {
        message = failure.message();
        file = failure.file();
    }
    QTEST(message, "message");
    QCOMPARE(file, QStringLiteral("common/agent/ZELKAgentController"));
}

void AgentControllerStates::namesOfApplicationAndAgent()
{
    AgentFixture world;
    ZELKAgentController controller(world.ports(), otherName);
    QCOMPARE(controller.agentName(), otherName);
    QCOMPARE(controller.embeddedAgentURL().toLocalFile(),
             world.folder.filePath(QStringLiteral("agents/org.test.other.app")));
    QCOMPARE(controller.applicationName(), QStringLiteral("Test"));
    QCoreApplication::instance()->setProperty("applicationDisplayName", QStringLiteral("Der Test"));
    QCOMPARE(controller.applicationName(), QStringLiteral("Der Test"));
    QVERIFY_THROWS_EXCEPTION(ZELKAssertionFailure, controller.isAgentCommunicatingWithName(QString()));
    QVERIFY_THROWS_EXCEPTION(ZELKAssertionFailure, controller.isAgentRunningInUserSessionWithName(QString()));
}

QTEST_GUILESS_MAIN(AgentControllerStates)
#include "tst_states.moc"
