#include "AgentFixture.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKLWAEventStore.h"

#include <QSignalSpy>

#include <limits>

using Call = ZELKFailingSQLitePort::Call;
using Reading = ZELKLWAEventStore::Reading;

namespace {

ZELKLWAEvent eventAt(double seconds, const char *name = "event")
{
    return {ZELKDate(seconds), QString::fromUtf8(name), ZELKMonitorLullwatch, ZELKEventNoProperties};
}

/// "date name" of each event from `from` to `to`, read in pages of `page`.
QStringList readAll(ZELKLWAEventStore &store, double from = -9e9, double to = 9e9, int page = 2)
{
    QStringList found;
    ZELKLWAEventPosition at{ZELKLWAEventStore::timeOf(ZELKDate(from)), std::numeric_limits<qint64>::min()};
    Reading reading = Reading::Stopped;
    while (reading == Reading::Stopped)
        reading = store.eventsAfter(
            at, ZELKLWAEventStore::timeOf(ZELKDate(to)), page,
            [&](ZELKLWAEventPosition position, const ZELKRawEventView &event) {
                at = position;
                found.append(
                    QString::fromUtf8(event.date.data(), qsizetype(event.date.size())) + QLatin1Char(' ') +
                    QString::fromUtf8(event.description.data(), qsizetype(event.description.size())));
                return true;
            });
    if (reading == Reading::Failed)
        found.append(QStringLiteral("failed"));
    return found;
}

QStringList texts(std::initializer_list<const char *> all)
{
    QStringList result;
    for (const char *text : all)
        result.append(QString::fromUtf8(text));
    return result;
}

} // namespace

class TestStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void readsInOrderOfTimeWhateverTheArrival();
    void keepsMicroseconds();
    void keepsTheSameReadingOnce();
    void refusesWhatCanNotBeKept();
    void keepsEventsWaitingWhileTheDiskFails_data();
    void keepsEventsWaitingWhileTheDiskFails();
    void boundsWhatWaits();
    void beginsAnewBesideADamagedFile_data();
    void beginsAnewBesideADamagedFile();
    void waitsForAFolderThatCanNotBeMade();
    void keepsNoConnectionOfAFailedOpening();

private:
    QString path() const { return m_folder->filePath(QStringLiteral("a/b/events.db")); }
    std::unique_ptr<ZELKLWAEventStore> makeStore()
    {
        m_port = std::make_shared<ZELKFailingSQLitePort>();
        return std::make_unique<ZELKLWAEventStore>(path(), agentBundle(), m_port);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::shared_ptr<ZELKFailingSQLitePort> m_port;
};

void TestStore::readsInOrderOfTimeWhateverTheArrival()
{
    auto store = makeStore();
    store->record({eventAt(30, "c"), eventAt(10, "a"), eventAt(20, "b1"), eventAt(20, "b2")});
    store->record({eventAt(-1.5, "before"), eventAt(20, "b3")});
    const QStringList all = texts(
        {"-1.500000 before", "10.000000 a", "20.000000 b1", "20.000000 b2", "20.000000 b3", "30.000000 c"});
    for (int page = 1; page <= 7; ++page)
        QCOMPARE(readAll(*store, -9e9, 9e9, page), all);
    QCOMPARE(readAll(*store, 10, 20), all.mid(1, 4));
    QCOMPARE(readAll(*store, 10.000001, 19.999999), QStringList());
    QCOMPARE(readAll(*store, 20, 10), QStringList());
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QCOMPARE(readAll(*store, -infinity, infinity), all);
}

void TestStore::keepsMicroseconds()
{
    auto store = makeStore();
    std::vector<ZELKLWAEvent> events;
    for (int i = 0; i < 2000; ++i)
        events.push_back(eventAt(817000000.0 + i * 12345.678901, "e"));
    store->record(events);
    for (const ZELKLWAEvent &event : events) {
        const double seconds = ZELKDateText(event.date).toDouble();
        QCOMPARE(readAll(*store, seconds, seconds),
                 QStringList(ZELKDateText(event.date) + QLatin1String(" e")));
    }
}

void TestStore::keepsTheSameReadingOnce()
{
    auto store = makeStore();
    QSignalSpy recorded(store.get(), &ZELKLWAEventStore::recorded);
    store->record({eventAt(1, "a"), eventAt(1, "a")});
    store.reset();
    store = makeStore();
    QSignalSpy again(store.get(), &ZELKLWAEventStore::recorded);
    store->record({eventAt(1, "a")});
    QCOMPARE(again.size(), 0);
    ZELKLWAEvent other = eventAt(1, "a");
    other.properties = QStringLiteral("<plist/>");
    store->record({other});
    QCOMPARE(again.size(), 1);
    QCOMPARE(readAll(*store), texts({"1.000000 a", "1.000000 a"}));
    QCOMPARE(store->databaseVersion(),
             agentBundle()->infoDictionary().string(QStringLiteral("CFBundleVersion")));
}

void TestStore::refusesWhatCanNotBeKept()
{
    auto store = makeStore();
    ConsoleLines console;
    store->record({eventAt(std::numeric_limits<double>::quiet_NaN()), eventAt(1e300), eventAt(2, "kept")});
    store->record(
        {{ZELKDate(1), QString(2000000, QLatin1Char('x')), ZELKMonitorLullwatch, ZELKEventNoProperties}});
    QCOMPARE(readAll(*store), texts({"2.000000 kept"}));
    QCOMPARE(console.lines().size(), 3);
}

void TestStore::keepsEventsWaitingWhileTheDiskFails_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("code");
    QTest::newRow("full when it commits") << Call::Exec << SQLITE_FULL;
    QTest::newRow("full within a row") << Call::Step << SQLITE_ERROR;
    QTest::newRow("unreadable") << Call::Any << SQLITE_IOERR;
}

void TestStore::keepsEventsWaitingWhileTheDiskFails()
{
    QFETCH(Call, call);
    QFETCH(int, code);
    auto store = makeStore();
    store->record({eventAt(1, "before")});
    ConsoleLines console;
    m_port->fail(call, code, 1, 1000000);
    store->record({eventAt(3, "third")});
    store->record({eventAt(2, "second")});
    QCOMPARE(store->waiting(), std::size_t(2));
    QCOMPARE(console.lines().filter(QStringLiteral("They wait in memory until they can.")).size(), 1);
    m_port->heal();
    QCOMPARE(readAll(*store, -9e9, 9e9, 1), texts({"1.000000 before", "2.000000 second", "3.000000 third"}));
    QSignalSpy recorded(store.get(), &ZELKLWAEventStore::recorded);
    store->record({eventAt(4, "after")});
    QCOMPARE(recorded.size(), 1);
    QCOMPARE(store->waiting(), std::size_t(0));
    store.reset();
    QCOMPARE(readAll(*makeStore()),
             texts({"1.000000 before", "2.000000 second", "3.000000 third", "4.000000 after"}));
}

void TestStore::boundsWhatWaits()
{
    auto store = makeStore();
    ConsoleLines console;
    m_port->fail(Call::Open, SQLITE_CANTOPEN, 1, 1000000);
    for (std::size_t i = 0; i < ZELKLWAEventStore::mostWaiting + 5; ++i)
        store->record({eventAt(double(i))});
    QCOMPARE(store->waiting(), ZELKLWAEventStore::mostWaiting);
    m_port->heal();
    QVERIFY(store->save());
    QCOMPARE(console.lines().size(), 2);
    QVERIFY(console.lines().at(1).endsWith(QStringLiteral("again; 5 were lost.")));
    QCOMPARE(readAll(*store, 0, 6), texts({"5.000000 event", "6.000000 event"}));
}

void TestStore::beginsAnewBesideADamagedFile_data()
{
    QTest::addColumn<bool>("open");
    QTest::addColumn<qint64>("from");
    QTest::newRow("no database, when it is opened") << false << qint64(0);
    QTest::newRow("broken pages, when it is opened") << false << qint64(100);
    QTest::newRow("broken pages, while it is open") << true << qint64(100);
}

void TestStore::beginsAnewBesideADamagedFile()
{
    QFETCH(bool, open);
    QFETCH(qint64, from);
    makeStore()->record({eventAt(1, "lost")});
    auto store = makeStore();
    if (open)
        QVERIFY(store->database());
    const QByteArray before = readFile(path());
    const QByteArray damaged = before.left(from) + QByteArray(before.size() - from, '\xA5');
    writeFile(path(), damaged);

    ConsoleLines console;
    store->record({eventAt(2, "kept")});
    QCOMPARE(store->waiting(), std::size_t(0));
    QCOMPARE(readAll(*store), texts({"2.000000 kept"}));
    QCOMPARE(console.lines().filter(QStringLiteral("are damaged")).size(), 1);
    const QDir folder(QFileInfo(path()).path());
    const QStringList aside = folder.entryList({QStringLiteral("events.db.damaged-*Z")});
    QCOMPARE(aside.size(), 1);
    QCOMPARE(readFile(folder.filePath(aside.constFirst())), damaged);
}

void TestStore::waitsForAFolderThatCanNotBeMade()
{
    const QString inTheWay = m_folder->filePath(QStringLiteral("a"));
    writeFile(inTheWay, "a file where a folder should be");
    auto store = makeStore();
    ConsoleLines console;
    store->record({eventAt(1, "first")});
    store->record({eventAt(2, "second")});
    QCOMPARE(console.lines().size(), 1);
    QVERIFY(QFile::remove(inTheWay));
    QVERIFY(store->save());
    QCOMPARE(readAll(*store), texts({"1.000000 first", "2.000000 second"}));
}

void TestStore::keepsNoConnectionOfAFailedOpening()
{
    auto store = makeStore();
    ConsoleLines console;
    m_port->fail(Call::Exec, SQLITE_FULL, 1, 1000000);
    for (int i = 0; i < 5; ++i)
        store->record({eventAt(i)});
    QCOMPARE(m_port->connections(), std::size_t(0));
    QCOMPARE(m_port->freedConnections(), std::size_t(0));
}

QTEST_GUILESS_MAIN(TestStore)
#include "tst_store.moc"
