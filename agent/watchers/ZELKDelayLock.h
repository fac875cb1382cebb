#pragma once

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

class QDBusMessage;

/// A lock of logind's that delays one thing. One that delays two is another right, which logind gives to
/// fewer: a program without a session gets the two apart, but not in one.
class ZELKDelayLock : public QObject
{
    Q_OBJECT

public:
    /// `what` is "sleep" or "shutdown".
    ZELKDelayLock(const QDBusConnection &systemBus, const QString &what, QObject *parent = nullptr);

    /// Asks for the lock; one that is held is kept until the new one is there. logind refuses while what the
    /// lock would delay goes on: ask again later. A denial for another reason is one console line, and stands
    /// until the next release or forget().
    void take();
    /// Lets go on what waits for us. An answer that is on its way is thrown away.
    void release();
    /// logind is another one now: it may think otherwise, but has taken over the locks there are.
    void forget() { m_requested = m_denied = false; }
    /// It is reached another way from now on, and may be another one too.
    void setBus(const QDBusConnection &systemBus);

    bool isHeld() const { return m_lock.isValid(); }
    bool isDenied() const { return m_denied; }

private:
    void didArrive(const QDBusMessage &answer);

    QDBusConnection m_bus;
    QString m_what;
    QDBusUnixFileDescriptor m_lock;
    /// Counts the requests; an answer to any but the last is stale.
    int m_request = 0;
    bool m_requested = false;
    bool m_denied = false;
    bool m_complained = false;
};
