#include "ZELKLWASystemAccountingWatcher.h"

#include "ZELKAccountingRecords.h"
#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <utility>

namespace {

constexpr qint64 recordsAChunk = 1000;

} // namespace

ZELKLWASystemAccountingWatcher::ZELKLWASystemAccountingWatcher(const QString &path, ZELKLWAEventSink sink,
                                                               QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_path(path)
{
    const auto changed = [this] {
        zelkGuard([&] {
            if (!m_running)
                return;
            watch();
            readNew();
        });
    };
    m_restOfRecord.setSingleShot(true);
    m_restOfRecord.setInterval(millisecondsToWriteARecord);
    connect(&m_restOfRecord, &QTimer::timeout, this, [this] {
        zelkGuard([&] {
            ZELKAccountingRecords skipped;
            skipped.strayBytes = m_strayBytes;
            tellOfSkipped(skipped);
        });
    });
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, changed);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, changed);
}

void ZELKLWASystemAccountingWatcher::start()
{
    if (m_running)
        return;
    m_running = true;
    m_fileNumber = 0;
    m_offset = 0;
    m_size = 0;
    watch();
    if (!QFileInfo(m_path).isReadable())
        ZELKConsole::log(ZELKFormat("No system accounting to read at %@.", {m_path}));
    readNew();
}

void ZELKLWASystemAccountingWatcher::stop()
{
    m_running = false;
    m_restOfRecord.stop();
    if (const QStringList paths = m_watcher.files() + m_watcher.directories(); !paths.isEmpty())
        m_watcher.removePaths(paths);
}

/// A rotated file leaves the watch with its name; the folder tells when the name is back.
void ZELKLWASystemAccountingWatcher::watch()
{
    const QString folder = QFileInfo(m_path).path();
    if (!m_watcher.directories().contains(folder) && QFileInfo(folder).isDir())
        m_watcher.addPath(folder);
    if (!m_watcher.files().contains(m_path) && QFileInfo::exists(m_path))
        m_watcher.addPath(m_path);
}

void ZELKLWASystemAccountingWatcher::readNew()
{
    QFile file(m_path);
    if (!QFileInfo(m_path).isFile() || !file.open(QIODevice::ReadOnly))
        return;
    struct stat status = {};
    if (fstat(file.handle(), &status) != 0)
        return;
    if (status.st_ino != m_fileNumber || status.st_size < m_offset)
        m_offset = m_size = 0;
    m_fileNumber = status.st_ino;
    if (status.st_size == m_size || !file.seek(m_offset))
        return;
    m_size = status.st_size;
    ZELKAccountingRecords skipped;
    while (readChunk(file, skipped)) {
    }
    m_strayBytes = std::exchange(skipped.strayBytes, 0);
    if (m_strayBytes > 0)
        m_restOfRecord.start();
    else
        m_restOfRecord.stop();
    tellOfSkipped(skipped);
}

void ZELKLWASystemAccountingWatcher::tellOfSkipped(const ZELKAccountingRecords &skipped) const
{
    if (skipped.skippedAny())
        ZELKConsole::log(ZELKFormat("Skipped in %@: %@.", {m_path, skipped.skippedText()}));
}

/// False at the end of the file. Adds to `skipped` what was passed over.
bool ZELKLWASystemAccountingWatcher::readChunk(QFile &file, ZELKAccountingRecords &skipped)
{
    const QByteArray bytes = file.read(recordsAChunk * qint64(ZELKAccountingRecords::recordSize()));
    const auto read = ZELKAccountingRecords::read({bytes.constData(), std::size_t(bytes.size())},
                                                  ZELKEnvironment::current().clock->now());
    m_offset += qint64(read.consumed);
    skipped.strayBytes = read.strayBytes;
    skipped.unknownTypes += read.unknownTypes;
    skipped.absurdTimes += read.absurdTimes;
    std::vector<ZELKLWAEvent> events;
    for (const auto &record : read.records)
        events.push_back(record.event());
    record(events);
    return read.consumed > 0 && read.strayBytes == 0;
}
