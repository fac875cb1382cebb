#include "ZELKExportFile.h"

#include "ZELKPosixFile.h"
#include "ZELKSystemErrorText.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 pieceSize = qint64(4) << 20;
constexpr qint64 pipePieceSize = PIPE_BUF; // what is ready takes that much without making us wait
constexpr int waitMilliseconds = 20;

QString folderOf(const QString &path)
{
    return QFileInfo(path).path();
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
    while (isReplacing() && place() == Placing::More)
        continue;
    if (m_isOurTarget && m_target >= 0 && !m_exists)
        dropTarget();
    if (m_isOurTarget && m_target >= 0)
        ::close(m_target);
}

QString ZELKExportFile::systemErrorText() const
{
    return ZELKSystemErrorText(m_error);
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
    m_isPipe = m_exists && S_ISFIFO(status.st_mode);
    if (m_exists && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (m_exists || QFileInfo(m_path).isSymLink()) // one that leads nowhere yet
        return !m_exists || ::access(name.constData(), W_OK) == 0;
    return ::access(QFile::encodeName(folderOf(m_path)).constData(), W_OK | X_OK) == 0;
}

/// Best beside the target, where there is room for it if anywhere.
bool ZELKExportFile::openStaging()
{
    m_isBeside = m_isOurTarget && m_isRegular && m_staging.openBeside(folderOf(m_path));
    return m_isBeside || m_staging.openElsewhere();
}

qint64 ZELKExportFile::writeData(const char *data, qint64 size)
{
    const qint64 done = m_staging.write(data, size, pos());
    m_size = std::max(m_size, pos() + done);
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
        if (m_staging.giveName(m_path))
            return Placing::Done;
        m_exists = QFileInfo::exists(m_path); // else the system knows no such step, or a link leads nowhere
        m_isBeside = false;
    }
    if (m_target < 0 && !openTarget())
        return m_error == 0 ? Placing::More : Placing::Failed;
    if (!copyPiece())
        return m_error == 0 ? Placing::Done : Placing::Failed;
    return m_placed < m_size ? Placing::More : Placing::Done;
}

/// Waits a moment for a pipe or device, never for long: somebody may want to cancel. Where a signal ends the
/// waiting, writing would wait on.
bool ZELKExportFile::takesMore() const
{
    pollfd target = {m_target, POLLOUT, 0};
    return m_isRegular || ::poll(&target, 1, waitMilliseconds) > 0;
}

/// False also when its reader has gone, which is no error.
bool ZELKExportFile::copyPiece()
{
    if (!takesMore())
        return true;
    const qint64 most = m_isRegular ? pieceSize : pipePieceSize;
    const QByteArray piece = m_staging.read(m_placed, std::min(most, m_size - m_placed));
    const qint64 done = ZELKPosixFile::writeAll(
        piece.constData(), piece.size(),
        [this](const char *bytes, std::size_t count, qint64) { return ::write(m_target, bytes, count); });
    m_placed += done;
    const bool isWritten = done == piece.size() || errno == EAGAIN;
    if (!piece.isNull() && isWritten && (m_placed < m_size || finishTarget()))
        return true;
    if (m_isOurTarget || errno != EPIPE)
        fail();
    dropTarget();
    return false;
}

double ZELKExportFile::placedFraction() const
{
    return double(m_placed) / double(std::max(m_size, qint64(1)));
}

/// False without an error while a pipe has no reader.
bool ZELKExportFile::openTarget()
{
    m_target = ::open(QFile::encodeName(m_path).constData(),
                      O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, ZELKPosixFile::usualMode);
    if (m_target < 0 && errno == ENXIO && m_isPipe) {
        ::poll(nullptr, 0, waitMilliseconds);
        return false;
    }
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

/// Before the first byte of the old content is lost; an old file may have holes. Where the system cannot tell
/// beforehand, so be it.
bool ZELKExportFile::makeRoom(qint64 oldSize)
{
    if (::fallocate(m_target, 0, 0, m_size) == 0)
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
    if (m_isRegular && (::ftruncate(m_target, m_size) != 0 || !ZELKPosixFile::synchronise(m_target)))
        return false;
    return !m_isOurTarget || ::close(std::exchange(m_target, -1)) == 0;
}

void ZELKExportFile::dropTarget()
{
    if (!m_isOurTarget || !m_isRegular)
        return;
    if (m_target >= 0)
        ::close(std::exchange(m_target, -1));
    // Other names of the file must not lead to half of it either.
    [[maybe_unused]] const int result = ::truncate(QFile::encodeName(m_path).constData(), 0);
    ::unlink(QFile::encodeName(QFileInfo(m_path).canonicalFilePath()).constData());
}
