#include "WatchedPower.h"

#include <QDBusConnectionInterface>
#include <QProcess>
#include <QTest>

namespace {

constexpr int milliseconds = 20000;

/// The real upowerd, its hardware made up.
class UPowerBed
{
public:
    explicit UPowerBed(const QString &folder)
    {
        m_process.start(u"umockdev-wrapper"_s,
                        {u"/usr/bin/python3"_s, QString::fromUtf8(UPOWERD_BED), folder});
        answer();
    }
    ~UPowerBed()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished(milliseconds);
    }
    void tell(const QByteArray &order)
    {
        m_process.write(order + '\n');
        answer();
    }

private:
    void answer()
    {
        while (!m_process.canReadLine())
            if (!m_process.waitForReadyRead(milliseconds))
                qFatal("the bed does not answer: %s", m_process.readAllStandardError().constData());
        m_process.readLine();
    }
    QProcess m_process;
};

/// What is missing to run the daemon; empty when nothing is.
QString missing()
{
    const QString wanted = u"test -x /usr/libexec/upowerd || exec echo upower\n"
                           "command -v umockdev-wrapper >/dev/null || exec echo umockdev\n"
                           "/usr/bin/python3 -c 'import gi; gi.require_version(\"UMockdev\", \"1.0\")' "
                           "2>/dev/null || echo gir1.2-umockdev-1.0 python3-gi"_s;
    QProcess shell;
    shell.start(u"sh"_s, {u"-c"_s, wanted});
    shell.waitForFinished(milliseconds);
    return QString::fromUtf8(shell.readAll()).trimmed();
}

} // namespace

/// Against the daemon itself: a program of its own, so that a machine without it skips this and nothing else.
class TestUPowerDaemon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString packages = missing(); !packages.isEmpty())
            QSKIP(qPrintable(u"SKIPPED: not installed: "_s + packages));
    }

    void recordsTheDaemonAndTheKernelInTurn()
    {
        QTemporaryDir history;
        UPowerBed bed(history.path());
        WatchedPower power;
        const auto last = [&] { return power.lines.isEmpty() ? QString() : power.lines.constLast(); };
        power.kernelSays(80);
        power.watcher.start();
        QTRY_COMPARE_WITH_TIMEOUT(last(), u"PRB-1 80% on Battery Power"_s, milliseconds);
        const QList<std::pair<QList<QByteArray>, QString>> steps{
            {{"start", "set BAT0 capacity 79"}, u"PRB-1 79% on Battery Power"_s},
            {{"set AC online 1"}, u"PRB-1 79% on AC Power"_s},
            {{"set BAT0 capacity 104"}, u"PRB-1 100% on AC Power"_s},
            {{"add BAT1"}, u"PRB-1 (BAT1) 80% on AC Power"_s},
            {{"remove BAT1"}, u"PRB-1 (BAT1) gone on AC Power"_s},
            {{"stop"}, u"PRB-1 99% on Battery Power"_s}, // from the kernel
            {{"set AC online 0", "set BAT0 capacity 98", "start"}, u"PRB-1 98% on Battery Power"_s},
        };
        power.kernelSays(99);
        for (const auto &[orders, line] : steps) {
            for (const QByteArray &order : orders)
                bed.tell(order);
            QTRY_COMPARE_WITH_TIMEOUT(last(), line, milliseconds);
        }
        QCOMPARE(power.lines.size(), steps.size() + 1);
        bed.tell("stop");
    }

    void hasTheBusStartIt()
    {
        QTemporaryDir history;
        const QString services = qEnvironmentVariable("XDG_DATA_HOME") + u"/dbus-1/system-services/"_s;
        writeFile(services + u"org.freedesktop.UPower.service"_s,
                  "[D-BUS Service]\nName=org.freedesktop.UPower\nUser=root\nExec=/usr/bin/umockdev-wrapper "
                  "/usr/bin/python3 " UPOWERD_BED " " +
                      history.path().toUtf8() + " serve\n");
        QDBusConnection::systemBus().interface()->call(u"ReloadConfig"_s);
        WatchedPower power;
        power.watcher.start();
        QTRY_COMPARE_WITH_TIMEOUT(power.lines, QStringList{u"PRB-1 80% on Battery Power"_s}, milliseconds);
    }
};

QTEST_GUILESS_MAIN(TestUPowerDaemon)
#include "tst_upowerd.moc"
