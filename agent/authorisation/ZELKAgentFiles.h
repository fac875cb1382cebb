#pragma once

#include "ZELKInstalledAgent.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

/// The files of an agent that records for all users, as the agent sees them: it may have them deleted, but
/// has no rights over them itself. A request in its runtime folder makes the service manager run the
/// installer, which deletes the bundle and the units; when the request is withdrawn it deletes the bus
/// policy.
class ZELKAgentFiles : public QObject
{
    Q_OBJECT

public:
    /// How long the deletion may take; less than a caller waits for its answer.
    static constexpr int usualTimeout = 3000;

    explicit ZELKAgentFiles(const ZELKInstalledAgent &place, int timeoutMilliseconds = usualTimeout,
                            QObject *parent = nullptr);

    using Handler = std::function<void(bool removed)>;
    /// `done` is called once, later, unless this object is destroyed before. False when this agent is none
    /// that was installed so, when a removal is under way, or when files are left after the time.
    void remove(const Handler &done);
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
