#include "ZELKLWAService.h"

#include "ZELKAssertion.h"

#include <QDBusMessage>

#include <algorithm>
#include <csignal>

ZELKLWAService::ZELKLWAService(const QString &version, ZELKLWAEventStore &store,
                               ZELKLWAUpdateAnnouncer &announcer, QObject *parent)
    : QObject(parent)
    , m_version(version)
    , m_store(store)
    , m_announcer(announcer)
{
    std::signal(SIGPIPE, SIG_IGN);
}

ZELKLWAService::~ZELKLWAService() = default;

QDBusUnixFileDescriptor ZELKLWAService::sortedEventsFromDate(double from, double to)
{
    QDBusUnixFileDescriptor readingEnd;
    zelkGuard([&] {
        Q_EMIT streamAsked();
        if (streams() < mostStreams) {
            auto pipe = std::make_unique<ZELKLWAEventPipe>(m_store, from, to, patience);
            if (pipe->isOpen()) {
                connect(pipe.get(), &ZELKLWAEventPipe::finished, this,
                        [this, it = pipe.get()] { forget(it); });
                readingEnd = pipe->takeReadingEnd();
                m_pipes.push_back(std::move(pipe));
            }
        }
    });
    if (!readingEnd.isValid())
        refuse();
    return readingEnd;
}

void ZELKLWAService::refuse()
{
    if (calledFromDBus())
        sendErrorReply(QDBusError::LimitsExceeded, QStringLiteral("Too many event streams are open."));
}

/// Called by the pipe itself, so it goes at the next turn of the loop.
void ZELKLWAService::forget(const ZELKLWAEventPipe *pipe)
{
    const auto found =
        std::find_if(m_pipes.begin(), m_pipes.end(), [&](const auto &it) { return it.get() == pipe; });
    if (found == m_pipes.end())
        return;
    found->release()->deleteLater();
    m_pipes.erase(found);
    Q_EMIT streamFinished();
}

void ZELKLWAService::registerForEventUpdates(const QString &serviceName)
{
    zelkGuard([&] { m_announcer.add(serviceName, message().service()); });
}

void ZELKLWAService::unregisterForEventUpdates(const QString &serviceName)
{
    zelkGuard([&] { m_announcer.remove(serviceName, message().service()); });
}
