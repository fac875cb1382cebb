// What each kind of entry makes of itself when it awakes: texts, values and pairs.
#include "LogFixture.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QString vetoEvent = ZELKEventSystemWillNotSleep;
const QString idleKey = ZELKPropertyIdleSeconds;

/// Summary, word, place of the pair, attributes.
using AwakeRows = NamedRows<Events, const char *, const char *, const char *, const char *>;

void addPowerStates(const AwakeRows &row)
{
    const auto slept = rawEvent(0, sleepEvent);
    row("a first sleep keeps its name", {slept}, "System will sleep", "Asleep", "none", "");
    row("a first shut down too", {rawEvent(0, u"accounting shut down"_s)}, "Shut down", "Off", "none", "");
    row("waking", {slept, rawEvent(90, wakeEvent)}, "System powering on after 1 minute, 30 seconds", "Awake",
        "0", "Properties:[Duration:1m 30s]");
    row("sleeping", {rawEvent(0, wakeEvent), rawEvent(7200, sleepEvent)}, "System sleeping after 2 hours",
        "Asleep", "0", "Properties:[Duration:2h]");
    row("starting up", {slept, rawEvent(60, u"startup"_s)}, "Starting up after 1 minute", "On", "0",
        "Properties:[Duration:1m]");
    row("booting", {slept, rawEvent(60, u"accounting boot"_s)}, "Starting up after 1 minute", "On", "0",
        "Properties:[Duration:1m]");
    row("shutting down at once", {slept, rawEvent(0, u"accounting shut down"_s)},
        "Shutting down after 0 seconds", "Off", "0", "Properties:[Duration:0s]");
    row("before its pair", {rawEvent(60, sleepEvent), rawEvent(0, wakeEvent)},
        "System powering on after -1 minutes", "Awake", "0", "Properties:[Duration:-1m]");
    row("counted from the first, not from its duplicate, and across other groups",
        {slept, rawEvent(3, sleepEvent), rawEvent(4, u"Starting monitor"_s), rawEvent(60, wakeEvent)},
        "System powering on after 1 minute", "Awake", "0", "Properties:[Duration:1m]");
    row("with processes and duplicates, the base comes last",
        {slept, rawEvent(60, wakeEvent, {{processes, QVariantList{u"a"_s, u"b"_s}}}),
         rawEvent(61, wakeEvent)},
        "System powering on after 1 minute", "Awake", "0",
        "Properties:[Duration:1m], Duplicates:(2001-01-01 00:01:01 +0000), Processes:(a, b)");
}

void addIdleSleep(const AwakeRows &row)
{
    const auto idle = [&](const char *title, const QVariant &value, const char *summary,
                          const char *attributes) {
        row(title, {rawEvent(0, idleEvent, {{idleKey, value}})}, summary, nullptr, "none", attributes);
    };
    idle("idle time", 600LL, "Preparing to sleep after 10 minutes idle time",
         "Properties:[Idle Seconds:10m]");
    idle("negative", -60LL, "Preparing to sleep after -1 minutes idle time", "");
    idle("a text", u"61 s"_s, "Preparing to sleep after 1 minute, 1 second idle time",
         "Properties:[Idle Seconds:1m 1s]");
    idle("a real below one", 0.9, "Preparing to sleep after 0 seconds idle time", "");
    idle("beyond 32 bits", 1LL << 40,
         "Preparing to sleep after 24855 days, 3 hours, 14 minutes, 7 seconds idle time",
         "Properties:[Idle Seconds:24855d 3h 14m 7s]");
    row("no idle time", {rawEvent(0, idleEvent)}, "Preparing to sleep after 0 seconds idle time", nullptr,
        "none", "");
    row("a veto keeps its name", {rawEvent(0, vetoEvent, {{processes, u"x"_s}, {idleKey, 1LL}})},
        "System will not sleep", nullptr, "none", "Properties:[Idle Seconds:1s], Processes");
}

const QString name = ZELKPropertyName;
const QString current = ZELKPropertyCurrentCapacity;
const QString maximum = ZELKPropertyMaxCapacity;
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class TestKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void awakes_data()
    {
        const AwakeRows row("events", "summary", "represents", "pair", "attributes");
        addPowerStates(row);
        addIdleSleep(row);
        const auto started = rawEvent(0, u"Starting monitor"_s);
        row("the first start", {started}, "Starting monitor", nullptr, "none", "");
        row("a later stop", {started, rawEvent(9, u"Stopping monitor"_s, {{processes, u"x"_s}})},
            "Stopping monitor", "Unmonitored", "0", "Processes");
        row("a start after a start", {started, rawEvent(5, u"Starting monitor"_s)}, "Starting monitor",
            "Monitored", "0", "");
        row("a plain one", {rawEvent(1, plainEvent, {{processes, QVariantList{}}})}, "System will restart",
            nullptr, "none", "Processes:()");
    }

    void awakes()
    {
        QFETCH(Events, events);
        QFETCH(QString, represents);
        LogFixture fixture(Texts::English);
        fixture.addAll(events);
        const ZELKLWCLogEntry *entry = fixture.log.pastEntry();
        QTEST(entry->summary(), "summary");
        QCOMPARE(LogDump::exact(entry->pairRepresents()), LogDump::exact(represents)); // null is not empty
        QTEST(fixture.placeOf(entry->pair()), "pair");
        QTEST(entry->attributesAsString(), "attributes");
    }

    /// Only words of the program stay as they are, whatever texts the bundle has.
    void looksEveryTextUp()
    {
        LogFixture fixture(Texts::Invented);
        const ZELKDictionary onCable{{source, u"AC Power"_s}, {toEmpty, 1LL}};
        fixture.addAll({rawEvent(0, u"Starting monitor"_s), rawEvent(1, u"startup"_s),
                        rawEvent(2, sleepEvent), rawEvent(3, wakeEvent),
                        rawEvent(4, u"accounting shut down"_s), rawEvent(5, u"startup"_s), plainAt(6),
                        rawEvent(7, vetoEvent), batteryEvent(8, reading(50)), batteryEvent(9, reading(51)),
                        batteryEvent(10, reading(50)), batteryEvent(11, reading(50, {{charging, true}})),
                        batteryEvent(12, reading(50)), batteryEvent(13, reading(50, onCable)),
                        batteryEvent(14, reading(50, {{present, false}, {toEmpty, 1LL}})),
                        rawEvent(15, idleEvent, {{idleKey, 1LL}, {processes, QVariantList{u"Name"_s}}})});
        QStringList notLookedUp;
        for (const ZELKLWCLogEntry *entry : fixture.log.entry()) {
            if (!entry->summary().startsWith(u'~') || !entry->summary().endsWith(u'~'))
                notLookedUp.append(entry->summary());
            QVERIFY(!entry->pairRepresents().contains(u'~'));
        }
        QCOMPARE(notLookedUp, QStringList());
        QCOMPARE(fixture.at(9)->summary(), u"~'BAT0' ~up to~ 51% capacity~"_s);
        QVERIFY(fixture.at(3)->attributesAsString().startsWith(u"~Properties~:[~Duration~"_s));
        // The idle kind's key is looked up, the base's is not.
        const ZELKLWCLogEntry *idle = fixture.log.pastEntry();
        QCOMPARE(idle->attributes(), (QStringList{u"~Properties~"_s, u"~Processes~"_s, u"Processes"_s}));
        QVERIFY(idle->attributesAsString().startsWith(u"~Properties~:[~Idle Seconds~"_s));
        const auto values = idle->attributeForKey(u"~Properties~"_s).value<ZELKDictionary>();
        QCOMPARE(values.value(u"~Idle Seconds~"_s).value<ZELKLWCDuration>(), ZELKLWCDuration(1.0));
        const ZELKLWCLogEntry *removed = fixture.at(14);
        QCOMPARE(removed->group(), u"~~org.zelk.monitor.watcher.powersource~ - BAT0~"_s);
        const auto device = removed->attributeForKey(u"Device"_s).value<ZELKDictionary>();
        QCOMPARE(device.keys().join(u' '), u"~Name~ ~Current Capacity~ ~Time to Empty~ ~Duration~"_s);
        QCOMPARE(device.value(u"~Current Capacity~"_s), QVariant(u"~50%~"_s));
    }

    void anotherRegistryMakesAccounts()
    {
        LogFixture fixture(Texts::English);
        ZELKLWCLog::EntryClasses classes = fixture.log.entryClasses();
        for (const QLatin1String event :
             {ZELKEventStartup, ZELKEventAccountingBoot, ZELKEventAccountingShutDown})
            classes.insert(event, ZELKEntryKind::Account);
        fixture.log.setEntryClasses(classes);
        const QString boot = ZELKEventAccountingBoot;
        fixture.addAll({rawEvent(0, boot), rawEvent(4.9, boot), rawEvent(60, u"accounting shut down"_s),
                        rawEvent(120, boot), rawEvent(121, u"startup"_s)});
        QCOMPARE(fixture.log.count(), 4); // the boot that came soon is a duplicate, the startup none
        QCOMPARE(fixture.log.groups(), QStringList{u"System"_s});
        QStringList words;
        for (const ZELKLWCLogEntry *entry : fixture.log.entry())
            words.append(LogDump::exact(entry->pairRepresents()));
        QCOMPARE(words.join(u' '), u"nil \"Off\" \"On\" nil"_s);
        QCOMPARE(fixture.at(3)->pair(), fixture.at(2));
        QCOMPARE(fixture.at(2)->stringValue(), u"2001-01-01 00:02:00 +0000\tBoot\t"_s);
    }

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
        LogFixture fixture;
        for (qsizetype i = 0; i < readings.size(); ++i)
            fixture.addReading(double(i), readings.at(i));
        QCOMPARE(fixture.log.count(), readings.size());
        const auto *entry = static_cast<const ZELKLWCLogEntryPowerStatus *>(fixture.log.pastEntry());
        QTEST(entry->change(), "change");
        QTEST(entry->summary(), "summary");
        QCOMPARE(entry->connected(), ZELKValue::intValue(readings.last().value(present)) == 1);
    }

    void percentages()
    {
        const std::pair<QVariant, QVariant> capacities[] = {{3000LL, 5000LL},
                                                            {100LL, 29LL},
                                                            {-5.5, 100LL},
                                                            {u" 85.9%"_s, u"100 mWh"_s},
                                                            {{}, 100LL},
                                                            {50LL, {}},
                                                            {16777217LL, 100LL},
                                                            {1LL << 40, 100LL},
                                                            {infinity - infinity, 100LL},
                                                            {-infinity, 100LL}};
        LogFixture fixture;
        // Both ways a dictionary is kept: packed, and as it is.
        for (const QVariant &besides : {QVariant(), QVariant(QVariantList{QVariantList{}})}) {
            QStringList percentages;
            for (const auto &[now, full] : capacities) {
                const ZELKDictionary values =
                    reading(0, {{current, now}, {maximum, full}, {u"x"_s, besides}});
                const auto *entry = static_cast<ZELKLWCLogEntryPowerStatus *>(
                    fixture.log.entryWithDate(ZELKDate(0), ZELKEventPowerStateChanged, u"m"_s, values));
                percentages.append(QString::number(entry->percentageCharged()));
            }
            // A product, cut towards zero and at an int's ends.
            QCOMPARE(percentages.join(u' '), u"150000 28 -5 85 0 0 16777216 2147483647 0 -2147483647"_s);
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

QTEST_GUILESS_MAIN(TestKinds)
#include "tst_kinds.moc"
