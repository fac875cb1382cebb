#pragma once

#include <QString>

#include <optional>

#include <sys/types.h>

/// Whether what is about to be run or copied with an administrator's rights is the administrator's own.
namespace ZELKOwnership {

/// Why somebody else than `owner` could change the file, or the tree, at an absolute path; nothing when
/// nobody can. The folders above it count too, from `top` down, and so do symbolic links in its name: whoever
/// can write to one of them puts there what he likes.
std::optional<QString> problem(const QString &path, uid_t owner = 0,
                               const QString &top = QStringLiteral("/"));

/// The same of a folder that something is to be put into, whatever is in it by now. What is not there yet is
/// nobody's.
std::optional<QString> problemOfFolder(const QString &folder, uid_t owner = 0,
                                       const QString &top = QStringLiteral("/"));

} // namespace ZELKOwnership
