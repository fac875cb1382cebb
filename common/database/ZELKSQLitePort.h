#pragma once

struct sqlite3;
struct sqlite3_stmt;

/// The part of SQLite's C interface that this program uses, one virtual function a call, each named after the
/// call it makes and answering what that call answers. The functions here are the real library; tests
/// override them to make any call give any result. Stateless: one port may serve any number of connections.
class ZELKSQLitePort
{
public:
    ZELKSQLitePort() = default;
    virtual ~ZELKSQLitePort();
    ZELKSQLitePort(const ZELKSQLitePort &) = delete;
    ZELKSQLitePort &operator=(const ZELKSQLitePort &) = delete;

    /// `path` in the file system's encoding; an empty one opens a private temporary database. A failed open
    /// may still give a connection, which has to be closed.
    virtual int open(const char *path, sqlite3 **database);
    /// BUSY, and nothing closed, while the connection has statements that are not finalized.
    virtual int close(sqlite3 *database);
    virtual void free(void *memory);
    /// `error` receives a text to be released with free(), or nullptr.
    virtual int exec(sqlite3 *database, const char *sql, char **error);
    /// Valid until the next call on the connection; "out of memory" without one.
    virtual const char *errmsg(sqlite3 *database);
    virtual int extendedErrcode(sqlite3 *database);
    /// 0 within BEGIN … COMMIT or ROLLBACK.
    virtual int getAutocommit(sqlite3 *database);

    /// `sql` is UTF-8 up to its NUL; a text without a statement gives OK and nullptr.
    virtual int prepare(sqlite3 *database, const char *sql, sqlite3_stmt **statement);
    /// Answers, like reset, the failure of the statement's last step.
    virtual int finalize(sqlite3_stmt *statement);
    virtual int reset(sqlite3_stmt *statement);

    virtual int bindParameterCount(sqlite3_stmt *statement);
    /// Indexes count from 1. With its prefix ("@key"); nullptr for a parameter without a name.
    virtual const char *bindParameterName(sqlite3_stmt *statement, int index);
    /// UTF-8 up to the NUL, copied.
    virtual int bindText(sqlite3_stmt *statement, int index, const char *text);
    /// Copied.
    virtual int bindBlob(sqlite3_stmt *statement, int index, const void *bytes, int size);

    virtual int step(sqlite3_stmt *statement);
    virtual int dataCount(sqlite3_stmt *statement);
    /// Columns count from 0. What these give is valid until the next step or reset.
    virtual const char *columnName(sqlite3_stmt *statement, int column);
    virtual int columnType(sqlite3_stmt *statement, int column);
    virtual const void *columnBlob(sqlite3_stmt *statement, int column);
    virtual const char *columnText(sqlite3_stmt *statement, int column);
    virtual int columnBytes(sqlite3_stmt *statement, int column);
};
