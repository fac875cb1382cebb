#include "BusClient.h"
#include "ServedEvents.h"
#include "ZELKLWAOptions.h"
#include "ZELKSQLitePort.h"
#include "ZELKSettingsPowerSourceNames.h"
#include "ZELKUserDefaults.h"

#include "BackfillFixture.h"

#include <QProcess>

#include <csignal>
#include <cstring>

namespace {

const QString starting = u"Starting monitor"_s;
const QStringList startAndStop{starting, u"Stopping monitor"_s};

bool isAnswered(const QDBusConnection &bus)
{
    return bus.call(eventServiceCall("version")).type() == QDBusMessage::ReplyMessage;
}

} // namespace

/// The executable in its bundle, from outside.
class TestProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    /// While another one tries to take its place.
    void endsWithSignals_data()
    {
        const Rows<int, QStringList> row;
        for (const int signal : {SIGTERM, SIGINT, SIGHUP})
            row(::strsignal(signal), signal, startAndStop);
        row("SIGKILL", SIGKILL, QStringList{starting});
    }
    void endsWithSignals()
    {
        const auto [number, expected] = Rows<int, QStringList>::fetch();
        QProcess agent, second;
        launch(agent);
        QTRY_VERIFY(isAnswered(QDBusConnection::sessionBus()));
        launch(second);
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 1);
        QCOMPARE(second.readAll().count('\n'), 1);

        ::kill(pid_t(agent.processId()), number);
        QVERIFY(agent.waitForFinished());
        QCOMPARE(agent.exitStatus() == QProcess::NormalExit && agent.exitCode() == 0, number != SIGKILL);
        QCOMPARE(recorded(), expected);
    }

    void stopsWithItsBus()
    {
        QProcess bus, agent;
        bus.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s,
                                     u"--address=unix:path="_s + m_folder->filePath(u"bus"_s)});
        QTRY_VERIFY(bus.canReadLine());
        const QString address = QString::fromUtf8(bus.readLine()).trimmed();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
        agent.setProcessEnvironment(environment);
        launch(agent);
        QTRY_VERIFY(isAnswered(QDBusConnection::connectToBus(address, u"other"_s)));
        QDBusConnection::disconnectFromBus(u"other"_s);
        bus.kill();
        QVERIFY(bus.waitForFinished());
        QVERIFY(agent.waitForFinished());
        QCOMPARE(agent.exitCode(), 0);
        QCOMPARE(recorded(), startAndStop);
    }

    /// Also beside an agent; but not from the time in which one recorded, for that one told of it in its own
    /// words.
    void addsThePastOfNamedFiles()
    {
        constexpr qint64 epoch = 1700000000;
        const ZELKDate noon = ZELKDate::fromSecondsSince1970(double(epoch));
        {
            ZELKLWAEventStore store(database(), agentBundle(), std::make_shared<ZELKSQLitePort>());
            store.record({{noon, ZELKEventStartingMonitor, ZELKMonitorLullwatch},
                          {noon.addingTimeInterval(1000), ZELKEventStoppingMonitor, ZELKMonitorLullwatch},
                          {noon.addingTimeInterval(3594), ZELKEventSystemWillSleep, ZELKMonitorPowerEvents}});
        }
        // The watchers met this one second; the journal tells of the sleep in its own words.
        const QString battery = m_folder->filePath(u"none/BAT1/"_s);
        writeFile(battery + u"type"_s, "Battery\n");
        writeFile(battery + u"model_name"_s, "PRB-1\n");
        writeFile(battery + u"serial_number"_s, "00042\n");
        {
            ZELKUserDefaults settings(ZELKLWAOptions::usual(false).settings);
            ZELKSettingsPowerSourceNames(settings).remember({{u"BAT1"_s, {u"PRB-1 (BAT1)"_s, u"PRB-1"_s}}});
        }
        writeFile(m_folder->filePath(u"a.journal"_s), journal("sleep-2h"));
        QByteArray history = "1699990000\t0.000\tunknown\n";
        for (const auto &[time, charge] :
             {std::pair(epoch - 900, 80), std::pair(epoch + 500, 70), std::pair(epoch + 2000, 60)})
            history += QByteArray::number(time) + '\t' + QByteArray::number(charge) + ".000\tdischarging\n";
        writeFile(m_folder->filePath(u"upower/history-charge-PRB-1-80-00042.dat"_s), history);
        for (int time = 1; time <= 2; ++time) {
            QProcess agent;
            launch(agent, {u"--backfill-wtmp"_s, realAccounting(), u"--backfill-upower"_s,
                           m_folder->filePath(u"upower"_s), u"--backfill-journal"_s,
                           m_folder->filePath(u"a.journal"_s)});
            QVERIFY(agent.waitForFinished());
            QCOMPARE(agent.exitCode(), 0);
            const QByteArray words = agent.readAll();
            QVERIFY2(words.startsWith("6 events of the past\n1 left out"), words);
            QCOMPARE(recorded(QString()).size(), 8); // the second time nothing is new
            QCOMPARE(recorded(u"will sleep"_s).size(), 1);
            QCOMPARE(m_properties.filter(u"<string>PRB-1 (BAT1)</string>"_s).size(), 2);
        }
        QProcess agent;
        launch(agent, {u"--backfill-wtmp"_s, m_folder->filePath(u"nowhere"_s)});
        QVERIFY(agent.waitForFinished());
        QCOMPARE(agent.exitCode(), 1);
        QVERIFY(agent.readAll().contains("nowhere' can not be read"));
    }

    void tellsWithoutRunning_data()
    {
        const Rows<QStringList, int, QString> row;
        row("version", QStringList(u"--version"_s), 0, u"lullwatch-agent %1\n"_s.arg(agentVersion()));
        row("help", QStringList(u"--help"_s), 0, "--power-supply");
        row("unknown option", QStringList(u"--nothing"_s), 2, "nothing");
        row("no file's name", QStringList({u"--database"_s, QString()}), 2, "needs a name");
    }
    void tellsWithoutRunning()
    {
        const auto [arguments, code, words] = Rows<QStringList, int, QString>::fetch();
        QProcess agent;
        launch(agent, arguments);
        QVERIFY(agent.waitForFinished());
        QCOMPARE(agent.exitCode(), code);
        QVERIFY(QString::fromUtf8(agent.readAll()).contains(words));
        QVERIFY(!QFile::exists(database()));
    }

private:
    QString database() const { return m_folder->filePath(u"data/events.db"_s); }
    void launch(QProcess &agent, const QStringList &more = {}) const
    {
        agent.setProcessChannelMode(QProcess::MergedChannels);
        agent.start(agentBundle()->executablePath(),
                    QStringList{u"--database"_s, database(), u"--wtmp"_s, realAccounting(),
                                u"--power-supply"_s, m_folder->filePath(u"none"_s)} +
                        more);
        QVERIFY(agent.waitForStarted());
    }
    /// What is recorded, of the agent itself unless another part of the names is given.
    QStringList recorded(const QString &part = u"monitor"_s)
    {
        ZELKLWAEventStore store(database(), agentBundle(), std::make_shared<ZELKSQLitePort>());
        store.settle(); // what a kill left
        const ServedEvents served(store);
        m_properties = served.properties;
        return served.names.filter(part);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QStringList m_properties; // of all that was recorded
};

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
