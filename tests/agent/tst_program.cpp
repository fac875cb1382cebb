#include "AgentFixture.h"
#include "BusClient.h"
#include "ZELKLWAEventStore.h"
#include "ZELKSQLitePort.h"

#include <QDBusConnectionInterface>
#include <QProcess>

#include <csignal>
#include <limits>

namespace {

const QString agentName = QStringLiteral("org.zelk.lullwatch.agent");
const QString starting = QStringLiteral("Starting monitor");
const QString stopping = QStringLiteral("Stopping monitor");

} // namespace

/// The executable in its bundle, from outside.
class TestProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void stopsOnSignals_data();
    void stopsOnSignals();
    void losesNothingWhenKilled();
    void leavesTheNamesToTheFirst();
    void stopsWithItsBus();
    void tellsWithoutRunning_data();
    void tellsWithoutRunning();

private:
    QString database() const { return m_folder->filePath(QStringLiteral("data/events.db")); }
    void launch(QProcess &agent, const QStringList &more = {}) const
    {
        agent.setProcessChannelMode(QProcess::MergedChannels);
        agent.start(agentBundle()->executablePath(),
                    QStringList{QStringLiteral("--database"), database(), QStringLiteral("--wtmp"),
                                testData("one-boot.wtmp"), QStringLiteral("--power-supply"),
                                m_folder->filePath(QStringLiteral("none"))} +
                        more);
        QVERIFY(agent.waitForStarted());
    }
    /// Until it has recorded its start.
    void waitUntilRunning() const
    {
        QTRY_VERIFY(QDBusConnection::sessionBus().call(eventServiceCall("version")).type() ==
                    QDBusMessage::ReplyMessage);
    }
    QStringList recorded() const
    {
        ZELKLWAEventStore store(database(), agentBundle(), std::make_shared<ZELKSQLitePort>());
        QStringList names;
        store.eventsAfter({0, 0}, std::numeric_limits<qint64>::max(), 1000,
                          [&](ZELKLWAEventPosition, const ZELKRawEventView &event) {
                              names.append(QString::fromUtf8(event.description.data(),
                                                             qsizetype(event.description.size())));
                              return true;
                          });
        names.removeAll(QStringLiteral("accounting boot"));
        names.removeAll(QStringLiteral("accounting shut down"));
        return names;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestProgram::stopsOnSignals_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestProgram::stopsOnSignals()
{
    QFETCH(int, number);
    QProcess agent;
    launch(agent);
    waitUntilRunning();
    ::kill(pid_t(agent.processId()), number);
    QVERIFY(agent.waitForFinished());
    QCOMPARE(agent.exitStatus(), QProcess::NormalExit);
    QCOMPARE(agent.exitCode(), 0);
    QCOMPARE(recorded(), QStringList({starting, stopping}));
}

void TestProgram::losesNothingWhenKilled()
{
    for (int i = 0; i < 3; ++i) {
        QProcess agent;
        launch(agent);
        waitUntilRunning();
        agent.kill();
        QVERIFY(agent.waitForFinished());
    }
    QCOMPARE(recorded(), QStringList({starting, starting, starting}));
}

void TestProgram::leavesTheNamesToTheFirst()
{
    QProcess first, second;
    launch(first);
    waitUntilRunning();
    launch(second);
    QVERIFY(second.waitForFinished());
    QCOMPARE(second.exitCode(), 1);
    QCOMPARE(second.readAll().count('\n'), 1);
    first.terminate();
    QVERIFY(first.waitForFinished());
    QCOMPARE(recorded(), QStringList({starting, stopping}));
}

void TestProgram::stopsWithItsBus()
{
    QProcess bus, agent;
    bus.start(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
               QStringLiteral("--print-address"),
               QStringLiteral("--address=unix:path=") + m_folder->filePath(QStringLiteral("bus"))});
    QTRY_VERIFY(bus.canReadLine());
    const QString address = QString::fromUtf8(bus.readLine()).trimmed();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    agent.setProcessEnvironment(environment);
    launch(agent);
    {
        const QString name = QStringLiteral("other");
        const QDBusConnection other = QDBusConnection::connectToBus(address, name);
        QTRY_VERIFY(other.call(eventServiceCall("version")).type() == QDBusMessage::ReplyMessage);
        QDBusConnection::disconnectFromBus(name);
    }
    bus.kill();
    QVERIFY(bus.waitForFinished());
    QVERIFY(agent.waitForFinished());
    QCOMPARE(agent.exitCode(), 0);
    QCOMPARE(recorded(), QStringList({starting, stopping}));
}

void TestProgram::tellsWithoutRunning_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const QString version = agentBundle()->infoDictionary().string(QStringLiteral("CFBundleVersion"));
    QTest::newRow("version") << QStringList(QStringLiteral("--version")) << 0
                             << QStringLiteral("lullwatch-agent %1\n").arg(version);
    QTest::newRow("help") << QStringList(QStringLiteral("--help")) << 0 << QStringLiteral("--power-supply");
    QTest::newRow("unknown option") << QStringList(QStringLiteral("--nothing")) << 2
                                    << QStringLiteral("nothing");
    QTest::newRow("spare argument") << QStringList(QStringLiteral("spare")) << 2 << QStringLiteral("spare");
    QTest::newRow("no file's name") << QStringList({QStringLiteral("--database"), QString()}) << 2
                                    << QStringLiteral("needs a name");
    QTest::newRow("missing value") << QStringList(QStringLiteral("--wtmp")) << 2 << QStringLiteral("wtmp");
}

void TestProgram::tellsWithoutRunning()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, text);
    QProcess agent;
    launch(agent, arguments);
    QVERIFY(agent.waitForFinished());
    QCOMPARE(agent.exitCode(), code);
    QVERIFY(QString::fromUtf8(agent.readAll()).contains(text));
    QVERIFY(!QFile::exists(database()));
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
