#include "ZELKDelayLock.h"

#include "ZELKBusCall.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"

#include <QDBusMessage>

ZELKDelayLock::ZELKDelayLock(const QDBusConnection &systemBus, const QString &what, QObject *parent)
    : QObject(parent)
    , m_bus(systemBus)
    , m_what(what)
{
}

void ZELKDelayLock::take()
{
    if (m_requested || m_denied)
        return;
    m_requested = true;
    QDBusMessage inhibit = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    inhibit << m_what << QStringLiteral("Lullwatch") << QStringLiteral("Records sleep and shut-down")
            << QStringLiteral("delay");
    ZELKBusCall::send(m_bus, inhibit, this, [this, request = ++m_request](const QDBusMessage &answer) {
        if (request == m_request && m_requested)
            didArrive(answer);
    });
}

void ZELKDelayLock::didArrive(const QDBusMessage &answer)
{
    m_requested = false;
    if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("h")) {
        m_lock = answer.arguments().constFirst().value<QDBusUnixFileDescriptor>();
        m_complained = false;
        return;
    }
    const bool busy = answer.errorName() == QLatin1String("org.freedesktop.login1.OperationInProgress");
    m_denied = !busy;
    if (m_denied && !m_complained)
        ZELKConsole::log(ZELKFormat("logind gave no lock to delay %@: %@", {m_what, answer.errorMessage()}));
    m_complained = m_complained || m_denied;
}

void ZELKDelayLock::setBus(const QDBusConnection &systemBus)
{
    forget();
    m_bus = systemBus;
}

/// A default-constructed descriptor, since setting an invalid number keeps the old one open.
void ZELKDelayLock::release()
{
    m_requested = m_denied = false;
    m_lock = QDBusUnixFileDescriptor();
}
