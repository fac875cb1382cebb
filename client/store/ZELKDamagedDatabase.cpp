#include "ZELKDamagedDatabase.h"

#include "ZELKCalendar.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKSQLitePort.h"

#include <QFile>
#include <QFileInfo>

#include <array>

namespace {

// SQLite's primary result codes.
constexpr int sqliteCorrupt = 11;
constexpr int sqliteNotADatabase = 26;
constexpr int sqliteError = 1; // of a statement without a fault: the header names a format that there is not

// With its closing NUL.
constexpr std::array sqliteHeader = std::to_array("SQLite format 3");

} // namespace

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

void ZELKDamagedDatabase::setAside(const QString &path)
{
    const QString day =
        ZELKCalendar::format(ZELKEnvironment::current().clock->now(), QStringLiteral("%Y-%m-%d"));
    QString aside;
    for (int number = 1; aside.isEmpty() || QFileInfo::exists(aside); ++number)
        aside = ZELKFormat("%@.damaged-%@-%d", {path, day, number});
    if (!QFile::rename(path, aside)) {
        ZELKConsole::log(ZELKFormat("%@ is damaged and could not be set aside.", {path}));
        return;
    }
    // A journal left behind would be played into the file that follows.
    for (const QString &companion :
         {QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral("-journal")})
        QFile::rename(path + companion, aside + companion);
    ZELKConsole::log(
        ZELKFormat("%@ is damaged. It was set aside as %@, and a new one was begun.", {path, aside}));
}
