#include "AgentBed.h"
#include "ConsoleLines.h"
#include "ZELKDisplayListBuilder.h"
#include "ZELKServiceNames.h"
#include "ZELKSessionWorkspace.h"
#include "ZELKWindowSession.h"

#include <QLabel>
#include <QMainWindow>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

namespace {

ZELKEnvironment presentEnvironment()
{
    ZELKEnvironment environment = applicationEnvironment();
    environment.clock = std::make_shared<ZELKSystemClock>();
    return environment;
}

/// The window as a user has it, with the agent of the build on a bus of its own.
class AgentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!instances().empty())
            QSKIP("an agent of this user runs already; where it belongs to cannot be told");
    }

    void startFromTheWindow()
    {
        begin();
        QCOMPARE(log().count(), 0);
        m_begun = now();
        clickStartStop();
        answerSheet(*m_session->mainWindow().window(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), u"Recording in this session"_s, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(log().count() > 0, 20000);
        QTRY_VERIFY(text("synchronisationLabel").startsWith("Synchronised: "_L1));
        end();
        QCOMPARE(instances().size(), std::size_t(1));
    }

    void secondStartAsksOnlyForWhatIsNew()
    {
        const ConsoleLines console;
        begin();
        const int before = log().count();
        QVERIFY(before > 0);
        const QSignalSpy finished(&m_session->wiring().store(), &ZELKLWCStore::fetchFinished);
        QTRY_COMPARE(finished.count(), 1);
        QVERIFY(finished.constFirst().constFirst().toBool());
        QCOMPARE(console.count("agent provided"), 0);
        QCOMPARE(log().count(), before);
    }

    void agentIsKilled()
    {
        const int before = log().count();
        m_killed.from = now();
        QCOMPARE(::kill(pid_t(instances().front().processIdentifier), SIGKILL), 0);
        QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), u"Not installed"_s, 20000);
        QTRY_COMPARE(log().count(), before + 1);
        QCOMPARE(log().objectAtIndex(before)->event(), u"Stopping monitor"_s);
        m_killed.to = now();
    }

    void agentComesBackFromElsewhere()
    {
        letTimePass();
        const int before = log().count();
        m_back.from = now();
        const QUrl agent = m_session->wiring().agentController().embeddedAgentURL();
        QVERIFY(!ZELKSessionWorkspace().launchApplicationAtURL(agent, {}));
        QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), u"Recording in this session"_s, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(log().count() > before, 20000);
        m_back.to = now();
        letTimePass();
        m_stopped.from = now();
        clickStartStop();
        QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), u"Not installed"_s, 20000);
        QTRY_COMPARE(log().objectAtIndex(log().count() - 1)->event(), u"Stopping monitor"_s);
        m_stopped.to = now();
    }

    /// The times between one agent and the next are in the graph, and no other is; also at the next start,
    /// when the log knows the successor's word of the killed agent's end.
    void graphTellsOfTheTimesBetween()
    {
        letTimePass();
        const int before = log().count();
        const ZELKDate start = now();
        clickStartStop();
        answerSheet(*m_session->mainWindow().window(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(log().count() > before, 20000);
        const Times started{start, now()};
        for (const bool isLive : {true, false}) {
            const QList<Times> blocks = unmonitored();
            QCOMPARE(blocks.size(), 2);
            const Times killed{isLive ? m_killed.from : m_begun, m_killed.to};
            QVERIFY(killed.contain(blocks.at(0).from) && m_back.contain(blocks.at(0).to));
            QVERIFY(m_stopped.contain(blocks.at(1).from) && started.contain(blocks.at(1).to));
            this->end();
            begin();
        }
        clickStartStop();
        QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), u"Not installed"_s, 20000);
        end();
    }

    /// A job whose manager starts it again: once seen to be gone, once given up, once too quickly for both.
    void jobDiesAndComesBack()
    {
        AgentBed bed;
        bed.world.systemBus = QDBusConnection::systemBus();
        bed.world.agentPatience = std::chrono::milliseconds(300);
        bed.services->jobs[0].insert(AgentBed::agentName());
        bed.letServiceAnswer(true);
        const QString service = ZELKServiceNames::controlServiceName(AgentBed::agentName());
        QVERIFY(bed.world.systemBus->registerService(service));
        ZELKApplicationWiring wiring(bed.settings(), bed.world);
        ZELKAgentController &agent = wiring.agentController();
        QDBusServiceWatcher watcher(service, *bed.world.systemBus);
        const QSignalSpy changes(&watcher, &QDBusServiceWatcher::serviceOwnerChanged);

        const auto goes = [&] {
            bed.letServiceAnswer(false);
            bed.world.systemBus->unregisterService(service);
            QTRY_COMPARE(agent.state(), int(ZELKAgentController::Inconsistent));
        };
        for (const bool isLate : {false, true}) {
            goes();
            if (isLate)
                QTRY_VERIFY(!agent.isStateChangeExpected());
            bed.letServiceAnswer(true);
            bed.world.systemBus->registerService(service);
            QTRY_COMPARE(agent.state(), int(ZELKAgentController::PrivilegedJob));
            QVERIFY(!agent.isStateChangeExpected());
        }

        bed.world.systemBus->unregisterService(service);
        bed.world.systemBus->registerService(service);
        QTRY_COMPARE(changes.count(), 6);
        QVERIFY(!agent.isStateChangeExpected());
        QCOMPARE(agent.state(), int(ZELKAgentController::PrivilegedJob));

        goes();
        QTRY_VERIFY(!agent.isStateChangeExpected());
        bed.services->jobs[0].clear(); // by somebody else, and nothing shows at the bus
        QTRY_COMPARE(agent.state(), int(ZELKAgentController::NotInstalled));
    }

    /// Scripts would reach a window that is soon gone, and a real one would wait for the name.
    void commandsAreNotOnTheBus()
    {
        const QDBusConnection bus = QDBusConnection::sessionBus();
        QDBusServiceWatcher watcher(u"org.zelk.lullwatch"_s, bus);
        const QSignalSpy changes(&watcher, &QDBusServiceWatcher::serviceOwnerChanged);
        const QTemporaryDir folder;
        QProcess snapshot;
        snapshot.start(QStringLiteral(LULLWATCH), {u"snapshot"_s, u"--picture"_s, folder.filePath(u"x"_s)});
        QTRY_COMPARE_WITH_TIMEOUT(snapshot.state(), QProcess::NotRunning, 20000);
        QCOMPARE(snapshot.exitCode(), 0);
        begin();
        QTRY_COMPARE(changes.count(), 1); // this window's, and none before
        end();
    }

    /// The program itself with the agent of the build, on a bus of its own and without systemd.
    void theCommandStartsAndRemovesIt()
    {
        const std::pair<QString, int> steps[] = {
            {u"status"_s, 1}, {u"install --as user"_s, 1}, {u"install --as session"_s, 0},
            {u"status"_s, 0}, {u"remove now"_s, 2},        {u"remove"_s, 0},
            {u"status"_s, 1}};
        for (const auto &[arguments, status] : steps)
            QCOMPARE(QProcess::execute(QStringLiteral(LULLWATCH), (u"agent "_s + arguments).split(u' ')),
                     status);
    }

private:
    struct Times
    {
        ZELKDate from;
        ZELKDate to;
        bool contain(ZELKDate date) const { return from <= date && date <= to; }
        bool operator==(const Times &) const = default;
    };

    static ZELKDate now() { return ZELKEnvironment::current().clock->now(); }
    /// What happens within a second of the log's last event is passed over.
    void letTimePass() const { QTRY_VERIFY(now().timeIntervalSinceDate(log().finalDate()) > 1.1); }
    /// The blocks of a graph in which a second is a point; one that is there twice counts once.
    QList<Times> unmonitored() const
    {
        constexpr double left = 100.0;
        m_session->wiring().dateRange().setSelectionTag(8);
        const ZELKLWCAbsoluteDuration period = *m_session->wiring().dateRange().absoluteDuration();
        const double seconds = period.endDate().timeIntervalSinceDate(period.startDate());
        ZELKLWCEntriesViewDisplayList list;
        ZELKDisplayListBuilder(list, {{left, 0.0, seconds, 100.0}, period}, log()).prepareDisplayList();
        QList<Times> blocks;
        const auto date = [&](double x) { return period.startDate().addingTimeInterval(x - left); };
        for (const ZELKLWCEntriesViewState &block : list.states())
            if (const Times times{date(block.bounds.left()), date(block.bounds.right())};
                block.state == u"Unmonitored"_s && !blocks.contains(times))
                blocks.append(times);
        return blocks;
    }
    static std::vector<ZELKRunningApplication> instances()
    {
        return ZELKSessionWorkspace().runningApplicationsWithBundleIdentifier(u"org.zelk.lullwatch.agent"_s);
    }
    void begin()
    {
        m_session =
            std::make_unique<ZELKWindowSession>(m_settings, ZELKApplicationWiring::World::real(m_settings));
        m_session->start(false);
        QCoreApplication::processEvents();
    }
    void end()
    {
        m_session->applicationWillTerminate();
        m_session.reset();
    }
    ZELKLWCLog &log() const { return m_session->wiring().log(); }
    template <typename Widget>
    Widget *find(const char *name) const
    {
        return m_session->mainWindow().window()->findChild<Widget *>(QString::fromLatin1(name));
    }
    QString text(const char *label) const { return find<QLabel>(label)->text(); }
    void clickStartStop() const { find<QPushButton>("startStopButton")->click(); }

    ZELKEnvironmentScope m_scope{presentEnvironment()};
    ZELKApplicationSettings m_settings{ZELKEnvironment::current().mainBundle, {}, {}};
    std::unique_ptr<ZELKWindowSession> m_session;
    ZELKDate m_begun;
    Times m_killed; // when it began, and when all was told
    Times m_back;
    Times m_stopped;
};

} // namespace

QTEST_MAIN(AgentTest)

#include "tst_agent.moc"
