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

/// A job of the user's of this version, if any, and a controller that shows its alerts.
struct OfferFixture : AgentFixture
{
    explicit OfferFixture(const QString &version = {})
    {
        system->userJob = !version.isEmpty();
        lookup->version = version;
        create().setAlerts(&sheets);
    }
    qsizetype probe()
    {
        controller->updateState();
        QCoreApplication::processEvents();
        return sheets.shown.size();
    }

    Sheets sheets;
};

} // namespace

/// What the controller asks the user.
class Offers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installAlertIsOneAtATimeWithHelpWhereThereIsABook()
    {
        OfferFixture world;
        world.controller->setAlerts(nullptr);
        world.controller->startStop(); // nobody to show it
        QVERIFY(!world.controller->isInstallAlertShown());
        world.controller->setAlerts(&world.sheets);
        world.info.insert(u"ZELKAgentControllerInstallHelpAnchor"_s, u"here"_s);
        const QString key = u"ZELKAgentController.install."_s;
        ZELKAgentAlert expected{key + u"message"_s,
                                key + u"informative"_s,
                                {key + u"button.install"_s, key + u"button.skip"_s, key + u"button.cancel"_s},
                                {},
                                u"ZELKAgentController"_s};
        for (const int alerts : {1, 2}) {
            world.useInfo();
            world.controller->startStop();
            world.controller->startStop();
            QCOMPARE(world.sheets.shown.size(), alerts);
            QVERIFY(world.sheets.shown.last() == expected);
            world.sheets.end(ZELKAgentAlert::ThirdButton, 1);
            QCOMPARE(world.system->calls.size() + world.workspace->launches.size(), 0);
            world.info.insert(u"CFBundleHelpBookName"_s, u"guide"_s);
            expected.helpAnchor = u"here"_s;
        }
    }

    void installChoiceDecidesTheForm_data()
    {
        const Rows<int, int, int, QString> row; // button, tag, state, what fails
        row("for all", 1000, 1, 2);
        row("for all, in vain", 1000, 1, 1, "bless");
        row("for the user", 1000, 2, 3);
        row("session, whatever the place", 1001, 1, 6); // it does not answer yet
        row("cancelled", 1002, 1, 1);
        row("unknown tag", 1000, 3, 1);
        row("no tag", 1000, 0, 1);
    }
    void installChoiceDecidesTheForm()
    {
        const auto [returnCode, tag, state, failing] = Rows<int, int, int, QString>::fetch();
        OfferFixture world;
        world.system->failing = failing;
        const QString fault = raised(
            [&, code = returnCode, place = tag] { world.controller->installAlertDidEnd(code, place); });
        const bool isFault = returnCode == 1000 && tag != 1 && tag != 2;
        QCOMPARE(fault, isFault ? u"ZELKAgentController unknown location tag: %1"_s.arg(tag) : QString());
        QTRY_COMPARE(world.controller->state(), state);
        QCOMPARE(world.presented->count(), failing.isEmpty() ? 0 : 1);
    }

    void textsAreFormatsForTheApplicationsName()
    {
        OfferFixture world(u"0"_s);
        ZELKEnvironment environment = ZELKEnvironment::current();
        environment.mainBundle = std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
        const ZELKEnvironmentScope scope(environment);
        world.lookup->serviceName = u"org.zelk.lullwatch.agent._service"_s;
        ZELKAgentController &controller = world.create();
        controller.setAlerts(&world.sheets);
        controller.showInstallAlert();
        QCoreApplication::instance()->setProperty("applicationDisplayName", u"Der Test"_s);
        controller.applicationDidFinishLaunching();
        controller.update();
        QCOMPARE(world.sheets.shown.size(), 2);
        QVERIFY(world.sheets.shown.first().informative.contains(u"Lullwatch"_s));
        QVERIFY(world.sheets.shown.last().informative.contains(u"Der Test"_s));
        for (const ZELKAgentAlert &alert : std::as_const(world.sheets.shown))
            for (const QString &text : QStringList{alert.message, alert.informative} + alert.buttons)
                QVERIFY2(!text.contains(u"ZELK"_s) && !text.contains(u'%'), qPrintable(text));
    }

    void updateIsOfferedOnceALaunch()
    {
        OfferFixture world(u"0.9"_s);
        QCOMPARE(world.probe(), 0); // before launching has finished
        QElapsedTimer time;
        time.start();
        world.controller->applicationDidFinishLaunching();
        QTRY_COMPARE(world.sheets.shown.size(), 1);
        QVERIFY(time.elapsed() >= 950);
        QCOMPARE(world.probe(), 1); // it is on the screen
        world.sheets.end(ZELKAgentAlert::SecondButton, 0);
        QCOMPARE(world.controller->updateNotifications(), 0U);
        QCOMPARE(world.probe(), 1);
        world.controller->update();
        QCOMPARE(world.sheets.shown.size(), 1);
        QVERIFY(world.system->calls.isEmpty());
    }

    void probeThatFindsAnotherVersionOffersIt()
    {
        OfferFixture world(u"1.0"_s);
        world.controller->applicationDidFinishLaunching();
        world.lookup->version = u"2.0"_s;
        world.controller->updateState();
        QVERIFY(world.sheets.shown.isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(world.sheets.shown.size(), 1);
        world.sheets.end(ZELKAgentAlert::FirstButton, 0);
        QCOMPARE(world.system->calls.join(u' '), u"authorization remove authorization submit"_s);
        QTRY_COMPARE(world.controller->state(), 3);
    }

    void startingSilencesTheOffer()
    {
        OfferFixture world;
        world.controller->applicationDidFinishLaunching();
        QCOMPARE(world.controller->updateNotifications(), 1U);
        world.controller->startWithState(3);
        QCOMPARE(world.controller->updateNotifications(), 0U);
    }

    /// An agent of the session is still there when it was only asked to end.
    void updateOfTheSessionFormWaitsForTheEnd()
    {
        OfferFixture world;
        world.workspace->instances[agentName] = 1;
        world.workspace->terminatesLate = true;
        world.lookup->isThere = nullptr;
        world.lookup->version = u"0"_s;
        world.controller->updateState();
        world.controller->updateAgent();
        QCOMPARE(world.workspace->terminations, 1);
        QVERIFY(world.workspace->launches.isEmpty());
        world.workspace->instances.clear();
        world.lookup->serviceName.clear();
        QTRY_COMPARE(world.workspace->launches, QStringList{agentName});
        QCOMPARE(world.workspace->lastArguments, QStringList{u"--database=x"_s});
    }

    void updateThatCannotStopDoesNotStart()
    {
        OfferFixture world(u"0"_s);
        world.system->failing = u"remove"_s;
        world.controller->updateAgent();
        QVERIFY(!world.system->calls.contains(u"submit"_s));
        QCOMPARE(world.presented->count(), 1);
        QVERIFY(!world.controller->isStateChangeExpected());
    }
};

QTEST_GUILESS_MAIN(Offers)
#include "tst_offers.moc"
