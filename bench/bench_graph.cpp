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

namespace {

constexpr QSizeF size(1200.0, 300.0);
constexpr int rounds = 9;

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

template <typename Step>
double shortest(int count, const Step &step)
{
    double best = 1e9;
    for (int round = 0; round < count; ++round) {
        const double start = ZELKBench::cpuSeconds();
        step();
        best = std::min(best, ZELKBench::cpuSeconds() - start);
    }
    return best;
}

void report(benchmark::State &state, double seconds, double limit, const Graph &graph)
{
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
    const double least = shortest(rounds, [&] { benchmark::DoNotOptimize(small.draw(scale)); });
    report(state, shortest(rounds, [&] { benchmark::DoNotOptimize(large.draw(scale)); }), least, large);
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
    const double plain = shortest(1, [&] { benchmark::DoNotOptimize(graph.drawPlainly(drawing)); });
    report(state, shortest(rounds, [&] { benchmark::DoNotOptimize(graph.draw()); }), plain, graph);
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
