#include "StoreFixture.h"
#include "ZELKDamagedDatabase.h"

#include <sys/inotify.h>
#include <unistd.h>

using Damage = std::function<void(QByteArray &)>;

namespace {

/// A cache with a history, closed.
QByteArray fill(const StoreFixture &fixture)
{
    const auto store = fixture.bareStore();
    store->cacheEvents(history(300));
    store->setLastSyncDate(ZELKDate(1.0));
    store->applicationWillTerminate();
    return readFile(fixture.file());
}

} // namespace

/// Files that are no caches any more.
class StoreDamageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDamagedFileIsSetAside_data()
    {
        const Rows<Damage> row;
        row("no database", [](QByteArray &file) { file = "Dear diary"; });
        row("zeros", [](QByteArray &file) { file.fill('\0'); });
        row("cut in the header", [](QByteArray &file) { file.truncate(60); });
        row("format of another time", [](QByteArray &file) { std::fill_n(file.begin() + 44, 4, '\x09'); });
        row("cut in the schema", [](QByteArray &file) { file.truncate(9000); });
        row("schema", [](QByteArray &file) { std::fill(file.begin() + 100, file.begin() + 16384, '\x55'); });
        row("schema texts",
            [](QByteArray &file) { file.replace("CREATE TABLE events", "CREATE TABEL events"); });
        row("pages", [](QByteArray &file) { std::fill(file.begin() + 16384, file.end(), '\x55'); });
        row("cut in the pages", [](QByteArray &file) { file.truncate(2 * 16384 + 77); });
    }
    /// Kept as it was, under another name, with one line; the store goes on with a new file.
    void aDamagedFileIsSetAside()
    {
        const auto [damage] = Rows<Damage>::fetch();
        StoreFixture fixture;
        QByteArray bytes = fill(fixture);
        damage(bytes);
        for (int round = 1; round <= 2; ++round) {
            const ConsoleLines console;
            writeFile(fixture.file(), bytes);
            auto store = fixture.makeStore();
            zelkGuard([&] { store->syncWithLocalCache(); });
            zelkGuard([&] { store->lastSyncDate(); });
            if (fixture.filesAside().size() < round) // met while writing
                store->cacheEvents(history(2));
            QCOMPARE(fixture.filesAside().size(), round);
            const QString aside = fixture.file() + ZELKFormat(".damaged-2025-01-31-%d", {round});
            const QString line = fixture.file() + u" is damaged. It was set aside as "_s + aside +
                                 u", and a new one was begun."_s;
            QCOMPARE(console.count(qPrintable(line)), 1);
            QCOMPARE(readFile(aside), bytes);
            QVERIFY(store->cacheEvents(history(5)));
            QCOMPARE(store->sortedCachedEventsFromDate({}, {}), history(5));
            QCOMPARE(store->lastSyncDate(), ZELKDate::distantPast());
            store->applicationWillTerminate();
            QVERIFY(QFile::remove(fixture.file()));
        }
    }

    /// Ended in between, the file is met again and joins its journals; never are they beside a new file, or
    /// deleted as those of a file that is not there.
    void theFileIsSetAsideAfterItsJournals()
    {
        const ConsoleLines console;
        StoreFixture fixture;
        fixture.store->applicationWillTerminate();
        const QStringList parts{u"-journal"_s, u"-shm"_s, u"-wal"_s, QString()};
        for (const QString &part : parts)
            writeFile(fixture.file() + part, "of cache" + part.toUtf8());
        const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        inotify_add_watch(watch, qPrintable(fixture.folder.path()), IN_MOVED_FROM);
        ZELKDamagedDatabase::setAside(fixture.file());
        alignas(inotify_event) std::array<char, 4096> moves;
        const ssize_t size = read(watch, moves.data(), moves.size());
        close(watch);
        QStringList moved;
        for (ssize_t at = 0; at < size;) {
            const auto *move = reinterpret_cast<const inotify_event *>(moves.data() + at);
            moved.append(QString::fromUtf8(move->name).mid(QFileInfo(fixture.file()).fileName().size()));
            at += ssize_t(sizeof *move + move->len);
        }
        QCOMPARE(moved.value(3, u"none"_s), QString());
        QCOMPARE(moved.size(), 4);

        const QString aside = fixture.file() + u".damaged-2025-01-31-1"_s;
        QVERIFY(QFile::rename(aside, fixture.file()));
        ZELKDamagedDatabase::setAside(fixture.file());
        for (const QString &part : parts)
            QCOMPARE(readFile(aside + part), "of cache" + part.toUtf8());
    }

    /// Whatever byte is another one: no crash, and events can be kept and read again.
    void anyByte()
    {
        StoreFixture fixture;
        const QByteArray healthy = fill(fixture);
        QRandomGenerator random(5);
        const QList<ZELKRawEvent> later{ZELKMakeRawEvent(ZELKDate(759'000'000.0), u"x"_s, u"m"_s)};
        int setAside = 0;
        for (int round = 0; round < 150; ++round) {
            const ConsoleLines console;
            QByteArray bytes = healthy;
            const bool inHeader = round % 3 == 0;
            for (int i = 0; i <= round % 5; ++i)
                bytes[inHeader ? random.bounded(400) : random.bounded(bytes.size())] =
                    char(random.bounded(256));
            writeFile(fixture.file(), bytes);
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
                         qPrintable(console.lines().join(u'\n')));
            zelkGuard([&] { store->updateLogEvents(); });
            store->applicationWillTerminate();
            setAside += !fixture.filesAside().isEmpty();
            for (const QString &name : QDir(fixture.folder.path()).entryList({u"cache*"_s}))
                QFile::remove(fixture.folder.filePath(name));
        }
        QVERIFY(setAside > 10);
    }

    void damageUnderAnOpenStore_data()
    {
        const Rows<QByteArray, bool> row;
        row("place of the table, reading", "rootpage = 77777", true);
        row("place of the table, writing", "rootpage = 77777", false);
        row("text of the schema", "sql = 'CREATE TABEL x'", true);
    }
    /// Damage that shows only while the file is open, in statements old and new.
    void damageUnderAnOpenStore()
    {
        const auto [damage, isReading] = Rows<QByteArray, bool>::fetch();
        const QList<ZELKRawEvent> events = history(40);
        const ConsoleLines console;
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

    /// A device that cannot even open a new file must not be taken for further damage.
    void noSecondFileIsBlamed()
    {
        const ConsoleLines console;
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
