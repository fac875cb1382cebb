#include "Files.h"
#include "PowerLines.h"
#include "ZELKLWAPowerSourceWatcher.h"

#include <QDBusConnectionInterface>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

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
    void tell(const char *order)
    {
        m_process.write(order);
        m_process.write("\n");
        answer();
    }

private:
    void answer()
    {
        while (!m_process.canReadLine())
            if (!m_process.waitForReadyRead(milliseconds))
                qFatal("the bed does not answer: %s", m_process.readAllStandardError().constData());
        if (m_process.readLine() != "done\n")
            qFatal("the bed answers strangely");
    }
    QProcess m_process;
};

/// What is missing to run the daemon; empty when nothing is.
QString missing()
{
    if (!QFile::exists(u"/usr/libexec/upowerd"_s))
        return u"upower"_s;
    const QString question = u"import gi; gi.require_version('UMockdev', '1.0')"_s;
    if (QProcess::execute(u"sh"_s, {u"-c"_s, u"command -v umockdev-wrapper >/dev/null"_s}) != 0)
        return u"umockdev"_s;
    return QProcess::execute(u"/usr/bin/python3"_s, {u"-c"_s, question}) == 0 ? QString()
                                                                              : u"gir1.2-umockdev-1.0"_s;
}

} // namespace

/// Against the daemon itself: a program of its own, so that a machine without it skips this and nothing else.
class TestUPowerDaemon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString package = missing(); !package.isEmpty())
            QSKIP(qPrintable(u"SKIPPED: the package "_s + package + u" is not installed"_s));
    }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_lines.clear();
        m_watcher = std::make_unique<ZELKLWAPowerSourceWatcher>(
            QDBusConnection::systemBus(), m_folder->filePath(u"power_supply"_s),
            [this](const std::vector<ZELKLWAEvent> &events) { m_lines += powerLines(events); });
        m_watcher->setConfigurationFile(m_folder->filePath(u"none"_s));
    }
    void cleanup() { m_watcher.reset(); }

    void recordsTheDaemonAndTheKernelInTurn()
    {
        UPowerBed bed(m_folder->path());
        kernelSays(80);
        m_watcher->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_lines, QStringList{u"PRB-1 80% on Battery Power"_s}, milliseconds);

        bed.tell("start");
        bed.tell("set BAT0 capacity 79");
        expect({u"PRB-1 79% on Battery Power"_s});
        bed.tell("set AC online 1");
        expect({u"PRB-1 79% on AC Power"_s});
        bed.tell("set BAT0 capacity 104");
        expect({u"PRB-1 100% on AC Power"_s});
        bed.tell("add BAT1");
        expect({u"PRB-1 (BAT1) 80% on AC Power"_s});
        bed.tell("remove BAT1");
        expect({u"PRB-1 (BAT1) gone on AC Power"_s});

        kernelSays(99);
        bed.tell("stop");
        expect({u"PRB-1 99% on Battery Power"_s});
        bed.tell("set AC online 0");
        bed.tell("set BAT0 capacity 98");
        bed.tell("start");
        expect({u"PRB-1 98% on Battery Power"_s});
        QCOMPARE(m_lines.size(), 8);
        bed.tell("stop");
    }

    void hasTheBusStartIt()
    {
        const QString services = qEnvironmentVariable("XDG_DATA_HOME") + u"/dbus-1/system-services/"_s;
        writeFile(services + u"org.freedesktop.UPower.service"_s,
                  "[D-BUS Service]\nName=org.freedesktop.UPower\nUser=root\nExec=/usr/bin/umockdev-wrapper "
                  "/usr/bin/python3 " UPOWERD_BED " " +
                      m_folder->path().toUtf8() + " serve\n");
        QDBusConnection::systemBus().interface()->call(u"ReloadConfig"_s);
        m_watcher->start();
        QTRY_COMPARE_WITH_TIMEOUT(m_lines, QStringList{u"PRB-1 80% on Battery Power"_s}, milliseconds);
    }

private:
    /// The kernel's word, outside of the made-up hardware.
    void kernelSays(int percent)
    {
        const QString battery = m_folder->filePath(u"power_supply/BAT0/"_s);
        writeFile(battery + u"type"_s, "Battery\n");
        writeFile(battery + u"model_name"_s, "PRB-1\n");
        writeFile(battery + u"status"_s, "Discharging\n");
        writeFile(battery + u"capacity"_s, QByteArray::number(percent));
    }
    void expect(const QStringList &last)
    {
        QTRY_COMPARE_WITH_TIMEOUT(m_lines.mid(m_lines.size() - last.size()), last, milliseconds);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ZELKLWAPowerSourceWatcher> m_watcher;
    QStringList m_lines;
};

QTEST_GUILESS_MAIN(TestUPowerDaemon)
#include "tst_upowerd.moc"
