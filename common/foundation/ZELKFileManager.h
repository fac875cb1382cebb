#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

/// Whole folders. Symbolic links are never followed, so that nobody who can write to a part of a tree can
/// lead the program out of it.
namespace ZELKFileManager {

/// Makes `destination` a copy of the folder `source`, replacing what is there, as one step: it is the old
/// tree or the whole new one. Files keep their being executable and are otherwise readable by everybody and
/// writable by the owner. `check` is shown the copy before it takes its place, and keeps it from that by
/// telling what is wrong with it. What went wrong, such as something in the tree that is neither file nor
/// folder; else nothing.
using Check = std::function<std::optional<QString>(const QString &copy)>;
std::optional<QString> copyFolder(const QString &source, const QString &destination, const Check &check = {});
/// Where the copy stands until it takes its place. A program that was killed may have left it.
QString unfinishedCopy(const QString &destination);

/// Makes the folder and those above it that are missing. What went wrong, in the system's words; else
/// nothing.
std::optional<QString> makeFolder(const QString &path);

/// Removes the folder with all that is in it, or the file or link. What is not there is no failure.
std::optional<QString> remove(const QString &path);

/// Makes the file hold these bytes, as one step; everybody may read it, and execute a program. Its folder has
/// to be there; a symbolic link in its place is refused.
enum class Kind { Document, Program };
std::optional<QString> writeFile(const QString &path, const QByteArray &bytes, Kind kind = Kind::Document);

} // namespace ZELKFileManager
