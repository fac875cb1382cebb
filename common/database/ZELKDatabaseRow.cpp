#include "ZELKDatabaseRow.h"

#include "ZELKSQLitePort.h"

#include <sqlite3.h>

ZELKDatabaseRow::ZELKDatabaseRow(ZELKSQLitePort &port, sqlite3_stmt *statement)
    : m_port(port)
    , m_statement(statement)
    , m_count(port.dataCount(statement))
{
}

std::string_view ZELKDatabaseRow::name(int column) const
{
    const char *name = m_port.columnName(m_statement, column);
    return name ? std::string_view(name) : std::string_view();
}

ZELKDatabaseColumn ZELKDatabaseRow::column(int column) const
{
    if (m_port.columnType(m_statement, column) == SQLITE_BLOB) {
        const void *blob = m_port.columnBlob(m_statement, column);
        const int size = m_port.columnBytes(m_statement, column);
        if (!blob || size <= 0)
            return {};
        return {ZELKDatabaseColumn::Kind::Blob, {static_cast<const char *>(blob), size_t(size)}};
    }
    const char *text = m_port.columnText(m_statement, column);
    if (!text)
        return {};
    return {ZELKDatabaseColumn::Kind::Text, text};
}

ZELKDictionary ZELKDatabaseRow::dictionary() const
{
    ZELKDictionary result;
    for (int i = 0; i < m_count; ++i) {
        const auto [kind, bytes] = column(i);
        if (kind == ZELKDatabaseColumn::Kind::Absent)
            continue;
        const std::string_view key = name(i);
        const auto size = qsizetype(bytes.size());
        result.insert(QString::fromUtf8(key.data(), qsizetype(key.size())),
                      kind == ZELKDatabaseColumn::Kind::Blob
                          ? QVariant(QByteArray(bytes.data(), size))
                          : QVariant(QString::fromUtf8(bytes.data(), size)));
    }
    return result;
}
