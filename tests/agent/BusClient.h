#pragma once

#include "AgentFixture.h"
#include "ZELKEventStream.h"
#include "ZELKRawEvent.h"
#include "ZELKServiceNames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QEventLoop>
#include <QObject>
#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

inline QDBusMessage eventServiceCall(const char *method, const QVariantList &arguments = {})
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.zelk.lullwatch.agent"_s, ZELKServiceNames::eventServicePath(),
        ZELKServiceNames::eventServiceInterface(), QString::fromLatin1(method));
    call.setArguments(arguments);
    return call;
}

inline QDBusMessage controlServiceCall(const char *method, const QVariantList &arguments = {})
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.zelk.lullwatch.agent._service"_s, ZELKServiceNames::controlServicePath(),
        ZELKServiceNames::controlServiceInterface(), QString::fromLatin1(method));
    call.setArguments(arguments);
    return call;
}

/// Calls an agent that lives in this process too.
inline QDBusMessage answerTo(const QDBusConnection &bus, const QDBusMessage &call)
{
    return bus.call(call, QDBus::BlockWithGui, 5000);
}

struct StreamedEvents
{
    ZELKEventStreamReader::State state = ZELKEventStreamReader::State::Reading;
    QStringList dates;
    QStringList names;
};

/// Reads a stream to its end while the loop of this process goes on.
inline StreamedEvents readStream(const QDBusUnixFileDescriptor &descriptor)
{
    StreamedEvents found;
    ZELKEventStreamReader reader;
    ZELKRawEventReader events;
    QEventLoop loop;
    fcntl(descriptor.fileDescriptor(), F_SETFL, O_NONBLOCK);
    QSocketNotifier notifier(descriptor.fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &loop, [&] {
        char bytes[65536];
        const ssize_t size = read(descriptor.fileDescriptor(), bytes, sizeof bytes);
        if (size == 0 || (size < 0 && errno != EAGAIN))
            loop.quit();
        if (size <= 0)
            return;
        reader.feed({bytes, std::size_t(size)});
        while (const auto event = reader.next())
            if (events.read(*event) == ZELKRawEventReader::Kind::Texts) {
                found.dates.append(text(events.view().date));
                found.names.append(text(events.view().description));
            }
    });
    loop.exec();
    found.state = reader.state();
    return found;
}

/// The store's call-back service.
class UpdateListener : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.zelk.lullwatch.ZELKLWAUpdateProtocol")

public:
    explicit UpdateListener(QDBusConnection bus)
    {
        bus.registerObject(ZELKServiceNames::storeServicePath(), this, QDBusConnection::ExportAllSlots);
    }
    int told = 0;

public Q_SLOTS:
    void eventsDidChange() { ++told; }
};
