// Readings of power sources: what changed, the texts and values made of it, and the pairs.
#include "LogFixture.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QString name = ZELKPropertyName;
const QString current = ZELKPropertyCurrentCapacity;
const QString maximum = ZELKPropertyMaxCapacity;
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class TestPowerStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classifies_data()
    {
        const NamedRows<QList<ZELKDictionary>, int, const char *> row("readings", "change", "summary");
        const ZELKDictionary fifty = reading(50);
        row("the first, there", {fifty}, 2, "'BAT0' connected");
        row("the first says nothing of it", {reading(50, {{present, {}}})}, 2, "'BAT0' removed");
        row("present as any number but zero", {reading(50, {{present, 7LL}})}, 2, "'BAT0' connected");
        row("present as a word", {reading(50, {{present, u"yes"_s}})}, 2, "'BAT0' removed");
        row("without anything", {ZELKDictionary()}, 2, "'(null)' removed");
        row("presence goes before all else",
            {fifty, reading(40, {{present, false}, {charging, true}, {source, u"AC Power"_s}})}, 2,
            "'BAT0' removed");
        row("the source goes before charging",
            {fifty, reading(40, {{charging, true}, {source, u"AC Power"_s}})}, 4, "Switched to 'AC Power'");
        row("a source missing twice", {reading(50, {{source, {}}}), reading(49, {{source, {}}})}, 4,
            "Switched to '(null)'");
        row("charging by text", {fifty, reading(50, {{charging, u"1"_s}})}, 1,
            "Started charging 'BAT0' from 'Battery Power'");
        row("charging, but not by 1", {fifty, reading(50, {{charging, 2LL}})}, 1, "Stopped charging 'BAT0'");
        row("up", {fifty, reading(51)}, 3, "'BAT0' up to 51% capacity");
        row("1 and true are no change", {fifty, reading(49, {{present, 1LL}, {charging, 0.0}})}, 3,
            "'BAT0' down to 49% capacity");
        row("from the most to the least",
            {reading(0, {{current, 1e300}, {maximum, 1e300}}),
             reading(0, {{current, -1e300}, {maximum, 1e300}})},
            3, "'BAT0' down to -2147483647% capacity");
        row("a name that is a format", {reading(1, {{name, u"%@%d"_s}}), reading(2, {{name, u"%@%d"_s}})}, 3,
            "'%@%d' up to 2% capacity");
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
            QCOMPARE(entry->connected(), ZELKValue::intValue(readings.last().value(present)) == 1);
        }
    }

    /// Such an entry would have merged, so it can only be made by hand.
    void anUnchangedPercentageReadsDown()
    {
        LogFixture fixture;
        ZELKLWCLogEntry *older = fixture.addReading(0, reading(50));
        ZELKLWCLogEntry *entry = fixture.log.entryWithDate(ZELKDate(1), ZELKEventPowerStateChanged,
                                                           ZELKMonitorPowerSource, reading(50));
        entry->setNext(older);
        entry->awakeFromLog();
        QCOMPARE(entry->summary(), u"'BAT0' down to 50% capacity"_s);
    }

    void percentages()
    {
        const int most = std::numeric_limits<int>::max();
        struct
        {
            QVariant current, maximum;
            int percentage;
        } const cases[] = {{3000LL, 5000LL, 150000},
                           {100LL, 29LL, 28},
                           {-5.5, 100LL, -5}, // a product, cut towards zero
                           {u" 85.9%"_s, u"100 mWh"_s, 85},

                           {QVariantList{1LL}, 100LL, 0},
                           {{}, 100LL, 0},
                           {50LL, {}, 0},
                           {16777217LL, 100LL, 16777216},
                           {1LL << 40, 100LL, most},
                           {infinity - infinity, 100LL, 0},

                           {-infinity, 100LL, -most}};
        LogFixture fixture;
        for (const auto &[now, full, percentage] : cases) {
            // Both ways a dictionary is kept: packed, and as it is.
            for (const QVariant &besides : {QVariant(), QVariant(QVariantList{QVariantList{}})}) {
                const ZELKDictionary values =
                    reading(0, {{current, now}, {maximum, full}, {u"x"_s, besides}});
                const auto *entry = static_cast<ZELKLWCLogEntryPowerStatus *>(
                    fixture.log.entryWithDate(ZELKDate(0), ZELKEventPowerStateChanged, u"m"_s, values));
                QCOMPARE(entry->percentageCharged(), percentage);
            }
        }
    }

    void pairsWithTheLastOfTheSameChange()
    {
        LogFixture fixture;
        const ZELKDictionary up{{charging, true}};
        fixture.addAll({
            batteryEvent(0, reading(50)),                                         // 0: 2
            batteryEvent(10, reading(50, up)),                                    // 1: 1
            batteryEvent(20, reading(51, up)),                                    // 2: 3
            batteryEvent(25, reading(99, {{name, u"BAT1"_s}, {charging, true}})), // 3: 2, another battery
            batteryEvent(30, reading(51)),                                        // 4: 1, pairs with 1
            batteryEvent(40, reading(51, {{source, u"AC Power"_s}})),             // 5: 4, none
            batteryEvent(50, reading(51)),                                        // 6: 4, pairs with 5
            batteryEvent(60, reading(50)),                                        // 7: 3
            batteryEvent(70, reading(50, {{present, false}})),                    // 8: 2, pairs with 0
        });
        QStringList pairs;
        for (const ZELKLWCLogEntry *entry : fixture.log.entry())
            pairs.append(QString::number(static_cast<const ZELKLWCLogEntryPowerStatus *>(entry)->change()) +
                         u':' + fixture.placeOf(entry->pair()));
        QCOMPARE(pairs.join(u' '), u"2:none 1:none 3:none 2:none 1:1 4:none 4:5 3:none 2:0"_s);
        // An entry of change 3 is left with the pair it has.
        auto *level = static_cast<ZELKLWCLogEntryPowerStatus *>(fixture.at(7));
        level->setPair(fixture.at(0));
        level->initPairing();
        QCOMPARE(level->pair(), fixture.at(0));
    }

    void tellsOfTheDevice_data()
    {
        const NamedRows<ZELKDictionary, const char *> row("properties", "device");
        const QString toFull = ZELKPropertyTimeToFullCharge;
        row("nothing", {}, "Current Capacity:0%");
        row("all, in an order of its own",
            reading(85, {{ZELKPropertyShutdownLevel, 2LL},
                         {ZELKPropertyLowWarnLevel, 10LL},
                         {ZELKPropertyPowerSourceID, 1234LL},
                         {toFull, 61LL},
                         {toEmpty, 90LL},
                         {ZELKPropertyTransportType, u"Internal"_s}}),
            "Name:BAT0, Transport Type:Internal, Current Capacity:85%, Time to Empty:1h 30m, "
            "Time to Full Charge:1h 1m, Power Source ID:1234, Low Warn Level:10, Shutdown Level:2");
        row("times that are none", reading(1, {{toEmpty, 0.9}, {toFull, -1LL}}),
            "Name:BAT0, Current Capacity:1%");
        row("times as texts and reals", reading(1, {{toEmpty, u"2"_s}, {toFull, 1.9}}),
            "Name:BAT0, Current Capacity:1%, Time to Empty:2m, Time to Full Charge:1m");
        row("a greatest time", reading(1, {{name, u""_s}, {toEmpty, 1LL << 50}}),
            "Name:, Current Capacity:1%, Time to Empty:1491308d 2h 7m");
    }

    void tellsOfTheDevice()
    {
        QFETCH(ZELKDictionary, properties);
        LogFixture fixture(Texts::English);
        const ZELKLWCLogEntry *entry = fixture.addReading(0, properties);
        QCOMPARE(entry->attributes(), QStringList{u"Device"_s});
        const auto device = entry->attributeForKey(u"Device"_s).value<ZELKDictionary>();
        QTEST(ZELKLWCLogEntry::attributeDictionaryToString(device), "device");
        // Durations, so that they can be spelt later, in whatever language.
        const QVariant time = device.value(toEmpty);
        QVERIFY(!time.isValid() || time.userType() == qMetaTypeId<ZELKLWCDuration>());
    }

    void groupsAndNames()
    {
        // A null name and the text that stands for it share a group, but only the text is a battery.
        const std::pair<QVariant, QString> names[] = {{{}, u"(null)"_s},
                                                      {u""_s, u""_s},
                                                      {5LL, u"5"_s},
                                                      {u"(null)"_s, u"(null)"_s},
                                                      {u"Akku ½ 🔋"_s, u"Akku ½ 🔋"_s}};
        for (const auto &[value, shown] : names) {
            LogFixture fixture(Texts::English);
            // Thrice, as what is read a second time may take another way.
            for (int i = 0; i < 3; ++i) {
                const ZELKLWCLogEntry *entry = fixture.addReading(i, reading(i, {{name, value}}));
                QCOMPARE(entry->group(), u"Power Source - "_s + shown);
                QCOMPARE(fixture.log.finalGroupEntries().value(entry->group()), entry);
            }
            QCOMPARE(fixture.log.batteryEnumerator(), value.isValid() ? QStringList{shown} : QStringList());
            QCOMPARE(fixture.log.supportsBatteries(), value.isValid());
            QCOMPARE(fixture.log.battery(shown), value.isValid() ? fixture.log.pastEntry() : nullptr);
        }
    }
};

QTEST_GUILESS_MAIN(TestPowerStatus)
#include "tst_power_status.moc"
