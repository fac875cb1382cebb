#pragma once

#include "ZELKDictionary.h"

#include <string_view>

class ZELKSQLitePort;
struct sqlite3_stmt;

/// One value of a row, uncopied: SQLite's own memory, valid until the call-back that was given the row
/// returns.
struct ZELKDatabaseColumn
{
    enum class Kind {
        Absent, ///< NULL, or a blob without bytes
        Text,   ///< UTF-8 up to its first NUL; numbers come as their decimal text
        Blob,
    };
    Kind kind = Kind::Absent;
    std::string_view bytes;

    bool operator==(const ZELKDatabaseColumn &) const = default;
};

/// The row a statement stands on. A view, valid only within the call-back it is given to.
class ZELKDatabaseRow
{
public:
    ZELKDatabaseRow(ZELKSQLitePort &port, sqlite3_stmt *statement);

    int count() const { return m_count; }
    /// Empty when SQLite has no memory for the name.
    std::string_view name(int column) const;
    /// `column` counts from 0 and is below count().
    ZELKDatabaseColumn column(int column) const;
    /// The values under their columns' names: QString for text, QByteArray for a blob; an absent value leaves
    /// its key out.
    ZELKDictionary dictionary() const;

private:
    ZELKSQLitePort &m_port;
    sqlite3_stmt *m_statement;
    int m_count;
};
