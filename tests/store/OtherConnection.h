#pragma once

#include <QFile>
#include <QList>

#include <sqlite3.h>

/// Another connection to the cache's file.
class OtherConnection
{
public:
    explicit OtherConnection(const QString &file)
    {
        sqlite3_open(QFile::encodeName(file).constData(), &m_database);
        sqlite3_busy_timeout(m_database, 5000);
    }
    ~OtherConnection() { sqlite3_close(m_database); }
    OtherConnection(const OtherConnection &) = delete;
    OtherConnection &operator=(const OtherConnection &) = delete;

    /// The first column of each row.
    QList<QByteArray> run(const char *sql, const QByteArray &blob = {})
    {
        QList<QByteArray> rows;
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr);
        if (sqlite3_bind_parameter_count(statement) == 1)
            sqlite3_bind_blob(statement, 1, blob.constData(), int(blob.size()), SQLITE_TRANSIENT);
        while (sqlite3_step(statement) == SQLITE_ROW)
            rows.append({static_cast<const char *>(sqlite3_column_blob(statement, 0)),
                         sqlite3_column_bytes(statement, 0)});
        sqlite3_finalize(statement);
        if (const int code = sqlite3_errcode(m_database); code != SQLITE_OK && code != SQLITE_DONE)
            qWarning("%s: %s", sql, sqlite3_errmsg(m_database));
        return rows;
    }
    QList<QByteArray> cached() { return run("SELECT properties FROM events ORDER BY date, rowid"); }
    QByteArray lastSync() { return run("SELECT value FROM settings WHERE key = 'lastSync'").value(0); }

private:
    sqlite3 *m_database = nullptr;
};
