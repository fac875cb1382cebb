// Readings of power sources: what changed, the texts and values made of it, and the pairs.
#include "LogDump.h"
#include "LogFixture.h"

#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QString name = ZELKPropertyName;
const QString present = ZELKPropertyIsPresent;
const QString charging = ZELKPropertyIsCharging;
const QString source = ZELKPropertyPowerSourceState;
const QString current = ZELKPropertyCurrentCapacity;
const QString maximum = ZELKPropertyMaxCapacity;
const QString toEmpty = ZELKPropertyTimeToEmpty;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class TestPowerStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classifies_data()
    {
        QTest::addColumn<QList<ZELKDictionary>>("readings");
        QTest::addColumn<int>("change");
        QTest::addColumn<QString>("summary");
        const auto row = [](const char *title, const QList<ZELKDictionary> &readings, int change,
                            const QString &summary) {
            QTest::newRow(title) << readings << change << summary;
        };
        const ZELKDictionary fifty = reading(50);
        const ZELKDictionary onCable{{source, u"AC Power"_s}};
        row("the first, there", {fifty}, 2, u"'BAT0' connected"_s);
        row("the first, not there", {reading(50, {{present, 0LL}})}, 2, u"'BAT0' removed"_s);
        row("the first says nothing of it", {reading(50, {{present, {}}})}, 2, u"'BAT0' removed"_s);
        row("present as any number but zero", {reading(50, {{present, 7LL}})}, 2, u"'BAT0' connected"_s);
        row("present as a text", {reading(50, {{present, u"1"_s}})}, 2, u"'BAT0' connected"_s);
        row("present as a word", {reading(50, {{present, u"yes"_s}})}, 2, u"'BAT0' removed"_s);
        row("without a name", {reading(50, {{name, {}}})}, 2, u"'(null)' connected"_s);
        row("without anything", {ZELKDictionary()}, 2, u"'(null)' removed"_s);
        row("removed", {fifty, reading(50, {{present, false}})}, 2, u"'BAT0' removed"_s);
        row("connected again", {reading(50, {{present, false}}), fifty}, 2, u"'BAT0' connected"_s);
        row("presence goes before all else",
            {fifty, reading(40, {{present, false}, {charging, true}, {source, u"AC Power"_s}})}, 2,
            u"'BAT0' removed"_s);
        row("to the cable", {fifty, reading(50, onCable)}, 4, u"Switched to 'AC Power'"_s);
        row("the source goes before charging",
            {fifty, reading(40, {{charging, true}, {source, u"AC Power"_s}})}, 4,
            u"Switched to 'AC Power'"_s);
        row("to no source known", {fifty, reading(50, {{source, {}}})}, 4, u"Switched to '(null)'"_s);
        row("a source missing twice", {reading(50, {{source, {}}}), reading(49, {{source, {}}})}, 4,
            u"Switched to '(null)'"_s);
        row("charging", {fifty, reading(50, {{charging, true}})}, 1,
            u"Started charging 'BAT0' from 'Battery Power'"_s);
        row("no longer charging", {reading(50, {{charging, true}}), reading(50)}, 1,
            u"Stopped charging 'BAT0'"_s);
        row("charging, but not by 1", {fifty, reading(50, {{charging, 2LL}})}, 1,
            u"Stopped charging 'BAT0'"_s);
        row("charging by text", {fifty, reading(50, {{charging, u"1"_s}})}, 1,
            u"Started charging 'BAT0' from 'Battery Power'"_s);
        row("up", {fifty, reading(51)}, 3, u"'BAT0' up to 51% capacity"_s);
        row("down", {fifty, reading(49)}, 3, u"'BAT0' down to 49% capacity"_s);
        row("1 and true are no change", {fifty, reading(49, {{present, 1LL}, {charging, 0.0}})}, 3,
            u"'BAT0' down to 49% capacity"_s);
        row("from the most to the least",
            {reading(0, {{current, 1e300}, {maximum, 1e300}}),
             reading(0, {{current, -1e300}, {maximum, 1e300}})},
            3, u"'BAT0' down to -2147483647% capacity"_s);
        row("from the least to the most",
            {reading(0, {{current, -1e300}, {maximum, 1e300}}),
             reading(0, {{current, 1e300}, {maximum, 1e300}})},
            3, u"'BAT0' up to 2147483647% capacity"_s);
        row("a name that is a format", {reading(1, {{name, u"%@%d"_s}}), reading(2, {{name, u"%@%d"_s}})}, 3,
            u"'%@%d' up to 2% capacity"_s);
    }

    void classifies()
    {
        QFETCH(QList<ZELKDictionary>, readings);
        // The English texts are the keys, with a table and without.
        for (const Texts texts : {Texts::Keys, Texts::English}) {
            LogFixture fixture(texts);
            for (qsizetype i = 0; i < readings.size(); ++i)
                fixture.addReading(double(i), readings.at(i));
            QCOMPARE(fixture.log.count(), readings.size());
            const auto *entry = static_cast<const ZELKLWCLogEntryPowerStatus *>(fixture.log.pastEntry());
            QTEST(entry->change(), "change");
            QTEST(entry->summary(), "summary");
            QVERIFY(entry->pairRepresents().isNull());
        }
    }

    /// Such an entry would have merged, so it can only be made by hand.
    void anUnchangedPercentageReadsDown()
    {
        LogFixture fixture(Texts::English);
        ZELKLWCLogEntry *older = fixture.addReading(0, reading(50));
        ZELKLWCLogEntry *entry = fixture.log.entryWithDate(ZELKDate(1), ZELKEventPowerStateChanged,
                                                           ZELKMonitorPowerSource, reading(50));
        QCOMPARE(static_cast<ZELKLWCLogEntryPowerStatus *>(entry)->change(), 0);
        entry->setNext(older);
        entry->awakeFromLog();
        QCOMPARE(entry->summary(), u"'BAT0' down to 50% capacity"_s);
    }

    void percentages_data()
    {
        QTest::addColumn<QVariant>("now");
        QTest::addColumn<QVariant>("most");
        QTest::addColumn<int>("percentage");
        const auto row = [](const char *title, const QVariant &now, const QVariant &most, int percentage) {
            QTest::newRow(title) << now << most << percentage;
        };
        row("of a hundred", 55LL, 100LL, 55);
        row("a product, not a quotient", 3000LL, 5000LL, 150000);
        row("truncated", 7LL, 70LL, 4);
        row("truncated just below", 100LL, 29LL, 28);
        row("truncated toward zero", -5.5, 100LL, -5);
        row("reals", 85.9, 100.0, 85);
        row("texts", u"85"_s, u"100"_s, 85);
        row("the start of texts", u" 85.9%"_s, u"100 mWh"_s, 85);
        row("rubbish", u"full"_s, 100LL, 0);
        row("booleans", true, 100LL, 1);
        row("lists", QVariantList{1LL}, 100LL, 0);
        row("no capacity", {}, 100LL, 0);
        row("no maximum", 50LL, {}, 0);
        row("as floats do", 16777217LL, 100LL, 16777216);
        row("beyond 16 bits", 70000LL, 100LL, 70000);
        row("beyond 32 bits", 1LL << 40, 100LL, std::numeric_limits<int>::max());
        row("no number", notANumber, 100LL, 0);
        row("infinite", infinity, 100LL, std::numeric_limits<int>::max());
        row("infinite nothing", infinity, 0LL, 0);
        row("minus infinite", -infinity, 100LL, -std::numeric_limits<int>::max());
    }

    void percentages()
    {
        QFETCH(QVariant, now);
        QFETCH(QVariant, most);
        ZELKEntryArena arena;
        // Both ways a dictionary is kept: packed, and as it is.
        for (const QVariant &besides : {QVariant(), QVariant(QVariantList{QVariantList{}})}) {
            const ZELKDictionary values = reading(0, {{current, now}, {maximum, most}, {u"x"_s, besides}});
            const auto *entry = static_cast<ZELKLWCLogEntryPowerStatus *>(arena.entryWithDate(
                ZELKEntryKind::PowerStatus, ZELKDate(0), ZELKEventPowerStateChanged, u"m"_s, values));
            QTEST(entry->percentageCharged(), "percentage");
        }
    }

    void statesArePropertiesOfOne_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("state");
        QTest::newRow("true") << QVariant(true) << true;
        QTest::newRow("false") << QVariant(false) << false;
        QTest::newRow("1") << QVariant(1LL) << true;
        QTest::newRow("2") << QVariant(2LL) << false;
        QTest::newRow("-1") << QVariant(-1LL) << false;
        QTest::newRow("1.9") << QVariant(1.9) << true;
        QTest::newRow("text") << QVariant(u"1x"_s) << true;
        QTest::newRow("absent") << QVariant() << false;
    }

    void statesArePropertiesOfOne()
    {
        QFETCH(QVariant, value);
        QFETCH(bool, state);
        LogFixture fixture;
        const auto *entry = fixture.addReading(0, reading(1, {{present, value}, {charging, value}}));
        QCOMPARE(entry->connected(), state);
        QCOMPARE(entry->charging(), state);
        QCOMPARE(entry->stateForPropertyKey(present), state);
        QVERIFY(!entry->stateForPropertyKey(u"no such"_s));
        QVERIFY(entry->didPropertyKeyChangeSinceEntry(present, nullptr));
        QCOMPARE(entry->didPropertyKeyChangeSinceEntry(present, entry), !value.isValid());
        QVERIFY(!entry->didPropertyKeyChangeSinceEntry(name, entry));
    }

    void pairsWithTheLastOfTheSameChange()
    {
        LogFixture fixture(Texts::English);
        const ZELKDictionary up{{charging, true}};
        const ZELKDictionary cable{{source, u"AC Power"_s}};
        fixture.log.addExternalEntries({
            batteryEvent(0, reading(50)),                                         // 0: 2
            batteryEvent(10, reading(50, up)),                                    // 1: 1
            batteryEvent(20, reading(51, up)),                                    // 2: 3
            batteryEvent(25, reading(99, {{name, u"BAT1"_s}, {charging, true}})), // 3: 2, another battery
            batteryEvent(30, reading(51)),                                        // 4: 1, pairs with 1
            batteryEvent(40, reading(51, cable)),                                 // 5: 4, none
            batteryEvent(50, reading(51)),                                        // 6: 4, pairs with 5
            batteryEvent(60, reading(50)),                                        // 7: 3
            batteryEvent(70, reading(50, {{present, false}})),                    // 8: 2, pairs with 0
        });
        QStringList pairs;
        for (ZELKLWCLogEntry *entry : fixture.log.entry())
            pairs.append(u"%1:%2"_s.arg(static_cast<ZELKLWCLogEntryPowerStatus *>(entry)->change())
                             .arg(LogDump::place(fixture.log, entry->pair())));
        QCOMPARE(pairs, (QStringList{u"2:none"_s, u"1:none"_s, u"3:none"_s, u"2:none"_s, u"1:1"_s,
                                     u"4:none"_s, u"4:5"_s, u"3:none"_s, u"2:0"_s}));
        // An entry of change 3 is left with the pair it has.
        auto *level = static_cast<ZELKLWCLogEntryPowerStatus *>(fixture.at(7));
        level->setPair(fixture.at(0));
        level->initPairing();
        QCOMPARE(level->pair(), fixture.at(0));
        level->setChange(4);
        level->initPairing();
        QCOMPARE(level->pair(), fixture.at(6));
    }

    void tellsOfTheDevice_data()
    {
        QTest::addColumn<ZELKDictionary>("properties");
        QTest::addColumn<QString>("device");
        const auto row = [](const char *title, const ZELKDictionary &properties, const QString &device) {
            QTest::newRow(title) << properties << device;
        };
        row("nothing", {}, u"Current Capacity:0%"_s);
        row("all, in an order of its own",
            reading(85, {{ZELKPropertyShutdownLevel, 2LL},
                         {ZELKPropertyLowWarnLevel, 10LL},
                         {ZELKPropertyPowerSourceID, 1234LL},
                         {ZELKPropertyTimeToFullCharge, 61LL},
                         {toEmpty, 90LL},
                         {ZELKPropertyTransportType, u"Internal"_s}}),
            u"Name:BAT0, Transport Type:Internal, Current Capacity:85%, Time to Empty:1h 30m, "
            "Time to Full Charge:1h 1m, Power Source ID:1234, Low Warn Level:10, Shutdown Level:2"_s);
        row("times that are none", reading(1, {{toEmpty, 0LL}, {ZELKPropertyTimeToFullCharge, -1LL}}),
            u"Name:BAT0, Current Capacity:1%"_s);
        row("times as texts and reals", reading(1, {{toEmpty, u"2"_s}, {ZELKPropertyTimeToFullCharge, 1.9}}),
            u"Name:BAT0, Current Capacity:1%, Time to Empty:2m, Time to Full Charge:1m"_s);
        row("a time below one", reading(1, {{toEmpty, 0.9}}), u"Name:BAT0, Current Capacity:1%"_s);
        row("an empty name", reading(1, {{name, u""_s}}), u"Name:, Current Capacity:1%"_s);
        row("a greatest time", reading(1, {{toEmpty, 1LL << 50}}),
            u"Name:BAT0, Current Capacity:1%, Time to Empty:1491308d 2h 7m"_s);
    }

    void tellsOfTheDevice()
    {
        QFETCH(ZELKDictionary, properties);
        LogFixture fixture(Texts::English);
        const ZELKLWCLogEntry *entry = fixture.addReading(0, properties);
        QCOMPARE(entry->attributes(), QStringList{u"Device"_s});
        const auto device = entry->attributeForKey(u"Device"_s).value<ZELKDictionary>();
        QTEST(ZELKLWCLogEntry::attributeDictionaryToString(device), "device");
        const QVariant time = device.value(toEmpty);
        QVERIFY(!time.isValid() || time.userType() == qMetaTypeId<ZELKLWCDuration>());
    }

    void looksEveryTextUp()
    {
        LogFixture fixture(Texts::Invented);
        ZELKLWCLogEntry *entry = fixture.addReading(0, reading(50));
        QCOMPARE(entry->summary(), u"~'BAT0' connected~"_s);
        QCOMPARE(entry->group(), u"~~org.zelk.monitor.watcher.powersource~ - BAT0~"_s);
        QCOMPARE(fixture.addReading(1, reading(51))->summary(), u"~'BAT0' ~up to~ 51% capacity~"_s);
        QCOMPARE(fixture.addReading(2, reading(51, {{charging, true}}))->summary(),
                 u"~Started charging 'BAT0' from 'Battery Power'~"_s);
        QCOMPARE(fixture.addReading(3, reading(51, {{source, u"AC Power"_s}}))->summary(),
                 u"~Switched to 'AC Power'~"_s);
        entry =
            fixture.addReading(4, reading(51, {{present, false}, {toEmpty, 1LL}, {source, u"AC Power"_s}}));
        QCOMPARE(entry->summary(), u"~'BAT0' removed~"_s);
        const auto device = entry->attributeForKey(u"Device"_s).value<ZELKDictionary>();
        QCOMPARE(device.keys(),
                 (QStringList{u"~Name~"_s, u"~Current Capacity~"_s, u"~Time to Empty~"_s, u"~Duration~"_s}));
        QCOMPARE(device.value(u"~Current Capacity~"_s), QVariant(u"~51%~"_s));
        QCOMPARE(device.value(u"~Duration~"_s), QVariant(ZELKLWCDuration::shortStringFromDuration(4)));
    }

    void groupsAndNames_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("group");
        QTest::addColumn<QStringList>("batteries");
        const auto row = [](const char *title, const QVariant &value, const QString &group,
                            const QStringList &batteries) {
            QTest::newRow(title) << value << u"Power Source - "_s + group << batteries;
        };
        row("a text", u"BAT0"_s, u"BAT0"_s, {u"BAT0"_s});
        row("none", {}, u"(null)"_s, {});
        row("empty", u""_s, u""_s, {u""_s});
        row("a number", 5LL, u"5"_s, {u"5"_s});
        row("the text that stands for none", u"(null)"_s, u"(null)"_s, {u"(null)"_s});
        row("not ASCII", u"Akku ½ 🔋"_s, u"Akku ½ 🔋"_s, {u"Akku ½ 🔋"_s});
    }

    void groupsAndNames()
    {
        QFETCH(QVariant, value);
        QFETCH(QStringList, batteries);
        LogFixture fixture(Texts::English);
        // Thrice, as what is read a second time may take another way.
        for (int i = 0; i < 3; ++i) {
            const ZELKLWCLogEntry *entry = fixture.addReading(i, reading(i, {{name, value}}));
            QTEST(entry->group(), "group");
            QCOMPARE(fixture.log.finalGroupEntries().value(entry->group()), entry);
        }
        QCOMPARE(fixture.log.count(), 3);
        QCOMPARE(fixture.log.batteryEnumerator(), batteries);
        QCOMPARE(fixture.log.supportsBatteries(), !batteries.isEmpty());
        if (!batteries.isEmpty()) {
            QCOMPARE(fixture.log.battery(batteries.first()), fixture.log.pastEntry());
            QCOMPARE(fixture.log.powerEventForBatteryBefore(batteries.first(), fixture.at(2)), fixture.at(1));
        }
    }
};

QTEST_GUILESS_MAIN(TestPowerStatus)
#include "tst_power_status.moc"
