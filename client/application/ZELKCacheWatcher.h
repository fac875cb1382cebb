#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

/// Tells when a cache's file, or the write-ahead log beside it, was written to, by whatever program; soon
/// after, and once for many writes.
class ZELKCacheWatcher : public QObject
{
    Q_OBJECT

public:
    /// The folder of `file` must be there; the files may come and go.
    explicit ZELKCacheWatcher(const QString &file, QObject *parent = nullptr);

Q_SIGNALS:
    void cacheDidChange();

private:
    void fileDidChange();
    void folderDidChange();
    bool watchNewFiles();

    QString m_file;
    QFileSystemWatcher m_watcher;
    QTimer m_pause;
};
