#include "ConsoleLines.h"
#include "FakeUPower.h"
#include "WatchedPower.h"
#include "ZELKEnvironment.h"

#include <QTest>

namespace {

const QString batteryPath = u"/org/freedesktop/UPower/devices/battery_BAT0"_s;

QVariantMap battery(double percent, qulonglong read)
{
    return {{u"NativePath"_s, u"BAT0"_s}, {u"Model"_s, u"PRB-1"_s}, {u"Type"_s, 2U},
            {u"PowerSupply"_s, true},     {u"IsPresent"_s, true},   {u"State"_s, 2U},
            {u"Percentage"_s, percent},   {u"UpdateTime"_s, read}};
}

ZELKDate second(double sinceEpoch)
{
    return ZELKDate::fromSecondsSince1970(sinceEpoch);
}

QStringList lines(const QList<int> &percents)
{
    QStringList result;
    for (const int percent : percents)
        result += u"PRB-1 %1% on Battery Power"_s.arg(percent);
    return result;
}

ZELKEnvironment at(ZELKDate date)
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.clock = std::make_shared<ZELKFixedClock>(date);
    return environment;
}

} // namespace

/// The conversation with UPower, also where the daemon of this machine would not go.
class TestUPower : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForWhatIsNewerThanTheWake()
    {
        const ZELKEnvironmentScope environment(at(second(5000)));
        FakeUPower uPower;
        WatchedPower power;
        uPower.refresh = [&](const QString &path) { uPower.devices[path] = battery(61, 4995); };
        uPower.devices[batteryPath] = battery(80, 1000);
        QVERIFY(uPower.come());
        power.watcher.start();
        QTRY_COMPARE(power.lines, lines({80}));
        power.watcher.systemDidWake(second(4990));
        uPower.change(batteryPath, {{u"Percentage"_s, 75.0}});
        QTRY_COMPARE(power.lines, lines({80, 61}));

        uPower.refresh = nullptr; // there are versions that can not be asked
        power.watcher.systemDidWake(second(4997));
        uPower.change(batteryPath, {{u"Percentage"_s, 60.0}});
        uPower.devices[batteryPath] = battery(59, 4998);
        uPower.change(batteryPath, {}, {u"Percentage"_s});
        QTRY_COMPARE(power.lines, lines({80, 61, 59}));
    }

    void believesNothingThatWaitedWhileItSlept()
    {
        ZELKEnvironment slept = at(second(5000));
        const auto clock = std::make_shared<ZELKFixedClock>(second(5000));
        slept.clock = clock;
        const ZELKEnvironmentScope environment(slept);
        FakeUPower uPower;
        WatchedPower power;
        uPower.refresh = [&](const QString &path) { uPower.devices[path] = battery(61, 9000); };
        uPower.devices[batteryPath] = battery(80, 4990);
        QVERIFY(uPower.come());
        power.watcher.start();
        QTRY_COMPARE(power.lines, lines({80}));
        power.watcher.setWakeCheck([&] {
            if (clock->now() < second(9000)) {
                clock->setNow(second(9000));
                power.watcher.systemDidWake(clock->now());
            }
        });
        uPower.change(batteryPath, {{u"Percentage"_s, 75.0}, {u"UpdateTime"_s, 4999ULL}});
        QTRY_COMPARE(power.lines, lines({80, 61}));
        QCOMPARE(power.dates.constLast(), second(9000));
    }

    void looksAgainForABatteryThatTheKernelStillShows()
    {
        const ZELKEnvironmentScope environment(at(second(5000)));
        FakeUPower uPower;
        WatchedPower power;
        power.kernelSays(80);
        uPower.devices[batteryPath] = battery(80, 4990);
        const QString other = batteryPath + u"1"_s;
        uPower.devices[other] = battery(50, 4990);
        uPower.devices[other].insert({{u"NativePath"_s, u"BAT1"_s}, {u"Model"_s, u"B"_s}});
        QVERIFY(uPower.come());
        power.watcher.start();
        QTRY_COMPARE(power.lines.size(), 2);
        uPower.remove(batteryPath);
        uPower.change(other, {{u"Percentage"_s, 49.0}});
        QTRY_COMPARE(power.lines.constLast(), u"B 49% on Battery Power"_s);
        QVERIFY(QDir(power.folder.filePath(u"BAT0"_s)).removeRecursively());
        QTRY_COMPARE(power.lines.constLast(), u"PRB-1 gone on Battery Power"_s);
    }

    void readsFromTheKernelWhenItsWordsMakeNoSense()
    {
        ConsoleLines console;
        FakeUPower uPower;
        WatchedPower power;
        uPower.answersNonsense = true;
        power.kernelSays(64);
        power.watcher.start();
        QTRY_COMPARE(power.lines, lines({64}));
        QVERIFY(uPower.come());
        QTRY_COMPARE(console.size(), 2);
        power.kernelSays(63);
        power.watcher.systemDidWake(second(4990));
        QCOMPARE(power.lines, lines({64, 63}));

        uPower.answersNonsense = false;
        uPower.devices[batteryPath] = battery(62, 4991);
        uPower.leave();
        QVERIFY(uPower.come());
        QTRY_COMPARE(power.lines, lines({64, 63, 62}));
        power.watcher.stop();
        uPower.change(batteryPath, {{u"Percentage"_s, 50.0}});
        uPower.leave();
        power.watcher.start();
        QTRY_COMPARE(power.lines, lines({64, 63, 62, 63}));
    }
};

QTEST_GUILESS_MAIN(TestUPower)
#include "tst_upower.moc"
