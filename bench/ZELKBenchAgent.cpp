#include "ZELKBenchAgent.h"

#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKEventVocabulary.h"
#include "ZELKLWAEventStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <ctime>

#include <sqlite3.h>
#include <utmpx.h>

namespace {

constexpr qint64 longestWait = 300000; // ms

QString agentFolder()
{
    return ZELKBundle::mainBundlePath(QCoreApplication::applicationDirPath()) +
           QStringLiteral("/agents/org.zelk.lullwatch.agent.app");
}

/// Makes the records of an agent that has been at work for long.
void fill(const QString &file, int count)
{
    ZELKLWAEventStore store(file, std::make_shared<ZELKBundle>(agentFolder()),
                            std::make_shared<ZELKSQLitePort>());
    ZELKEventGenerator generator;
    constexpr int piece = 5000;
    for (int made = 0; made < count; made += piece) {
        std::vector<ZELKLWAEvent> events;
        for (const ZELKRawEvent &raw : generator.next(std::min(piece, count - made)))
            events.push_back({ZELKDate(raw.string(ZELKEventKeyDate).toDouble()),
                              raw.string(ZELKEventKeyDescription), raw.string(ZELKEventKeyMonitor),
                              raw.string(ZELKEventKeyProperties)});
        store.record(events);
    }
    store.settle();
    store.setPreparedStatement({});
    store.setDatabase(nullptr);
}

} // namespace

ZELKBenchAgent::ZELKBenchAgent(int events)
{
    const QString records = ZELKBench::madeOnce(QStringLiteral("agent-%1.db").arg(events),
                                                [events](const QString &file) { fill(file, events); });
    QFile::copy(records, path("agent.db"));
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(agentFolder() + QStringLiteral("/lullwatch-agent"),
                    {QStringLiteral("--database"), path("agent.db"), QStringLiteral("--wtmp"), path("wtmp"),
                     QStringLiteral("--power-supply"), path("none")});
    wait([this] { return settledEvents() > 0; }); // of its start
}

ZELKBenchAgent::~ZELKBenchAgent()
{
    m_process.terminate();
    m_process.waitForFinished();
}

void ZELKBenchAgent::makeEvent()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const bool ends = ++m_made % 2 == 1;
    utmpx record{};
    record.ut_type = ends ? RUN_LVL : BOOT_TIME;
    qstrncpy(record.ut_user, ends ? "shutdown" : "reboot", sizeof record.ut_user);
    record.ut_line[0] = '~';
    record.ut_tv.tv_sec = decltype(record.ut_tv.tv_sec)(now.tv_sec);
    record.ut_tv.tv_usec = decltype(record.ut_tv.tv_usec)(now.tv_nsec / 1000);
    const int before = settledEvents();
    QFile accounting(path("wtmp"));
    accounting.open(QIODevice::WriteOnly | QIODevice::Append);
    accounting.write(reinterpret_cast<const char *>(&record), sizeof record);
    accounting.close();
    wait([&] { return settledEvents() > before; });
}

/// Of this life of the agent.
int ZELKBenchAgent::settledEvents() const
{
    sqlite3 *database = nullptr;
    sqlite3_stmt *statement = nullptr;
    sqlite3_open_v2(QFile::encodeName(path("agent.db")).constData(), &database, SQLITE_OPEN_READWRITE,
                    nullptr);
    sqlite3_prepare_v2(
        database, "SELECT COUNT(*) FROM events WHERE event_time > 700000000000000 AND settled IS NOT NULL",
        -1, &statement, nullptr);
    const int count = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int(statement, 0) : 0;
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return count;
}

void ZELKBenchAgent::wait(const std::function<bool()> &condition)
{
    QElapsedTimer time;
    time.start();
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        if (time.elapsed() > longestWait)
            qFatal("what was waited for did not come");
    }
}
