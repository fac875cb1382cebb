#include "ZELKExportFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 pieceSize = qint64(4) << 20;
constexpr mode_t usualMode = 0666; // less what the user's mask takes away

/// All of it, or less where that fails.
template <typename Write>
qint64 writeAll(const char *data, qint64 size, Write write)
{
    qint64 done = 0;
    while (done < size) {
        const ssize_t count = write(data + done, std::size_t(size - done), done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            errno = EIO; // it says nothing, and takes nothing
        if (count <= 0)
            break;
        done += count;
    }
    return done;
}

/// A file without a name in the folder; -1 where its file system knows none.
int openNameless(const QString &folder)
{
    return ::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, usualMode);
}

/// The same where there are none: one that loses its name at once.
int openUnlinked(const QString &folder)
{
    QByteArray name = QFile::encodeName(folder) + "/lullwatch-export-XXXXXX";
    const int file = ::mkostemp(name.data(), O_CLOEXEC);
    if (file >= 0)
        ::unlink(name.constData());
    return file;
}

/// Some things that can be written to cannot be waited for.
bool synchronise(int file)
{
    return ::fdatasync(file) == 0 || errno == EINVAL || errno == EROFS;
}

} // namespace

ZELKExportFile::ZELKExportFile(const QString &path)
    : m_path(path)
{
}

ZELKExportFile::ZELKExportFile(int descriptor, const QString &name)
    : m_path(name)
    , m_target(descriptor)
    , m_isOurTarget(false)
{
}

ZELKExportFile::~ZELKExportFile()
{
    if (m_staging >= 0)
        ::close(m_staging);
    if (m_isOurTarget && m_target >= 0)
        ::close(m_target);
}

QString ZELKExportFile::systemErrorText() const
{
    return QString::fromLocal8Bit(std::strerror(m_error));
}

bool ZELKExportFile::fail()
{
    if (m_error == 0)
        m_error = errno;
    setErrorString(systemErrorText());
    return false;
}

// MARK: writing

bool ZELKExportFile::open()
{
    if ((m_isOurTarget && !checkPath()) || !openStaging())
        return fail();
    // A buffer would keep errors to itself.
    return QIODevice::open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

bool ZELKExportFile::checkPath()
{
    const QByteArray name = QFile::encodeName(m_path);
    struct stat status = {};
    m_exists = ::stat(name.constData(), &status) == 0;
    if (!m_exists && errno != ENOENT)
        return false;
    m_isRegular = !m_exists || S_ISREG(status.st_mode);
    if (m_exists && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (m_exists || QFileInfo(m_path).isSymLink()) // one that leads nowhere yet
        return !m_exists || ::access(name.constData(), W_OK) == 0;
    return ::access(QFile::encodeName(QFileInfo(m_path).path()).constData(), W_OK | X_OK) == 0;
}

/// Best beside the target, where there is room for it if anywhere.
bool ZELKExportFile::openStaging()
{
    if (m_isOurTarget && m_isRegular)
        m_staging = openNameless(QFileInfo(m_path).path());
    m_isBeside = m_staging >= 0;
    if (m_staging < 0)
        m_staging = openNameless(QDir::tempPath());
    if (m_staging < 0)
        m_staging = openUnlinked(QDir::tempPath());
    return m_staging >= 0;
}

qint64 ZELKExportFile::writeData(const char *data, qint64 size)
{
    const qint64 start = pos();
    const qint64 done = writeAll(data, size, [&](const char *bytes, std::size_t count, qint64 offset) {
        return ::pwrite(m_staging, bytes, count, start + offset);
    });
    m_size = std::max(m_size, start + done);
    if (done < size)
        fail();
    return done == size ? done : -1;
}

// MARK: placing

ZELKExportFile::Placing ZELKExportFile::place()
{
    if (m_error != 0)
        return Placing::Failed;
    if (m_isBeside && !m_exists) {
        if (!synchronise(m_staging)) {
            fail();
            return Placing::Failed;
        }
        if (giveName())
            return Placing::Done;
        m_exists = errno == EEXIST; // else the system knows no such step
        m_isBeside = false;
    }
    if (m_target < 0 && !openTarget())
        return Placing::Failed;
    std::vector<char> piece(std::size_t(std::min(pieceSize, m_size - m_placed)));
    const ssize_t size = ::pread(m_staging, piece.data(), piece.size(), m_placed);
    const qint64 done = writeAll(piece.data(), size, [this](const char *bytes, std::size_t count, qint64) {
        return ::write(m_target, bytes, count);
    });
    m_placed += done;
    if (size < 0 || done < size || !(m_placed < m_size || finishTarget())) {
        if (!m_isOurTarget && errno == EPIPE)
            return Placing::Done;
        fail();
        dropTarget();
        return Placing::Failed;
    }
    return m_placed < m_size ? Placing::More : Placing::Done;
}

double ZELKExportFile::placedFraction() const
{
    return double(m_placed) / double(std::max(m_size, qint64(1)));
}

bool ZELKExportFile::giveName() const
{
    const QByteArray itself = "/proc/self/fd/" + QByteArray::number(m_staging);
    return ::linkat(AT_FDCWD, itself.constData(), AT_FDCWD, QFile::encodeName(m_path).constData(),
                    AT_SYMLINK_FOLLOW) == 0;
}

bool ZELKExportFile::openTarget()
{
    m_target =
        ::open(QFile::encodeName(m_path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, usualMode);
    struct stat status = {};
    if (m_target < 0 || ::fstat(m_target, &status) != 0)
        return fail();
    m_isRegular = S_ISREG(status.st_mode);
    if (m_isRegular && !makeRoom(status.st_size)) {
        fail();
        if (!m_exists)
            dropTarget();
        return false;
    }
    return true;
}

/// Before the first byte of the old content is lost. Where the system cannot tell beforehand, so be it.
bool ZELKExportFile::makeRoom(qint64 oldSize)
{
    if (m_size <= oldSize || ::fallocate(m_target, 0, 0, m_size) == 0)
        return true;
    const int reason = errno;
    if (reason == EOPNOTSUPP || reason == ENOSYS || reason == EINVAL)
        return true;
    [[maybe_unused]] const int result = ::ftruncate(m_target, oldSize);
    errno = reason;
    return false;
}

/// An old file may have been longer. Some file systems tell only now that they could not write.
bool ZELKExportFile::finishTarget()
{
    if (m_isRegular && (::ftruncate(m_target, m_size) != 0 || !synchronise(m_target)))
        return false;
    return !m_isOurTarget || ::close(std::exchange(m_target, -1)) == 0;
}

void ZELKExportFile::dropTarget()
{
    if (!m_isOurTarget || !m_isRegular)
        return;
    // Other names of the file must not lead to half of it either.
    [[maybe_unused]] const int result = ::truncate(QFile::encodeName(m_path).constData(), 0);
    ::unlink(QFile::encodeName(QFileInfo(m_path).canonicalFilePath()).constData());
}
