#pragma once

#include "ZELKLWAWatcher.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>

class QFile;
struct ZELKAccountingRecords;

/// Boots and shut-downs from the system's accounting file: the whole file at start, then what it grows by. A
/// file that shrank or was replaced (rotation) is read anew; recording the same event twice is the store's to
/// refuse.
class ZELKLWASystemAccountingWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    /// The end of a record that is being written comes at once; what has not come by then is no record.
    static constexpr int millisecondsToWriteARecord = 1000;

    ZELKLWASystemAccountingWatcher(const QString &path, ZELKLWAEventSink sink, QObject *parent = nullptr);

    void start() override;
    void stop() override;

private:
    void watch();
    void readNew();
    bool readChunk(QFile &file, ZELKAccountingRecords &skipped);
    void tellOfSkipped(const ZELKAccountingRecords &skipped) const;

    QString m_path;
    QFileSystemWatcher m_watcher;
    bool m_running = false;
    quint64 m_fileNumber = 0;
    qint64 m_offset = 0;
    qint64 m_size = 0;
    /// Bytes at the end that are less than a record, and the wait for the rest of it.
    std::size_t m_strayBytes = 0;
    QTimer m_restOfRecord;
};
