#include "ConsoleLines.h"
#include "FakeUPower.h"
#include "Files.h"
#include "PowerLines.h"
#include "ZELKEnvironment.h"
#include "ZELKLWAPowerSourceWatcher.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QString batteryPath = u"/org/freedesktop/UPower/devices/battery_BAT0"_s;
const QString mousePath = u"/org/freedesktop/UPower/devices/mouse"_s;

QVariantMap battery(double percent, qulonglong read)
{
    return {{u"NativePath"_s, u"BAT0"_s}, {u"Model"_s, u"PRB-1"_s}, {u"Type"_s, 2U},
            {u"PowerSupply"_s, true},     {u"IsPresent"_s, true},   {u"State"_s, 2U},
            {u"Percentage"_s, percent},   {u"UpdateTime"_s, read}};
}

QString line(int percent)
{
    return u"PRB-1 %1% on Battery Power"_s.arg(percent);
}

} // namespace

/// The conversation with UPower, also where the daemon of this machine would not go.
class TestUPower : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_lines.clear();
        auto environment = ZELKEnvironment::system();
        environment.clock = std::make_shared<ZELKFixedClock>(ZELKDate::fromSecondsSince1970(5000));
        m_environment = std::make_unique<ZELKEnvironmentScope>(environment);
        m_uPower = std::make_unique<FakeUPower>();
        m_uPower->devices[batteryPath] = battery(80, 1000);
        m_uPower->devices[mousePath] = {{u"NativePath"_s, u"mouse"_s}, {u"Type"_s, 5U}};
        m_watcher = std::make_unique<ZELKLWAPowerSourceWatcher>(
            QDBusConnection::systemBus(), m_folder->path(),
            [this](const std::vector<ZELKLWAEvent> &events) { m_lines += powerLines(events); });
        m_watcher->setConfigurationFile(m_folder->filePath(u"none"_s));
    }
    void cleanup()
    {
        m_watcher.reset();
        m_uPower.reset();
        m_environment.reset();
    }

    void asksForWhatIsNewerThanTheWake()
    {
        m_uPower->refresh = [this](const QString &path) { m_uPower->devices[path] = battery(61, 4995); };
        begin();
        m_uPower->asked.clear();
        m_watcher->systemDidWake(ZELKDate::fromSecondsSince1970(4990));
        m_uPower->change(batteryPath, {{u"Percentage"_s, 75.0}});
        QTRY_COMPARE(m_lines, (QStringList{line(80), line(61)}));
        QCOMPARE(m_uPower->asked, (QStringList{u"Refresh "_s + batteryPath, u"GetAll "_s + batteryPath}));
    }

    void waitsWhereItCanNotAsk()
    {
        begin();
        m_watcher->systemDidWake(ZELKDate::fromSecondsSince1970(4990));
        m_uPower->change(batteryPath, {{u"Percentage"_s, 75.0}});
        m_uPower->change(batteryPath, {{u"Percentage"_s, 60.0}, {u"UpdateTime"_s, 4991ULL}});
        QTRY_COMPARE(m_lines, (QStringList{line(80), line(60)}));
    }

    void followsDevices()
    {
        begin();
        m_uPower->asked.clear();
        m_uPower->change(mousePath, {{u"Type"_s, 2U}, {u"PowerSupply"_s, true}});
        m_uPower->devices[batteryPath][u"Percentage"_s] = 79.0;
        m_uPower->change(batteryPath, {}, {u"Percentage"_s});
        QTRY_COMPARE(m_lines.constLast(), line(79));
        m_uPower->remove(batteryPath);
        QTRY_COMPARE(m_lines.constLast(), u"PRB-1 gone on Battery Power"_s);
        m_uPower->add(batteryPath, battery(78, 1000));
        QTRY_COMPARE(m_lines.constLast(), line(78));
        QCOMPARE(m_uPower->asked, QStringList(2, u"GetAll "_s + batteryPath));
    }

    void readsFromTheKernelWhenItsWordsMakeNoSense()
    {
        ConsoleLines console;
        m_uPower->answersNonsense = true;
        kernelSays("64");
        m_watcher->start();
        QTRY_COMPARE(m_lines, QStringList{line(64)});
        QVERIFY(m_uPower->come());
        QTRY_COMPARE(console.size(), 2);
        kernelSays("63");
        m_watcher->systemDidWake(ZELKDate::fromSecondsSince1970(4990));
        QCOMPARE(m_lines.constLast(), line(63));
        m_uPower->answersNonsense = false;
        m_uPower->devices[batteryPath] = battery(62, 4991);
        m_uPower->leave();
        QVERIFY(m_uPower->come());
        QTRY_COMPARE(m_lines.constLast(), line(62));
    }

    void saysNothingOnceStopped()
    {
        begin();
        m_watcher->stop();
        m_uPower->change(batteryPath, {{u"Percentage"_s, 50.0}});
        m_uPower->leave();
        m_watcher->start();
        kernelSays("49");
        QTRY_COMPARE(m_lines, (QStringList{line(80), line(49)}));
    }

private:
    void begin()
    {
        QVERIFY(m_uPower->come());
        m_watcher->start();
        QTRY_COMPARE(m_lines, QStringList{line(80)});
    }
    void kernelSays(const QByteArray &percent)
    {
        const QString folder = m_folder->filePath(u"BAT0/"_s);
        writeFile(folder + u"type"_s, "Battery\n");
        writeFile(folder + u"model_name"_s, "PRB-1\n");
        writeFile(folder + u"status"_s, "Discharging\n");
        writeFile(folder + u"capacity"_s, percent);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ZELKEnvironmentScope> m_environment;
    std::unique_ptr<FakeUPower> m_uPower;
    std::unique_ptr<ZELKLWAPowerSourceWatcher> m_watcher;
    QStringList m_lines;
};

QTEST_GUILESS_MAIN(TestUPower)
#include "tst_upower.moc"
