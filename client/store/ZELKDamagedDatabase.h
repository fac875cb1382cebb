#pragma once

#include <QString>

class ZELKSQLitePort;

/// Database files that are none any more, or not whole.
namespace ZELKDamagedDatabase {

/// A result code that speaks of damage.
bool isToldBy(int code);
/// The file is no database or its schema cannot be read. A file that merely cannot be opened, or is locked,
/// is not damaged.
bool isDamaged(ZELKSQLitePort &port, const QString &path);
/// Renames the closed file and its companions to a free name beside it, with one console line. Nothing is
/// deleted.
void setAside(const QString &path);

} // namespace ZELKDamagedDatabase
