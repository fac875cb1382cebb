#pragma once

#include "ZELKLWAEventStore.h"

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <limits>
#include <memory>

/// One client's event stream: reads the store page by page as the client empties the pipe, so that a stream
/// of any length holds a few hundred kilobytes and the agent serves others between the pages.
///
/// The stream is closed without its closing number when the store can not be read; when the client has not
/// read for `patience`, it is given up.
class ZELKLWAEventPipe : public QObject
{
    Q_OBJECT

public:
    /// Streams the settled events of `store` from `from` to `to`, both inclusive, and those that settled
    /// since the request before it (one second before `from`); none when either is NaN.
    ZELKLWAEventPipe(ZELKLWAEventStore &store, double from, double to, std::chrono::milliseconds patience,
                     QObject *parent = nullptr);
    ~ZELKLWAEventPipe() override;

    /// False when the system had no pipe to give.
    bool isOpen() const { return m_writingEnd >= 0; }
    /// The end that the client reads, a blocking one; hands it over.
    QDBusUnixFileDescriptor takeReadingEnd();

Q_SIGNALS:
    /// Once; nothing more will be written.
    void finished();

private:
    void openPipe();
    void close();
    void writeOn();
    bool fill();
    bool flush();

    ZELKLWAEventStore &m_store;
    ZELKLWAEventRange m_range;
    ZELKLWAEventPosition m_position{std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min()};
    QByteArray m_buffer;
    qsizetype m_written = 0;
    std::uint64_t m_count = 0;
    bool m_atEnd = false;
    QDBusUnixFileDescriptor m_readingEnd;
    int m_writingEnd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_patience;
};
