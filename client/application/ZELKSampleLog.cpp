#include "ZELKSampleLog.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKCommandLineText.h"
#include "ZELKFileManager.h"
#include "ZELKLineSource.h"
#include "ZELKRawEventImport.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace {

/// Which history the cache was made of.
QString markOf(const ZELKApplicationSettings &settings)
{
    return QFileInfo(settings.cacheFile()).path() + QLatin1String("/imported");
}

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void removeCache(const QString &cache)
{
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(cache + QLatin1String(suffix));
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

std::optional<QString> ZELKSampleLog::prepare(const ZELKApplicationSettings &settings)
{
    const QString path =
        settings.bundle->pathForResource(QStringLiteral("SampleLog"), QStringLiteral("jsonl.z"));
    const QByteArray packed = contentsOf(path);
    const QByteArray sum = QCryptographicHash::hash(packed, QCryptographicHash::Sha256).toHex();
    const QString mark = markOf(settings);
    if (!packed.isEmpty() && contentsOf(mark) == sum && QFile::exists(settings.cacheFile()))
        return std::nullopt;
    QFile::remove(mark);
    removeCache(settings.cacheFile());
    bool isThere = false;
    zelkGuard([&] { isThere = import(settings, qUncompress(packed)); });
    if (!isThere || ZELKFileManager::writeFile(mark, sum))
        return ZELKCommandLineText("The sample log cannot be opened.");
    return std::nullopt;
}
