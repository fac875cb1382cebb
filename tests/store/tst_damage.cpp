#include "StoreFixture.h"

using Damage = std::function<void(QByteArray &)>;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void replaceContents(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

/// A cache with a history, closed.
QByteArray fill(StoreFixture &fixture)
{
    const auto store = fixture.bareStore();
    store->cacheEvents(history(300));
    store->setLastSyncDate(ZELKDate(1.0));
    store->applicationWillTerminate();
    return contents(fixture.file());
}

} // namespace

/// Files that are no caches any more.
class StoreDamageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDamagedFileIsSetAside_data()
    {
        QTest::addColumn<Damage>("damage");
        const auto add = [](const char *name, const Damage &damage) { QTest::newRow(name) << damage; };
        add("no database", [](QByteArray &file) { file = "Dear diary"; });
        add("zeros", [](QByteArray &file) { file.fill('\0'); });
        add("header", [](QByteArray &file) { file[3] = 'x'; });
        add("cut in the header", [](QByteArray &file) { file.truncate(60); });
        add("cut in the schema", [](QByteArray &file) { file.truncate(9000); });
        add("schema",
            [](QByteArray &file) { file.replace(100, 16384 - 100, QByteArray(16384 - 100, '\x55')); });
        add("schema texts",
            [](QByteArray &file) { file.replace("CREATE TABLE events", "CREATE TABEL events"); });
        add("pages", [](QByteArray &file) {
            file.replace(16384, file.size() - 16384, QByteArray(file.size() - 16384, '\x55'));
        });
        add("cut in the pages", [](QByteArray &file) { file.truncate(2 * 16384 + 77); });
    }
    /// Kept as it was, under another name, with one line; the store goes on with a new file.
    void aDamagedFileIsSetAside()
    {
        QFETCH(Damage, damage);
        StoreFixture fixture;
        QByteArray bytes = fill(fixture);
        damage(bytes);
        for (int round = 1; round <= 2; ++round) {
            const Console console;
            replaceContents(fixture.file(), bytes);
            auto store = fixture.makeStore();
            zelkGuard([&] { store->syncWithLocalCache(); });
            zelkGuard([&] { store->lastSyncDate(); });
            if (fixture.filesAside().size() < round) // met while writing
                store->cacheEvents(history(2));
            QCOMPARE(fixture.filesAside().size(), round);
            const QString aside = fixture.file() + ZELKFormat(".damaged-2025-01-31-%d", {round});
            QCOMPARE(console.count(qPrintable(
                         ZELKFormat("%@ is damaged. It was set aside as %@, and a new one was begun.",
                                    {fixture.file(), aside}))),
                     1);
            QCOMPARE(contents(aside), bytes);
            QVERIFY(store->cacheEvents(history(5)));
            QCOMPARE(store->sortedCachedEventsFromDate({}, {}), history(5));
            QCOMPARE(store->lastSyncDate(), ZELKDate::distantPast());
            store->applicationWillTerminate();
            QVERIFY(QFile::remove(fixture.file()));
        }
    }

    /// Whatever byte is another one: no crash, and events can be kept and read again.
    void anyByte()
    {
        StoreFixture fixture;
        const QByteArray healthy = fill(fixture);
        QRandomGenerator random(5);
        const QList<ZELKRawEvent> later{
            ZELKMakeRawEvent(ZELKDate(759'000'000.0), QStringLiteral("x"), QStringLiteral("m"))};
        int setAside = 0;
        for (int round = 0; round < 150; ++round) {
            const Console console;
            QByteArray bytes = healthy;
            const bool inHeader = round % 3 == 0;
            for (int i = 0; i <= round % 5; ++i)
                bytes[inHeader ? random.bounded(400) : random.bounded(bytes.size())] =
                    char(random.bounded(256));
            replaceContents(fixture.file(), bytes);
            ZELKLWCLog log;
            auto store = fixture.bareStore();
            store->setAgentController(&fixture.controller);
            store->setLogController(&log);
            zelkGuard([&] { store->syncWithLocalCache(); });
            zelkGuard([&] { store->lastSyncDate(); });
            // The first attempt may be the one that finds the damage. A header that says "for reading alone"
            // is none.
            if (!store->cacheEvents(later) && !store->cacheEvents(later))
                QVERIFY2(store->lastResult().code == SQLITE_READONLY,
                         qPrintable(console.lines().join(QLatin1Char('\n'))));
            zelkGuard([&] { store->updateLogEvents(); });
            store->applicationWillTerminate();
            setAside += !fixture.filesAside().isEmpty();
            for (const QString &name : QDir(fixture.folder.path()).entryList({QStringLiteral("cache*")}))
                QFile::remove(fixture.folder.filePath(name));
        }
        QVERIFY(setAside > 10);
    }

    void damageUnderAnOpenStore_data()
    {
        QTest::addColumn<QByteArray>("damage");
        QTest::newRow("place of the table") << QByteArray("rootpage = 77777");
        QTest::newRow("text of the schema") << QByteArray("sql = 'CREATE TABEL x'");
    }
    /// Damage that shows only while the file is open, in statements old and new.
    void damageUnderAnOpenStore()
    {
        QFETCH(QByteArray, damage);
        const QList<ZELKRawEvent> events = history(40);
        for (const bool isReading : {true, false}) {
            const Console console;
            StoreFixture fixture;
            QVERIFY(fixture.store->cacheEvents(events));
            OtherConnection other(fixture.file());
            other.run("PRAGMA writable_schema = ON");
            other.run("UPDATE sqlite_schema SET " + damage + " WHERE name = 'events'");
            other.run("PRAGMA schema_version = 99");
            if (isReading)
                zelkGuard([&] { fixture.store->syncWithLocalCache(); });
            else
                fixture.store->cacheEvents(events);
            QCOMPARE(fixture.filesAside().size(), 1);
            QCOMPARE(console.count("is damaged. It was set aside"), 1);
            QVERIFY(fixture.store->cacheEvents(events));
            QCOMPARE(fixture.store->sortedCachedEventsFromDate({}, {}), events);
        }
    }

    /// A device that cannot even open a new file must not be taken for further damage.
    void noSecondFileIsBlamed()
    {
        const Console console;
        StoreFixture fixture;
        QVERIFY(fixture.store->cacheEvents(history(3)));
        fixture.port->fail(StoreFixture::Call::Step, SQLITE_CORRUPT);
        QVERIFY(!fixture.store->cacheEvents(history(5)));
        QCOMPARE(fixture.filesAside().size(), 1);
        fixture.port->heal();
        fixture.port->fail(StoreFixture::Call::Exec, SQLITE_FULL, 1, 50);
        QVERIFY(!fixture.store->cacheEvents(history(5)));
        fixture.port->heal();
        QVERIFY(fixture.store->cacheEvents(history(5)));
        QCOMPARE(fixture.filesAside().size(), 1);
        QCOMPARE(console.count("damaged and could not be set aside"), 0);
    }
};

QTEST_GUILESS_MAIN(StoreDamageTest)
#include "tst_damage.moc"
