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
constexpr QLatin1String restart("restart"); // "DATE restart", the last word only where it is known

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

std::optional<ZELKPendingShutdown> ZELKFileShutdownMemory::recall() const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QStringList words = QString::fromLatin1(file.read(longestFile)).trimmed().split(QLatin1Char(' '));
    if (!ZELKIsDateText(words.at(0).toStdString()))
        return std::nullopt;
    const bool restarts = words.value(1) == restart;
    return ZELKPendingShutdown{ZELKDate(words.at(0).toDouble()),
                               restarts ? std::optional(ZELKShutdownKind::Restart) : std::nullopt};
}

/// A QSaveFile has synchronised the bytes before it takes its name.
void ZELKFileShutdownMemory::remember(const ZELKPendingShutdown &shutdown)
{
    QString text = ZELKDateText(shutdown.date);
    if (shutdown.kind == ZELKShutdownKind::Restart)
        text += QLatin1Char(' ') + restart;
    const QByteArray bytes = text.toLatin1() + '\n';
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
