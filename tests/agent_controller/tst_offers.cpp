#include "AgentFixture.h"

#include <QElapsedTimer>

namespace {

/// Keeps what is shown until the test answers.
class Sheets final : public ZELKAgentAlerts
{
public:
    QList<ZELKAgentAlert> shown;
    EndHandler end;

    void beginSheet(const ZELKAgentAlert &alert, const EndHandler &ended) override
    {
        shown.append(alert);
        end = ended;
    }
};

} // namespace

/// What the controller asks the user.
class Offers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installAlertAsksOnceAndOffersThreeWays()
    {
        AgentFixture world;
        Sheets sheets;
        ZELKAgentController controller(world.ports());
        controller.startStop(); // nobody to show it
        QVERIFY(!controller.isInstallAlertShown());
        controller.setAlerts(&sheets);
        controller.startStop();
        controller.startStop();
        QCOMPARE(sheets.shown.size(), 1);
        const QString key = u"ZELKAgentController.install."_s;
        const ZELKAgentAlert expected{
            key + u"message"_s,
            key + u"informative"_s,
            {key + u"button.install"_s, key + u"button.skip"_s, key + u"button.cancel"_s},
            {},
            u"ZELKAgentController"_s};
        QVERIFY(sheets.shown.first() == expected);
        sheets.end(ZELKAgentAlert::ThirdButton, 1);
        QCOMPARE(world.system->calls.size() + world.workspace->launches.size(), 0);
        controller.startStop();
        QCOMPARE(sheets.shown.size(), 2);
    }

    void installChoiceDecidesTheForm_data()
    {
        const Rows<int, int, int> row;
        row("for all", 1000, 1, 2);
        row("for the user", 1000, 2, 3);
        row("session, whatever the place", 1001, 1, 6); // it does not answer yet
        row("cancelled", 1002, 1, 1);
        row("unknown tag", 1000, 3, 1);
        row("no tag", 1000, 0, 1);
    }
    void installChoiceDecidesTheForm()
    {
        const auto [returnCode, tag, state] = Rows<int, int, int>::fetch();
        AgentFixture world;
        ZELKAgentController controller(world.ports());
        const QString fault = raised(
            [&controller, code = returnCode, place = tag] { controller.installAlertDidEnd(code, place); });
        const bool isFault = returnCode == 1000 && state == 1;
        QCOMPARE(fault, isFault ? u"ZELKAgentController unknown location tag: %1"_s.arg(tag) : QString());
        QCOMPARE(controller.state(), state);
    }

    void failedInstallationIsPresented()
    {
        AgentFixture world;
        ZELKAgentController controller(world.ports());
        const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
        world.system->failing = u"bless"_s;
        controller.installAlertDidEnd(1000, 1);
        QCOMPARE(presented.count(), 1);
    }

    void textsAreFormatsForTheApplicationsName()
    {
        AgentFixture world;
        ZELKEnvironment environment = ZELKEnvironment::current();
        environment.mainBundle = std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
        const ZELKEnvironmentScope scope(environment);
        Sheets sheets;
        world.system->userJob = true;
        world.system->version = u"0"_s;
        ZELKAgentController controller(world.ports());
        controller.setAlerts(&sheets);
        controller.showInstallAlert();
        controller.applicationDidFinishLaunching();
        controller.update();
        QCOMPARE(sheets.shown.size(), 2);
        for (const ZELKAgentAlert &alert : std::as_const(sheets.shown)) {
            QVERIFY(alert.informative.contains(u"Lullwatch"_s));
            for (const QString &text : QStringList{alert.message, alert.informative} + alert.buttons)
                QVERIFY2(!text.contains(u"ZELK"_s) && !text.contains(u'%'), qPrintable(text));
        }
    }

    void helpNeedsAnAnchorAndABook()
    {
        AgentFixture world;
        world.info.insert(u"ZELKAgentControllerInstallHelpAnchor"_s, u"here"_s);
        Sheets sheets;
        ZELKAgentController controller(world.ports());
        controller.setAlerts(&sheets);
        for (const QString &book : {QString(), u"guide"_s}) {
            if (!book.isEmpty())
                world.info.insert(u"CFBundleHelpBookName"_s, book);
            world.useInfo();
            controller.showInstallAlert();
            QCOMPARE(sheets.shown.last().helpAnchor, book.isEmpty() ? QString() : u"here"_s);
            sheets.end(1002, 0);
        }
    }

    void updateIsOfferedOnceALaunch()
    {
        AgentFixture world;
        Sheets sheets;
        world.system->userJob = true;
        world.system->version = u"0.9"_s;
        ZELKAgentController controller(world.ports());
        controller.setAlerts(&sheets);
        controller.updateState();
        QCoreApplication::processEvents();
        QVERIFY(sheets.shown.isEmpty()); // before launching has finished
        QElapsedTimer time;
        time.start();
        controller.applicationDidFinishLaunching();
        QTRY_COMPARE(sheets.shown.size(), 1);
        QVERIFY(time.elapsed() >= 950);
        controller.updateState();
        QCoreApplication::processEvents();
        QCOMPARE(sheets.shown.size(), 1); // it is on the screen
        sheets.end(ZELKAgentAlert::SecondButton, 0);
        QCOMPARE(controller.updateNotifications(), 0U);
        controller.updateState();
        QCoreApplication::processEvents();
        controller.update();
        QCOMPARE(sheets.shown.size(), 1);
        QVERIFY(world.system->calls.isEmpty());
    }

    void probeThatFindsAnotherVersionOffersIt()
    {
        AgentFixture world;
        Sheets sheets;
        world.system->userJob = true;
        ZELKAgentController controller(world.ports());
        controller.setAlerts(&sheets);
        controller.applicationDidFinishLaunching();
        world.system->version = u"2.0"_s;
        controller.updateState();
        QVERIFY(sheets.shown.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(sheets.shown.size(), 1);
        sheets.end(ZELKAgentAlert::FirstButton, 0);
        QCOMPARE(world.system->calls,
                 (QStringList{u"authorization"_s, u"remove"_s, u"authorization"_s, u"submit"_s}));
        QCOMPARE(controller.state(), 3);
    }

    void startingSilencesTheOffer()
    {
        AgentFixture world;
        ZELKAgentController controller(world.ports());
        controller.applicationDidFinishLaunching();
        QCOMPARE(controller.updateNotifications(), 1U);
        controller.startWithState(3);
        QCOMPARE(controller.updateNotifications(), 0U);
    }

    /// An agent of the session is still there when it was only asked to end.
    void updateOfTheSessionFormWaitsForTheEnd()
    {
        AgentFixture world;
        world.workspace->instances[agentName] = 1;
        world.workspace->terminatesLate = true;
        world.system->serves = true;
        world.system->version = u"0"_s;
        ZELKAgentController controller(world.ports());
        controller.updateAgent();
        QCOMPARE(world.workspace->terminations, 1);
        QVERIFY(world.workspace->launches.isEmpty());
        world.workspace->instances.clear();
        world.system->serves = false;
        QTRY_COMPARE(world.workspace->launches, QStringList{agentName});
    }

    void updateThatCannotStopDoesNotStart()
    {
        AgentFixture world;
        world.system->userJob = true;
        world.system->version = u"0"_s;
        world.system->failing = u"remove"_s;
        ZELKAgentController controller(world.ports());
        const QSignalSpy presented(&controller, &ZELKAgentController::errorPresented);
        controller.updateAgent();
        QVERIFY(!world.system->calls.contains(u"submit"_s));
        QCOMPARE(presented.count(), 1);
        QVERIFY(!controller.isStateChangeExpected());
    }

    void faultsOfAnAlertAreRaised()
    {
        QCOMPARE(raised(&ZELKAgentAlert::failToAddButton),
                 u"ZELKAgentController failed to add '(null)' button"_s);
        QCOMPARE(raised(&ZELKAgentAlert::failWithoutInterface),
                 u"ZELKAgentController nib is missing or malformed"_s);
        QCOMPARE(raised(&ZELKAgentAlert::failWithoutView),
                 u"ZELKAgentController nib view is not connected"_s);
        QCOMPARE(raised(&ZELKAgentAlert::failWithoutChoice),
                 u"ZELKAgentController nib choice is not connected"_s);
    }
};

QTEST_GUILESS_MAIN(Offers)
#include "tst_offers.moc"
