#include "ZELKDamagedDatabase.h"

#include "ZELKCalendar.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKSQLitePort.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

// SQLite's primary result codes.
constexpr int sqliteRow = 100;
constexpr int sqliteCorrupt = 11;
constexpr int sqliteNotADatabase = 26;
constexpr int sqliteError = 1; // of a statement without a fault: the header names a format that there is not

// With its closing NUL.
constexpr std::array sqliteHeader = std::to_array("SQLite format 3");

/// Journals that wait there for their file are no hindrance: an earlier attempt was cut short.
bool isTaken(const QString &path, const QString &aside)
{
    const QStringList all = ZELKDamagedDatabase::suffixes();
    return std::any_of(all.begin(), all.end(), [&](const QString &part) {
        return QFileInfo::exists(aside + part) && QFileInfo::exists(path + part);
    });
}

bool renameAll(const QString &path, const QString &aside)
{
    QStringList renamed;
    for (const QString &part : ZELKDamagedDatabase::suffixes()) {
        if (!part.isEmpty() && !QFileInfo::exists(path + part))
            continue;
        if (!QFile::rename(path + part, aside + part)) {
            for (const QString &back : renamed)
                QFile::rename(aside + back, path + back);
            return false;
        }
        renamed.append(part);
    }
    return true;
}

} // namespace

/// Without its journals a database is what it was some time ago, and is met again; a journal without its file
/// would be deleted, or played into the file that follows. So journals go first.
QStringList ZELKDamagedDatabase::suffixes()
{
    return {QStringLiteral("-wal"), QStringLiteral("-journal"), QStringLiteral("-shm"), QString()};
}

bool ZELKDamagedDatabase::isToldBy(int code)
{
    return code == sqliteCorrupt || code == sqliteNotADatabase;
}

bool ZELKDamagedDatabase::wasCache(const QString &path)
{
    if (path.endsWith(QLatin1String(".lullwatch-events")))
        return true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray begin = file.read(qint64(sqliteHeader.size()));
    return begin == QByteArrayView(sqliteHeader) || begin.count('\0') == begin.size();
}

bool ZELKDamagedDatabase::isDamaged(ZELKSQLitePort &port, const QString &path)
{
    sqlite3 *probe = nullptr;
    int code = port.open(QFile::encodeName(path).constData(), &probe);
    if (code == 0) {
        char *error = nullptr;
        code = port.exec(probe, "SELECT count(*) FROM sqlite_schema", &error);
        port.free(error);
    }
    port.close(probe);
    return isToldBy(code) || code == sqliteError;
}

bool ZELKDamagedDatabase::isOthers(ZELKSQLitePort &port, const QString &path)
{
    sqlite3 *probe = nullptr;
    sqlite3_stmt *statement = nullptr;
    bool others = false;
    // A cache whose making was cut short may have its settings and nothing else yet.
    if (port.open(QFile::encodeName(path).constData(), &probe) == 0 &&
        port.prepare(probe,
                     "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name <> 'settings' "
                     "AND NOT EXISTS (SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'events' "
                     "AND sql LIKE '%date%properties%')",
                     &statement) == 0)
        others = port.step(statement) == sqliteRow;
    if (statement)
        port.finalize(statement);
    port.close(probe);
    return others;
}

void ZELKDamagedDatabase::setAside(const QString &path)
{
    const QString day =
        ZELKCalendar::format(ZELKEnvironment::current().clock->now(), QStringLiteral("%Y-%m-%d"));
    QString aside;
    for (int number = 1; aside.isEmpty() || isTaken(path, aside); ++number)
        aside = ZELKFormat("%@.damaged-%@-%d", {path, day, number});
    if (!renameAll(path, aside)) {
        ZELKConsole::log(ZELKFormat("%@ is damaged and could not be set aside.", {path}));
        return;
    }
    ZELKConsole::log(
        ZELKFormat("%@ is damaged. It was set aside as %@, and a new one was begun.", {path, aside}));
}
