#include "ServedEvents.h"
#include "ZELKFailingSQLitePort.h"

#include <QSignalSpy>

using Call = ZELKFailingSQLitePort::Call;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

ZELKLWAEvent eventAt(double seconds, const char *name = "event")
{
    return {ZELKDate(seconds), QString::fromUtf8(name), ZELKMonitorLullwatch, ZELKEventNoProperties};
}

/// "date name" of each event from `from` to `to`, read in pages of `page`.
QStringList readAll(ZELKLWAEventStore &store, double from = -infinity, double to = infinity, int page = 2)
{
    const ZELKLWAEventRange range{ZELKLWATimeOf(ZELKDate(from)), ZELKLWATimeOf(ZELKDate(to)),
                                  std::numeric_limits<qint64>::max()};
    store.settle();
    const ServedEvents served(store, range, page);
    QStringList found = served.dates;
    for (qsizetype i = 0; i < found.size(); ++i)
        found[i] += u' ' + served.names[i];
    return served.failed ? found << u"failed"_s : found;
}

} // namespace

class TestStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void readsInOrderOfTimeWhateverTheArrival()
    {
        auto store = makeStore();
        store->record({eventAt(30, "c"), eventAt(10, "a"), eventAt(20, "b1"), eventAt(20, "b2")});
        store->record({eventAt(-1.5, "before"), eventAt(20, "b3")});
        const QStringList all{u"-1.500000 before"_s, u"10.000000 a"_s,  u"20.000000 b1"_s,
                              u"20.000000 b2"_s,     u"20.000000 b3"_s, u"30.000000 c"_s};
        for (int page = 1; page <= 7; ++page)
            QCOMPARE(readAll(*store, -9e9, 9e9, page), all);
        QCOMPARE(readAll(*store, 10, 20), all.mid(1, 4));
        QCOMPARE(readAll(*store, 10.000001, 19.999999), QStringList());
        QCOMPARE(readAll(*store, 20, 10), QStringList());
        QCOMPARE(readAll(*store), all);
        for (int i = 0; i < 300; ++i) { // every microsecond finds itself
            const ZELKDate date(817000000.0 + i * 12345.678901);
            store->record({eventAt(date.timeIntervalSinceReferenceDate(), "e")});
            const double seconds = ZELKDateText(date).toDouble();
            QCOMPARE(readAll(*store, seconds, seconds), QStringList(ZELKDateText(date) + u" e"_s));
        }
    }

    void keepsTheSameReadingOnce()
    {
        makeStore()->record({eventAt(1, "a"), eventAt(1, "a")});
        const auto store = makeStore();
        const QSignalSpy recorded(store.get(), &ZELKLWAEventStore::recorded);
        store->record({eventAt(1, "a")});
        QCOMPARE(recorded.size(), 0);
        ZELKLWAEvent other = eventAt(1, "a");
        other.properties = u"<plist/>"_s;
        store->record({other});
        QCOMPARE(recorded.size(), 1);
        QCOMPARE(readAll(*store), QStringList(2, u"1.000000 a"_s));
        QCOMPARE(store->databaseVersion(), agentVersion());
    }

    void refusesWhatCanNotBeKept()
    {
        auto store = makeStore();
        const ConsoleLines console;
        const QString tooLong(2000000, u'x');
        store->record(
            {eventAt(std::numeric_limits<double>::quiet_NaN()), eventAt(1e300), eventAt(2, "kept")});
        store->record({{ZELKDate(1), tooLong, ZELKMonitorLullwatch, ZELKEventNoProperties}});
        QCOMPARE(readAll(*store), QStringList{u"2.000000 kept"_s});
        QCOMPARE(console.size(), 3);
    }

    void keepsEventsWaitingWhileTheDiskFails_data()
    {
        const Rows<Call, int> row;
        row("full when it commits", Call::Exec, SQLITE_FULL);
        row("full within a row", Call::Step, SQLITE_ERROR);
        row("unreadable", Call::Any, SQLITE_IOERR);
    }
    void keepsEventsWaitingWhileTheDiskFails()
    {
        const auto [call, code] = Rows<Call, int>::fetch();
        auto store = makeStore();
        store->record({eventAt(1, "before")});
        const ConsoleLines console;
        m_port->fail(call, code, 1, 1000000);
        store->record({eventAt(3, "third")});
        store->record({eventAt(2, "second")});
        QCOMPARE(store->waiting(), std::size_t(2));
        QCOMPARE(console.count("They wait in memory until they can."), 1);
        m_port->heal();
        QStringList all{u"1.000000 before"_s, u"2.000000 second"_s, u"3.000000 third"_s};
        QCOMPARE(readAll(*store, -9e9, 9e9, 1), all);
        const QSignalSpy recorded(store.get(), &ZELKLWAEventStore::recorded);
        store->record({eventAt(4, "after")});
        QCOMPARE(recorded.size(), 1);
        QCOMPARE(store->waiting(), std::size_t(0));
        store.reset();
        QCOMPARE(readAll(*makeStore()), all << u"4.000000 after"_s);
    }

    void boundsWhatWaits()
    {
        auto store = makeStore();
        const ConsoleLines console;
        m_port->fail(Call::Exec, SQLITE_FULL, 1, 1000000);
        for (std::size_t i = 0; i < ZELKLWAEventStore::mostWaiting + 5; ++i)
            store->record({eventAt(double(i))});
        QCOMPARE(store->waiting(), ZELKLWAEventStore::mostWaiting);
        QCOMPARE(m_port->connections() + m_port->freedConnections(), std::size_t(0));
        m_port->heal();
        QVERIFY(store->save());
        QCOMPARE(console.size(), 2);
        QVERIFY(console.lines()[1].endsWith(u"again; 5 were lost."_s));
        QCOMPARE(readAll(*store, 0, 6), QStringList({u"5.000000 event"_s, u"6.000000 event"_s}));
    }

    void beginsAnewBesideADamagedFile_data()
    {
        const Rows<bool, qint64, qint64> row;
        row("no database, when it is opened", false, 0, 1000000);
        row("format of another time, when it is opened", false, 44, 4);
        row("broken pages, when it is opened", false, 100, 1000000);
        row("broken pages, while it is open", true, 100, 1000000);
    }
    void beginsAnewBesideADamagedFile()
    {
        const auto [open, from, count] = Rows<bool, qint64, qint64>::fetch();
        makeStore()->record({eventAt(1, "lost")});
        auto store = makeStore();
        if (open)
            QVERIFY(store->database());
        QByteArray damaged = readFile(path());
        std::fill_n(damaged.begin() + from, std::min<qint64>(count, damaged.size() - from), '\xA5');
        writeFile(path(), damaged);

        const ConsoleLines console;
        store->record({eventAt(2, "kept")});
        QCOMPARE(store->waiting(), std::size_t(0));
        QCOMPARE(readAll(*store), QStringList{u"2.000000 kept"_s});
        QCOMPARE(console.count("are damaged"), 1);
        const QDir folder(QFileInfo(path()).path());
        const QStringList aside = folder.entryList({u"events.db.damaged-*Z"_s});
        QCOMPARE(aside.size(), 1);
        QCOMPARE(readFile(folder.filePath(aside.constFirst())), damaged);
    }

    /// A guest leaves the file where it is whatever it is; nobody makes tables beside another program's.
    void leavesWhatIsNotItsOwn_data()
    {
        const Rows<bool, QByteArray> row;
        row("another program's database", false, "CREATE TABLE contacts (name)");
        row("one with tables of the same names", false,
            "CREATE TABLE settings (key, value); CREATE TABLE events (date, properties)");
        row("a guest, and no database", true, "");
    }
    void leavesWhatIsNotItsOwn()
    {
        const auto [isGuest, script] = Rows<bool, QByteArray>::fetch();
        QVERIFY(QDir().mkpath(QFileInfo(path()).path()));
        sqlite3 *other = nullptr;
        if (script.isEmpty())
            writeFile(path(), "Dear diary, no database");
        else if (sqlite3_open(path().toLocal8Bit().constData(), &other) == SQLITE_OK)
            QCOMPARE(sqlite3_exec(other, script.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(other);
        const QByteArray before = readFile(path());
        const ConsoleLines console;
        const auto store =
            makeStore(isGuest ? ZELKLWAEventStore::Keeper::Guest : ZELKLWAEventStore::Keeper::Agent);
        store->record({eventAt(1, "first")});
        QVERIFY(!store->save());
        QCOMPARE(console.count("They wait in memory"), 1);
        QCOMPARE(readFile(path()), before);
        QCOMPARE(QDir(QFileInfo(path()).path()).entryList(QDir::Files).size(), qsizetype(1));
    }

    void waitsForAFolderThatCanNotBeMade()
    {
        const QString inTheWay = m_folder->filePath(u"a"_s);
        writeFile(inTheWay, "a file where a folder should be");
        auto store = makeStore();
        const ConsoleLines console;
        store->record({eventAt(1, "first")});
        store->record({eventAt(2, "second")});
        QCOMPARE(console.size(), 1);
        QVERIFY(QFile::remove(inTheWay));
        QVERIFY(store->save());
        QCOMPARE(readAll(*store), QStringList({u"1.000000 first"_s, u"2.000000 second"_s}));
    }

private:
    QString path() const { return m_folder->filePath(u"a/b/events.db"_s); }
    std::unique_ptr<ZELKLWAEventStore>
    makeStore(ZELKLWAEventStore::Keeper keeper = ZELKLWAEventStore::Keeper::Agent)
    {
        m_port = std::make_shared<ZELKFailingSQLitePort>();
        return std::make_unique<ZELKLWAEventStore>(path(), agentBundle(), m_port, keeper);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::shared_ptr<ZELKFailingSQLitePort> m_port;
};

QTEST_GUILESS_MAIN(TestStore)
#include "tst_store.moc"
