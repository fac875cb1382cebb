#include "LogDump.h"
#include "LogFixture.h"
#include "ZELKLWCGroupEnumerator.h"
#include "ZELKLWCLogEntryEnumerator.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString sleepEvent = ZELKEventSystemWillSleep;
const QString wakeEvent = ZELKEventSystemHasPoweredOn;
const QString startEvent = ZELKEventStartingMonitor;
const QString stopEvent = ZELKEventStoppingMonitor;

/// Sleep 0, wake 100, start 200, plain 300, sleep 400, stop 500.
void fillChains(LogFixture &fixture)
{
    fixture.log.addExternalEntries({rawEvent(0, sleepEvent), rawEvent(100, wakeEvent),
                                    rawEvent(200, startEvent), rawEvent(300, ZELKEventSystemWillRestart),
                                    rawEvent(400, sleepEvent), rawEvent(500, stopEvent)});
}

} // namespace

class TestEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesItsTextsFromTheTables()
    {
        LogFixture keys;
        ZELKLWCLogEntry *entry = keys.add(rawEvent(1, sleepEvent));
        QCOMPARE(entry->monitor(), QString(ZELKMonitorPowerEvents));
        QCOMPARE(entry->summary(), sleepEvent);
        QVERIFY(entry->supplimentSummary().isNull());

        LogFixture invented(Texts::Invented);
        entry = invented.add(rawEvent(1, u"System will restart"_s));
        QCOMPARE(entry->monitor(), u"~org.zelk.monitor.watcher.powerevents~"_s);
        QCOMPARE(entry->summary(), u"~System will restart~"_s);
        QCOMPARE(entry->event(), u"System will restart"_s);
        QCOMPARE(entry->group(), QString(ZELKMonitorPowerEvents));
        // Not in the tables.
        entry = invented.add(rawEvent(2, u"Fan stopped"_s, {}, u"org.zelk.fans"_s));
        QCOMPARE(entry->monitor(), u"org.zelk.fans"_s);
        QCOMPARE(entry->summary(), u"Fan stopped"_s);
    }

    void walksItsChains()
    {
        LogFixture fixture;
        fillChains(fixture);
        QCOMPARE(fixture.log.count(), 6);
        QStringList places;
        ZELKLWCLogEntryEnumerator past = fixture.at(4)->pastEnumerator();
        while (ZELKLWCLogEntry *entry = past.nextObject())
            places.append(LogDump::place(fixture.log, entry));
        QCOMPARE(places, (QStringList{u"3"_s, u"2"_s, u"1"_s, u"0"_s}));
        QVERIFY(!past.nextObject());

        const auto groupWalk = [&](ZELKLWCGroupEnumerator walk) {
            QStringList found;
            while (ZELKLWCLogEntry *entry = walk.nextObject())
                found.append(LogDump::place(fixture.log, entry));
            return found;
        };
        QCOMPARE(groupWalk(fixture.at(4)->pastGroupEnumerator()), (QStringList{u"1"_s, u"0"_s}));
        QCOMPARE(groupWalk(fixture.at(0)->futureGroupEnumerator()), (QStringList{u"1"_s, u"4"_s}));
        QVERIFY(fixture.at(4)->pastGroupEnumerator().future());
        QVERIFY(!fixture.at(4)->futureGroupEnumerator().future());
        QCOMPARE(groupWalk(fixture.at(5)->futureGroupEnumerator()), QStringList());
        QCOMPARE(fixture.at(0)->previous(), fixture.at(1));
        QCOMPARE(fixture.at(1)->next(), fixture.at(0));
        QCOMPARE(fixture.at(0)->events(), fixture.at(0));
    }

    void findsEntriesAlongItsChains()
    {
        LogFixture fixture;
        fillChains(fixture);
        QCOMPARE(fixture.at(4)->pastEntryWithEvent(sleepEvent), fixture.at(0)); // not itself
        QCOMPARE(fixture.at(4)->pastEntryWithEvent(startEvent), fixture.at(2));
        QVERIFY(!fixture.at(4)->pastEntryWithEvent(stopEvent));
        QVERIFY(!fixture.at(4)->pastEntryWithEvent(u"never seen"_s));
        QCOMPARE(fixture.at(4)->pastGroupEntryWithEvent(wakeEvent), fixture.at(1));
        QVERIFY(!fixture.at(4)->pastGroupEntryWithEvent(startEvent));
        QCOMPARE(fixture.at(0)->futureGroupEntryWithEvent(sleepEvent), fixture.at(4));
        QVERIFY(!fixture.at(4)->futureGroupEntryWithEvent(sleepEvent));
    }

    void knowsTheStateAtATime()
    {
        LogFixture fixture;
        ZELKLWCLogEntry *first = fixture.add(rawEvent(-100, ZELKEventSystemWillRestart));
        QVERIFY(!ZELKLWCLogEntry::pairAtTimeOfEntry(first));
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(first), u"Awake"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate(0), first), u"Awake"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(nullptr), u"Awake"_s);
        fillChains(fixture);
        ZELKLWCLogEntry *plain = fixture.at(4); // between "Starting monitor", which has no pair, and a sleep
        QCOMPARE(ZELKLWCLogEntry::pairAtTimeOfEntry(plain), fixture.at(2));
        QCOMPARE(ZELKLWCLogEntry::pairAtTimeOfEntry(fixture.at(1)), fixture.at(1));
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(plain), u"Awake"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(fixture.at(6)), u"Unmonitored"_s);
        // The wake at 100 says what holds from then on, the sleep before it what held earlier.
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate(100), plain), u"Awake"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate(99.9), plain), u"Asleep"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate(-1), fixture.at(1)), u"Awake"_s);
        // The older monitoring entry has none, which is not the same as there being no older entry.
        QVERIFY(ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate(450), fixture.at(6)).isNull());
    }

    void knowsThePowerSourceAtATime()
    {
        LogFixture fixture;
        ZELKLWCLogEntry *first = fixture.add(rawEvent(0, sleepEvent));
        QCOMPARE(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(first), u"Unknown"_s);
        QCOMPARE(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(nullptr), u"Unknown"_s);
        ZELKLWCLogEntry *source = fixture.addReading(10, reading(50));
        fixture.add(batteryEvent(20, reading(40, {{ZELKPropertyPowerSourceState, {}}})));
        ZELKLWCLogEntry *last = fixture.add(rawEvent(30, wakeEvent));
        QCOMPARE(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(source), u"Battery Power"_s);
        QCOMPARE(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(last), u"Battery Power"_s);
        // Any kind of entry may name it.
        last = fixture.add(rawEvent(40, u"Plugged"_s, {{ZELKPropertyPowerSourceState, u"AC Power"_s}}));
        QCOMPARE(ZELKLWCLogEntry::powerSourceAtTimeOfEntry(last), u"AC Power"_s);
    }

    void comparesItsDate()
    {
        LogFixture fixture;
        const ZELKLWCLogEntry *entry = fixture.add(rawEvent(100, sleepEvent));
        QCOMPARE(entry->timeIntervalDistanceFrom(ZELKDate(90)), 10.0);
        QVERIFY(!entry->before(ZELKDate(100)) && !entry->after(ZELKDate(100)) && entry->equal(ZELKDate(100)));
        QVERIFY(entry->before(ZELKDate(100.5)) && !entry->after(ZELKDate(100.5)));
        QVERIFY(entry->after(ZELKDate(99.5)) && !entry->equal(ZELKDate(99.5)));
        QCOMPARE(entry->pairTimeInterval(), 0.0);
        QCOMPARE(fixture.add(rawEvent(160, wakeEvent))->pairTimeInterval(), 60.0);
    }

    void attributesKeepTheirFirstPlace()
    {
        LogFixture fixture;
        ZELKLWCLogEntry *entry = fixture.addReading(0, reading(50));
        QCOMPARE(entry->attributes(), QStringList{u"Device"_s});
        entry->setAttributeValue(1, u"One"_s);
        entry->setAttributeValue(2, u"Device"_s);
        QCOMPARE(entry->attributes(), (QStringList{u"Device"_s, u"One"_s}));
        QCOMPARE(entry->attributeForKey(u"Device"_s), QVariant(2));
        QVERIFY(!entry->attributeForKey(u"Two"_s).isValid());
        entry->setAttributes({u"Two"_s});
        QCOMPARE(entry->attributes(), QStringList{u"Two"_s});
        QCOMPARE(entry->attributeForKey(u"One"_s), QVariant(1));
        entry->setAttributeValues({{u"Two"_s, 22}});
        QCOMPARE(entry->attributes(), QStringList{u"Two"_s});
        QCOMPARE(entry->attributeForKey(u"Two"_s), QVariant(22));
        entry->initAttributes();
        QCOMPARE(entry->attributes(), (QStringList{u"Two"_s, u"Device"_s}));
    }

    void attributesSetBeforeItAwakesComeFirst()
    {
        ZELKEntryArena arena;
        ZELKLWCLogEntry *entry = arena.entryWithDate(ZELKEntryKind::PowerStatus, ZELKDate(0), u"e"_s, u"m"_s,
                                                     reading(5, {{ZELKPropertyProcesses, u"p"_s}}));
        QVERIFY(entry->attributes().isEmpty());
        entry->setAttributeValue(1, u"Mine"_s);
        entry->awakeFromLog();
        QCOMPARE(entry->attributes(), (QStringList{u"Mine"_s, u"Device"_s, u"Processes"_s}));
    }

    void attributesAsText_data()
    {
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<QString>("text");
        const auto dictionary = [](const ZELKDictionary &values) { return QVariant::fromValue(values); };
        QTest::newRow("none") << QVariantList{} << QString();
        QTest::newRow("a plain value is left out") << QVariantList{5} << u"k0"_s;
        QTest::newRow("dictionary") << QVariantList{dictionary({{u"b"_s, 2LL}, {u"a"_s, u"x"_s}})}
                                    << u"k0:[b:2, a:x]"_s;
        QTest::newRow("array") << QVariantList{QVariantList{u"one"_s, 2LL, true}} << u"k0:(one, 2, 1)"_s;
        QTest::newRow("empty ones") << QVariantList{QVariantList{}, dictionary({})} << u"k0:(), k1:[]"_s;
        QTest::newRow("all of them") << QVariantList{u"plain"_s, dictionary({{u"a"_s, 1.5}}),
                                                     QVariantList{u"z"_s}, 7}
                                     << u"k0, k1:[a:1.5], k2:(z), k3"_s;
        QTest::newRow("percent signs and tabs stay")
            << QVariantList{dictionary({{u"%@"_s, u"100%d\t"_s}})} << u"k0:[%@:100%d\t]"_s;
        QTest::newRow("nested") << QVariantList{QVariantList{dictionary({{u"a"_s, QVariantList{1LL}}})}}
                                << u"k0:({a = (1)})"_s;
    }

    void attributesAsText()
    {
        QFETCH(QVariantList, values);
        LogFixture fixture;
        ZELKLWCLogEntry *entry = fixture.add(rawEvent(0, u"e"_s));
        for (qsizetype i = 0; i < values.size(); ++i)
            entry->setAttributeValue(values.at(i), u"k%1"_s.arg(i));
        QTEST(entry->attributesAsString(), "text");
    }

    void describesItself()
    {
        LogFixture fixture(Texts::English);
        fixture.add(rawEvent(0, sleepEvent));
        ZELKLWCLogEntry *entry = fixture.add(rawEvent(3600, wakeEvent));
        const QString text =
            u"2001-01-01 01:00:00 +0000\tSystem powering on after 1 hour\tProperties:[Duration:1h]"_s;
        QCOMPARE(entry->stringValue(), text);
        QCOMPARE(entry->description(), text);
        QCOMPARE(entry->componentsAsStringArray(),
                 (QStringList{u"2001-01-01 01:00:00 +0000"_s, u"System powering on after 1 hour"_s}));
        QCOMPARE(entry->shortDescription(), u"2001-01-01 01:00:00 +0000; System powering on after 1 hour"_s);
        QCOMPARE(entry->stringForToolTip(), u"Asleep"_s);
        QVERIFY(fixture.at(0)->stringForToolTip().isNull());
    }

    void everyValueCanBeSet()
    {
        LogFixture fixture;
        fillChains(fixture);
        ZELKLWCLogEntry *entry = fixture.at(3);
        ZELKLWCLogEntry *other = fixture.at(0);
        entry->setDate(ZELKDate(7));
        entry->setEvent(u"e"_s);
        entry->setMonitor(u"m"_s);
        entry->setGroup(u"g"_s);
        entry->setProperties({{u"p"_s, u"v"_s}});
        entry->setSummary(u"s"_s);
        entry->setSupplimentSummary(u"t"_s);
        entry->setPast(other);
        entry->setNext(other);
        entry->setPrevious(nullptr);
        entry->setPair(other);
        entry->setPairRepresents(u"w"_s);
        entry->setContainer(other);
        QCOMPARE(entry->date(), ZELKDate(7));
        QCOMPARE((QStringList{entry->event(), entry->monitor(), entry->group(), entry->summary(),
                              entry->supplimentSummary(), entry->pairRepresents()}),
                 (QStringList{u"e"_s, u"m"_s, u"g"_s, u"s"_s, u"t"_s, u"w"_s}));
        QCOMPARE(entry->properties(), (ZELKDictionary{{u"p"_s, u"v"_s}}));
        QVERIFY(entry->past() == other && entry->next() == other && entry->pair() == other);
        QVERIFY(!entry->previous());
        QCOMPARE(std::get<ZELKLWCLogEntry *>(entry->container()), other);
        entry->setPairRepresents(QString());
        QVERIFY(entry->pairRepresents().isNull());
        entry->setContainer(&fixture.log);
        QCOMPARE(std::get<ZELKLWCLog *>(entry->container()), &fixture.log);
        entry->setContainer({});
        QVERIFY(std::holds_alternative<std::monostate>(entry->container()));
        // Others of the same event and monitor keep theirs.
        QCOMPARE(fixture.add(rawEvent(600, ZELKEventSystemWillRestart))->group(),
                 QString(ZELKMonitorPowerEvents));
    }

    void scriptingShowsIt()
    {
        LogFixture fixture(Texts::Invented);
        ZELKLWCLogEntry *entry = fixture.add(rawEvent(5, startEvent));
        QCOMPARE(LogDump::exact(entry->scriptingProperties()),
                 u"{\"summary\"=text:\"~Starting monitor~\",\"monitor\"=text:"
                 "\"~org.zelk.monitor.watcher.powerevents~\",\"group\"=text:\"Monitoring\",\"date\"=5}"_s);
    }
};

QTEST_GUILESS_MAIN(TestEntry)
#include "tst_entry.moc"
