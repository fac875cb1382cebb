// Duplicates: which events merge, what an entry tells of them, where they stand; and copies of entries.
#include "LogFixture.h"

using namespace Qt::StringLiterals;

namespace {

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
    pair("another percentage", fifty, reading(49), false);
    pair("the same percentage of another maximum", fifty, reading(25, {{ZELKPropertyMaxCapacity, 200LL}}),
         true);
    pair("another presence", fifty, reading(50, {{present, false}}), false);
    pair("another charging", fifty, reading(50, {{charging, true}}), false);
    pair("another source", fifty, reading(50, {{source, u"AC Power"_s}}), false);
    pair("numbers of other types", fifty,
         reading(50, {{present, 1LL}, {charging, 0.0}, {ZELKPropertyCurrentCapacity, u"50"_s}}), true);
    pair("a text is no number", fifty, reading(50, {{present, u"1"_s}}), false);
    pair("another battery", fifty, reading(50, {{ZELKPropertyName, u"BAT1"_s}}), false);
    pair("no properties at all", {}, {}, true);
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

class TestDuplicates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
        QCOMPARE(entry->duplicates().size(), 2);
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
        QVERIFY(duplicate->attributes().isEmpty());
        QVERIFY(duplicate->pairRepresents().isNull());
        QVERIFY(!duplicate->past() && !duplicate->next() && !duplicate->previous() && !duplicate->pair());
        QVERIFY(!fixture.log.indexOfEntry(duplicate));
    }

    void scriptingFindsThem()
    {
        LogFixture fixture;
        fixture.addAll({rawEvent(0, wakeEvent), rawEvent(oneDay, sleepEvent),
                        rawEvent(oneDay + 1, sleepEvent), rawEvent(oneDay + 2, sleepEvent)});
        ZELKLWCLogEntry *entry = fixture.at(1);
        const QString path = fixture.log.objectSpecifier() + u"/entries/1"_s;
        QCOMPARE(entry->objectSpecifier(), path);
        QCOMPARE(entry->duplicates().at(1)->objectSpecifier(), path + u"/duplicates/1"_s);
        // A loose entry stands nowhere, whatever it takes for its container.
        ZELKLWCLogEntry *loose = fixture.log.entryWithDate(ZELKDate(0), u"e"_s, u"m"_s, {});
        QVERIFY(loose->objectSpecifier().isEmpty());
        loose->setContainer(&fixture.log);
        QVERIFY(loose->objectSpecifier().isEmpty() && !loose->visible());

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
        QCOMPARE(copy->group(), original->group());
        QCOMPARE(copy->properties(), original->properties());
        // The copy knows the duplicate that came after the original awoke.
        QCOMPARE(original->attributes(), QStringList{u"Device"_s});
        QCOMPARE(copy->attributes(), (QStringList{u"Device"_s, u"Duplicates"_s}));
        // Growing the copy's list leaves the original's as it was.
        copy->mergeEntry(fixture.log.entryWithDate(ZELKDate(9), u"e"_s, u"m"_s, {}));
        QCOMPARE(copy->duplicates().size(), 2);
        QCOMPARE(original->duplicates().size(), 1);
        // The log goes on past copies and loose entries.
        const ZELKLWCLogEntry *later = fixture.add(rawEvent(300, sleepEvent));
        QCOMPARE(fixture.placeOf(later), u"4"_s);
        QCOMPARE(fixture.placeOf(copy), u"elsewhere"_s);
        QCOMPARE(later->past(), original);
    }

    void copiesLookTheirMonitorUpAgain()
    {
        LogFixture fixture(Texts::Invented);
        const ZELKLWCLogEntry *copy = fixture.add(rawEvent(0, idleEvent))->copy();
        QCOMPARE(copy->monitor(), u"~org.zelk.monitor.watcher.powerevents~"_s);
        QCOMPARE(copy->group(), copy->monitor()); // made from the localised name, all that an entry knows
        QCOMPARE(copy->kind(), ZELKEntryKind::IdleSleep);
    }
};

QTEST_GUILESS_MAIN(TestDuplicates)
#include "tst_duplicates.moc"
