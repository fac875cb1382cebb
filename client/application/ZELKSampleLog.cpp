#include "ZELKSampleLog.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKCommandLineText.h"
#include "ZELKDamagedDatabase.h"
#include "ZELKFileManager.h"
#include "ZELKLineSource.h"
#include "ZELKRawEventImport.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>

#include <sys/file.h>

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool import(const ZELKApplicationSettings &settings, const QByteArray &lines)
{
    QTemporaryFile file;
    if (lines.isEmpty() || !file.open() || file.write(lines) != lines.size() || !file.seek(0))
        return false;
    ZELKApplicationWiring wiring(settings, ZELKApplicationWiring::World::withoutAgent());
    ZELKRawEventImport import(wiring.store(), [](std::uint64_t, const QString &) {});
    ZELKLineSource source(file.handle(), ZELKRawEventImport::longestLine);
    return import.run(source) && source.error().isEmpty() && import.skipped() == 0;
}

} // namespace

QString ZELKSampleLog::profile()
{
    return QStringLiteral("sample");
}

ZELKSampleLog::ZELKSampleLog(const ZELKApplicationSettings &settings)
    : m_settings(settings)
    , m_folder(QFileInfo(settings.cacheFile()).path())
    , m_mark(m_folder + QLatin1String("/imported"))
    , m_lock(m_folder + QLatin1String("/lock"))
{
}

std::optional<QString> ZELKSampleLog::prepare()
{
    if (!ZELKFileManager::makeFolder(m_folder) && takePlace())
        return std::nullopt;
    return ZELKCommandLineText("The sample log cannot be opened.");
}

/// Where nothing can be locked, as on some servers or in a folder that is only read, this run is taken to be
/// alone. A run that waited for another one to make the log makes it itself where that one did not.
bool ZELKSampleLog::takePlace()
{
    if (!m_lock.open(QIODevice::WriteOnly))
        return make();
    for (int tries = 0; tries < 2; ++tries) {
        const bool isAlone = ::flock(m_lock.handle(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        const bool isMade = isAlone && make();
        ::flock(m_lock.handle(), LOCK_SH);
        if (isAlone || isThere())
            return isMade || !isAlone;
    }
    return false;
}

bool ZELKSampleLog::isThere() const
{
    return QFile::exists(m_mark) && QFile::exists(m_settings.cacheFile());
}

bool ZELKSampleLog::make() const
{
    const QByteArray packed = contentsOf(
        m_settings.bundle->pathForResource(QStringLiteral("SampleLog"), QStringLiteral("jsonl.z")));
    const QByteArray sum = QCryptographicHash::hash(packed, QCryptographicHash::Sha256).toHex();
    if (!packed.isEmpty() && contentsOf(m_mark) == sum && isThere())
        return true;
    QFile::remove(m_mark);
    for (const QString &suffix : ZELKDamagedDatabase::suffixes())
        QFile::remove(m_settings.cacheFile() + suffix);
    bool isImported = false;
    zelkGuard([&] { isImported = import(m_settings, qUncompress(packed)); });
    return isImported && !ZELKFileManager::writeFile(m_mark, sum);
}
