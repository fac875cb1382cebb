#include "ZELKCacheWatcher.h"

#include "ZELKAssertion.h"

#include <QFileInfo>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds pauseLength(300);

} // namespace

ZELKCacheWatcher::ZELKCacheWatcher(const QString &file, QObject *parent)
    : QObject(parent)
    , m_file(file)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseLength);
    connect(&m_pause, &QTimer::timeout, this, &ZELKCacheWatcher::cacheDidChange);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this,
            [this] { zelkGuard([this] { fileDidChange(); }); });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            [this] { zelkGuard([this] { folderDidChange(); }); });
    m_watcher.addPath(QFileInfo(file).absolutePath());
    watchNewFiles();
}

/// The pause runs on from the first write: one that never ended would keep the news for ever.
void ZELKCacheWatcher::fileDidChange()
{
    watchNewFiles(); // one that was replaced
    if (!m_pause.isActive())
        m_pause.start();
}

/// Other files of the folder are none of ours.
void ZELKCacheWatcher::folderDidChange()
{
    if (watchNewFiles())
        fileDidChange();
}

bool ZELKCacheWatcher::watchNewFiles()
{
    bool isAnyNew = false;
    for (const QString &path : {m_file, m_file + QStringLiteral("-wal")})
        if (!m_watcher.files().contains(path) && QFileInfo::exists(path))
            isAnyNew = m_watcher.addPath(path) || isAnyNew;
    return isAnyNew;
}
