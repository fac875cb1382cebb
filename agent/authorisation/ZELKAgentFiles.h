#pragma once

#include "ZELKInstalledAgent.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

/// The files of an agent that records for all users, as the agent sees them: it may have them deleted, but
/// has no rights over them itself. A request in its runtime folder makes the service manager run the
/// installer, which deletes the bundle and the units. The bus policy stays until the job goes.
class ZELKAgentFiles : public QObject
{
    Q_OBJECT

public:
    explicit ZELKAgentFiles(const ZELKInstalledAgent &place, QObject *parent = nullptr);

    using Handler = std::function<void(bool removed)>;
    /// `done` is called once, later, unless this object is destroyed before. True also when the files were
    /// gone before, as when the job's own removal did not follow. False when this agent is none that was
    /// installed so, when a removal is under way, or when files are left after the time.
    void remove(int milliseconds, const Handler &done);
    /// Withdraws the request: everybody who has to be told was told.
    void finish();

private:
    bool areRemoved() const;
    void look();
    void answer(bool removed);

    ZELKInstalledAgent m_place;
    QFileSystemWatcher m_watcher;
    QTimer m_limit;
    Handler m_done;
};
