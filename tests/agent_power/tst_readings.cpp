#include "Files.h"
#include "PowerLines.h"
#include "Rows.h"
#include "ZELKPowerSourceLedger.h"
#include "ZELKSettingsPowerSourceNames.h"
#include "ZELKUPowerDevices.h"
#include "ZELKUserDefaults.h"
#include "ZELKValue.h"

#include <QTemporaryDir>

namespace {

const QVariantMap mains{{u"NativePath"_s, u"AC"_s}, {u"Type"_s, 1U},         {u"PowerSupply"_s, true},
                        {u"Online"_s, false},       {u"IsPresent"_s, false}, {u"UpdateTime"_s, 1000ULL}};

/// "KEY=VALUE", of the key's type.
QVariantMap changesIn(const QStringList &words)
{
    QVariantMap changes;
    for (const QString &word : words) {
        const QString key = word.section(u'=', 0, 0);
        QVariant value = word.section(u'=', 1);
        value.convert(with(mains, upowerBattery).value(key).metaType());
        changes.insert(key, value);
    }
    return changes;
}

/// UPower's devices and a ledger; what is worth an event is kept.
struct Bed
{
    QTemporaryDir folder;
    ZELKUPowerDevices devices{folder.path()};
    ZELKPowerSourceLedger ledger;
    ZELKDate now = second(5000);
    std::vector<ZELKLWAEvent> events;

    /// Steps, each a word, a name and changes. A semicolon has the ledger look, a comma does not.
    void play(QString story)
    {
        for (const QString &steps : story.replace(u"FOLDER"_s, folder.path()).split(u"; "_s)) {
            std::optional<std::vector<ZELKPowerSupply>> byKernel;
            for (const QString &step : steps.split(u", "_s))
                take(step.split(u' '), &byKernel);
            const auto told = ledger.eventsFor(byKernel ? *byKernel : devices.supplies(now), now);
            events.insert(events.end(), told.begin(), told.end());
        }
    }

private:
    void take(const QStringList &words, std::optional<std::vector<ZELKPowerSupply>> *byKernel)
    {
        const QString word = words.at(0), name = words.value(1), path = u'/' + name;
        if (word == "battery"_L1 || word == "mains"_L1)
            devices.setDevice(path,
                              with(word == "mains"_L1 ? mains : upowerBattery, changesIn(words.mid(2))));
        else if (word == "change"_L1)
            devices.changeDevice(path, changesIn(words.mid(2)));
        else if (word == "remove"_L1)
            devices.removeDevice(path);
        else if (word == "onBattery"_L1)
            devices.setOnBattery(name == "true"_L1);
        else if (word == "wake"_L1)
            devices.systemDidWake(second(name.toDouble()));
        else if (word == "present"_L1)
            writeFile(folder.path() + path + u"/present"_s, words.value(2).toUtf8());
        else if (word == "upower"_L1 || word == "kernel"_L1)
            ledger.readerDidChange();
        if (word == "kernel"_L1)
            *byKernel = name.isEmpty() ? std::vector<ZELKPowerSupply>()
                                       : std::vector{bySysfs(name, words.value(2).toDouble())};
    }
    ZELKPowerSupply bySysfs(const QString &model, double percent) const
    {
        ZELKPowerSupply supply;
        supply.device = u"BAT0"_s;
        supply.path = folder.filePath(u"BAT0"_s);
        supply.model = model;
        supply.isPresent = true;
        supply.status = ZELKPowerSupply::Status::Discharging;
        supply.percent = percent;
        supply.lowWarnPercent = 7;
        supply.sourceState = ZELKPowerSourceBattery;
        return supply;
    }
};

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
        row("discharging", upowerBattery,
            u"Is Present 1, Is Charging 0, Current Capacity 80, Max Capacity 100, Time to Empty 320"_s +
                ends + u"Battery Power"_s);
        row("charging beyond its capacity",
            with(upowerBattery, {{u"State"_s, 1U}, {u"Percentage"_s, 104.2}, {u"TimeToFull"_s, 90LL}}),
            u"Is Present 1, Is Charging 1, Current Capacity 100, Max Capacity 100, Time to Full Charge 2"_s +
                ends + u"AC Power"_s);
        const QString unknown = u"Is Present 1, Is Charging 0, Max Capacity 100"_s + ends;
        row("values that are missing", QVariantMap{{u"NativePath"_s, u"BAT0"_s}, {u"Type"_s, 3U}},
            unknown + u"Unknown"_s);
        row("values of other kinds",
            with(upowerBattery, {{u"Percentage"_s, u"80"_s},
                                 {u"TimeToEmpty"_s, qQNaN()},
                                 {u"IsPresent"_s, 7},
                                 {u"Model"_s, QVariantList{1}}}),
            unknown + u"Battery Power"_s);
        row("nothing could be read",
            with(upowerBattery, {{u"Percentage"_s, 0.0}, {u"Energy"_s, 0.0}, {u"State"_s, -1e300}}),
            unknown + u"Unknown"_s);
    }
    void describes()
    {
        const auto [properties, expected] = Rows<QVariantMap, QString>::fetch();
        Bed bed;
        const QString file = bed.folder.filePath(u"c"_s);
        writeFile(file, "# PercentageLow=9\n[Other]\nPercentageAction=1\n[UPower]\n#PercentageLow=8\n"
                        "PercentageLow=20\nPercentageAction = 2\n");
        bed.devices.setLevels(ZELKUPowerLevels::read(file));
        QVERIFY(bed.devices.setDevice(u"/b"_s, properties));
        QStringList found;
        for (const auto &[key, value] : bed.devices.supplies(bed.now).at(0).properties())
            found += key + u' ' + ZELKValue::description(value);
        QCOMPARE(found.join(u", "_s), expected);
    }

    void leavesWithItsCharge()
    {
        for (const QString &leave : {u"remove b"_s, u"change b IsPresent=false Percentage=0"_s}) {
            Bed bed;
            bed.play(u"battery b; "_s + leave);
            QCOMPARE(bed.events.size(), 2U);
            const ZELKDictionary properties = propertiesOf(bed.events.back());
            QCOMPARE(properties.value(ZELKPropertyIsPresent), QVariant(false));
            QCOMPARE(properties.value(ZELKPropertyCurrentCapacity).toInt(), 80);
            QCOMPARE(properties.value(ZELKPropertyMaxCapacity).toInt(), 100);
        }
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
        const auto [story, expected] = Rows<QString, QString>::fetch();
        Bed bed;
        bed.play(story);
        QCOMPARE(powerLines(bed.events).join(u"; "_s), expected);
    }
};

void TestReadings::tells_data()
{
    const Rows<QString, QString> row;
    row("two of one model, whatever the order on the bus",
        "battery a NativePath=BAT1, battery b; change a Percentage=79",
        "PRB-1 80% on Battery Power; PRB-1 (BAT1) 80% on Battery Power; PRB-1 (BAT1) 79% on Battery Power");
    row("plugged in and out, told once",
        "battery b; battery c NativePath=BAT1; remove c; look; "
        "battery c NativePath=BAT1 IsPresent=false Model=; remove c; battery c NativePath=BAT1",
        "PRB-1 80% on Battery Power; PRB-1 (BAT1) 80% on Battery Power; "
        "PRB-1 (BAT1) gone on Battery Power; PRB-1 (BAT1) 80% on Battery Power");
    row("an empty bay, mice, phones and a display device",
        "battery b IsPresent=false; battery m Type=5; battery p PowerSupply=false; battery d NativePath=; "
        "battery e NativePath=/");
    row("time estimates change, and nothing does",
        "battery b; change b TimeToEmpty=60 UpdateTime=1030 Energy=47.9; change x Percentage=5",
        "PRB-1 80% on Battery Power");
    row("the charger comes: every battery's source",
        "mains l, battery b, battery c NativePath=BAT1 State=5; onBattery true; change l Online=true; "
        "change b State=1",
        "PRB-1 80% on Battery Power; PRB-1 (BAT1) 80% on Battery Power; PRB-1 80% on AC Power; "
        "PRB-1 (BAT1) 80% on AC Power; PRB-1 80% charging on AC Power");
    row("no mains known: the daemon's word, then the batteries'",
        "battery b State=0; onBattery true; onBattery false; change b State=4; "
        "battery u NativePath=/sys/devices/hiddev0 Type=3",
        "PRB-1 80% on Unknown; PRB-1 80% on Battery Power; PRB-1 80% on Unknown; PRB-1 80% on AC Power; "
        "PRB-1 80% on Battery Power; PRB-1 (hiddev0) 80% on Battery Power");
    row("older than the wake",
        "mains l, battery b; wake 4990.7, change b Percentage=75 UpdateTime=4989; "
        "change b Percentage=60 UpdateTime=4990; change l Online=true UpdateTime=4991",
        "PRB-1 80% on Battery Power; PRB-1 60% on AC Power");
    row("mains that nobody reads after the wake",
        "mains l, battery b; wake 4900, change b Percentage=70 UpdateTime=4901; "
        "change b Percentage=69 UpdateTime=4930",
        "PRB-1 80% on Battery Power; PRB-1 69% on Battery Power");
    row("the clock was set back after the wake",
        "battery b; wake 9000, change b Percentage=70 UpdateTime=4999",
        "PRB-1 80% on Battery Power; PRB-1 70% on Battery Power");
    row("one battery is held back, it is not gone",
        "battery b, battery c NativePath=BAT1; wake 4990, change c State=1 UpdateTime=4995",
        "PRB-1 80% on Battery Power; PRB-1 (BAT1) 80% on Battery Power; PRB-1 (BAT1) 80% charging on AC "
        "Power");
    row("another reader spells and warns differently",
        "battery b; kernel PRB_1 80; kernel PRB_1 79; upower, change b Percentage=79; "
        "change b Percentage=78; change b Model=OTHER",
        "PRB-1 80% on Battery Power; PRB-1 79% on Battery Power; PRB-1 78% on Battery Power; "
        "OTHER 78% on Battery Power");
    row("a reader that gives up its devices first, or knows fewer",
        "present BAT0 1, present hiddev0 1, battery b; battery u NativePath=FOLDER/hiddev0 Type=3 Model=UPS; "
        "remove b; kernel PRB-1 80; kernel; present BAT0 0, kernel; kernel",
        "PRB-1 80% on Battery Power; UPS 80% on Battery Power; PRB-1 gone on Battery Power");
}

QTEST_GUILESS_MAIN(TestReadings)
#include "tst_readings.moc"
