#include "StoreFixture.h"
#include "ZELKDamagedDatabase.h"

#include <QDeadlineTimer>

#include <csignal>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/wait.h>
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

/// The store's cache without any agent: what goes in and comes out, and files that are no caches any more.
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
    }

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

    /// A program that is killed while it writes leaves whole transactions.
    void killedWhileItWrites()
    {
        constexpr int piece = 100;
        const QList<ZELKRawEvent> events = history(20'000);
        const QList<QByteArray> all = serialised(events);
        StoreFixture fixture;
        fixture.store->applicationWillTerminate();
        QRandomGenerator random(17);
        qsizetype kept = 0;
        for (int kills = 0; kills < 25 && kept < all.size() / 2; ++kills) {
            int ends[2];
            QCOMPARE(pipe2(ends, O_CLOEXEC), 0);
            const pid_t writer = fork();
            if (writer == 0)
                writeAll(fixture, events.mid(kept), piece, ends[1]);
            char done = 0;
            for (int lines = random.bounded(1, 6); lines > 0; --lines)
                QCOMPARE(read(ends[0], &done, 1), ssize_t(1));
            const QDeadlineTimer moment(std::chrono::microseconds(random.bounded(4000)));
            while (!moment.hasExpired()) {
            }
            ::kill(writer, SIGKILL);
            int status = 0;
            QCOMPARE(waitpid(writer, &status, 0), writer);
            QVERIFY(WIFSIGNALED(status));
            close(ends[0]);
            close(ends[1]);

            OtherConnection other(fixture.file());
            const QList<QByteArray> found = other.cached();
            QCOMPARE(found.size() % piece, 0);
            QVERIFY(found.size() > kept);
            kept = found.size();
            QVERIFY(found == all.first(kept));
            QCOMPARE(other.run("PRAGMA integrity_check"), QList<QByteArray>{"ok"});
            QCOMPARE(other.lastSync(), QByteArray());
        }
        fixture.renewStore();
        fixture.store->syncWithLocalCache();
        QCOMPARE(dump(fixture.log), dumpOf(events.first(kept)));
        QVERIFY(fixture.store->cacheEvents(events));
        QVERIFY(fixture.other().cached() == all);
        QVERIFY(fixture.filesAside().isEmpty());
    }

private:
    /// Another program's part: a byte after each transaction.
    [[noreturn]] static void writeAll(const StoreFixture &fixture, const QList<ZELKRawEvent> &events,
                                      int piece, int teller)
    {
        const auto store = fixture.bareStore();
        for (qsizetype done = 0; done < events.size(); done += piece)
            if (!store->cacheEvents(events.mid(done, piece)) || write(teller, "k", 1) != 1)
                break;
        pause(); // until it is killed
        _exit(1);
    }
};

QTEST_GUILESS_MAIN(StoreCacheTest)
#include "tst_cache.moc"
