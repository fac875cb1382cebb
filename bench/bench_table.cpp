// The table over a log of a million entries, each step against the least that it could cost.
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKLWCRelativeDateFormatter.h"
#include "ZELKNotificationQueue.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <set>

namespace {

constexpr int million = 1'000'000;
constexpr int rounds = 15;

/// A table as the window has it, of at least that many entries, with all summaries composed.
struct Table
{
    explicit Table(int entries)
    {
        ZELKEventGenerator generator;
        while (log.log.count() < entries)
            log.log.addExternalEntries(generator.next(std::max(100, (entries - log.log.count()) / 4)));
        controller.awakeFromNib();
        view.resize(1200, 800);
        view.setColumnWidth(0, view.fontMetrics().horizontalAdvance(widestDate()));
        view.show();
        QCoreApplication::processEvents();
        for (int i = 0; i < log.log.count(); ++i)
            log.log.objectAtIndex(i)->summaryId();
    }
    /// Wide enough for all dates, as in the window.
    static QString widestDate() { return QStringLiteral("00/00/0000, 00:00:00 AM  "); }
    void paint()
    {
        QImage page(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
        view.viewport()->render(&page);
    }
    /// Columns of another width: no line on any page is one that was laid out before.
    void forgetLines() { view.setColumnWidth(0, view.columnWidth(0) + 1); }

    ZELKBench::Log log;
    QLineEdit field;
    ZELKLWCLogTableView view;
    ZELKLWCRelativeDateFormatter dates{log.defaults};
    ZELKLWCLogEntryFormatter summaries;
    ZELKNotificationQueue queue;
    ZELKLWCLogTableController controller{{log.log, view, field, dates, summaries, log.defaults, queue}};
};

/// Made when it is first asked for, gone before the application is.
std::unique_ptr<Table> largeTable;

Table &large()
{
    if (!largeTable)
        largeTable = std::make_unique<Table>(million);
    return *largeTable;
}

/// The shortest of some runs, in seconds; `prepare` comes before each and does not count.
template <typename Step, typename Prepare = void (*)()>
double shortest(
    const Step &step, const Prepare &prepare = [] {})
{
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        const double start = ZELKBench::cpuSeconds();
        step();
        best = std::min(best, ZELKBench::cpuSeconds() - start);
    }
    return best;
}

void report(benchmark::State &state, double seconds, double limit)
{
    for ([[maybe_unused]] const auto &step : state)
        state.SetIterationTime(seconds);
    state.counters["ratio"] = seconds / limit;
    state.counters["limit_ms"] = limit * 1e3;
    state.counters["bytes_a_row"] = double(large().controller.model().arrangement().bytes()) / million;
}

/// Filter text typed to rows painted, of which none was painted before; against a search through each
/// different summary.
void filter(benchmark::State &state, const QString &text)
{
    Table &table = large();
    std::set<QString> all;
    for (int i = 0; i < table.log.log.count(); ++i)
        all.insert(table.log.log.objectAtIndex(i)->summary());
    const std::vector<QString> different(all.begin(), all.end());
    const double plain = shortest([&] {
        benchmark::DoNotOptimize(
            std::count_if(different.begin(), different.end(),
                          [&](const QString &summary) { return summary.contains(text); }));
    });
    const auto clear = [&] { table.field.clear(); };
    const auto type = [&] { table.field.setText(text); };
    const auto typeAndPaint = [&] {
        type();
        table.paint();
    };
    const auto forget = [&] {
        clear();
        table.forgetLines();
    };
    report(state, shortest(typeAndPaint, forget), plain);
    state.counters["painted_again_ms"] = shortest(typeAndPaint, clear) * 1e3;
    state.counters["arranged_ms"] = shortest(type, clear) * 1e3;
    state.counters["different"] = double(different.size());
    state.counters["rows"] = table.controller.model().rowCount();
    clear();
}
BENCHMARK_CAPTURE(filter, many_rows, QStringLiteral("atter"))
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(filter, few_rows, QStringLiteral("down after 10 minutes"))
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

std::vector<std::uint32_t> indexes()
{
    std::vector<std::uint32_t> all(large().log.log.count());
    std::iota(all.begin(), all.end(), 0U);
    return all;
}

/// Against turning a vector of indexes round.
void sort_by_date(benchmark::State &state)
{
    Table &table = large();
    std::vector<std::uint32_t> all = indexes();
    const double reversed = shortest([&] {
        std::reverse(all.begin(), all.end());
        benchmark::ClobberMemory();
    });
    bool ascending = true;
    const double sorted = shortest([&] {
        ascending = !ascending;
        table.controller.model().setSortDescriptors({{ZELKEntryArrangement::dateKey, ascending}});
    });
    report(state, sorted, reversed);
    table.controller.model().setSortDescriptors({});
}
BENCHMARK(sort_by_date)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Against one stable sort of indexes by the rank of each one's summary, known beforehand.
void sort_by_summary(benchmark::State &state)
{
    Table &table = large();
    const std::vector<std::uint32_t> all = indexes();
    std::vector<std::uint32_t> rank(all.size());
    for (const std::uint32_t index : all)
        rank[index] = table.log.log.objectAtIndex(int(index))->summaryId();
    std::vector<std::uint32_t> copy;
    const double stable = shortest([&] {
        copy = all;
        std::stable_sort(copy.begin(), copy.end(), [&](auto a, auto b) { return rank[a] < rank[b]; });
    });
    bool ascending = false;
    const double sorted = shortest([&] {
        ascending = !ascending;
        table.controller.model().setSortDescriptors({{ZELKEntryArrangement::summaryKey, ascending}});
    });
    report(state, sorted, stable);
    table.controller.model().setSortDescriptors({});
}
BENCHMARK(sort_by_summary)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

double secondsToPaint(Table &table)
{
    int place = 0;
    const auto scrollOn = [&] {
        QScrollBar *bar = table.view.verticalScrollBar();
        place = (place + 7919) % std::max(1, bar->maximum());
        bar->setValue(place);
        table.paint();
    };
    return shortest(scrollOn, [&] { table.forgetLines(); });
}

/// Scrolling to a page and painting it, against the same in a table of a thousand rows.
void scroll(benchmark::State &state)
{
    Table small(1000);
    const double least = secondsToPaint(small);
    report(state, secondsToPaint(large()), least);
}
BENCHMARK(scroll)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const ZELKEnvironmentScope scope(ZELKBench::environment());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    largeTable.reset();
}
