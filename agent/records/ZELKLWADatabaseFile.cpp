#include "ZELKLWADatabaseFile.h"

#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKSQLitePort.h"

#include <QFile>

#include <sqlite3.h>

ZELKLWADatabaseFile::ZELKLWADatabaseFile(const QString &path, std::shared_ptr<ZELKSQLitePort> port)
    : m_path(path)
    , m_port(std::move(port))
{
}

std::optional<ZELKLWADatabaseFile::Fault> ZELKLWADatabaseFile::tryScript(const QString &sql)
{
    sqlite3 *database = nullptr;
    int code = m_port->open(QFile::encodeName(m_path).constData(), &database);
    QString message;
    const auto run = [&](const char *statements) {
        char *error = nullptr;
        code = m_port->exec(database, statements, &error);
        message = QString::fromUtf8(error);
        m_port->free(error);
        return code == SQLITE_OK;
    };
    // That statement has no fault of its own, so it tells of a header that names a format there is not.
    if (code == SQLITE_OK && !run("PRAGMA busy_timeout = 2000; SELECT count(*) FROM sqlite_schema") &&
        code == SQLITE_ERROR)
        code = SQLITE_NOTADB;
    if (code == SQLITE_OK && isOthers(database)) {
        code = SQLITE_MISMATCH;
        message = QStringLiteral("it is a database of another program");
    }
    if (code == SQLITE_OK)
        run(sql.toUtf8().constData());
    if (code != SQLITE_OK && message.isEmpty())
        message = database ? QString::fromUtf8(m_port->errmsg(database)) : QStringLiteral("out of memory");
    m_port->close(database);
    if (code == SQLITE_OK)
        return std::nullopt;
    return Fault{code & 0xff, message};
}

/// Records whose making was cut short may have their settings and nothing else yet.
bool ZELKLWADatabaseFile::isOthers(sqlite3 *database)
{
    sqlite3_stmt *statement = nullptr;
    const int code = m_port->prepare(
        database,
        "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name <> 'settings' "
        "AND NOT EXISTS (SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'events' "
        "AND sql LIKE '%event_time%settled%')",
        &statement);
    const bool others = code == SQLITE_OK && m_port->step(statement) == SQLITE_ROW;
    if (statement)
        m_port->finalize(statement);
    return others;
}

bool ZELKLWADatabaseFile::isDamage(int code)
{
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

bool ZELKLWADatabaseFile::setAside(const QString &reason)
{
    const QString name = freeName();
    const auto moveCompanions = [](const QString &from, const QString &to) {
        for (const char *suffix : {"-wal", "-shm"})
            QFile::rename(from + QLatin1String(suffix), to + QLatin1String(suffix));
    };
    moveCompanions(m_path, name); // first: left behind, SQLite would delete them beside the new file
    if (!QFile::rename(m_path, name)) {
        moveCompanions(name, m_path);
        ZELKConsole::log(
            ZELKFormat("The damaged events in %@ (%@) could not be set aside.", {m_path, reason}));
        return false;
    }
    ZELKConsole::log(ZELKFormat("The events in %@ are damaged (%@): set aside as %@, begun anew.",
                                {m_path, reason, name}));
    return true;
}

QString ZELKLWADatabaseFile::freeName() const
{
    const QString moment = ZELKEnvironment::current()
                               .clock->now()
                               .toDateTime(QTimeZone::utc())
                               .toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    QString name = QStringLiteral("%1.damaged-%2").arg(m_path, moment);
    for (int number = 2; QFile::exists(name); ++number)
        name = QStringLiteral("%1.damaged-%2-%3").arg(m_path, moment).arg(number);
    return name;
}
