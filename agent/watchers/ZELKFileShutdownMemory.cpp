#include "ZELKFileShutdownMemory.h"

#include "ZELKConsole.h"
#include "ZELKFormat.h"
#include "ZELKRawEvent.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qint64 longestFile = 100;

// "DATE AWAKE SUSPENDED restart recorded", the last words only where it is so.
constexpr QLatin1String restart("restart");
constexpr QLatin1String recorded("recorded");

/// A name that came or went is on the disk with its folder.
void syncFolderOf(const QString &path)
{
    const int folder =
        ::open(QFile::encodeName(QFileInfo(path).path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    ::fsync(folder);
    ::close(folder);
}

} // namespace

ZELKFileShutdownMemory::ZELKFileShutdownMemory(const QString &path)
    : m_path(path)
{
}

std::optional<ZELKAnnouncedShutdown> ZELKFileShutdownMemory::recall() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QStringList words = QString::fromLatin1(file.read(longestFile)).trimmed().split(QLatin1Char(' '));
    if (!ZELKIsDateText(words.at(0).toStdString()))
        return std::nullopt;
    const ZELKMoment moment{ZELKDate(words.at(0).toDouble()), words.value(1).toDouble(),
                            words.value(2).toDouble()};
    const auto kind = words.contains(restart) ? std::optional(ZELKShutdownKind::Restart) : std::nullopt;
    return ZELKAnnouncedShutdown{moment, kind, words.contains(recorded)};
}

/// A QSaveFile has synchronised the bytes before it takes its name.
void ZELKFileShutdownMemory::remember(const ZELKAnnouncedShutdown &shutdown)
{
    const auto &[date, awake, suspended] = shutdown.moment;
    QStringList words{ZELKDateText(date), QString::number(awake, 'f', 6), QString::number(suspended, 'f', 6)};
    if (shutdown.kind == ZELKShutdownKind::Restart)
        words.append(restart);
    if (shutdown.isRecorded)
        words.append(recorded);
    const QByteArray bytes = words.join(QLatin1Char(' ')).toLatin1() + '\n';
    QDir().mkpath(QFileInfo(m_path).path());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        ZELKConsole::log(ZELKFormat("A shut-down that was announced could not be kept in %@: %@",
                                    {m_path, file.errorString()}));
    else
        syncFolderOf(m_path);
}

void ZELKFileShutdownMemory::forget()
{
    if (QFile::remove(m_path))
        syncFolderOf(m_path);
}
