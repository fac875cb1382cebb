#pragma once

#include <QString>
#include <QStringList>

class ZELKSQLitePort;

/// Database files that are none any more, or not whole.
namespace ZELKDamagedDatabase {

/// A result code that speaks of damage.
bool isToldBy(int code);
/// The file was a cache once, whatever has become of it: it begins as SQLite's files do, or is named as our
/// caches are, or begins with zeros, as a file may after a power failure. Any other file is somebody else's.
bool wasCache(const QString &path);
/// The file is no database or its schema cannot be read. A file that merely cannot be opened, or is locked,
/// is not damaged.
bool isDamaged(ZELKSQLitePort &port, const QString &path);
/// The file is a sound database with tables, but none of them is a cache's: another program keeps it.
bool isOthers(ZELKSQLitePort &port, const QString &path);
/// What the names of a database's files have at their end, the file itself last.
QStringList suffixes();
/// Renames the closed file and its companions to a free name beside it, with one console line. Nothing is
/// deleted.
void setAside(const QString &path);

} // namespace ZELKDamagedDatabase
