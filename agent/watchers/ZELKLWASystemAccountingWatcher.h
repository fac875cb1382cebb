#pragma once

#include "ZELKLWAWatcher.h"

#include <QFileSystemWatcher>
#include <QString>

class QFile;
struct ZELKAccountingRecords;

/// Boots and shut-downs from the system's accounting file: the whole file at start, then what it grows by. A
/// file that shrank or was replaced (rotation) is read anew; recording the same event twice is the store's to
/// refuse.
class ZELKLWASystemAccountingWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    ZELKLWASystemAccountingWatcher(const QString &path, ZELKLWAEventSink sink, QObject *parent = nullptr);

    void start() override;
    void stop() override;

private:
    void watch();
    void readNew();
    bool readChunk(QFile &file, ZELKAccountingRecords &skipped);

    QString m_path;
    QFileSystemWatcher m_watcher;
    bool m_running = false;
    quint64 m_fileNumber = 0;
    qint64 m_offset = 0;
    qint64 m_size = 0;
};
