#include "ZELKOwnership.h"

#include "ZELKSystemErrorText.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cerrno>

#include <sys/stat.h>

namespace {

using Problem = std::optional<QString>;

Problem problemOfOne(const QString &path, uid_t owner)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return path + QStringLiteral(": ") + ZELKSystemErrorText(errno);
    if (S_ISLNK(status.st_mode))
        return path + QStringLiteral(": a symbolic link");
    if (status.st_uid != owner)
        return path + QStringLiteral(": does not belong to the administrator");
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return path + QStringLiteral(": can be changed by others than the administrator");
    return std::nullopt;
}

/// From the top down, so that what a folder answers for is looked at after the folder.
QStringList pathAndFoldersAbove(const QString &path, const QString &top)
{
    QStringList found{path};
    while (found.first() != top && found.first() != QLatin1String("/"))
        found.prepend(QFileInfo(found.first()).path());
    return found;
}

} // namespace

std::optional<QString> ZELKOwnership::problemOfFolder(const QString &folder, uid_t owner, const QString &top)
{
    for (const QString &place : pathAndFoldersAbove(folder, top)) {
        if (const QFileInfo found(place); !found.exists() && !found.isSymLink())
            return std::nullopt;
        if (const Problem found = problemOfOne(place, owner))
            return found;
    }
    return std::nullopt;
}

std::optional<QString> ZELKOwnership::problem(const QString &path, uid_t owner, const QString &top)
{
    if (!QFileInfo(path).isAbsolute())
        return path + QStringLiteral(": not an absolute path");
    for (const QString &place : pathAndFoldersAbove(path, top)) {
        if (const Problem found = problemOfOne(place, owner))
            return found;
    }
    if (!QFileInfo(path).isDir())
        return std::nullopt;
    QDirIterator inside(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
    while (inside.hasNext()) {
        if (const Problem found = problemOfOne(inside.next(), owner))
            return found;
    }
    return std::nullopt;
}
