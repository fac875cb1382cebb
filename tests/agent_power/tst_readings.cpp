#include "Files.h"
#include "PowerLines.h"
#include "Rows.h"
#include "ZELKPowerSourceLedger.h"
#include "ZELKSettingsPowerSourceNames.h"
#include "ZELKUPowerDevices.h"
#include "ZELKUserDefaults.h"
#include "ZELKValue.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace {

const QVariantMap battery{
    {u"NativePath"_s, u"BAT0"_s}, {u"Model"_s, u"PRB-1"_s},  {u"Type"_s, 2U},
    {u"PowerSupply"_s, true},     {u"IsPresent"_s, true},    {u"State"_s, 2U},
    {u"Percentage"_s, 80.0},      {u"Energy"_s, 48.0},       {u"TimeToEmpty"_s, 19200LL},
    {u"TimeToFull"_s, 0LL},       {u"UpdateTime"_s, 1000ULL}};
const QVariantMap mains{{u"NativePath"_s, u"AC"_s}, {u"Type"_s, 1U},         {u"PowerSupply"_s, true},
                        {u"Online"_s, false},       {u"IsPresent"_s, false}, {u"UpdateTime"_s, 1000ULL}};

QVariantMap with(QVariantMap map, const QVariantMap &others)
{
    map.insert(others);
    return map;
}

ZELKDate second(double sinceEpoch)
{
    return ZELKDate::fromSecondsSince1970(sinceEpoch);
}

/// UPower's devices and a ledger; what is worth an event comes out as lines.
struct Bed
{
    QTemporaryDir folder;
    ZELKUPowerDevices devices{folder.path()};
    ZELKPowerSourceLedger ledger;
    ZELKDate now = second(5000);
    QStringList lines;

    void tell() { lines += powerLines(ledger.eventsFor(devices.supplies(now), now)); }
    void set(const char *path, const QVariantMap &properties)
    {
        devices.setDevice(QString::fromLatin1(path), properties);
        tell();
    }
    void change(const char *path, const QVariantMap &changes)
    {
        devices.changeDevice(QString::fromLatin1(path), changes);
        tell();
    }
    void remove(const char *path)
    {
        devices.removeDevice(QString::fromLatin1(path));
        tell();
    }
    void onBattery(bool on)
    {
        devices.setOnBattery(on);
        tell();
    }
    void wake(double sinceEpoch) { devices.systemDidWake(second(sinceEpoch)); }
    void kernelShows(const char *device, const QByteArray &present = "1")
    {
        writeFile(folder.filePath(QString::fromLatin1(device) + u"/present"_s), present);
    }
    /// Another reader's turn, with what it reads.
    void readByOther(const std::vector<ZELKPowerSupply> &supplies)
    {
        ledger.readerDidChange();
        lines += powerLines(ledger.eventsFor(supplies, now));
    }
    ZELKPowerSupply bySysfs(const char *model, double percent) const
    {
        ZELKPowerSupply supply;
        supply.device = u"BAT0"_s;
        supply.path = folder.filePath(u"BAT0"_s);
        supply.model = QString::fromLatin1(model);
        supply.isPresent = true;
        supply.status = ZELKPowerSupply::Status::Discharging;
        supply.percent = percent;
        supply.lowWarnPercent = 7;
        supply.sourceState = ZELKPowerSourceBattery;
        return supply;
    }
};

using Story = std::function<void(Bed &)>;

} // namespace

class TestReadings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describes_data()
    {
        const Rows<QVariantMap, QString> row;
        const QString ends = u", Power Source ID BAT0, Transport Type Internal, Low Warn Level 20, "
                             "Shutdown Level 2, Power Source State "_s;
        row("discharging", battery,
            u"Is Present 1, Is Charging 0, Current Capacity 80, Max Capacity 100, Time to Empty 320"_s +
                ends + u"Battery Power"_s);
        row("charging beyond its capacity",
            with(battery, {{u"State"_s, 1U}, {u"Percentage"_s, 104.2}, {u"TimeToFull"_s, 90LL}}),
            u"Is Present 1, Is Charging 1, Current Capacity 100, Max Capacity 100, Time to Full Charge 2"_s +
                ends + u"AC Power"_s);
        const QString unknown = u"Is Present 1, Is Charging 0, Max Capacity 100"_s + ends;
        row("values that are missing", QVariantMap{{u"NativePath"_s, u"BAT0"_s}, {u"Type"_s, 3U}},
            unknown + u"Unknown"_s);
        row("values of other kinds",
            with(battery, {{u"Percentage"_s, u"80"_s},
                           {u"TimeToEmpty"_s, qQNaN()},
                           {u"IsPresent"_s, 7},
                           {u"Model"_s, QVariantList{1}}}),
            unknown + u"Battery Power"_s);
        row("nothing could be read",
            with(battery, {{u"Percentage"_s, 0.0}, {u"Energy"_s, 0.0}, {u"State"_s, -1e300}}),
            unknown + u"Unknown"_s);
    }
    void describes()
    {
        const auto [properties, expected] = Rows<QVariantMap, QString>::fetch();
        QTemporaryDir folder;
        ZELKUPowerDevices devices(folder.path());
        writeFile(folder.filePath(u"c"_s), "# PercentageLow=9\n[Other]\nPercentageAction=1\n[UPower]\n"
                                           "#PercentageLow=8\nPercentageLow=20\nPercentageAction = 2\n");
        devices.setLevels(ZELKUPowerLevels::read(folder.filePath(u"c"_s)));
        QVERIFY(devices.setDevice(u"/b"_s, properties));
        QStringList found;
        for (const auto &[key, value] : devices.supplies(second(5000)).at(0).properties())
            found += key + u' ' + ZELKValue::description(value);
        QCOMPARE(found.join(u", "_s), expected);
    }

    void leavesWithItsCharge_data()
    {
        const Rows<bool> row;
        row("gone", false);
        row("an empty bay", true);
    }
    void leavesWithItsCharge()
    {
        const auto [hasBay] = Rows<bool>::fetch();
        Bed bed;
        bed.set("/b", battery);
        if (hasBay)
            bed.devices.changeDevice(u"/b"_s, {{u"IsPresent"_s, false}, {u"Percentage"_s, 0.0}});
        else
            bed.devices.removeDevice(u"/b"_s);
        const auto events = bed.ledger.eventsFor(bed.devices.supplies(bed.now), bed.now);
        QCOMPARE(events.size(), 1u);
        const ZELKDictionary properties = propertiesOf(events.front());
        QCOMPARE(properties.value(ZELKPropertyIsPresent), QVariant(false));
        QCOMPARE(properties.value(ZELKPropertyCurrentCapacity).toInt(), 80);
        QCOMPARE(properties.value(ZELKPropertyMaxCapacity).toInt(), 100);
    }

    void keepsNamesFromRunToRun()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"settings.ini"_s);
        const auto names = [&](const QStringList &devices) {
            ZELKUserDefaults settings(file);
            ZELKSettingsPowerSourceNames memory(settings);
            ZELKPowerSourceNames given(&memory);
            QStringList found;
            for (const QString &device : devices) {
                ZELKPowerSupply supply;
                supply.device = device;
                supply.model = u"PRB, 1"_s;
                supply.isPresent = true;
                found += given.nameFor(supply, false);
            }
            return found;
        };
        const QString first = u"PRB, 1"_s, second = u"PRB, 1 (BAT0)"_s;
        QCOMPARE(names({u"BAT1"_s, u"BAT0"_s}), QStringList({first, second}));
        QCOMPARE(names({u"BAT0"_s, u"BAT1"_s}), QStringList({second, first}));
        ZELKUserDefaults(file).setValue(u"powerSourceNames"_s, QStringList{u"BAT0"_s, u"x"_s});
        QCOMPARE(names({u"BAT0"_s}), QStringList{first});
    }

    void knowsLevels()
    {
        QTemporaryDir folder;
        const QString file = folder.filePath(u"c"_s);
        QCOMPARE(ZELKUPowerLevels::read(file), ZELKUPowerLevels());
        writeFile(file, "[UPower]\nPercentageLow=20\nPercentageAction=2\nCriticalPowerAction=Ignore\n");
        QCOMPARE(ZELKUPowerLevels::read(file), (ZELKUPowerLevels{20.0, {}}));
        writeFile(file, "[UPower]\nPercentageLow=20\nUsePercentageForPolicy=false\n");
        QCOMPARE(ZELKUPowerLevels::read(file), ZELKUPowerLevels());
    }

    void tells_data();
    void tells()
    {
        const auto [story, expected] = Rows<Story, QStringList>::fetch();
        Bed bed;
        story(bed);
        QCOMPARE(bed.lines, expected);
    }
};

void TestReadings::tells_data()
{
    const Rows<Story, QStringList> row;
    using Lines = QStringList;
    const QString first = u"PRB-1 80% on Battery Power"_s;
    const QVariantMap second{{u"NativePath"_s, u"BAT1"_s}};

    row("two of one model, whatever the order on the bus", Story([=](Bed &bed) {
            bed.devices.setDevice(u"/a"_s, with(battery, second));
            bed.set("/b", battery);
            bed.change("/a", {{u"Percentage"_s, 79.0}});
        }),
        Lines{first, u"PRB-1 (BAT1) 80% on Battery Power"_s, u"PRB-1 (BAT1) 79% on Battery Power"_s});
    row("plugged in and out, told once", Story([=](Bed &bed) {
            bed.set("/b", battery);
            bed.set("/c", with(battery, second));
            bed.remove("/c");
            bed.tell();
            bed.set("/c", with(with(battery, second), {{u"IsPresent"_s, false}, {u"Model"_s, u""_s}}));
            bed.remove("/c");
            bed.set("/c", with(battery, second));
        }),
        Lines{first, u"PRB-1 (BAT1) 80% on Battery Power"_s, u"PRB-1 (BAT1) gone on Battery Power"_s,
              u"PRB-1 (BAT1) 80% on Battery Power"_s});
    row("an empty bay, mice, phones and a display device", Story([=](Bed &bed) {
            bed.set("/b", with(battery, {{u"IsPresent"_s, false}}));
            bed.set("/m", with(battery, {{u"Type"_s, 5U}}));
            bed.set("/p", with(battery, {{u"PowerSupply"_s, false}}));
            bed.set("/d", with(battery, {{u"NativePath"_s, u""_s}}));
        }),
        Lines{});
    row("time estimates change, and nothing does", Story([=](Bed &bed) {
            bed.set("/b", battery);
            bed.change("/b", {{u"TimeToEmpty"_s, 60LL}, {u"UpdateTime"_s, 1030ULL}, {u"Energy"_s, 47.9}});
            bed.change("/x", {{u"Percentage"_s, 5.0}});
        }),
        Lines{first});
    row("the charger comes: every battery's source", Story([=](Bed &bed) {
            bed.devices.setDevice(u"/l"_s, mains);
            bed.devices.setDevice(u"/b"_s, battery);
            bed.set("/c", with(battery, with(second, {{u"State"_s, 5U}})));
            bed.onBattery(true);
            bed.change("/l", {{u"Online"_s, true}});
            bed.change("/b", {{u"State"_s, 1U}});
        }),
        Lines{first, u"PRB-1 (BAT1) 80% on Battery Power"_s, u"PRB-1 80% on AC Power"_s,
              u"PRB-1 (BAT1) 80% on AC Power"_s, u"PRB-1 80% charging on AC Power"_s});
    row("no mains known: the daemon's word, then the batteries'", Story([=](Bed &bed) {
            bed.set("/b", with(battery, {{u"State"_s, 0U}}));
            bed.onBattery(true);
            bed.onBattery(false);
            bed.change("/b", {{u"State"_s, 4U}});
            bed.set("/u", with(battery, {{u"NativePath"_s, u"/sys/devices/hiddev0"_s}, {u"Type"_s, 3U}}));
        }),
        Lines{u"PRB-1 80% on Unknown"_s, first, u"PRB-1 80% on Unknown"_s, u"PRB-1 80% on AC Power"_s,
              u"PRB-1 80% on Battery Power"_s, u"PRB-1 (hiddev0) 80% on Battery Power"_s});
    row("older than the wake", Story([=](Bed &bed) {
            bed.devices.setDevice(u"/l"_s, mains);
            bed.set("/b", battery);
            bed.wake(4990.7);
            bed.change("/b", {{u"Percentage"_s, 75.0}, {u"UpdateTime"_s, 4989ULL}});
            bed.change("/b", {{u"Percentage"_s, 60.0}, {u"UpdateTime"_s, 4990ULL}});
            bed.change("/l", {{u"Online"_s, true}, {u"UpdateTime"_s, 4991ULL}});
        }),
        Lines{first, u"PRB-1 60% on AC Power"_s});
    row("mains that nobody reads after the wake", Story([=](Bed &bed) {
            bed.devices.setDevice(u"/l"_s, mains);
            bed.set("/b", battery);
            bed.wake(4900);
            bed.change("/b", {{u"Percentage"_s, 70.0}, {u"UpdateTime"_s, 4901ULL}});
            bed.change("/b", {{u"Percentage"_s, 69.0}, {u"UpdateTime"_s, 4930ULL}});
        }),
        Lines{first, u"PRB-1 69% on Battery Power"_s});
    row("the clock was set back after the wake", Story([=](Bed &bed) {
            bed.set("/b", battery);
            bed.wake(9000);
            bed.change("/b", {{u"Percentage"_s, 70.0}, {u"UpdateTime"_s, 4999ULL}});
        }),
        Lines{first, u"PRB-1 70% on Battery Power"_s});
    row("one battery is held back, it is not gone", Story([=](Bed &bed) {
            bed.devices.setDevice(u"/b"_s, battery);
            bed.set("/c", with(battery, second));
            bed.wake(4990);
            bed.change("/c", {{u"State"_s, 1U}, {u"UpdateTime"_s, 4995ULL}});
        }),
        Lines{first, u"PRB-1 (BAT1) 80% on Battery Power"_s, u"PRB-1 (BAT1) 80% charging on AC Power"_s});
    row("another reader spells and warns differently", Story([=](Bed &bed) {
            bed.set("/b", battery);
            bed.readByOther({bed.bySysfs("PRB 1", 80)});
            bed.readByOther({bed.bySysfs("PRB 1", 79)});
            bed.ledger.readerDidChange();
            bed.change("/b", {{u"Percentage"_s, 79.0}});
            bed.change("/b", {{u"Percentage"_s, 78.0}});
            bed.change("/b", {{u"Model"_s, u"OTHER"_s}});
        }),
        Lines{first, u"PRB-1 79% on Battery Power"_s, u"PRB-1 78% on Battery Power"_s,
              u"OTHER 78% on Battery Power"_s});
    row("a reader that gives up its devices first, or knows fewer", Story([=](Bed &bed) {
            bed.kernelShows("BAT0");
            bed.kernelShows("hiddev0");
            bed.set("/b", battery);
            bed.set("/u", with(battery, {{u"NativePath"_s, bed.folder.filePath(u"hiddev0"_s)},
                                         {u"Type"_s, 3U},
                                         {u"Model"_s, u"UPS"_s}}));
            bed.remove("/b");
            bed.readByOther({bed.bySysfs("PRB-1", 80)});
            bed.readByOther({});
            bed.kernelShows("BAT0", "0");
            bed.readByOther({});
            bed.readByOther({});
        }),
        Lines{first, u"UPS 80% on Battery Power"_s, u"PRB-1 gone on Battery Power"_s});
}

QTEST_GUILESS_MAIN(TestReadings)
#include "tst_readings.moc"
