#include "ZELKLWALifeSign.h"

#include <QFile>

#include <cmath>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

ZELKLWALifeSign::ZELKLWALifeSign(const QString &path)
    : m_path(QFile::encodeName(path))
{
}

void ZELKLWALifeSign::show(ZELKDate now)
{
    const int file = open(m_path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        return;
    const double seconds = now.timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970;
    const double whole = std::floor(seconds);
    const timespec time{time_t(whole), long((seconds - whole) * 1e9)};
    const timespec times[2] = {time, time};
    futimens(file, times);
    close(file);
}

std::optional<ZELKDate> ZELKLWALifeSign::last() const
{
    struct stat status = {};
    if (stat(m_path.constData(), &status) != 0)
        return std::nullopt;
    return ZELKDate::fromSecondsSince1970(double(status.st_mtim.tv_sec) +
                                          double(status.st_mtim.tv_nsec) / 1e9);
}
