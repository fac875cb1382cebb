#pragma once

#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCStore.h"
#include "ZELKSQLitePort.h"
#include "ZELKUserDefaults.h"

#include <QString>

#include <functional>
#include <memory>

/// What the benchmarks share: caches with generated events, a store without an agent over them, and measures.
namespace ZELKBench {

/// A log with its date range, as the application wires them, showing everything.
struct Log
{
    Log();

    ZELKUserDefaults defaults;
    ZELKLWCDateRangeController dateRange;
    ZELKLWCLog log;
};

/// The system's, with the built main bundle and its tables.
ZELKEnvironment environment();

ZELKLWCStore::World world(const QString &databaseFile);

/// Where generated data are kept: $ZELK_BENCH_DATA, else in the temporary folder.
QString dataFolder();

/// Path of a file in that folder, which `fill` makes when it is not there yet.
QString madeOnce(const QString &name, const std::function<void(const QString &file)> &fill);

/// Path of a cache with that many events, made when it is not there yet.
QString cacheWithEvents(int count);

double cpuSeconds();
double wallSeconds();
double residentBytes();

/// Steps the store's own SELECT over the file and sums the blobs' bytes: what any load has to pay.
std::uint64_t sumOfSelectedBytes(const QString &databaseFile);

} // namespace ZELKBench
