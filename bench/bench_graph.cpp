// Full drawings of the timeline graph, a thousand entries and a million events, and against one without
// haste.
#include "PlainPicture.h"
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKDisplayListBuilder.h"
#include "ZELKGraphDrawing.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr QSizeF size(1200.0, 300.0);

/// A log of so many events that shows all of them.
struct Graph
{
    explicit Graph(int events)
    {
        ZELKEventGenerator generator;
        for (int left = events; left > 0; left -= 10'000)
            bench.log.addExternalEntries(generator.next(std::min(left, 10'000)));
    }
    ZELKGraphDrawing draw(double scale = 1.0) const
    {
        return {{&bench.log, &bench.dateRange, true, true, {}, {}}, size, scale};
    }
    /// Every block and every point.
    QImage drawPlainly(const ZELKGraphDrawing &like) const
    {
        auto list = ZELKLWCEntriesViewDisplayList::displayList();
        ZELKDisplayListBuilder(list, like.chartScale(), bench.log).prepareDisplayList();
        QImage image(like.image().size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        PlainPicture::paint(image, {size.height(), like.scaleFactor()}, list, like.layout().chartRect);
        return image;
    }

    ZELKBench::Log bench;
};

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The usual seconds of a step and of another, taken in turns: a machine that is at times twice as quick as
/// at others is so for both.
template <typename Step, typename Limit>
std::pair<double, double> inTurns(int rounds, int stepsARound, const Step &step, const Limit &limit)
{
    const auto secondsOf = [](const auto &work) {
        const double start = ZELKBench::cpuSeconds();
        work();
        return ZELKBench::cpuSeconds() - start;
    };
    std::vector<double> steps;
    std::vector<double> limits;
    for (int round = 0; round < rounds; ++round) {
        limits.push_back(secondsOf(limit));
        for (int i = 0; i < stepsARound; ++i)
            steps.push_back(secondsOf(step));
    }
    return {median(steps), median(limits)};
}

void report(benchmark::State &state, std::pair<double, double> found, const Graph &graph)
{
    const auto [seconds, limit] = found;
    for ([[maybe_unused]] const auto &step : state)
        state.SetIterationTime(seconds);
    state.counters["ratio"] = seconds / limit;
    state.counters["limit_ms"] = limit * 1e3;
    state.counters["visible"] = double(graph.bench.log.countOfVisibleEntries());
}

/// A million events against a thousand.
void large_against_small(benchmark::State &state, double scale)
{
    const Graph small(1'000);
    const Graph large(1'000'000);
    report(state,
           inTurns(
               15, 1, [&] { benchmark::DoNotOptimize(large.draw(scale)); },
               [&] { benchmark::DoNotOptimize(small.draw(scale)); }),
           large);
}
BENCHMARK_CAPTURE(large_against_small, one_pixel_a_point, 1.0)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(large_against_small, two_pixels_a_point, 2.0)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

/// Against every point and every block.
void against_plain(benchmark::State &state)
{
    const Graph graph(100'000);
    const ZELKGraphDrawing drawing = graph.draw();
    report(state,
           inTurns(
               3, 15, [&] { benchmark::DoNotOptimize(graph.draw()); },
               [&] { benchmark::DoNotOptimize(graph.drawPlainly(drawing)); }),
           graph);
}
BENCHMARK(against_plain)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const ZELKEnvironmentScope scope(ZELKBench::environment());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
