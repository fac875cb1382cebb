// What every entry can do: its texts, the walks along its chains, and its attributes.
#include "LogFixture.h"
#include "ZELKLWCGroupEnumerator.h"
#include "ZELKLWCLogEntryEnumerator.h"

using namespace Qt::StringLiterals;

namespace {

const QString startEvent = ZELKEventStartingMonitor;
const QString stopEvent = ZELKEventStoppingMonitor;

/// Sleep 0, wake 100, start 200, plain 300, sleep 400, stop 500.
void fillChains(LogFixture &fixture)
{
    fixture.addAll({rawEvent(0, sleepEvent), rawEvent(100, wakeEvent), rawEvent(200, startEvent),
                    plainAt(300), rawEvent(400, sleepEvent), rawEvent(500, stopEvent)});
}

template <typename Enumerator>
QString placesAlong(const LogFixture &fixture, Enumerator walk)
{
    QStringList places;
    while (const ZELKLWCLogEntry *entry = walk.nextObject())
        places.append(fixture.placeOf(entry));
    return places.join(u' ');
}

} // namespace

class TestEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesItsTextsFromTheTables()
    {
        LogFixture fixture(Texts::Invented);
        const ZELKLWCLogEntry *entry = fixture.add(plainAt(1));
        QCOMPARE(entry->monitor(), u"~org.zelk.monitor.watcher.powerevents~"_s);
        QCOMPARE(entry->summary(), u"~System will restart~"_s);
        QCOMPARE(entry->event(), plainEvent);
        QCOMPARE(entry->group(), QString(ZELKMonitorPowerEvents));
        // Not in the tables.
        entry = fixture.add(rawEvent(2, u"Fan stopped"_s, {}, u"org.zelk.fans"_s));
        QCOMPARE(entry->monitor(), u"org.zelk.fans"_s);
        QCOMPARE(entry->summary(), u"Fan stopped"_s);
    }

    void walksItsChains()
    {
        LogFixture fixture;
        fillChains(fixture);
        QCOMPARE(placesAlong(fixture, fixture.at(4)->pastEnumerator()), u"3 2 1 0"_s);
        QCOMPARE(placesAlong(fixture, fixture.at(4)->pastGroupEnumerator()), u"1 0"_s);
        QCOMPARE(placesAlong(fixture, fixture.at(0)->futureGroupEnumerator()), u"1 4"_s);
        QCOMPARE(placesAlong(fixture, fixture.at(5)->futureGroupEnumerator()), QString());

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
        const auto stateAt = [](double seconds, ZELKLWCLogEntry *entry) {
            return ZELKLWCLogEntry::pairRepresentsAtDate(ZELKDate(seconds), entry);
        };
        LogFixture fixture;
        ZELKLWCLogEntry *first = fixture.add(plainAt(-100));
        QVERIFY(!ZELKLWCLogEntry::pairAtTimeOfEntry(first));
        QCOMPARE(stateAt(0, first), u"Awake"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(nullptr), u"Awake"_s);
        fillChains(fixture);
        ZELKLWCLogEntry *plain = fixture.at(4); // between "Starting monitor", which has no pair, and a sleep
        QCOMPARE(ZELKLWCLogEntry::pairAtTimeOfEntry(plain), fixture.at(2));
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(plain), u"Awake"_s);
        QCOMPARE(ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(fixture.at(6)), u"Unmonitored"_s);
        // The wake at 100 says what holds from then on, the sleep before it what held earlier.
        QCOMPARE(stateAt(100, plain), u"Awake"_s);
        QCOMPARE(stateAt(99.9, plain), u"Asleep"_s);
        QCOMPARE(stateAt(-1, fixture.at(1)), u"Awake"_s);
        // The older monitoring entry has none, which is not the same as there being no older entry.
        QVERIFY(stateAt(450, fixture.at(6)).isNull());
    }

    void knowsThePowerSourceAtATime()
    {
        const auto sourceAt = ZELKLWCLogEntry::powerSourceAtTimeOfEntry;
        LogFixture fixture;
        QCOMPARE(sourceAt(fixture.add(rawEvent(0, sleepEvent))), u"Unknown"_s);
        QCOMPARE(sourceAt(nullptr), u"Unknown"_s);
        QCOMPARE(sourceAt(fixture.addReading(10, reading(50))), u"Battery Power"_s);
        QCOMPARE(sourceAt(fixture.addReading(20, reading(40, {{source, {}}}))), u"Battery Power"_s);
        // Any kind of entry may name it.
        QCOMPARE(sourceAt(fixture.add(rawEvent(40, u"Plugged"_s, {{source, u"AC Power"_s}}))), u"AC Power"_s);
    }

    void attributesKeepTheirFirstPlace()
    {
        LogFixture fixture;
        ZELKLWCLogEntry *entry = fixture.addReading(0, reading(50));
        entry->setAttributeValue(1, u"One"_s);
        entry->setAttributeValue(2, u"Device"_s);
        QCOMPARE(entry->attributes(), (QStringList{u"Device"_s, u"One"_s}));
        QCOMPARE(entry->attributeForKey(u"Device"_s), QVariant(2));
        entry->setAttributes({u"Two"_s});
        QCOMPARE(entry->attributeForKey(u"One"_s), QVariant(1));
        entry->setAttributeValues({{u"Two"_s, 22}});
        QCOMPARE(entry->attributeForKey(u"Two"_s), QVariant(22));
        entry->initAttributes();
        QCOMPARE(entry->attributes(), (QStringList{u"Two"_s, u"Device"_s}));

        // Those set before it awakes come first.
        entry = fixture.log.entryWithDate(ZELKDate(0), ZELKEventPowerStateChanged, u"m"_s,
                                          reading(5, {{processes, u"p"_s}}));
        QVERIFY(entry->attributes().isEmpty());
        entry->setAttributeValue(1, u"Mine"_s);
        entry->awakeFromLog();
        QCOMPARE(entry->attributes(), (QStringList{u"Mine"_s, u"Device"_s, u"Processes"_s}));
    }

    void describesItself()
    {
        LogFixture fixture(Texts::English);
        fixture.add(rawEvent(0, sleepEvent));
        ZELKLWCLogEntry *entry = fixture.add(rawEvent(3600, wakeEvent));
        QCOMPARE(entry->shortDescription(), u"2001-01-01 01:00:00 +0000; System powering on after 1 hour"_s);
        QCOMPARE(entry->stringForToolTip(), u"Asleep"_s);
        QVERIFY(fixture.at(0)->stringForToolTip().isNull());
        // Plain attributes show their keys alone; percent signs, tabs and nested values stay as they are.
        entry->setAttributeValue(5, u"plain"_s);
        entry->setAttributeValue(QVariant::fromValue(ZELKDictionary{{u"%@"_s, u"100%d\t"_s}, {u"a"_s, 1.5}}),
                                 u"dictionary"_s);
        const QVariant nested = QVariant::fromValue(ZELKDictionary{{u"a"_s, QVariantList{1LL}}});
        entry->setAttributeValue(QVariantList{u"one"_s, 2LL, true, nested}, u"list"_s);
        entry->setAttributeValue(QVariantList{}, u"empty"_s);
        QCOMPARE(
            entry->stringValue(),
            u"2001-01-01 01:00:00 +0000\tSystem powering on after 1 hour\tProperties:[Duration:1h], plain, "
            "dictionary:[%@:100%d\t, a:1.5], list:(one, 2, 1, {a = (1)}), empty:()"_s);
    }

    void changedNamesAreItsOwn()
    {
        LogFixture fixture;
        ZELKLWCLogEntry *entry = fixture.add(plainAt(0));
        entry->setEvent(u"e"_s);
        entry->setMonitor(u"m"_s);
        entry->setGroup(u"g"_s);
        QCOMPARE(entry->event() + entry->monitor() + entry->group(), u"emg"_s);
        // Others of the same event and monitor keep theirs.
        const ZELKLWCLogEntry *other = fixture.add(plainAt(600));
        QCOMPARE(other->event(), plainEvent);
        QCOMPARE(other->group(), QString(ZELKMonitorPowerEvents));
    }
};

QTEST_GUILESS_MAIN(TestEntry)
#include "tst_entry.moc"
