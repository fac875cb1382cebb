#pragma once

#include "ZELKEventStream.h"

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <string_view>

/// One event stream being read from a descriptor, in pieces between which the event loop runs. A writer that
/// stays silent for the time limit has failed.
class ZELKEventFetch : public QObject
{
    Q_OBJECT

public:
    /// `take` is shown each event's bytes as they come, valid for the call; false from it ends the reading as
    /// failed.
    using Take = std::function<bool(std::string_view event)>;

    /// The limit, in milliseconds, is for the silence before and between the pieces, not for the whole.
    ZELKEventFetch(const QDBusUnixFileDescriptor &descriptor, Take take, int limit,
                   QObject *parent = nullptr);

Q_SIGNALS:
    /// Once: the stream was whole, or why not.
    void finished(bool complete, const QString &error);

private:
    void readSome();
    bool takeEvents();
    void finish(bool complete, const QString &error);

    QDBusUnixFileDescriptor m_descriptor;
    Take m_take;
    ZELKEventStreamReader m_reader;
    QSocketNotifier m_notifier;
    QTimer m_silence;
    bool m_finished = false;
};
