#include "StoreFixture.h"

/// The store's cache without any agent: what goes in, what comes out, and what is said.
class StoreCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messages()
    {
        StoreFixture fixture;
        ZELKLWCStore &store = *fixture.store;
        const auto bare = fixture.bareStore();
        QCOMPARE(raised([&] { bare->awakeFromNib(); }), u"ZELKLWCStore agentController is not connected."_s);
        bare->setAgentController(&fixture.controller);
        QCOMPARE(raised([&] { bare->awakeFromNib(); }), u"ZELKLWCStore logController is not connected."_s);
        const QString invalid = u"Invalid parameter not satisfying: "_s;
        QCOMPARE(raised([&] { store.cacheEvents(std::nullopt); }), invalid + u"someEvents"_s);
        QCOMPARE(raised([&] { store.cacheEvent(std::nullopt); }), invalid + u"anEvent"_s);
        const ZELKRawEvent unwritable{{ZELKEventKeyDate, u"1"_s}, {u"x"_s, QPoint()}};
        const QString refusal = raised([&] { store.cacheEvent(unwritable); });
        QVERIFY(refusal.startsWith(u"ZELKLWCStore serialization of '{date = 1; x = "_s));
        QVERIFY(refusal.endsWith(
            u"' failed A value of type \"QPoint\" cannot be written to a property list.."_s));

        const ConsoleLines console;
        QVERIFY(!store.cacheEvent(ZELKRawEvent{{ZELKEventKeyDescription, u"x"_s}}));
        QCOMPARE(console.count("ZELKLWCStore Parameter '@date' is required for statement "
                               "'ZELKLWCStoreSQLCacheInsert'."),
                 1);
        QVERIFY(fixture.other().cached().isEmpty());
    }

    void boundsAreInclusive()
    {
        StoreFixture fixture;
        QList<ZELKRawEvent> events;
        for (const double date : {100.25, 0.0, 9.5, 10.0, -5.0}) // not in order
            events.append(ZELKMakeRawEvent(ZELKDate(date), u"x"_s, u"m"_s));
        QVERIFY(fixture.store->cacheEvents(events));
        QVERIFY(fixture.store->cacheEvents(events)); // duplicates are refused quietly
        const auto dates = [&](std::optional<ZELKDate> from, std::optional<ZELKDate> to) {
            QStringList found;
            for (const ZELKRawEvent &event : fixture.store->sortedCachedEventsFromDate(from, to))
                found.append(event.string(ZELKEventKeyDate));
            return found.join(u' ');
        };
        QCOMPARE(dates({}, {}), u"0.000000 9.500000 10.000000 100.250000"_s);
        QCOMPARE(dates(ZELKDate(9.5), ZELKDate(100.25)), u"9.500000 10.000000 100.250000"_s);
        QCOMPARE(dates(ZELKDate(9.500001), ZELKDate(100.249999)), u"10.000000"_s);
        QCOMPARE(dates(ZELKDate(-9.0), ZELKDate(-1.0)), u"-5.000000"_s);
    }

    void theLogAsksForWhatIsNewer()
    {
        StoreFixture fixture;
        const auto event = [](double date, const char *name) {
            return ZELKMakeRawEvent(ZELKDate(date), QString::fromLatin1(name), u"m"_s);
        };
        QVERIFY(fixture.store->cacheEvents(QList{event(10.0, "a"), event(20.0, "b")}));
        fixture.store->syncWithLocalCache();
        QCOMPARE(fixture.log.count(), 2);
        QVERIFY(fixture.store->cacheEvents(QList{event(20.999, "too early"), event(21.0, "c")}));
        fixture.store->updateLogEvents();
        QCOMPARE(fixture.log.count(), 3);
        QCOMPARE(fixture.log.pastEntry()->event(), u"c"_s);
        const ConsoleLines console;
        fixture.store->updateLogEvents();
        QCOMPARE(console.size(), 0);
    }

    /// Texts and blobs, lists in XML, other values than texts: the quick way into the log and the slow one
    /// agree.
    void theFastLoadBuildsTheSameLog()
    {
        QRandomGenerator random(3);
        StoreFixture fixture;
        fixture.store->lastSyncDate();
        OtherConnection other(fixture.file());
        other.run("BEGIN");
        const QList<ZELKRawEvent> events = history(3000);
        for (const ZELKRawEvent &event : events) {
            const QByteArray date = event.string(ZELKEventKeyDate).toLatin1();
            const QByteArray xml = ZELKPropertyList::writeXml(QVariant::fromValue(event)).bytes;
            ZELKRawEvent loose = event;
            loose.insert(ZELKEventKeyDate, date.toDouble());
            loose.insert(u"more"_s, true);
            const char *const forms[] = {"?", "?", "CAST(? AS TEXT)", "?"};
            const QByteArray values[] = {bytesOf(event), xml, xml, bytesOf(loose)};
            const quint32 form = random.bounded(4);
            other.run("INSERT INTO events VALUES (" + date + ", " + forms[form] + ")", values[form]);
        }
        other.run("COMMIT");
        fixture.store->syncWithLocalCache();
        QCOMPARE(dump(fixture.log), dumpOf(fixture.store->sortedCachedEventsFromDate({}, {})));
        QCOMPARE(dump(fixture.log), dumpOf(events));
    }

    void unreadableRows_data()
    {
        const Rows<QByteArray, QString, QByteArray> row;
        row("blob", "?", "6e6f6e73656e7365", "nonsense");
        row("empty blob", "x''", "");
        row("text with a NUL", "'non' || char(0) || 'sense'", "'non'");
        row("text that is not UTF-8", "CAST(? AS TEXT)", "non", "non\xff\xfesense");
        row("real", "4.5", "'4.5'");
        row("empty dictionary", "?", "failed ",
            ZELKPropertyList::writeBinary(QVariant::fromValue(ZELKDictionary())).bytes);
        row("half an event", "?", "failed ", bytesOf(history(1).first()).left(60));
    }
    /// Reported once, put aside, and in nobody's way.
    void unreadableRows()
    {
        const auto [sql, shown, bytes] = Rows<QByteArray, QString, QByteArray>::fetch();
        const QList<ZELKRawEvent> events = history(4);
        const QString message = u"ZELKLWCStore inflation of '"_s;
        for (const bool isFast : {true, false}) {
            const ConsoleLines console;
            StoreFixture fixture;
            QVERIFY(fixture.store->cacheEvents(events));
            const QByteArray date = events[1].string(ZELKEventKeyDate).toLatin1();
            for (int i = 0; i < 2; ++i)
                fixture.other().run("INSERT INTO events VALUES (" + date + ", " + sql + ")", bytes);
            if (isFast) {
                for (int i = 0; i < 2; ++i) {
                    fixture.store->syncWithLocalCache();
                    QCOMPARE(dump(fixture.log), dumpOf(events));
                    QCOMPARE(console.count("ZELKLWCStore inflation of '"), 2);
                }
                QVERIFY(console.lines().filter(message)[0].contains(shown));
                QCOMPARE(fixture.other().run("SELECT typeof(properties) FROM unreadable_events").size(), 2);
            } else {
                const auto read = [&] { return fixture.store->sortedCachedEventsFromDate({}, {}); };
                for (int i = 0; i < 2; ++i)
                    QVERIFY(raised(read).startsWith(message));
                QCOMPARE(read(), events);
                QCOMPARE(fixture.other().cached(), serialised(events));
            }
        }
    }

    /// A lock that another program holds for long keeps an unreadable row in its place and nobody waiting.
    void anUnreadableRowInALockedCache()
    {
        const ConsoleLines console;
        StoreFixture fixture;
        QVERIFY(fixture.store->cacheEvents(history(4)));
        fixture.other().run("INSERT INTO events VALUES (5, 'x')");
        OtherConnection other(fixture.file());
        other.run("BEGIN IMMEDIATE");
        fixture.store->syncWithLocalCache();
        QCOMPARE(dump(fixture.log), dumpOf(history(4)));
        const auto read = [&] { fixture.store->sortedCachedEventsFromDate({}, {}); };
        QVERIFY(raised(read).startsWith(u"ZELKLWCStore inflation of 'x' failed "_s));
        other.run("COMMIT");
    }

    /// The date of the last synchronisation, whatever stands there.
    void settingsOfAnyKind()
    {
        StoreFixture fixture;
        const double past = ZELKDate::distantPast().timeIntervalSinceReferenceDate();
        const std::pair<QString, double> settings[] = {
            {u"12.5"_s, 12.5}, {u"soon"_s, 0.0}, {QString(), 0.0}, {u"nan"_s, past}, {u"inf"_s, past}};
        for (const auto &[setting, date] : settings) {
            fixture.store->setString(setting, u"lastSync"_s);
            QCOMPARE(fixture.store->lastSyncDate(), ZELKDate(date));
        }
        fixture.store->setLastSyncDate(ZELKDate(1.0 / 3.0));
        QCOMPARE(fixture.other().lastSync(), QByteArray("0.333333"));
        fixture.store->setLastSyncDate(std::nullopt);
        QCOMPARE(fixture.other().lastSync(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(StoreCacheTest)
#include "tst_cache.moc"
