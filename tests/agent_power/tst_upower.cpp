#include "ClockEnvironment.h"
#include "ConsoleLines.h"
#include "FakeUPower.h"
#include "WatchedPower.h"

#include <QTest>

namespace {

const QString batteryPath = u"/org/freedesktop/UPower/devices/battery_BAT0"_s;

QVariantMap battery(double percent, qulonglong read)
{
    return with(upowerBattery, {{u"Percentage"_s, percent}, {u"UpdateTime"_s, read}});
}

QStringList lines(const QList<int> &percents)
{
    QStringList result;
    for (const int percent : percents)
        result += u"PRB-1 %1% on Battery Power"_s.arg(percent);
    return result;
}

/// UPower and its watcher, on a clock that stands.
struct Bed
{
    Bed() { uPower.devices[batteryPath] = battery(80, 4990); }
    void start()
    {
        uPower.come();
        watcher.start();
    }
    void change(const QVariantMap &changes) { uPower.change(batteryPath, changes); }

    std::shared_ptr<ZELKFixedClock> clock = std::make_shared<ZELKFixedClock>(second(5000));
    ZELKEnvironmentScope scope{environmentWith(clock)};
    FakeUPower uPower;
    WatchedPower power;
    ZELKLWAPowerSourceWatcher &watcher = power.watcher;
};

} // namespace

/// The conversation with UPower, also where the daemon of this machine would not go.
class TestUPower : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForWhatIsNewerThanTheWake()
    {
        Bed bed;
        bed.uPower.refresh = [&](const QString &path) { bed.uPower.devices[path] = battery(61, 4995); };
        bed.start();
        QTRY_COMPARE(bed.power.lines, lines({80}));
        bed.watcher.systemDidWake(second(4991));
        bed.change({{u"Percentage"_s, 75.0}});
        QTRY_COMPARE(bed.power.lines, lines({80, 61}));

        bed.uPower.refresh = nullptr; // there are versions that can not be asked
        bed.watcher.systemDidWake(second(4997));
        bed.change({{u"Percentage"_s, 60.0}});
        bed.uPower.devices[batteryPath] = battery(59, 4998);
        bed.uPower.change(batteryPath, {}, {u"Percentage"_s});
        QTRY_COMPARE(bed.power.lines, lines({80, 61, 59}));
    }

    void believesNothingThatWaitedWhileItSlept()
    {
        Bed bed;
        bed.uPower.refresh = [&](const QString &path) { bed.uPower.devices[path] = battery(61, 9000); };
        bed.start();
        QTRY_COMPARE(bed.power.lines, lines({80}));
        bed.watcher.setWakeCheck([&] {
            if (bed.clock->now() < second(9000)) {
                bed.clock->setNow(second(9000));
                bed.watcher.systemDidWake(bed.clock->now());
            }
        });
        bed.change({{u"Percentage"_s, 75.0}, {u"UpdateTime"_s, 4999ULL}});
        QTRY_COMPARE(bed.power.lines, lines({80, 61}));
        QCOMPARE(bed.power.dates.constLast(), second(9000));
    }

    void looksAgainForABatteryThatTheKernelStillShows()
    {
        Bed bed;
        bed.power.kernelSays(80);
        const QString other = batteryPath + u"1"_s;
        bed.uPower.devices[other] =
            with(battery(50, 4990), {{u"NativePath"_s, u"BAT1"_s}, {u"Model"_s, u"B"_s}});
        bed.start();
        QTRY_COMPARE(bed.power.lines.size(), 2);
        bed.uPower.remove(batteryPath);
        bed.uPower.change(other, {{u"Percentage"_s, 49.0}});
        QTRY_COMPARE(bed.power.lines.constLast(), u"B 49% on Battery Power"_s);
        QVERIFY(QDir(bed.power.folder.filePath(u"BAT0"_s)).removeRecursively());
        QTRY_COMPARE(bed.power.lines.constLast(), u"PRB-1 gone on Battery Power"_s);
    }

    void readsFromTheKernelWhenItsWordsMakeNoSense()
    {
        ConsoleLines console;
        Bed bed;
        bed.uPower.answersNonsense = true;
        bed.power.kernelSays(64);
        bed.watcher.start();
        QTRY_COMPARE(bed.power.lines, lines({64}));
        QVERIFY(bed.uPower.come());
        QTRY_COMPARE(console.size(), 2);
        bed.power.kernelSays(63);
        bed.watcher.systemDidWake(second(4990));
        QCOMPARE(bed.power.lines, lines({64, 63}));

        bed.uPower.answersNonsense = false;
        bed.uPower.devices[batteryPath] = battery(62, 4991);
        bed.uPower.leave();
        QVERIFY(bed.uPower.come());
        QTRY_COMPARE(bed.power.lines, lines({64, 63, 62}));
        bed.watcher.stop();
        bed.change({{u"Percentage"_s, 50.0}});
        bed.uPower.leave();
        bed.watcher.start();
        QTRY_COMPARE(bed.power.lines, lines({64, 63, 62, 63}));
    }
};

QTEST_GUILESS_MAIN(TestUPower)
#include "tst_upower.moc"
