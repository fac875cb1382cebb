#include "ZELKFileManager.h"

#include "ZELKSystemErrorText.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Problem = std::optional<QString>;

constexpr mode_t folderMode = 0755;
constexpr mode_t fileMode = 0644;
constexpr mode_t programMode = 0755;
constexpr int deepestFolder = 32;

Problem problem(const QString &name)
{
    return name + QStringLiteral(": ") + ZELKSystemErrorText(errno);
}

class Descriptor
{
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    explicit operator bool() const { return m_number >= 0; }
    int number() const { return m_number; }

private:
    int m_number;
};

bool writeAll(int file, const char *bytes, ssize_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(file, bytes, std::size_t(size));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes += written;
        size -= written;
    }
    return true;
}

bool copyBytes(int from, int to)
{
    std::array<char, 65536> bytes{};
    for (;;) {
        const ssize_t size = ::read(from, bytes.data(), bytes.size());
        if (size == 0)
            return true;
        if (size < 0 && errno != EINTR)
            return false;
        if (size > 0 && !writeAll(to, bytes.data(), size))
            return false;
    }
}

Problem copyFile(int from, mode_t mode, int toFolder, const char *name, const QString &path)
{
    const Descriptor to(::openat(toFolder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    const mode_t wanted = (mode & S_IXUSR) != 0 ? programMode : fileMode;
    if (!to || !copyBytes(from, to.number()) || ::fchmod(to.number(), wanted) != 0 ||
        ::fsync(to.number()) != 0)
        return problem(path);
    return std::nullopt;
}

Problem copyEntries(int from, int to, const QString &path, int depth);

Problem copyEntry(int fromFolder, int toFolder, const char *name, const QString &path, int depth)
{
    // Not blocking: a named pipe would wait for a writer.
    const Descriptor from(::openat(fromFolder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!from || ::fstat(from.number(), &status) != 0)
        return problem(path);
    if (S_ISREG(status.st_mode))
        return copyFile(from.number(), status.st_mode, toFolder, name, path);
    if (!S_ISDIR(status.st_mode) || depth == deepestFolder)
        return path + QStringLiteral(": neither a file nor a folder");
    if (::mkdirat(toFolder, name, folderMode) != 0)
        return problem(path);
    const Descriptor to(::openat(toFolder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!to || ::fchmod(to.number(), folderMode) != 0)
        return problem(path);
    return copyEntries(from.number(), to.number(), path, depth + 1);
}

Problem copyEntries(int from, int to, const QString &path, int depth)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::fdopendir(::dup(from)), &::closedir);
    if (!folder)
        return problem(path);
    while (const dirent *entry = ::readdir(folder.get())) {
        const QByteArrayView name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        const QString inside = path + QLatin1Char('/') + QFile::decodeName(name.toByteArray());
        if (const Problem found = copyEntry(from, to, entry->d_name, inside, depth))
            return found;
    }
    return std::nullopt;
}

/// The new tree goes where the old one is; what comes back under the new one's name is the old one.
bool exchange(const QByteArray &made, const QByteArray &destination)
{
    if (::renameat2(AT_FDCWD, made.constData(), AT_FDCWD, destination.constData(), RENAME_EXCHANGE) == 0 ||
        (errno == ENOENT && ::rename(made.constData(), destination.constData()) == 0))
        return true;
    // Not every file system can exchange.
    const QByteArray aside = destination + ".old";
    return ::rename(destination.constData(), aside.constData()) == 0 &&
           ::rename(made.constData(), destination.constData()) == 0 &&
           ::rename(aside.constData(), made.constData()) == 0;
}

} // namespace

QString ZELKFileManager::unfinishedCopy(const QString &destination)
{
    const QFileInfo place(destination);
    return place.path() + QStringLiteral("/.") + place.fileName() + QStringLiteral(".new");
}

std::optional<QString> ZELKFileManager::copyFolder(const QString &source, const QString &destination,
                                                   const Check &check)
{
    const QString made = unfinishedCopy(destination);
    if (const Problem left = remove(made))
        return left;
    const Descriptor from(
        ::open(QFile::encodeName(source).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!from)
        return problem(source);
    const QByteArray madeName = QFile::encodeName(made);
    if (::mkdir(madeName.constData(), folderMode) != 0)
        return problem(made);
    const Descriptor to(::open(madeName.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    Problem failure = !to || ::fchmod(to.number(), folderMode) != 0 ? problem(made) : std::nullopt;
    if (!failure)
        failure = copyEntries(from.number(), to.number(), source, 0);
    if (!failure && check)
        failure = check(made);
    if (!failure && !exchange(madeName, QFile::encodeName(destination)))
        failure = problem(destination);
    remove(made);
    return failure;
}

std::optional<QString> ZELKFileManager::makeFolder(const QString &path)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (error)
        return path + QStringLiteral(": ") + QString::fromStdString(error.message());
    return std::nullopt;
}

std::optional<QString> ZELKFileManager::remove(const QString &path)
{
    std::error_code error;
    std::filesystem::remove_all(QFile::encodeName(path).toStdString(), error);
    if (error)
        return path + QStringLiteral(": ") + QString::fromStdString(error.message());
    return std::nullopt;
}

std::optional<QString> ZELKFileManager::writeFile(const QString &path, const QByteArray &bytes, Kind kind)
{
    if (QFileInfo(path).isSymLink()) // Qt would write what it leads to
        return path + QStringLiteral(": a symbolic link");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
        ::fchmod(file.handle(), kind == Kind::Program ? programMode : fileMode) != 0 || !file.commit())
        return path + QStringLiteral(": ") + file.errorString();
    return std::nullopt;
}
