#include "ZELKStagedFile.h"

#include "ZELKPosixFile.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int openNameless(const QString &folder)
{
    return ::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC,
                  ZELKPosixFile::usualMode);
}

/// Its name is in `name`.
int openNamed(const QString &folder, QByteArray &name)
{
    name = QFile::encodeName(folder) + "/.lullwatch-unfinished-export-XXXXXX";
    return ::mkostemp(name.data(), O_CLOEXEC);
}

/// Not readable for its owner alone, as temporary files are.
void setUsualMode(int file)
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(file, ZELKPosixFile::usualMode & ~mask);
}

} // namespace

ZELKStagedFile::~ZELKStagedFile()
{
    if (m_file >= 0)
        ::close(m_file);
    if (!m_name.isEmpty())
        ::unlink(m_name.constData());
}

bool ZELKStagedFile::openBeside(const QString &folder)
{
    m_file = openNameless(folder);
    if (m_file >= 0)
        return true;
    m_file = openNamed(folder, m_name);
    if (m_file < 0)
        m_name.clear();
    else
        setUsualMode(m_file);
    return m_file >= 0;
}

bool ZELKStagedFile::openElsewhere()
{
    m_file = openNameless(QDir::tempPath());
    if (m_file >= 0)
        return true;
    QByteArray name;
    m_file = openNamed(QDir::tempPath(), name);
    if (m_file >= 0)
        ::unlink(name.constData());
    return m_file >= 0;
}

QString ZELKStagedFile::descriptorPath() const
{
    return QStringLiteral("/proc/self/fd/%1").arg(m_file);
}

qint64 ZELKStagedFile::size() const
{
    struct stat status = {};
    return ::fstat(m_file, &status) == 0 ? qint64(status.st_size) : 0;
}

qint64 ZELKStagedFile::write(const char *data, qint64 size, qint64 offset) const
{
    return ZELKPosixFile::writeAll(data, size, [&](const char *bytes, std::size_t count, qint64 done) {
        return ::pwrite(m_file, bytes, count, offset + done);
    });
}

QByteArray ZELKStagedFile::read(qint64 offset, qint64 most) const
{
    QByteArray bytes(most, Qt::Uninitialized);
    const ssize_t size = ::pread(m_file, bytes.data(), std::size_t(most), offset);
    const bool endsEarly = size == 0 && most > 0; // who asks knows how much there should be
    if (endsEarly)
        errno = EIO;
    if (size < 0 || endsEarly)
        return {};
    bytes.truncate(size);
    return bytes;
}

bool ZELKStagedFile::giveName(const QString &path)
{
    if (!ZELKPosixFile::synchronise(m_file))
        return false;
    const QByteArray target = QFile::encodeName(path);
    if (m_name.isEmpty()) {
        const QByteArray itself = QFile::encodeName(descriptorPath());
        return ::linkat(AT_FDCWD, itself.constData(), AT_FDCWD, target.constData(), AT_SYMLINK_FOLLOW) == 0;
    }
    // Not every file system knows both.
    if (::link(m_name.constData(), target.constData()) == 0)
        return true;
    if (errno == EEXIST ||
        ::renameat2(AT_FDCWD, m_name.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) != 0)
        return false;
    m_name.clear();
    return true;
}
