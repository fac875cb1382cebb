// What each kind of entry but the power sources' makes of itself when it awakes.
#include "LogFixture.h"

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

} // namespace

class TestKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRegistryNamesThem()
    {
        const QString monitor = ZELKMonitorPowerEvents;
        const std::pair<ZELKEntryKind, QString> daemon{ZELKEntryKind::Daemon, u"Monitoring"_s};
        const std::pair<ZELKEntryKind, QString> state{ZELKEntryKind::PowerState, u"Power State"_s};
        const std::pair<ZELKEntryKind, QString> idle{ZELKEntryKind::IdleSleep, monitor};
        const std::pair<ZELKEntryKind, QString> reading{ZELKEntryKind::PowerStatus, monitor + u" - (null)"_s};
        const QHash<QString, std::pair<ZELKEntryKind, QString>> registry{{u"Starting monitor"_s, daemon},
                                                                         {u"Stopping monitor"_s, daemon},
                                                                         {u"System will not sleep"_s, idle},
                                                                         {u"Can system sleep"_s, idle},
                                                                         {u"System will sleep"_s, state},
                                                                         {u"System has powered on"_s, state},
                                                                         {u"startup"_s, state},
                                                                         {u"accounting boot"_s, state},
                                                                         {u"accounting shut down"_s, state},
                                                                         {u"Power state changed"_s, reading}};
        const QStringList events = registry.keys() << plainEvent << u"Startup"_s << QString();
        for (const QString &event : events) {
            LogFixture fixture;
            const auto expected = registry.value(event, {ZELKEntryKind::Plain, monitor});
            const ZELKLWCLogEntry *loose = fixture.log.entryWithDate(ZELKDate(1), event, monitor, {});
            QCOMPARE(std::pair(loose->kind(), loose->group()), expected);
            QCOMPARE(fixture.log.count(), 0);
            const ZELKLWCLogEntry *entry = fixture.add(rawEvent(0, event));
            QCOMPARE(std::pair(entry->kind(), entry->group()), expected);
            QVERIFY(!entry->pair());
        }
    }

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
        // The idle kind's own key is looked up, the base's is not.
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
        QVERIFY(fixture.at(0)->pairRepresents().isNull());
        QCOMPARE(fixture.at(1)->pairRepresents(), u"Off"_s);
        QCOMPARE(fixture.at(2)->pairRepresents(), u"On"_s);
        QVERIFY(fixture.at(3)->pairRepresents().isNull());
        QCOMPARE(fixture.at(3)->pair(), fixture.at(2));
        QCOMPARE(fixture.at(2)->stringValue(), u"2001-01-01 00:02:00 +0000\tBoot\t"_s);
        // Those that came in before keep their kind.
        fixture.log.setEntryClasses({});
        QCOMPARE(fixture.add(rawEvent(200, u"startup"_s))->kind(), ZELKEntryKind::Plain);
        QCOMPARE(fixture.at(2)->kind(), ZELKEntryKind::Account);
    }
};

QTEST_GUILESS_MAIN(TestKinds)
#include "tst_kinds.moc"
