#pragma once

#include "ZELKLWAEventPipe.h"
#include "ZELKLWAUpdateAnnouncer.h"

#include <QDBusContext>
#include <QDBusUnixFileDescriptor>
#include <QObject>

#include <chrono>

/// The event service's object; the bus sees only the methods of ZELKLWAServiceProtocol.
class ZELKLWAService : public QObject, protected QDBusContext
{
    Q_OBJECT

public:
    static constexpr int mostStreams = 16;
    static constexpr std::chrono::seconds patience{60};

    /// From here on the process ignores SIGPIPE: a client may leave in the middle of its stream.
    ZELKLWAService(const QString &version, ZELKLWAEventStore &store, ZELKLWAUpdateAnnouncer &announcer,
                   QObject *parent = nullptr);
    ~ZELKLWAService() override;

    int streams() const { return int(m_pipes.size()); }

    QString version() const { return m_version; }
    /// The reading end of a pipe. Beyond `mostStreams` at once, or when the system has no pipe to give, the
    /// caller gets the error LimitsExceeded.
    QDBusUnixFileDescriptor sortedEventsFromDate(double from, double to);
    void registerForEventUpdates(const QString &serviceName);
    void unregisterForEventUpdates(const QString &serviceName);

Q_SIGNALS:
    void streamAsked();
    void streamFinished();

private:
    void refuse();
    void forget(const ZELKLWAEventPipe *pipe);

    QString m_version;
    ZELKLWAEventStore &m_store;
    ZELKLWAUpdateAnnouncer &m_announcer;
    std::vector<std::unique_ptr<ZELKLWAEventPipe>> m_pipes;
};
