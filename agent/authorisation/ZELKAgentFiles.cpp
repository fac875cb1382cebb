#include "ZELKAgentFiles.h"

#include "ZELKAssertion.h"
#include "ZELKFileManager.h"

#include <QFileInfo>

#include <utility>

ZELKAgentFiles::ZELKAgentFiles(const ZELKInstalledAgent &place, QObject *parent)
    : QObject(parent)
    , m_place(place)
{
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] { zelkGuard([this] { answer(areRemoved()); }); });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            [this] { zelkGuard([this] { look(); }); });
}

void ZELKAgentFiles::remove(int milliseconds, const Handler &done)
{
    const bool isInstalled = QFileInfo(m_place.runtimeFolder()).isWritable();
    const bool nothingIsLeft = isInstalled && areRemoved();
    if (m_done || !isInstalled || nothingIsLeft || ZELKFileManager::writeFile(m_place.request(), {})) {
        const bool removed = !m_done && nothingIsLeft;
        QTimer::singleShot(0, this, [done, removed] { zelkGuard([&] { done(removed); }); });
        return;
    }
    m_done = done;
    m_watcher.addPaths({m_place.bundleFolder(), m_place.unitFolder()});
    m_limit.start(milliseconds);
    look();
}

void ZELKAgentFiles::finish()
{
    ZELKFileManager::remove(m_place.request());
}

bool ZELKAgentFiles::areRemoved() const
{
    return !QFileInfo::exists(m_place.bundle()) && !QFileInfo::exists(m_place.unit());
}

void ZELKAgentFiles::look()
{
    if (areRemoved())
        answer(true);
}

void ZELKAgentFiles::answer(bool removed)
{
    const Handler done = std::exchange(m_done, {});
    m_limit.stop();
    if (const QStringList watched = m_watcher.directories(); !watched.isEmpty())
        m_watcher.removePaths(watched);
    if (!removed)
        finish();
    if (done)
        done(removed);
}
