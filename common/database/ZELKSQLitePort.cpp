#include "ZELKSQLitePort.h"

#include <sqlite3.h>

ZELKSQLitePort::~ZELKSQLitePort() = default;

int ZELKSQLitePort::open(const char *path, sqlite3 **database)
{
    // As sqlite3_open does, without the mutexes around every call: one thread is all there is.
    return sqlite3_open_v2(path, database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                           nullptr);
}

int ZELKSQLitePort::close(sqlite3 *database)
{
    return sqlite3_close(database);
}

void ZELKSQLitePort::free(void *memory)
{
    sqlite3_free(memory);
}

int ZELKSQLitePort::exec(sqlite3 *database, const char *sql, char **error)
{
    return sqlite3_exec(database, sql, nullptr, nullptr, error);
}

const char *ZELKSQLitePort::errmsg(sqlite3 *database)
{
    return sqlite3_errmsg(database);
}

int ZELKSQLitePort::extendedErrcode(sqlite3 *database)
{
    return sqlite3_extended_errcode(database);
}

int ZELKSQLitePort::getAutocommit(sqlite3 *database)
{
    return sqlite3_get_autocommit(database);
}

int ZELKSQLitePort::prepare(sqlite3 *database, const char *sql, sqlite3_stmt **statement)
{
    return sqlite3_prepare_v2(database, sql, -1, statement, nullptr);
}

int ZELKSQLitePort::finalize(sqlite3_stmt *statement)
{
    return sqlite3_finalize(statement);
}

int ZELKSQLitePort::reset(sqlite3_stmt *statement)
{
    return sqlite3_reset(statement);
}

int ZELKSQLitePort::bindParameterCount(sqlite3_stmt *statement)
{
    return sqlite3_bind_parameter_count(statement);
}

const char *ZELKSQLitePort::bindParameterName(sqlite3_stmt *statement, int index)
{
    return sqlite3_bind_parameter_name(statement, index);
}

int ZELKSQLitePort::bindText(sqlite3_stmt *statement, int index, const char *text)
{
    return sqlite3_bind_text(statement, index, text, -1, SQLITE_TRANSIENT);
}

int ZELKSQLitePort::bindBlob(sqlite3_stmt *statement, int index, const void *bytes, int size)
{
    return sqlite3_bind_blob(statement, index, bytes, size, SQLITE_TRANSIENT);
}

int ZELKSQLitePort::step(sqlite3_stmt *statement)
{
    return sqlite3_step(statement);
}

int ZELKSQLitePort::dataCount(sqlite3_stmt *statement)
{
    return sqlite3_data_count(statement);
}

const char *ZELKSQLitePort::columnName(sqlite3_stmt *statement, int column)
{
    return sqlite3_column_name(statement, column);
}

int ZELKSQLitePort::columnType(sqlite3_stmt *statement, int column)
{
    return sqlite3_column_type(statement, column);
}

const void *ZELKSQLitePort::columnBlob(sqlite3_stmt *statement, int column)
{
    return sqlite3_column_blob(statement, column);
}

const char *ZELKSQLitePort::columnText(sqlite3_stmt *statement, int column)
{
    return reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
}

int ZELKSQLitePort::columnBytes(sqlite3_stmt *statement, int column)
{
    return sqlite3_column_bytes(statement, column);
}
