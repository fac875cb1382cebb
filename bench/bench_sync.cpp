// The first synchronisation: a million events from a real agent over a real bus into a new cache and a new
// log. Shows whether they arrive whole and in order, how long the interface was kept waiting at a time, and
// what either program held beyond what it keeps. Run it as: tests/with-private-buses
// build/bench/bench/bench_sync
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKAgentController.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWAEventStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <fstream>

namespace {

constexpr int eventCount = 1000000;

QString agentFolder()
{
    return ZELKBundle::mainBundlePath(QCoreApplication::applicationDirPath()) +
           QStringLiteral("/agents/org.zelk.lullwatch.agent.app");
}

/// The records of an agent that has been at work for long; made once.
QString agentRecords()
{
    const QString file =
        QFileInfo(ZELKBench::cacheWithEvents(1000)).dir().filePath(QStringLiteral("agent.db"));
    if (QFileInfo::exists(file))
        return file;
    ZELKLWAEventStore store(file + QStringLiteral(".partial"), std::make_shared<ZELKBundle>(agentFolder()),
                            std::make_shared<ZELKSQLitePort>());
    ZELKEventGenerator generator;
    for (int made = 0; made < eventCount; made += 5000) {
        std::vector<ZELKLWAEvent> events;
        for (int i = 0; i < 5000; ++i) {
            const ZELKRawEvent raw = generator.next();
            events.push_back({ZELKDate(raw.string(ZELKEventKeyDate).toDouble()),
                              raw.string(ZELKEventKeyDescription), raw.string(ZELKEventKeyMonitor),
                              raw.string(ZELKEventKeyProperties)});
        }
        store.record(events);
    }
    store.setPreparedStatement({});
    store.setDatabase(nullptr);
    QFile::rename(file + QStringLiteral(".partial"), file);
    return file;
}

/// A line of /proc/PID/status in bytes.
double statusBytes(qint64 pid, const std::string &name)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string key;
    double kilobytes = 0.0;
    while (status >> key) {
        if (key == name) {
            status >> kilobytes;
            return kilobytes * 1024.0;
        }
    }
    return 0.0;
}

/// Spins the event loop until the fetch has ended; the longest time between two of its turns, and the largest
/// memory.
struct Watch
{
    double longestTurn = 0.0;
    double mostResident = 0.0;
    bool complete = false;

    void run(ZELKLWCStore &store)
    {
        QEventLoop loop;
        QTimer turns;
        QElapsedTimer turn;
        QObject::connect(&store, &ZELKLWCStore::fetchFinished, &loop, [&](bool whole) {
            complete = whole;
            loop.quit();
        });
        QObject::connect(&turns, &QTimer::timeout, [&] {
            longestTurn = std::max(longestTurn, double(turn.restart()) / 1000.0);
            mostResident = std::max(mostResident, ZELKBench::residentBytes());
        });
        turn.start();
        turns.start(0);
        store.sync();
        if (store.isFetching())
            loop.exec();
    }
};

void synchronise(benchmark::State &state)
{
    const QString records = agentRecords();
    const QTemporaryDir folder;
    QProcess agent;
    agent.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    agent.start(agentFolder() + QStringLiteral("/lullwatch-agent"),
                {QStringLiteral("--database"), records, QStringLiteral("--wtmp"),
                 folder.filePath(QStringLiteral("none")), QStringLiteral("--power-supply"), folder.path()});
    ZELKAgentController controller(
        ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), QDBusConnection::sessionBus()));
    while (controller.state() != ZELKAgentController::SessionApplication &&
           agent.state() != QProcess::NotRunning) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        controller.updateState();
    }
    for ([[maybe_unused]] const auto &step : state) {
        ZELKBench::Log log;
        ZELKLWCStore::World world =
            ZELKBench::world(folder.filePath(QStringLiteral("first.lullwatch-events")));
        world.bus = QDBusConnection::sessionBus();
        ZELKLWCStore store(world);
        store.setLogController(&log.log);
        store.setAgentController(&controller);
        const double agentBefore = statusBytes(agent.processId(), "VmRSS:");
        const double before = ZELKBench::residentBytes();
        const double start = ZELKBench::wallSeconds();
        Watch watch;
        watch.run(store);
        state.SetIterationTime(ZELKBench::wallSeconds() - start);
        bool ascending = true;
        for (int i = 1; i < log.log.count(); ++i)
            ascending = ascending && log.log.objectAtIndex(i - 1)->date() <= log.log.objectAtIndex(i)->date();
        state.counters["complete"] = watch.complete;
        state.counters["ascending"] = ascending;
        state.counters["entries"] = log.log.count();
        state.counters["longest_turn_ms"] = watch.longestTurn * 1000.0;
        state.counters["client_peak_MiB"] = (watch.mostResident - before) / 1048576.0;
        state.counters["client_kept_MiB"] = (ZELKBench::residentBytes() - before) / 1048576.0;
        state.counters["agent_peak_MiB"] =
            (statusBytes(agent.processId(), "VmHWM:") - agentBefore) / 1048576.0;
        store.applicationWillTerminate();
    }
    agent.terminate();
    agent.waitForFinished();
}
BENCHMARK(synchronise)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const ZELKEnvironmentScope scope(ZELKBench::environment());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
