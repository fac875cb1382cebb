// From the agent's call-back to the new row on the screen: with a log of a million events against one of a
// thousand. The agent is a real one over a real bus, the window the application's own, drawn off screen. Run
// it as: tests/with-private-buses build/bench/bench/bench_callback
#include "ZELKBenchAgent.h"
#include "ZELKBenchData.h"

#include "ZELKApplicationWiring.h"
#include "ZELKLWCMainWindowController.h"

#include <QApplication>
#include <QMainWindow>
#include <QPaintEvent>
#include <QTableView>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

constexpr int rounds = 21;

/// Notes when the table has painted its last row.
class Screen : public QObject
{
public:
    explicit Screen(QTableView &table)
        : m_table(table)
    {
        table.viewport()->installEventFilter(this);
    }

    /// Seconds from now until there is a further row, in sight and painted.
    double secondsToNextRow(const std::function<void()> &callBack)
    {
        m_rows = m_table.model()->rowCount();
        m_painted = 0.0;
        const double start = ZELKBench::wallSeconds();
        callBack();
        ZELKBenchAgent::wait([this] { return m_painted > 0.0; });
        return m_painted - start;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || m_painting)
            return QObject::eventFilter(watched, event);
        m_painting = true;
        QCoreApplication::sendEvent(watched, event);
        m_painting = false;
        const QModelIndex last = m_table.model()->index(m_table.model()->rowCount() - 1, 0);
        const QRect row = m_table.visualRect(last) & m_table.viewport()->rect();
        const bool isNew = m_table.model()->rowCount() > m_rows && !row.isEmpty();
        if (m_painted == 0.0 && isNew && static_cast<QPaintEvent *>(event)->region().intersects(row))
            m_painted = ZELKBench::wallSeconds();
        return true;
    }

private:
    QTableView &m_table;
    int m_rows = 0;
    double m_painted = 0.0;
    bool m_painting = false;
};

/// The application with that many events and everything in sight. The agent does not call it back: the
/// benchmark does, when it has its clock in hand.
struct Application
{
    QTemporaryDir folder;
    ZELKBenchAgent agent;
    ZELKApplicationWiring wiring;
    ZELKLWCMainWindowController window;

    explicit Application(int events)
        : agent(events)
        , wiring(settings(folder), world(settings(folder)))
        , window(wiring)
    {
        window.showWindow();
        wiring.applicationDidFinishLaunching();
        ZELKBenchAgent::wait(
            [&] { return !wiring.store().isFetching() && wiring.log().count() > events / 2; });
        wiring.dateRange().setSelectionTag(8);
    }
    ~Application() { wiring.applicationWillTerminate(); }

    static ZELKApplicationSettings settings(const QTemporaryDir &folder)
    {
        return {ZELKEnvironment::current().mainBundle, {}, folder.filePath(QStringLiteral("cache"))};
    }
    static ZELKApplicationWiring::World world(const ZELKApplicationSettings &settings)
    {
        auto world = ZELKApplicationWiring::World::real(settings);
        world.servesBus = false;
        return world;
    }
};

struct Times
{
    double median = 0.0;
    int rows = 0;
};

Times measure(int events)
{
    Application application(events);
    auto *table = application.window.window()->findChild<QTableView *>(QStringLiteral("table"));
    Screen screen(*table);
    std::vector<double> seconds;
    for (int round = 0; round < rounds; ++round) {
        application.agent.makeEvent();
        seconds.push_back(screen.secondsToNextRow([&] { application.wiring.store().eventsDidChange(); }));
    }
    std::nth_element(seconds.begin(), seconds.begin() + rounds / 2, seconds.end());
    return {seconds[rounds / 2], table->model()->rowCount()};
}

void callBack(benchmark::State &state)
{
    for ([[maybe_unused]] const auto &step : state) {
        const Times few = measure(1000);
        const Times many = measure(1000000);
        state.SetIterationTime(many.median);
        state.counters["ratio"] = many.median / few.median;
        state.counters["ms_few"] = few.median * 1000.0;
        state.counters["rows_few"] = few.rows;
        state.counters["rows_many"] = many.rows;
    }
}
BENCHMARK(callBack)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const ZELKEnvironmentScope scope(ZELKBench::environment());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
