// Duplicates: which events merge, what an entry tells of them, where they stand; and copies of entries.
#include "LogDump.h"
#include "LogFixture.h"
#include "ZELKLWCLogEntryAccount.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString sleepEvent = ZELKEventSystemWillSleep;
const QString wakeEvent = ZELKEventSystemHasPoweredOn;
const QString charging = ZELKPropertyIsCharging;

QVariantList dates(std::initializer_list<double> seconds)
{
    QVariantList list;
    for (const double second : seconds)
        list.append(QVariant::fromValue(ZELKDate(second)));
    return list;
}

void addRepeatRows(const char *event, const char *other)
{
    const auto add = [&](const char *name, double second, const char *secondEvent, bool merged) {
        QTest::addRow("%s: %s", event, name)
            << QList{rawEvent(1000, QString::fromLatin1(event)),
                     rawEvent(1000 + second, QString::fromLatin1(secondEvent))}
            << merged;
    };
    add("at once", 0.0, event, true);
    add("4.9 seconds later", 4.9, event, true);
    add("5 seconds later", 5.0, event, false);
    add("an hour earlier", -3600.0, event, true);
    add("another event", 1.0, other, false);
}

} // namespace

class TestDuplicates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void merges_data()
    {
        QTest::addColumn<QList<ZELKRawEvent>>("events");
        QTest::addColumn<bool>("merged");

        addRepeatRows("Starting monitor", "Stopping monitor");
        addRepeatRows("Stopping monitor", "Starting monitor");
        addRepeatRows("Can system sleep", "System will not sleep");
        addRepeatRows("System will not sleep", "Can system sleep");
        addRepeatRows("System will sleep", "System has powered on");
        addRepeatRows("System has powered on", "System will sleep");
        addRepeatRows("startup", "accounting shut down");
        addRepeatRows("accounting boot", "accounting shut down");
        addRepeatRows("accounting shut down", "startup");
        const auto row = [](const char *name, const ZELKRawEvent &first, const ZELKRawEvent &second,
                            bool merged) {
            QTest::newRow(name) << QList{first, second} << merged;
        };
        row("plain entries never do", rawEvent(0, u"System will restart"_s),
            rawEvent(0, u"System will restart"_s), false);
        row("the two records of a boot", rawEvent(0, u"startup"_s), rawEvent(7200, u"accounting boot"_s),
            true);
        row("in the other order", rawEvent(0, u"accounting boot"_s), rawEvent(7200, u"startup"_s), true);
        row("from another monitor", rawEvent(0, u"startup"_s),
            rawEvent(7200, u"accounting boot"_s, {}, ZELKMonitorSystemAccounting), true);
        row("monitors of idle sleep are groups", rawEvent(0, u"Can system sleep"_s),
            rawEvent(1, u"Can system sleep"_s, {}, u"other"_s), false);
        row("whatever the properties", rawEvent(0, sleepEvent, {{u"a"_s, 1LL}}), rawEvent(1, sleepEvent),
            true);
    }

    void merges()
    {
        QFETCH(QList<ZELKRawEvent>, events);
        LogFixture fixture;
        fixture.log.addExternalEntries(events);
        QTEST(fixture.log.count() == 1, "merged");
        QCOMPARE(fixture.at(0)->duplicates().size(), fixture.log.count() == 1 ? 1 : 0);
    }

    void mergesReadings_data()
    {
        QTest::addColumn<ZELKDictionary>("first");
        QTest::addColumn<ZELKDictionary>("second");
        QTest::addColumn<bool>("merged");

        const QString present = ZELKPropertyIsPresent;
        const QString toEmpty = ZELKPropertyTimeToEmpty;
        const ZELKDictionary fifty = reading(50);
        QTest::newRow("the same") << fifty << fifty << true;
        QTest::newRow("another time to empty")
            << reading(50, {{toEmpty, 90LL}}) << reading(50, {{toEmpty, 80LL}}) << true;
        QTest::newRow("nested values besides") << reading(50, {{u"x"_s, QVariantList{1LL}}}) << fifty << true;
        QTest::newRow("another percentage") << fifty << reading(49) << false;
        QTest::newRow("the same percentage of another maximum")
            << fifty << reading(25, {{ZELKPropertyMaxCapacity, 200LL}}) << true;
        QTest::newRow("another presence") << fifty << reading(50, {{present, false}}) << false;
        QTest::newRow("another charging") << fifty << reading(50, {{charging, true}}) << false;
        QTest::newRow("another source")
            << fifty << reading(50, {{ZELKPropertyPowerSourceState, u"AC Power"_s}}) << false;
        QTest::newRow("numbers of other types")
            << fifty << reading(50, {{present, 1LL}, {charging, 0.0}, {ZELKPropertyCurrentCapacity, u"50"_s}})
            << true;
        QTest::newRow("a text is no number") << fifty << reading(50, {{present, u"1"_s}}) << false;
        QTest::newRow("another battery") << fifty << reading(50, {{ZELKPropertyName, u"BAT1"_s}}) << false;
        QTest::newRow("one without charging") << fifty << reading(50, {{charging, {}}}) << false;
        // Values that both lack count as different, so all properties decide.
        const ZELKDictionary bare = reading(50, {{charging, {}}});
        ZELKDictionary turned;
        for (const QString &key :
             {bare.keys().at(3), bare.keys().at(0), bare.keys().at(4), bare.keys().at(1), bare.keys().at(2)})
            turned.insert(key, bare.value(key));
        QTest::newRow("both without charging") << bare << bare << true;
        QTest::newRow("in another order") << bare << turned << true;
        QTest::newRow("both without charging, another value")
            << bare << reading(50, {{charging, {}}, {toEmpty, 5LL}}) << false;
        QTest::newRow("in another order, a number of another type") << bare << [&] {
            ZELKDictionary other = turned;
            other.insert(present, 1LL);
            return other;
        }() << true;
        QTest::newRow("no properties at all") << ZELKDictionary() << ZELKDictionary() << true;
        QTest::newRow("odd ones, equal") << reading(50, {{charging, QVariantList{1LL}}})
                                         << reading(50, {{charging, QVariantList{1LL}}}) << true;
    }

    void mergesReadings()
    {
        QFETCH(ZELKDictionary, first);
        QFETCH(ZELKDictionary, second);
        LogFixture fixture;
        fixture.log.addExternalEntries({batteryEvent(0, first), batteryEvent(40 * oneDay, second)});
        QTEST(fixture.log.count() == 1, "merged");
    }

    void comparesWithTheNewestOfTheGroupAlone()
    {
        LogFixture fixture;
        fixture.log.addExternalEntries({batteryEvent(0, reading(50)), batteryEvent(1, reading(49)),
                                        batteryEvent(2, reading(50)), rawEvent(3, sleepEvent),
                                        batteryEvent(4, reading(50)), rawEvent(5, sleepEvent),
                                        rawEvent(7.5, sleepEvent), rawEvent(8.5, sleepEvent)});
        QCOMPARE(fixture.log.count(), 5);
        QCOMPARE(fixture.at(2)->duplicates().size(), 1);
        QCOMPARE(fixture.at(3)->duplicates().size(), 2); // measured from the first, not from its duplicates
        QCOMPARE(fixture.at(3)->finalDate(), ZELKDate(7.5));
        QCOMPARE(fixture.at(4)->next(), fixture.at(3));
        QCOMPARE(fixture.at(0)->finalDate(), ZELKDate(0));
    }

    void theAccountKindRepeatsToo()
    {
        LogFixture fixture;
        ZELKLWCLog::EntryClasses classes = fixture.log.entryClasses();
        classes.insert(ZELKEventAccountingBoot, ZELKEntryKind::Account);
        fixture.log.setEntryClasses(classes);
        fixture.log.addExternalEntries({rawEvent(0, u"accounting boot"_s),
                                        rawEvent(4.9, u"accounting boot"_s), rawEvent(5, u"startup"_s),
                                        rawEvent(6, u"accounting boot"_s)});
        QCOMPARE(fixture.log.count(), 3);
    }

    void tellsOfThoseMergedBeforeItAwoke()
    {
        LogFixture fixture(Texts::Invented);
        fixture.log.addExternalEntries(
            {batteryEvent(0, reading(50)), batteryEvent(10, reading(50)), batteryEvent(20, reading(50))});
        fixture.add(batteryEvent(30, reading(50)));
        ZELKLWCLogEntry *entry = fixture.at(0);
        QCOMPARE(entry->duplicates().size(), 3);
        QCOMPARE(entry->finalDate(), ZELKDate(30));
        QCOMPARE(entry->attributes(), (QStringList{u"Device"_s, u"~Duplicates~"_s}));
        QCOMPARE(entry->attributeForKey(u"~Duplicates~"_s).toList(), dates({10, 20}));
        entry->initAttributes();
        QCOMPARE(entry->attributeForKey(u"~Duplicates~"_s).toList(), dates({10, 20, 30}));

        // One that was alone when it awoke.
        entry = fixture.add(rawEvent(40, sleepEvent));
        fixture.add(rawEvent(41, sleepEvent));
        QCOMPARE(entry->duplicates().size(), 1);
        QVERIFY(entry->attributes().isEmpty());
    }

    void duplicatesNeverAwake()
    {
        LogFixture fixture(Texts::English);
        fixture.log.addExternalEntries(
            {rawEvent(0, wakeEvent), rawEvent(100, sleepEvent, {}, u"m"_s),
             rawEvent(101, sleepEvent, {{ZELKPropertyProcesses, u"p"_s}}, u"n"_s)});
        ZELKLWCLogEntry *duplicate = fixture.at(1)->duplicates().value(0);
        QCOMPARE(duplicate->summary(), sleepEvent);
        QCOMPARE(duplicate->monitor(), u"n"_s);
        QVERIFY(duplicate->attributes().isEmpty());
        QVERIFY(duplicate->pairRepresents().isNull());
        QVERIFY(!duplicate->past() && !duplicate->next() && !duplicate->previous() && !duplicate->pair());
        QCOMPARE(std::get<ZELKLWCLogEntry *>(duplicate->container()), fixture.at(1));
        QVERIFY(!fixture.log.indexOfEntry(duplicate));
    }

    void scriptingFindsThem()
    {
        LogFixture fixture;
        fixture.log.addExternalEntries({rawEvent(0, wakeEvent), rawEvent(oneDay, sleepEvent),
                                        rawEvent(oneDay + 1, sleepEvent), rawEvent(oneDay + 2, sleepEvent)});
        ZELKLWCLogEntry *entry = fixture.at(1);
        const QString path = fixture.log.objectSpecifier() + u"/entries/1"_s;
        QCOMPARE(entry->objectSpecifier(), path);
        QCOMPARE(entry->duplicates().at(1)->objectSpecifier(), path + u"/duplicates/1"_s);
        ZELKLWCLogEntry *foreign = fixture.log.entryWithDate(ZELKDate(0), u"e"_s, u"m"_s, {});
        QVERIFY(foreign->objectSpecifier().isEmpty());
        foreign->setContainer(&fixture.log);
        QVERIFY(foreign->objectSpecifier().isEmpty());
        QVERIFY(!foreign->visible());
        foreign->setContainer(entry);
        QVERIFY(foreign->objectSpecifier().isEmpty());

        fixture.show(ZELKDate(0), ZELKDate(oneDay - 1));
        QVERIFY(fixture.at(0)->visible());
        QVERIFY(!entry->visible() && !entry->duplicates().at(0)->visible());
        fixture.show(ZELKDate(oneDay), ZELKDate(2 * oneDay - 1));
        QVERIFY(!fixture.at(0)->visible());
        QVERIFY(entry->visible() && entry->duplicates().at(0)->visible());
    }

    void copiesAwake()
    {
        LogFixture fixture(Texts::English);
        fixture.log.addExternalEntries(
            {batteryEvent(0, reading(50)), batteryEvent(60, reading(50, {{charging, true}})),
             batteryEvent(70, reading(50, {{charging, true}})), batteryEvent(120, reading(51)),
             batteryEvent(180, reading(51, {{charging, true}}))});
        fixture.add(batteryEvent(190, reading(51, {{charging, true}})));
        ZELKLWCLogEntry *original = fixture.at(3);
        original->setSummary(u"by hand"_s);
        ZELKLWCLogEntry *copy = original->copy();
        QVERIFY(copy != original);
        QCOMPARE(copy->summary(), u"Started charging 'BAT0' from 'Battery Power'"_s);
        QVERIFY(copy->past() == fixture.at(2) && copy->next() == fixture.at(2) && !copy->previous());
        QCOMPARE(copy->pair(), fixture.at(2));
        QCOMPARE(copy->duplicates(), original->duplicates());
        QCOMPARE(std::get<ZELKLWCLog *>(copy->container()), &fixture.log);
        QCOMPARE(copy->group(), original->group());
        QCOMPARE(copy->properties(), original->properties());
        // The copy knows the duplicate that came after the original awoke.
        QCOMPARE(original->attributes(), QStringList{u"Device"_s});
        QCOMPARE(copy->attributes(), (QStringList{u"Device"_s, u"Duplicates"_s}));
        QVERIFY(!fixture.log.indexOfEntry(copy));
        // Growing the copy's list leaves the original's as it was.
        copy->mergeEntry(fixture.log.entryWithDate(ZELKDate(9), u"e"_s, u"m"_s, {}));
        QCOMPARE(copy->duplicates().size(), 2);
        QCOMPARE(original->duplicates().size(), 1);
        // The log goes on past copies and loose entries.
        ZELKLWCLogEntry *later = fixture.add(rawEvent(300, sleepEvent));
        QCOMPARE(fixture.log.indexOfEntry(later), std::optional<std::uint64_t>(4));
        QCOMPARE(later->past(), original);
    }

    void copiesLookTheirMonitorUpAgain()
    {
        LogFixture fixture(Texts::Invented);
        ZELKLWCLogEntry *copy = fixture.add(rawEvent(0, u"Can system sleep"_s))->copy();
        QCOMPARE(copy->monitor(), u"~org.zelk.monitor.watcher.powerevents~"_s);
        QCOMPARE(copy->group(), copy->monitor()); // made from the localised name, all that an entry knows
        QCOMPARE(copy->kind(), ZELKEntryKind::IdleSleep);
    }
};

QTEST_GUILESS_MAIN(TestDuplicates)
#include "tst_duplicates.moc"
