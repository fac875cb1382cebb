// What each kind of entry but the power sources' makes of itself when it awakes.
#include "LogDump.h"
#include "LogFixture.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString sleepEvent = ZELKEventSystemWillSleep;
const QString wakeEvent = ZELKEventSystemHasPoweredOn;
const QString idleEvent = ZELKEventCanSystemSleep;
const QString vetoEvent = ZELKEventSystemWillNotSleep;
const QString idleKey = ZELKPropertyIdleSeconds;
const QString processesKey = ZELKPropertyProcesses;

/// What the last of some events is seen to be.
struct Seen
{
    QString summary;
    QString represents; ///< null for none
    int pair = -1;
    QString attributes;
};

} // namespace

Q_DECLARE_METATYPE(Seen)

class TestKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRegistryNamesThem_data()
    {
        QTest::addColumn<ZELKEntryKind>("kind");
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("alone");
        QTest::addColumn<QString>("paired");

        using Kind = ZELKEntryKind;
        const auto row = [](const char *event, Kind kind, const QString &group, const QString &alone,
                            const QString &paired) {
            QTest::newRow(event) << kind << group << alone << paired;
        };
        const QString raw = ZELKMonitorPowerEvents;
        row("Starting monitor", Kind::Daemon, u"Monitoring"_s, {}, u"Monitored"_s);
        row("Stopping monitor", Kind::Daemon, u"Monitoring"_s, {}, u"Unmonitored"_s);
        row("Power state changed", Kind::PowerStatus, raw + u" - (null)"_s, {}, {});
        row("System will not sleep", Kind::IdleSleep, raw, {}, {});
        row("Can system sleep", Kind::IdleSleep, raw, {}, {});
        row("System will sleep", Kind::PowerState, u"Power State"_s, u"Asleep"_s, u"Asleep"_s);
        row("System has powered on", Kind::PowerState, u"Power State"_s, u"Awake"_s, u"Awake"_s);
        row("startup", Kind::PowerState, u"Power State"_s, u"On"_s, u"On"_s);
        row("accounting boot", Kind::PowerState, u"Power State"_s, u"On"_s, u"On"_s);
        row("accounting shut down", Kind::PowerState, u"Power State"_s, u"Off"_s, u"Off"_s);
        for (const char *plain : {"Can device power off", "System will restart", "System will power on",
                                  "Startup", "", "Power State Changed"})
            QTest::addRow("plain: %s", plain) << Kind::Plain << raw << QString() << QString();
    }

    void theRegistryNamesThem()
    {
        QFETCH(QString, group);
        const QString event = QString::fromLatin1(QTest::currentDataTag()).remove(u"plain: "_s);
        LogFixture fixture;
        ZELKLWCLogEntry *loose = fixture.log.entryWithDate(ZELKDate(1), event, ZELKMonitorPowerEvents, {});
        QTEST(loose->kind(), "kind");
        QCOMPARE(loose->group(), group);
        QVERIFY(std::holds_alternative<std::monostate>(loose->container()));
        QCOMPARE(fixture.log.count(), 0);

        ZELKLWCLogEntry *entry = fixture.add(rawEvent(0, event, {{u"a"_s, 1LL}}));
        QTEST(entry->kind(), "kind");
        QCOMPARE(fixture.log.groups(), QStringList{group});
        QTEST(entry->pairRepresents(), "alone");
        QVERIFY(!entry->pair());
        ZELKLWCLogEntry *second = fixture.add(rawEvent(100, event, {{u"a"_s, 2LL}}));
        QTEST(second->pairRepresents(), "paired");
        QCOMPARE(second->next(), entry);
    }

    void awakes_data()
    {
        QTest::addColumn<QList<ZELKRawEvent>>("events");
        QTest::addColumn<Seen>("seen");
        const auto row = [](const char *name, const QList<ZELKRawEvent> &events, const Seen &seen) {
            QTest::newRow(name) << events << seen;
        };
        const auto slept = rawEvent(0, sleepEvent);
        row("a first sleep keeps its name", {slept}, {sleepEvent, u"Asleep"_s, -1, {}});
        row("a first shut down too", {rawEvent(0, u"accounting shut down"_s)},
            {u"Shut down"_s, u"Off"_s, -1, {}});
        row("waking", {slept, rawEvent(90, wakeEvent)},
            {u"System powering on after 1 minute, 30 seconds"_s, u"Awake"_s, 0,
             u"Properties:[Duration:1m 30s]"_s});
        row("sleeping", {rawEvent(0, wakeEvent), rawEvent(7200, sleepEvent)},
            {u"System sleeping after 2 hours"_s, u"Asleep"_s, 0, u"Properties:[Duration:2h]"_s});
        row("starting up", {slept, rawEvent(60, u"startup"_s)},
            {u"Starting up after 1 minute"_s, u"On"_s, 0, u"Properties:[Duration:1m]"_s});
        row("booting", {slept, rawEvent(60, u"accounting boot"_s)},
            {u"Starting up after 1 minute"_s, u"On"_s, 0, u"Properties:[Duration:1m]"_s});
        row("shutting down", {slept, rawEvent(1, u"accounting shut down"_s)},
            {u"Shutting down after 1 second"_s, u"Off"_s, 0, u"Properties:[Duration:1s]"_s});
        row("at the same moment", {slept, rawEvent(0, wakeEvent)},
            {u"System powering on after 0 seconds"_s, u"Awake"_s, 0, u"Properties:[Duration:0s]"_s});
        row("before its pair", {rawEvent(60, sleepEvent), rawEvent(0, wakeEvent)},
            {u"System powering on after -1 minutes"_s, u"Awake"_s, 0, u"Properties:[Duration:-1m]"_s});
        row("from one duplicate on, counted from the first",
            {slept, rawEvent(3, sleepEvent), rawEvent(60, wakeEvent)},
            {u"System powering on after 1 minute"_s, u"Awake"_s, 0, u"Properties:[Duration:1m]"_s});
        row("other groups between", {slept, rawEvent(1, u"Starting monitor"_s), rawEvent(60, wakeEvent)},
            {u"System powering on after 1 minute"_s, u"Awake"_s, 0, u"Properties:[Duration:1m]"_s});
        row("with processes and duplicates, the base comes last",
            {slept, rawEvent(60, wakeEvent, {{processesKey, QVariantList{u"a"_s, u"b"_s}}}),
             rawEvent(61, wakeEvent)},
            {u"System powering on after 1 minute"_s, u"Awake"_s, 0,
             u"Properties:[Duration:1m], Duplicates:(2001-01-01 00:01:01 +0000), Processes:(a, b)"_s});

        row("the first start", {rawEvent(0, u"Starting monitor"_s)}, {u"Starting monitor"_s, {}, -1, {}});
        row("a later stop",
            {rawEvent(0, u"Starting monitor"_s),
             rawEvent(9, u"Stopping monitor"_s, {{processesKey, u"x"_s}})},
            {u"Stopping monitor"_s, u"Unmonitored"_s, 0, u"Processes"_s});
        row("a start after a start", {rawEvent(0, u"Starting monitor"_s), rawEvent(5, u"Starting monitor"_s)},
            {u"Starting monitor"_s, u"Monitored"_s, 0, {}});

        row("a plain one", {slept, rawEvent(1, u"System will restart"_s, {{processesKey, QVariantList{}}})},
            {u"System will restart"_s, {}, -1, u"Processes:()"_s});
    }

    void awakes()
    {
        QFETCH(QList<ZELKRawEvent>, events);
        QFETCH(Seen, seen);
        LogFixture fixture(Texts::English);
        fixture.log.addExternalEntries(events);
        const ZELKLWCLogEntry *entry = fixture.log.pastEntry();
        QCOMPARE(entry->summary(), seen.summary);
        QCOMPARE(entry->pairRepresents(), seen.represents);
        QCOMPARE(entry->pairRepresents().isNull(), seen.represents.isNull());
        QCOMPARE(entry->pair(), seen.pair < 0 ? nullptr : fixture.at(seen.pair));
        QCOMPARE(entry->attributesAsString(), seen.attributes);
    }

    void idleSleep_data()
    {
        QTest::addColumn<QString>("event");
        QTest::addColumn<ZELKDictionary>("properties");
        QTest::addColumn<QString>("summary");
        QTest::addColumn<QString>("attributes");
        const auto row = [](const char *name, const QString &event, const ZELKDictionary &properties,
                            const QString &idle, const QString &attributes) {
            const QString summary =
                idle.isNull() ? event : u"Preparing to sleep after %1 idle time"_s.arg(idle);
            QTest::newRow(name) << event << properties << summary << attributes;
        };
        row("idle time", idleEvent, {{idleKey, 600LL}}, u"10 minutes"_s, u"Properties:[Idle Seconds:10m]"_s);
        row("none at all", idleEvent, {}, u"0 seconds"_s, {});
        row("zero", idleEvent, {{idleKey, 0LL}}, u"0 seconds"_s, {});
        row("negative", idleEvent, {{idleKey, -60LL}}, u"-1 minutes"_s, {});
        row("a text", idleEvent, {{idleKey, u"61 s"_s}}, u"1 minute, 1 second"_s,
            u"Properties:[Idle Seconds:1m 1s]"_s);
        row("a real, its whole part", idleEvent, {{idleKey, 1.9}}, u"1 second"_s,
            u"Properties:[Idle Seconds:1s]"_s);
        row("a real below one", idleEvent, {{idleKey, 0.9}}, u"0 seconds"_s, {});
        row("a boolean", idleEvent, {{idleKey, true}}, u"1 second"_s, u"Properties:[Idle Seconds:1s]"_s);
        row("a list", idleEvent, {{idleKey, QVariantList{}}}, u"0 seconds"_s, {});
        row("one beyond 32 bits", idleEvent, {{idleKey, 1LL << 40}},
            u"24855 days, 3 hours, 14 minutes, 7 seconds"_s, u"Properties:[Idle Seconds:24855d 3h 14m 7s]"_s);
        row("a veto keeps its name", vetoEvent, {{idleKey, 60LL}}, {}, u"Properties:[Idle Seconds:1m]"_s);
        row("a veto by processes", vetoEvent, {{processesKey, QVariantList{u"backup"_s}}}, {},
            u"Processes:(backup)"_s);
        row("both", vetoEvent, {{processesKey, u"x"_s}, {idleKey, 1LL}}, {},
            u"Properties:[Idle Seconds:1s], Processes"_s);
    }

    void idleSleep()
    {
        QFETCH(QString, event);
        QFETCH(ZELKDictionary, properties);
        LogFixture fixture(Texts::English);
        const ZELKLWCLogEntry *entry = fixture.add(rawEvent(0, event, properties));
        QTEST(entry->summary(), "summary");
        QTEST(entry->attributesAsString(), "attributes");
    }

    void idleTimeIsKeptAsADuration()
    {
        LogFixture fixture;
        const ZELKLWCLogEntry *entry = fixture.add(rawEvent(0, idleEvent, {{idleKey, 61LL}}));
        const auto values = entry->attributeForKey(u"Properties"_s).value<ZELKDictionary>();
        QCOMPARE(values.value(idleKey).value<ZELKLWCDuration>(), ZELKLWCDuration(61.0));
    }

    void looksEveryTextUp()
    {
        LogFixture fixture(Texts::Invented);
        fixture.add(rawEvent(0, sleepEvent));
        ZELKLWCLogEntry *entry = fixture.add(rawEvent(1, wakeEvent));
        QCOMPARE(entry->attributesAsString().left(24), u"~Properties~:[~Duration~"_s);
        QCOMPARE(entry->pairRepresents(), u"Awake"_s); // words of the program, not of the reader
        const QString time = ZELKLWCDuration::longStringFromDuration(1);
        for (const auto &[event, format] : {std::pair{wakeEvent, u"~System powering on after %1~"_s},
                                            {sleepEvent, u"~System sleeping after %1~"_s},
                                            {u"startup"_s, u"~Starting up after %1~"_s},
                                            {u"accounting shut down"_s, u"~Shutting down after %1~"_s}}) {
            LogFixture pair(Texts::Invented);
            pair.add(rawEvent(0, event == u"startup" ? sleepEvent : u"startup"_s));
            QCOMPARE(pair.add(rawEvent(1, event))->summary(), format.arg(time));
        }
        entry =
            fixture.add(rawEvent(2, idleEvent, {{idleKey, 1LL}, {processesKey, QVariantList{u"Name"_s}}}));
        QCOMPARE(entry->summary(), u"~Preparing to sleep after %1 idle time~"_s.arg(time));
        // The idle kind's own key is looked up, the base's is not.
        QCOMPARE(entry->attributes(), (QStringList{u"~Properties~"_s, u"~Processes~"_s, u"Processes"_s}));
        QCOMPARE(entry->attributeForKey(u"Processes"_s), QVariant(QVariantList{u"Name"_s}));
        QCOMPARE(entry->attributeForKey(u"~Properties~"_s).value<ZELKDictionary>().keys(),
                 QStringList{u"~Idle Seconds~"_s});
    }

    void anotherRegistryMakesAccounts()
    {
        LogFixture fixture(Texts::English);
        ZELKLWCLog::EntryClasses classes = fixture.log.entryClasses();
        for (const QLatin1String event :
             {ZELKEventStartup, ZELKEventAccountingBoot, ZELKEventAccountingShutDown})
            classes.insert(event, ZELKEntryKind::Account);
        fixture.log.setEntryClasses(classes);
        fixture.log.addExternalEntries({rawEvent(0, u"accounting boot"_s),
                                        rawEvent(60, u"accounting shut down"_s),
                                        rawEvent(120, u"accounting boot"_s), rawEvent(180, u"startup"_s)});
        QCOMPARE(fixture.log.groups(), QStringList{u"System"_s});
        QVERIFY(fixture.at(0)->pairRepresents().isNull());
        QCOMPARE(fixture.at(1)->pairRepresents(), u"Off"_s);
        QCOMPARE(fixture.at(2)->pairRepresents(), u"On"_s);
        QVERIFY(fixture.at(3)->pairRepresents().isNull());
        QCOMPARE(fixture.at(3)->pair(), fixture.at(2));
        QCOMPARE(fixture.at(2)->summary(), u"Boot"_s);
        QVERIFY(fixture.at(2)->attributes().isEmpty());
        // Those that came in before keep their kind.
        fixture.log.setEntryClasses({});
        QCOMPARE(fixture.add(rawEvent(200, u"startup"_s))->kind(), ZELKEntryKind::Plain);
        QCOMPARE(fixture.at(2)->kind(), ZELKEntryKind::Account);
    }
};

QTEST_GUILESS_MAIN(TestKinds)
#include "tst_kinds.moc"
