#include "ApplicationFixture.h"
#include "ZELKSessionWorkspace.h"
#include "ZELKWindowSession.h"

#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <csignal>

namespace {

QStringList consoleLines;
QtMessageHandler previousHandler = nullptr;

void keepLine(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    consoleLines.append(text);
    previousHandler(type, context, text);
}

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
    void initTestCase();
    void startFromTheWindow();
    void secondStartAsksOnlyForWhatIsNew();
    void agentIsKilled();
    void agentComesBackFromElsewhere();
    void cleanupTestCase();

private:
    std::vector<ZELKRunningApplication> instances() const
    {
        return ZELKSessionWorkspace().runningApplicationsWithBundleIdentifier(
            QStringLiteral("org.zelk.lullwatch.agent"));
    }
    void begin();
    void end();
    ZELKLWCLog &log() const { return m_session->wiring().log(); }
    QString text(const char *label) const
    {
        return m_session->mainWindow().window()->findChild<QLabel *>(QString::fromLatin1(label))->text();
    }
    void clickStartStop() const
    {
        m_session->mainWindow()
            .window()
            ->findChild<QPushButton *>(QStringLiteral("startStopButton"))
            ->click();
    }

    ZELKEnvironmentScope m_scope{presentEnvironment()};
    ZELKApplicationSettings m_settings{ZELKEnvironment::current().mainBundle, {}, {}};
    std::unique_ptr<ZELKWindowSession> m_session;
};

void AgentTest::initTestCase()
{
    previousHandler = qInstallMessageHandler(keepLine);
    if (!instances().empty())
        QSKIP("an agent of this user runs already; where it belongs to cannot be told");
}

void AgentTest::begin()
{
    m_session =
        std::make_unique<ZELKWindowSession>(m_settings, ZELKApplicationWiring::World::real(m_settings));
    m_session->start(false);
    QCoreApplication::processEvents();
}

void AgentTest::end()
{
    m_session->applicationWillTerminate();
    m_session.reset();
}

void AgentTest::startFromTheWindow()
{
    begin();
    QCOMPARE(log().count(), 0);
    clickStartStop();
    QTRY_COMPARE_WITH_TIMEOUT(m_session->wiring().agentController().state(),
                              int(ZELKAgentController::SessionApplication), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(log().count() > 0, 20000);
    QCOMPARE(text("stateLabel"), QStringLiteral("Recording in this session"));
    QTRY_VERIFY(text("synchronisationLabel").startsWith(QLatin1String("Last new entries fetched ")));
    end();
    QCOMPARE(instances().size(), std::size_t(1));
}

void AgentTest::secondStartAsksOnlyForWhatIsNew()
{
    consoleLines.clear();
    begin();
    QVERIFY(log().count() > 0);
    const int before = log().count();
    QSignalSpy finished(&m_session->wiring().store(), &ZELKLWCStore::fetchFinished);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(finished.constFirst().constFirst().toBool(), true);
    QCOMPARE(consoleLines.filter(QStringLiteral("agent provided")), QStringList());
    QCOMPARE(log().count(), before);
}

void AgentTest::agentIsKilled()
{
    const int before = log().count();
    QCOMPARE(instances().size(), std::size_t(1));
    QCOMPARE(::kill(pid_t(instances().front().processIdentifier), SIGKILL), 0);
    QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), QStringLiteral("Not installed"), 20000);
    QTRY_COMPARE(log().count(), before + 1);
    QCOMPARE(log().objectAtIndex(before)->event(), QStringLiteral("Stopping monitor"));
    QVERIFY(m_session->mainWindow().window()->isVisible());
}

void AgentTest::agentComesBackFromElsewhere()
{
    // What happens within a second of the log's last event is passed over.
    QTRY_VERIFY(ZELKEnvironment::current().clock->now().timeIntervalSinceDate(log().finalDate()) > 1.1);
    const int before = log().count();
    ZELKSessionWorkspace elsewhere;
    QVERIFY(!elsewhere.launchApplicationAtURL(m_session->wiring().agentController().embeddedAgentURL(), {}));
    QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), QStringLiteral("Recording in this session"), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(log().count() > before, 20000);
    clickStartStop();
    QTRY_COMPARE_WITH_TIMEOUT(text("stateLabel"), QStringLiteral("Not installed"), 20000);
    end();
}

void AgentTest::cleanupTestCase()
{
    m_session.reset();
    qInstallMessageHandler(previousHandler);
}

} // namespace

QTEST_MAIN(AgentTest)

#include "tst_agent.moc"
