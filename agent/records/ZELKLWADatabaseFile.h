#pragma once

#include <QString>

#include <memory>
#include <optional>

class ZELKSQLitePort;
struct sqlite3;

/// The file of a database while nothing is connected to it: whether it can be used, and out of the way with
/// it when it is damaged.
class ZELKLWADatabaseFile
{
public:
    struct Fault
    {
        /// SQLite's primary result code.
        int code = 0;
        QString message;
    };

    ZELKLWADatabaseFile(const QString &path, std::shared_ptr<ZELKSQLitePort> port);

    /// Runs a script on a connection of its own; what went wrong, or nothing. A database that has tables, but
    /// not those of the records, is left as it is.
    std::optional<Fault> tryScript(const QString &sql);
    static bool isDamage(int code);
    /// Renames the file, and SQLite's files beside it, to "NAME.damaged-DATE", with one console line. False
    /// when it could not be renamed; then everything is where it was.
    bool setAside(const QString &reason);

private:
    bool isOthers(sqlite3 *database);
    QString freeName() const;

    QString m_path;
    std::shared_ptr<ZELKSQLitePort> m_port;
};
