// What every entry can do; which events merge, and what becomes of the duplicates.
#include "LogFixture.h"
#include "ZELKDateNeighbours.h"
#include "ZELKLWCGroupEnumerator.h"
#include "ZELKLWCLogEntryEnumerator.h"

#include <random>

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

using MergeRows = NamedRows<Events, bool>;

/// The kinds whose events repeat when they come soon.
void addRepeats(const MergeRows &row)
{
    const std::pair<QString, QString> kinds[] = {{u"Starting monitor"_s, u"Stopping monitor"_s},
                                                 {u"Can system sleep"_s, u"System will not sleep"_s},
                                                 {u"System will sleep"_s, u"System has powered on"_s},
                                                 {u"accounting shut down"_s, u"startup"_s}};
    for (const auto &[event, other] : kinds) {
        const auto second = [&](const char *name, const ZELKRawEvent &next, bool merged) {
            row(qPrintable(event + u": "_s + QLatin1String(name)), {rawEvent(1000, event), next}, merged);
        };
        second("4.9 seconds later", rawEvent(1004.9, event), true);
        second("5 seconds later", rawEvent(1005, event), false);
        second("an hour earlier", rawEvent(-2600, event), true);
        second("another event", rawEvent(1001, other), false);
    }
}

/// Readings, whose values decide and not their time.
void addReadings(const MergeRows &row)
{
    const auto pair = [&](const char *name, const ZELKDictionary &first, const ZELKDictionary &second,
                          bool merged) {
        row(name, {batteryEvent(0, first), batteryEvent(40 * oneDay, second)}, merged);
    };
    const ZELKDictionary fifty = reading(50);
    pair("another time to empty", reading(50, {{toEmpty, 90LL}}), reading(50, {{toEmpty, 80LL}}), true);
    pair("the same percentage of another maximum", fifty, reading(25, {{ZELKPropertyMaxCapacity, 200LL}}),
         true);
    pair("another presence", fifty, reading(50, {{present, false}}), false);
    pair("another charging", fifty, reading(50, {{charging, true}}), false);
    pair("another source", fifty, reading(50, {{source, u"AC Power"_s}}), false);
    pair("numbers of other types", fifty,
         reading(50, {{present, 1LL}, {charging, 0.0}, {ZELKPropertyCurrentCapacity, u"50"_s}}), true);
    pair("a text is no number", fifty, reading(50, {{present, u"1"_s}}), false);
    pair("another battery", fifty, reading(50, {{ZELKPropertyName, u"BAT1"_s}}), false);
    // Values that both lack count as different, so all properties decide.
    const ZELKDictionary bare = reading(50, {{charging, {}}});
    ZELKDictionary turned;
    for (qsizetype i = bare.size(); i-- > 0;)
        turned.insert(bare.keys().at(i), bare.value(bare.keys().at(i)));
    pair("one without charging", fifty, bare, false);
    pair("both without charging, in another order", bare, turned, true);
    pair("both without charging, another value", bare, reading(50, {{charging, {}}, {toEmpty, 5LL}}), false);
}

} // namespace

class TestEntries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void merges_data()
    {
        const MergeRows row("events", "merged");
        addRepeats(row);
        addReadings(row);
        row("plain entries never do", {plainAt(0), plainAt(0)}, false);
        row("the two records of a boot, of two monitors",
            {rawEvent(0, u"startup"_s),
             rawEvent(7200, u"accounting boot"_s, {}, ZELKMonitorSystemAccounting)},
            true);
        row("in the other order", {rawEvent(0, u"accounting boot"_s), rawEvent(7200, u"startup"_s)}, true);
        row("monitors of idle sleep are groups", {rawEvent(0, idleEvent), rawEvent(1, idleEvent, {}, u"m"_s)},
            false);
        row("whatever the properties", {rawEvent(0, sleepEvent, {{u"a"_s, 1LL}}), rawEvent(1, sleepEvent)},
            true);
    }

    void merges()
    {
        QFETCH(Events, events);
        LogFixture fixture;
        fixture.addAll(events);
        QTEST(fixture.log.count() == 1, "merged");
        QCOMPARE(fixture.at(0)->duplicates().size(), fixture.log.count() == 1 ? 1 : 0);
    }

    void comparesWithTheNewestOfTheGroupAlone()
    {
        LogFixture fixture;
        fixture.addAll({batteryEvent(0, reading(50)), batteryEvent(1, reading(49)),
                        batteryEvent(2, reading(50)), rawEvent(3, sleepEvent), batteryEvent(4, reading(50)),
                        rawEvent(5, sleepEvent), rawEvent(7.5, sleepEvent), rawEvent(8.5, sleepEvent)});
        QCOMPARE(fixture.log.count(), 5);
        QCOMPARE(fixture.at(2)->duplicates().size(), 1);
        QCOMPARE(fixture.at(3)->duplicates().size(), 2); // measured from the first, not from its duplicates
        QCOMPARE(fixture.at(3)->finalDate(), ZELKDate(7.5));
        QCOMPARE(fixture.at(4)->next(), fixture.at(3));
        QCOMPARE(fixture.at(0)->finalDate(), ZELKDate(0));
    }

    void tellsOfThoseMergedBeforeItAwoke()
    {
        LogFixture fixture(Texts::Invented);
        fixture.addAll({batteryEvent(0, reading(50)), batteryEvent(10, reading(50))});
        fixture.add(batteryEvent(30, reading(50)));
        ZELKLWCLogEntry *entry = fixture.at(0);
        QCOMPARE(entry->attributes(), (QStringList{u"Device"_s, u"~Duplicates~"_s}));
        const QVariantList both{QVariant::fromValue(ZELKDate(10)), QVariant::fromValue(ZELKDate(30))};
        QCOMPARE(entry->attributeForKey(u"~Duplicates~"_s).toList(), both.first(1));
        entry->initAttributes();
        QCOMPARE(entry->attributeForKey(u"~Duplicates~"_s).toList(), both);

        // One that was alone when it awoke.
        entry = fixture.add(rawEvent(40, sleepEvent));
        fixture.add(rawEvent(41, sleepEvent));
        QCOMPARE(entry->duplicates().size(), 1);
        QVERIFY(entry->attributes().isEmpty());
    }

    void duplicatesNeverAwake()
    {
        LogFixture fixture(Texts::English);
        fixture.addAll({rawEvent(0, wakeEvent), rawEvent(100, sleepEvent, {}, u"m"_s),
                        rawEvent(101, sleepEvent, {{processes, u"p"_s}}, u"n"_s)});
        ZELKLWCLogEntry *duplicate = fixture.at(1)->duplicates().value(0);
        QCOMPARE(duplicate->summary(), sleepEvent);
        QCOMPARE(duplicate->monitor(), u"n"_s);
        QVERIFY(duplicate->attributes().isEmpty() && duplicate->pairRepresents().isNull());
        QVERIFY(!duplicate->past() && !duplicate->next() && !duplicate->previous() && !duplicate->pair());
        QVERIFY(!fixture.log.indexOfEntry(duplicate));
    }

    void scriptingFindsThem()
    {
        LogFixture fixture;
        fixture.addAll({rawEvent(0, wakeEvent), rawEvent(oneDay, sleepEvent),
                        rawEvent(oneDay + 1, sleepEvent), rawEvent(oneDay + 2, sleepEvent)});
        ZELKLWCLogEntry *entry = fixture.at(1);
        QCOMPARE(entry->duplicates().at(1)->objectSpecifier(),
                 fixture.log.objectSpecifier() + u"/entries/1/duplicates/1"_s);
        QVERIFY(fixture.log.entryWithDate(ZELKDate(0), u"e"_s, u"m"_s, {})->objectSpecifier().isEmpty());
        fixture.show(ZELKDate(0), ZELKDate(oneDay - 1));
        QVERIFY(!entry->visible() && !entry->duplicates().at(0)->visible());
        fixture.show(ZELKDate(oneDay), ZELKDate(2 * oneDay - 1));
        QVERIFY(entry->visible() && entry->duplicates().at(0)->visible());
    }

    void copiesAwake()
    {
        LogFixture fixture(Texts::English);
        const ZELKDictionary up = reading(51, {{charging, true}});
        fixture.addAll({batteryEvent(0, reading(50)), batteryEvent(60, reading(50, {{charging, true}})),
                        batteryEvent(120, reading(51)), batteryEvent(180, up)});
        fixture.add(batteryEvent(190, up));
        ZELKLWCLogEntry *original = fixture.at(3);
        original->setSummary(u"by hand"_s);
        ZELKLWCLogEntry *copy = original->copy();
        QCOMPARE(copy->summary(), u"Started charging 'BAT0' from 'Battery Power'"_s);
        QVERIFY(copy->past() == fixture.at(2) && copy->next() == fixture.at(2) && !copy->previous());
        QCOMPARE(copy->pair(), fixture.at(2));
        // The copy knows the duplicate that came after the original awoke.
        QCOMPARE(original->attributes(), QStringList{u"Device"_s});
        QCOMPARE(copy->attributes(), (QStringList{u"Device"_s, u"Duplicates"_s}));
        // Growing the copy's list leaves the original's as it was.
        copy->mergeEntry(fixture.log.entryWithDate(ZELKDate(9), u"e"_s, u"m"_s, {}));
        QCOMPARE(copy->duplicates().size(), 2);
        QCOMPARE(original->duplicates().size(), 1);
        QCOMPARE(fixture.placeOf(copy), u"elsewhere"_s);
        QCOMPARE(fixture.add(rawEvent(300, sleepEvent))->past(), original);
    }

    void neighboursOfDates()
    {
        using Order = ZELKDateNeighbours::Order;
        const auto around = [](double date, const QList<double> &dates, Order order) {
            const ZELKDateNeighbours found(ZELKDate(date), int(dates.size()), order,
                                           [&](int index) { return ZELKDate(dates.at(index)); });
            const auto word = [](std::optional<ZELKDate> one) {
                return one ? QString::number(one->timeIntervalSinceReferenceDate()) : u"-"_s;
            };
            const auto nearest = found.nearest();
            return u"%1 %2 %3"_s.arg(word(found.previous()),
                                     nearest ? word(nearest->date) + u'#' + QString::number(nearest->index)
                                             : u"-"_s,
                                     word(found.next()));
        };
        const std::pair<double, QString> expected[] = {
            {0, u"- 1#1 2"_s},  {1.4, u"- 1#1 2"_s},   {1.5, u"1 2#3 3"_s}, {2, u"1 2#3 3"_s},
            {5, u"3 5#4 30"_s}, {17.5, u"5 30#0 -"_s}, {30, u"5 - -"_s},    {40, u"5 30#0 -"_s}};
        for (const auto &[date, words] : expected)
            QCOMPARE(around(date, {30, 1, 5, 2, 5, 3}, Order::None), words);
        std::mt19937 random(45); // sorted lists are looked into as they would be walked through
        for (int round = 0; round < 300; ++round) {
            QList<double> dates(random() % 9);
            std::generate(dates.begin(), dates.end(), [&] { return double(random() % 7); });
            const double date = double(random() % 15) / 2.0 - 0.5;
            std::sort(dates.begin(), dates.end());
            QCOMPARE(around(date, dates, Order::Rising), around(date, dates, Order::None));
            std::reverse(dates.begin(), dates.end());
            QCOMPARE(around(date, dates, Order::Falling), around(date, dates, Order::None));
        }
    }
};

QTEST_GUILESS_MAIN(TestEntries)
#include "tst_entries.moc"
