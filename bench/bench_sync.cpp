// The first synchronisation: a million events from a real agent over a real bus into a new cache and a new
// log. Shows whether they arrive whole and in order, how long the interface was kept waiting at a time, and
// what either program held beyond what it keeps. Run it as: tests/with-private-buses
// build/bench/bench/bench_sync
#include "ZELKBenchAgent.h"
#include "ZELKBenchData.h"

#include "ZELKAgentController.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <fstream>

namespace {

constexpr int eventCount = 1000000;

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
    const QTemporaryDir folder;
    ZELKBenchAgent agent(eventCount);
    ZELKAgentController controller(
        ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), QDBusConnection::sessionBus()));
    controller.updateState();
    for ([[maybe_unused]] const auto &step : state) {
        ZELKBench::Log log;
        ZELKLWCStore::World world =
            ZELKBench::world(folder.filePath(QStringLiteral("first.lullwatch-events")));
        world.bus = QDBusConnection::sessionBus();
        ZELKLWCStore store(world);
        store.setLogController(&log.log);
        store.setAgentController(&controller);
        const double agentBefore = statusBytes(agent.processIdentifier(), "VmRSS:");
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
            (statusBytes(agent.processIdentifier(), "VmHWM:") - agentBefore) / 1048576.0;
        store.applicationWillTerminate();
    }
}
BENCHMARK(synchronise)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
