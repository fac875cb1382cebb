#include "BusService.h"
#include "ServedEvents.h"
#include "ZELKSQLitePort.h"

#include <QProcess>

#include <optional>

namespace {

constexpr char logindName[] = "org.freedesktop.login1";
constexpr char uPowerName[] = "org.freedesktop.UPower";

/// KiB of a process by the kernel's words for them.
int kiB(qint64 pid, const QByteArray &kind)
{
    for (const QByteArray &line : readFile(u"/proc/%1/status"_s.arg(pid)).split('\n'))
        if (line.startsWith(kind + ':'))
            return line.mid(kind.size() + 1).trimmed().split(' ').constFirst().toInt();
    return 0;
}

} // namespace

/// The agent of a session, as a process, beside a system bus that comes and goes.
class TestSystemBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_words.clear();
    }
    void cleanup()
    {
        m_logind.reset();
        m_uPower.reset();
        for (std::optional<QProcess> *process : {&m_agent, &m_bus}) {
            if (!*process)
                continue;
            (*process)->kill();
            (*process)->waitForFinished();
            process->reset();
        }
    }

    void findsItAgain_data()
    {
        const Rows<bool, bool> row;
        row("its socket stays behind", true, false);
        row("its folder goes too", true, true);
        row("there was none", false, false);
    }
    void findsItAgain()
    {
        const auto [wasThere, losesFolder] = Rows<bool, bool>::fetch();
        if (wasThere)
            startBus();
        startAgent();
        if (wasThere) {
            QTRY_COMPARE(m_logind->asked("Inhibit"), 2);
            QTRY_VERIFY(m_uPower->asked("EnumerateDevices") == 1);
            endBus(losesFolder);
            QTRY_VERIFY(words().contains("went away"));
        } else {
            QTRY_VERIFY(recorded(u"Starting monitor"_s) == 1);
        }
        startBus();
        QTRY_COMPARE(m_logind->asked("Inhibit"), 2);
        QTRY_VERIFY(m_uPower->asked("EnumerateDevices") == 1);
        m_logind->emitSignal(u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s, {true});
        QTRY_COMPARE(recorded(u"System will sleep"_s), 1);
        m_agent->terminate();
        QVERIFY(m_agent->waitForFinished());
        QCOMPARE(m_agent->exitCode(), 0);
        // Told of once, beside a question that was on its way when the bus ended.
        const qsizetype unasked = words().count("could not be asked: Not connected");
        QVERIFY2(words().count('\n') - unasked == (wasThere ? 2 : 1), words());
    }

    /// Most of what a start takes is handed back.
    void isSmallOnceItIsIdle()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("a sanitizer watches the memory");
#endif
        startBus();
        startAgent();
        QTRY_COMPARE(m_logind->asked("Inhibit"), 2);
        const qint64 pid = m_agent->processId();
        QTRY_VERIFY(kiB(pid, "VmRSS") < kiB(pid, "VmHWM") / 2);
    }

private:
    QString socket() const
    {
        return m_folder->filePath(u"run/dbus/socket"_s);
    }
    QString database() const
    {
        return m_folder->filePath(u"events.db"_s);
    }
    void startBus()
    {
        QDir().mkpath(QFileInfo(socket()).path());
        m_bus.emplace();
        m_bus->start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s,
                                        u"--address=unix:path="_s + socket()});
        QTRY_VERIFY(m_bus->canReadLine());
        const QString address = QString::fromUtf8(m_bus->readLine()).trimmed();
        m_logind.emplace(address, QLatin1String(logindName), u"/org/freedesktop/login1"_s);
        m_uPower.emplace(address, QLatin1String(uPowerName), u"/org/freedesktop/UPower"_s);
    }
    /// At once, with all who serve on it.
    void endBus(bool withFolder)
    {
        m_bus->kill();
        QVERIFY(m_bus->waitForFinished());
        m_logind.reset();
        m_uPower.reset();
        if (withFolder)
            QVERIFY(QDir(m_folder->filePath(u"run"_s)).removeRecursively());
    }
    void startAgent()
    {
        m_agent.emplace();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, u"unix:path="_s + socket());
        m_agent->setProcessEnvironment(environment);
        m_agent->setProcessChannelMode(QProcess::MergedChannels);
        const QString none = m_folder->filePath(u"none"_s), accounting = m_folder->filePath(u"wtmp"_s);
        writeFile(accounting, {});
        m_agent->start(agentBundle()->executablePath(),
                       {u"--database"_s, database(), u"--wtmp"_s, accounting, u"--power-supply"_s, none});
        QVERIFY(m_agent->waitForStarted());
    }
    /// All that the agent has said.
    QByteArray words()
    {
        m_words += m_agent->readAll();
        return m_words;
    }
    /// How often.
    int recorded(const QString &name) const
    {
        ZELKLWAEventStore store(database(), agentBundle(), std::make_shared<ZELKSQLitePort>());
        store.settle();
        return int(ServedEvents(store).names.count(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::optional<QProcess> m_bus;
    std::optional<QProcess> m_agent;
    std::optional<BusService> m_logind;
    std::optional<BusService> m_uPower;
    QByteArray m_words;
};

QTEST_GUILESS_MAIN(TestSystemBus)
#include "tst_system_bus.moc"
