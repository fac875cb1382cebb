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
        QCOMPARE(raised([&] { bare->awakeFromNib(); }),
                 QStringLiteral("ZELKLWCStore agentController is not connected."));
        bare->setAgentController(&fixture.controller);
        QCOMPARE(raised([&] { bare->awakeFromNib(); }),
                 QStringLiteral("ZELKLWCStore logController is not connected."));
        QCOMPARE(raised([&] { store.cacheEvents(std::nullopt); }),
                 QStringLiteral("Invalid parameter not satisfying: someEvents"));
        QCOMPARE(raised([&] { store.cacheEvent(std::nullopt); }),
                 QStringLiteral("Invalid parameter not satisfying: anEvent"));
        const ZELKRawEvent unwritable{{ZELKEventKeyDate, QStringLiteral("1")},
                                      {QStringLiteral("x"), QPoint()}};
        const QString refusal = raised([&] { store.cacheEvent(unwritable); });
        QVERIFY2(
            refusal.startsWith(QStringLiteral("ZELKLWCStore serialization of '{date = 1; x = ")) &&
                refusal.endsWith(QStringLiteral("' failed A value of type \"QPoint\" cannot be written to "
                                                "a property list..")),
            qPrintable(refusal));

        const Console console;
        const ZELKRawEvent dateless{{ZELKEventKeyDescription, QStringLiteral("x")}};
        QVERIFY(!store.cacheEvent(dateless));
        QCOMPARE(console.count("ZELKLWCStore Parameter '@date' is required for statement "
                               "'ZELKLWCStoreSQLCacheInsert'."),
                 1);
        QVERIFY(fixture.other().cached().isEmpty());
    }

    void aBundleWithoutAName()
    {
        StoreFixture fixture;
        QFile info(fixture.folder.filePath(QStringLiteral("Info.plist")));
        QVERIFY(info.open(QIODevice::ReadWrite));
        const QByteArray bytes = info.readAll().replace("<key>CFBundleName</key>", "<key>Nickname</key>");
        info.resize(0);
        info.seek(0);
        info.write(bytes);
        info.close();
        ZELKLWCStore store({std::make_shared<ZELKBundle>(fixture.folder.path()), fixture.port, fixture.bus});
        QCOMPARE(raised([&] { store.databaseURL(); }),
                 QStringLiteral("ZELKLWCStore Info.plist missing CFBundleName"));
        store.applicationWillTerminate();
    }

    void theFileInTheDocumentsFolder()
    {
        const QByteArray home = qgetenv("HOME");
        StoreFixture fixture;
        qputenv("HOME", fixture.folder.path().toUtf8());
        ZELKLWCStore store({fixture.bundle, fixture.port, fixture.bus});
        QCOMPARE(store.databaseURL().toLocalFile(),
                 fixture.folder.filePath(QStringLiteral("Documents/Lullwatch.lullwatch-events")));
        QVERIFY(store.cacheEvents(history(1)));
        QVERIFY(QFile::exists(store.databaseURL().toLocalFile()));
        qputenv("HOME", home);
    }

    void boundsAreInclusive()
    {
        StoreFixture fixture;
        QList<ZELKRawEvent> events;
        for (const double date : {-5.0, 0.0, 9.5, 10.0, 100.25})
            events.append(ZELKMakeRawEvent(ZELKDate(date), QStringLiteral("x"), QStringLiteral("m")));
        std::swap(events[0], events[4]); // not in order
        QVERIFY(fixture.store->cacheEvents(events));
        QVERIFY(fixture.store->cacheEvents(events)); // duplicates are refused quietly
        const auto dates = [&](std::optional<ZELKDate> from, std::optional<ZELKDate> to) {
            QStringList found;
            for (const ZELKRawEvent &event : fixture.store->sortedCachedEventsFromDate(from, to))
                found.append(event.string(ZELKEventKeyDate));
            return found.join(QLatin1Char(' '));
        };
        QCOMPARE(dates({}, {}), QStringLiteral("0.000000 9.500000 10.000000 100.250000"));
        QCOMPARE(dates(ZELKDate(9.5), ZELKDate(100.25)), QStringLiteral("9.500000 10.000000 100.250000"));
        QCOMPARE(dates(ZELKDate(9.500001), ZELKDate(100.249999)), QStringLiteral("10.000000"));
        QCOMPARE(dates(ZELKDate(-9.0), ZELKDate(-1.0)), QStringLiteral("-5.000000"));
        QCOMPARE(dates(ZELKDate(200.0), {}), QString());
    }

    void theLogAsksForWhatIsNewer()
    {
        StoreFixture fixture;
        const auto event = [](double date, const char *name) {
            return ZELKMakeRawEvent(ZELKDate(date), QString::fromLatin1(name), QStringLiteral("m"));
        };
        QVERIFY(fixture.store->cacheEvents(QList{event(10.0, "a"), event(20.0, "b")}));
        fixture.store->syncWithLocalCache();
        QCOMPARE(fixture.log.count(), 2);
        QVERIFY(fixture.store->cacheEvents(QList{event(20.999, "too early"), event(21.0, "c")}));
        fixture.store->updateLogEvents();
        QCOMPARE(fixture.log.count(), 3);
        QCOMPARE(fixture.log.pastEntry()->event(), QStringLiteral("c"));
        const Console console;
        fixture.store->updateLogEvents();
        QVERIFY(console.lines().isEmpty());
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
            loose.insert(QStringLiteral("more"), true);
            const char *const forms[] = {"?", "?", "CAST(? AS TEXT)", "?"};
            const QByteArray values[] = {bytesOf(event), xml, xml, bytesOf(loose)};
            const quint32 form = random.bounded(4);
            other.run("INSERT INTO events VALUES (" + date + ", " + forms[form] + ")", values[form]);
        }
        other.run("COMMIT");
        const QList<ZELKRawEvent> cached = fixture.store->sortedCachedEventsFromDate({}, {});
        QCOMPARE(cached.size(), events.size());
        fixture.store->syncWithLocalCache();
        QCOMPARE(dump(fixture.log), dumpOf(cached));
        QCOMPARE(dump(fixture.log), dumpOf(events));
    }

    void unreadableRows_data()
    {
        QTest::addColumn<QByteArray>("sql");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("shown");
        const auto add = [](const char *name, const char *sql, const QByteArray &bytes, const char *shown) {
            QTest::newRow(name) << QByteArray(sql) << bytes << QString::fromUtf8(shown);
        };
        add("blob", "?", "nonsense", "6e6f6e73656e7365");
        add("empty blob", "x''", {}, "");
        add("text", "'nonsense'", {}, "'nonsense'");
        add("empty text", "''", {}, "''");
        add("text with a NUL", "'non' || char(0) || 'sense'", {}, "'non'");
        add("text that is not UTF-8", "CAST(? AS TEXT)", "non\xff\xfesense", "non");
        add("integer", "42", {}, "'42'");
        add("real", "4.5", {}, "'4.5'");
        add("empty dictionary", "?",
            ZELKPropertyList::writeBinary(QVariant::fromValue(ZELKDictionary())).bytes, "failed ");
        add("half an event", "?", bytesOf(history(1).first()).left(60), "failed ");
    }
    /// Reported once, put aside, and in nobody's way.
    void unreadableRows()
    {
        QFETCH(QByteArray, sql);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, shown);
        const QList<ZELKRawEvent> events = history(4);
        const auto damage = [&](StoreFixture &fixture) {
            QVERIFY(fixture.store->cacheEvents(events));
            const QByteArray date = events[1].string(ZELKEventKeyDate).toLatin1();
            for (int i = 0; i < 2; ++i)
                fixture.other().run("INSERT INTO events VALUES (" + date + ", " + sql + ")", bytes);
        };
        const QString message = QStringLiteral("ZELKLWCStore inflation of '");
        {
            const Console console;
            StoreFixture fixture;
            damage(fixture);
            fixture.store->syncWithLocalCache();
            QCOMPARE(dump(fixture.log), dumpOf(events));
            QCOMPARE(console.count("ZELKLWCStore inflation of '"), 2);
            QVERIFY2(console.lines().filter(message)[0].contains(shown),
                     qPrintable(console.lines().filter(message)[0]));
            fixture.store->syncWithLocalCache();
            QCOMPARE(console.count("ZELKLWCStore inflation of '"), 2);
            QCOMPARE(fixture.other().run("SELECT typeof(properties) FROM unreadable_events").size(), 2);
        }
        {
            const Console console;
            StoreFixture fixture;
            damage(fixture);
            const auto read = [&] { return fixture.store->sortedCachedEventsFromDate({}, {}); };
            for (int i = 0; i < 2; ++i)
                QVERIFY(raised(read).startsWith(message));
            QCOMPARE(read(), events);
            QCOMPARE(fixture.other().cached(), serialised(events));
        }
    }

    /// A lock that another program holds for long keeps an unreadable row in its place and nobody waiting.
    void anUnreadableRowInALockedCache()
    {
        const Console console;
        StoreFixture fixture;
        QVERIFY(fixture.store->cacheEvents(history(4)));
        fixture.other().run("INSERT INTO events VALUES (5, 'x')");
        OtherConnection other(fixture.file());
        other.run("BEGIN IMMEDIATE");
        fixture.store->syncWithLocalCache();
        QCOMPARE(dump(fixture.log), dumpOf(history(4)));
        QVERIFY(raised([&] {
                    fixture.store->sortedCachedEventsFromDate({}, {});
                }).startsWith(QStringLiteral("ZELKLWCStore inflation of 'x' failed ")));
        other.run("COMMIT");
    }

    void settingsOfAnyKind_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<double>("date");
        const double past = ZELKDate::distantPast().timeIntervalSinceReferenceDate();
        QTest::newRow("number") << QStringLiteral("12.5") << 12.5;
        QTest::newRow("no number") << QStringLiteral("soon") << 0.0;
        QTest::newRow("empty") << QString() << 0.0;
        QTest::newRow("nan") << QStringLiteral("nan") << past;
        QTest::newRow("inf") << QStringLiteral("inf") << past;
    }
    void settingsOfAnyKind()
    {
        QFETCH(QString, setting);
        QFETCH(double, date);
        StoreFixture fixture;
        fixture.store->setString(setting, QStringLiteral("lastSync"));
        QCOMPARE(fixture.store->lastSyncDate(), ZELKDate(date));
        fixture.store->setLastSyncDate(ZELKDate(1.0 / 3.0));
        QCOMPARE(fixture.other().lastSync(), QByteArray("0.333333"));
        fixture.store->setLastSyncDate(std::nullopt);
        QCOMPARE(fixture.other().lastSync(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(StoreCacheTest)
#include "tst_cache.moc"
