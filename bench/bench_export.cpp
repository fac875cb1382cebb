// The whole log exported to a file: tab text against forming the same lines in memory, and what each format
// takes of time and memory.
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKFileExport.h"
#include "ZELKLogRepresentation.h"

#include <QDir>
#include <QFile>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

constexpr int entryCount = 1000000;

ZELKLWCLog &millionEntries()
{
    static ZELKBench::Log log;
    ZELKEventGenerator generator;
    while (log.log.count() < entryCount)
        log.log.addExternalEntries(generator.next(10000));
    return log.log;
}

/// What a spreadsheet would be given on the clipboard.
QByteArray linesInMemory(const ZELKLWCLog &log)
{
    QString lines;
    for (int i = 0; i < log.count(); ++i)
        lines += log.objectAtIndex(i)->exportAsTabSeparatedString() + QLatin1Char('\n');
    return lines.toUtf8();
}

/// Bytes that memory grew by at most.
double exportTo(const QString &file, const char *type)
{
    constexpr int slice = 30;
    const double before = ZELKBench::residentBytes();
    double most = before;
    ZELKFileExport work(ZELKLogRepresentation::sourceOfType(millionEntries(), QString::fromLatin1(type)),
                        std::make_unique<ZELKExportFile>(file));
    while (work.advance(slice) < ZELKFileExport::State::Done)
        most = std::max(most, ZELKBench::residentBytes());
    if (work.state() == ZELKFileExport::State::Failed)
        qFatal("%s", qPrintable(work.error()));
    return most - before;
}

void exported(benchmark::State &state, const char *type, bool isCompared)
{
    constexpr double mebibyte = 1024.0 * 1024.0;
    const QString file = QDir(ZELKBench::dataFolder()).filePath(QStringLiteral("exported"));
    const ZELKLWCLog &log = millionEntries();
    double limit = 0.0;
    double exporting = 0.0;
    double growth = 0.0;
    for ([[maybe_unused]] const auto &step : state) {
        const double start = ZELKBench::wallSeconds();
        if (isCompared)
            benchmark::DoNotOptimize(linesInMemory(log));
        const double middle = ZELKBench::wallSeconds();
        QFile::remove(file);
        growth = std::max(growth, exportTo(file, type));
        const double end = ZELKBench::wallSeconds();
        limit += middle - start;
        exporting += end - middle;
        state.SetIterationTime(end - middle);
    }
    if (isCompared) {
        state.counters["ratio"] = exporting / limit;
        state.counters["limit_ms"] = limit / double(state.iterations()) * 1e3;
    }
    state.counters["grown_MiB"] = growth / mebibyte;
    state.counters["file_MiB"] = double(QFile(file).size()) / mebibyte;
    QFile::remove(file);
}
BENCHMARK_CAPTURE(exported, tab_text, ZELKLogRepresentation::tabularText, true)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exported, property_list, ZELKLogRepresentation::propertyList, false)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exported, rich_text, ZELKLogRepresentation::richText, false)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(exported, word_document, ZELKLogRepresentation::wordDocument, false)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
