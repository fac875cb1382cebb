#pragma once

#include "StoreFixture.h"
#include "ZELKEventStream.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

inline QByteArray streamOf(const QList<QByteArray> &events)
{
    QByteArray bytes = ZELKEventStream::begin();
    for (const QByteArray &event : events)
        ZELKEventStream::append(bytes, {event.constData(), std::size_t(event.size())});
    return bytes + ZELKEventStream::end(std::uint64_t(events.size()));
}

/// An agent on a bus connection of its own.
class FakeAgent : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.zelk.lullwatch.ZELKLWAServiceProtocol")

public:
    struct Question
    {
        double from;
        double to;
    };
    using Answer = std::function<void(const QDBusMessage &call)>;

    explicit FakeAgent(QDBusConnection::BusType bus = QDBusConnection::SessionBus)
        : m_bus(QDBusConnection::connectToBus(bus, u"agent %1"_s.arg(int(bus))))
    {
        m_bus.registerObject(ZELKServiceNames::eventServicePath(), this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(u"org.zelk.lullwatch.agent"_s);
    }
    ~FakeAgent() override { vanish(); }

    void vanish()
    {
        for (const int writingEnd : std::exchange(m_open, {}))
            close(writingEnd);
        m_bus.unregisterObject(ZELKServiceNames::eventServicePath());
        QDBusConnection::disconnectFromBus(m_bus.name());
    }
    /// Answers a call with these bytes: through a pipe as far as one holds them, else from memory.
    void give(const QDBusMessage &call, const QByteArray &bytes, bool staysOpen = false)
    {
        constexpr int mostInAPipe = 1 << 20;
        int ends[2] = {-1, -1};
        if (bytes.size() > mostInAPipe)
            ends[0] = ends[1] = memfd_create("stream", MFD_CLOEXEC);
        else if (pipe2(ends, O_CLOEXEC) == 0)
            fcntl(ends[1], F_SETPIPE_SZ, mostInAPipe);
        if (write(ends[1], bytes.constData(), std::size_t(bytes.size())) != bytes.size())
            qFatal("The stream cannot be written");
        lseek(ends[0], 0, SEEK_SET);
        giveDescriptor(call, ends[0]);
        if (staysOpen)
            m_open.append(ends[1]);
        else if (ends[1] != ends[0])
            close(ends[1]);
    }
    void giveDescriptor(const QDBusMessage &call, int descriptor)
    {
        QDBusUnixFileDescriptor given;
        given.giveFileDescriptor(descriptor);
        m_bus.send(call.createReply(QVariant::fromValue(given)));
    }
    QDBusMessage call(const char *service, const char *path, const char *interface, const char *method,
                      const QVariantList &arguments = {}) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QLatin1String(service), QLatin1String(path), QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        return message;
    }
    QDBusConnection bus() const { return m_bus; }

    QList<ZELKRawEvent> events;
    Answer answer; ///< instead of the events
    QList<Question> questions;
    QStringList registrations;

public Q_SLOTS:
    QDBusUnixFileDescriptor sortedEventsFromDate(double from, double to, const QDBusMessage &call)
    {
        questions.append({from, to});
        call.setDelayedReply(true);
        if (answer) {
            answer(call);
            return {};
        }
        QList<QByteArray> chosen;
        for (const ZELKRawEvent &event : events) {
            const double date = event.string(ZELKEventKeyDate).toDouble();
            if (date >= from && date <= to)
                chosen.append(bytesOf(event));
        }
        give(call, streamOf(chosen));
        return {};
    }
    Q_NOREPLY void registerForEventUpdates(const QString &serviceName) { registrations.append(serviceName); }

private:
    QDBusConnection m_bus;
    QList<int> m_open; // writing ends
};
