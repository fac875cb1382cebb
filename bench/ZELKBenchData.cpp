#include "ZELKBenchData.h"

#include "ZELKEventGenerator.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fstream>

#include <sqlite3.h>
#include <unistd.h>

namespace {

double seconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

/// A store that writes and keeps what it wrote when it goes.
void fill(const QString &file, int count)
{
    ZELKLWCStore store(ZELKBench::world(file));
    ZELKEventGenerator generator;
    constexpr int piece = 10000;
    for (int made = 0; made < count; made += piece)
        store.cacheEvents(generator.next(std::min(piece, count - made)));
    store.applicationWillTerminate();
}

} // namespace

ZELKBench::Log::Log()
    : defaults(QDir(ZELKBench::dataFolder()).filePath(QStringLiteral("defaults.ini")))
    , dateRange(defaults)
{
    dateRange.awakeFromNib();
    dateRange.setSelectionTag(8);
    log.setDateRange(&dateRange);
    log.awakeFromNib();
}

QString ZELKBench::dataFolder()
{
    const QString chosen = qEnvironmentVariable("ZELK_BENCH_DATA");
    const QString folder =
        chosen.isEmpty() ? QDir::temp().filePath(QStringLiteral("lullwatch-bench")) : chosen;
    QDir().mkpath(folder);
    return folder;
}

ZELKEnvironment ZELKBench::environment()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.mainBundle =
        std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath(QCoreApplication::applicationDirPath()));
    return environment;
}

ZELKLWCStore::World ZELKBench::world(const QString &databaseFile)
{
    return {ZELKEnvironment::current().mainBundle, std::make_shared<ZELKSQLitePort>(),
            QDBusConnection(QStringLiteral("none")), databaseFile};
}

QString ZELKBench::madeOnce(const QString &name, const std::function<void(const QString &file)> &fill)
{
    const QString file = QDir(dataFolder()).filePath(name);
    if (!QFileInfo::exists(file)) {
        const QString partial = file + QStringLiteral(".partial");
        QFile::remove(partial);
        fill(partial);
        QFile::rename(partial, file);
    }
    return file;
}

QString ZELKBench::cacheWithEvents(int count)
{
    return madeOnce(QStringLiteral("events-%1.lullwatch-events").arg(count),
                    [count](const QString &file) { fill(file, count); });
}

double ZELKBench::cpuSeconds()
{
    return seconds(CLOCK_PROCESS_CPUTIME_ID);
}

double ZELKBench::wallSeconds()
{
    return seconds(CLOCK_MONOTONIC);
}

double ZELKBench::residentBytes()
{
    std::ifstream statm("/proc/self/statm");
    double total = 0.0;
    double resident = 0.0;
    statm >> total >> resident;
    return resident * double(sysconf(_SC_PAGESIZE));
}

std::uint64_t ZELKBench::sumOfSelectedBytes(const QString &databaseFile)
{
    sqlite3 *database = nullptr;
    sqlite3_stmt *statement = nullptr;
    sqlite3_open(QFile::encodeName(databaseFile).constData(), &database);
    const QByteArray sql =
        world({})
            .bundle->objectForInfoDictionaryKey(QStringLiteral("ZELKLWCStoreSQLCacheSelect"))
            .toString()
            .toUtf8();
    sqlite3_prepare_v2(database, sql.constData(), -1, &statement, nullptr);
    sqlite3_bind_text(statement, 1, "0.000000", -1, SQLITE_STATIC);
    sqlite3_bind_text(statement, 2, "63113904000.000000", -1, SQLITE_STATIC);
    std::uint64_t sum = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement, 0));
        const auto size = std::size_t(sqlite3_column_bytes(statement, 0));
        for (std::size_t i = 0; i + 8 <= size; i += 8) {
            std::uint64_t eight = 0;
            std::memcpy(&eight, bytes + i, sizeof eight);
            sum += eight;
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return sum;
}
