#include "ZELKUPowerPort.h"

#include "ZELKAssertion.h"
#include "ZELKBusCall.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"

#include <QDBusArgument>

namespace {

QString daemonPath()
{
    return QStringLiteral("/org/freedesktop/UPower");
}
QString daemonInterface()
{
    return QStringLiteral("org.freedesktop.UPower");
}
QString deviceInterface()
{
    return QStringLiteral("org.freedesktop.UPower.Device");
}
QString propertiesInterface()
{
    return QStringLiteral("org.freedesktop.DBus.Properties");
}

bool isAnswer(const QDBusMessage &message)
{
    return message.type() == QDBusMessage::ReplyMessage;
}

/// True when a message has the wanted form; else one console line.
bool makesSense(const QDBusMessage &message, const char *signature)
{
    if (message.signature() == QLatin1String(signature))
        return true;
    ZELKConsole::log(
        ZELKFormat("UPower says something of the form '%@' where '%s' belongs; it is passed over.",
                   {message.signature(), signature}));
    return false;
}

} // namespace

ZELKUPowerPort::ZELKUPowerPort(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
{
}

ZELKUPowerPort::~ZELKUPowerPort() = default;

/// What is asked for before everything was told, belongs to the start.
void ZELKUPowerPort::ask(const QDBusMessage &call, Handler answered)
{
    const bool counts = !m_started;
    m_answersToStart += counts ? 1 : 0;
    const QObject *session = m_session.get();
    ZELKBusCall::send(m_bus, call, m_session.get(),
                      [this, session, counts, answered = std::move(answered)](const QDBusMessage &answer) {
                          if (session == m_session.get())
                              answered(answer);
                          if (session == m_session.get() && counts)
                              answerDidCome();
                      });
}

void ZELKUPowerPort::answerDidCome()
{
    if (--m_answersToStart > 0)
        return;
    m_started = true;
    Q_EMIT didStart();
}

void ZELKUPowerPort::start()
{
    stop();
    m_session = std::make_unique<QObject>();
    listenToDaemon(true);
    ask(ZELKBusCall::getAll(serviceName(), daemonPath(), daemonInterface()),
        [this](const QDBusMessage &answer) {
            if (isAnswer(answer) && makesSense(answer, "a{sv}"))
                tellOfDaemon(qdbus_cast<QVariantMap>(answer.arguments().constFirst()));
        });
    const auto question = QDBusMessage::createMethodCall(serviceName(), daemonPath(), daemonInterface(),
                                                         QStringLiteral("EnumerateDevices"));
    ask(question, [this](const QDBusMessage &answer) {
        if (!isAnswer(answer) || !makesSense(answer, "ao")) {
            stop();
            Q_EMIT didFail();
            return;
        }
        for (const QDBusObjectPath &path :
             qdbus_cast<QList<QDBusObjectPath>>(answer.arguments().constFirst()))
            take(path.path());
    });
}

void ZELKUPowerPort::stop()
{
    if (!m_session)
        return;
    // The answer that is being looked at may be what stops us: its receiver must outlive it.
    m_session.release()->deleteLater();
    listenToDaemon(false);
    for (const QString &path : std::as_const(m_devices))
        listen(path, false);
    m_devices.clear();
    m_answersToStart = 0;
    m_started = false;
}

void ZELKUPowerPort::setBus(const QDBusConnection &bus)
{
    stop();
    m_bus = bus;
}

void ZELKUPowerPort::listenToDaemon(bool on)
{
    const auto hook = [&](const char *signal, const char *slot) {
        const QString name = QString::fromLatin1(signal);
        if (on)
            m_bus.connect(serviceName(), daemonPath(), daemonInterface(), name, this, slot);
        else
            m_bus.disconnect(serviceName(), daemonPath(), daemonInterface(), name, this, slot);
    };
    hook("DeviceAdded", SLOT(deviceAdded(QDBusMessage)));
    hook("DeviceRemoved", SLOT(deviceRemoved(QDBusMessage)));
    listen(daemonPath(), on);
}

void ZELKUPowerPort::listen(const QString &path, bool on)
{
    const QString signal = QStringLiteral("PropertiesChanged");
    if (on)
        m_bus.connect(serviceName(), path, propertiesInterface(), signal, this,
                      SLOT(propertiesChanged(QDBusMessage)));
    else
        m_bus.disconnect(serviceName(), path, propertiesInterface(), signal, this,
                         SLOT(propertiesChanged(QDBusMessage)));
}

/// Listens before it asks, so that nothing falls in between.
void ZELKUPowerPort::take(const QString &path)
{
    if (!m_devices.contains(path)) {
        m_devices.insert(path);
        listen(path, true);
    }
    read(path);
}

/// A device that has gone meanwhile does not answer, or is not listened to any more. An answer in whose wait
/// a change was told may be older than the change: it is asked for again.
void ZELKUPowerPort::read(const QString &path)
{
    ask(ZELKBusCall::getAll(serviceName(), path, deviceInterface()),
        [this, path, before = m_changes.value(path)](const QDBusMessage &answer) {
            if (m_changes.value(path) != before)
                read(path);
            else if (isAnswer(answer) && m_devices.contains(path) && makesSense(answer, "a{sv}"))
                Q_EMIT deviceDidArrive(path, qdbus_cast<QVariantMap>(answer.arguments().constFirst()));
        });
}

void ZELKUPowerPort::refresh(const QString &path)
{
    if (!m_session)
        return;
    const auto request =
        QDBusMessage::createMethodCall(serviceName(), path, deviceInterface(), QStringLiteral("Refresh"));
    ask(request, [this, path](const QDBusMessage &answer) {
        if (isAnswer(answer))
            read(path);
    });
}

void ZELKUPowerPort::ignore(const QString &path)
{
    if (m_devices.remove(path))
        listen(path, false);
}

void ZELKUPowerPort::tellOfDaemon(const QVariantMap &properties)
{
    const QVariant value = properties.value(QStringLiteral("OnBattery"));
    Q_EMIT onBatteryDidChange(value.typeId() == QMetaType::Bool ? std::optional(value.toBool())
                                                                : std::nullopt);
}

void ZELKUPowerPort::deviceAdded(const QDBusMessage &signal)
{
    zelkGuard([&] {
        if (m_session && makesSense(signal, "o"))
            take(signal.arguments().constFirst().value<QDBusObjectPath>().path());
    });
}

void ZELKUPowerPort::deviceRemoved(const QDBusMessage &signal)
{
    zelkGuard([&] {
        if (!m_session || !makesSense(signal, "o"))
            return;
        const QString path = signal.arguments().constFirst().value<QDBusObjectPath>().path();
        ignore(path);
        Q_EMIT deviceDidLeave(path);
    });
}

void ZELKUPowerPort::propertiesChanged(const QDBusMessage &signal)
{
    zelkGuard([&] {
        if (!m_session || !makesSense(signal, "sa{sv}as"))
            return;
        const QString interface = signal.arguments().at(0).toString();
        const auto changes = qdbus_cast<QVariantMap>(signal.arguments().at(1));
        const QStringList invalidated = signal.arguments().at(2).toStringList();
        if (interface == daemonInterface() && changes.contains(QStringLiteral("OnBattery")))
            tellOfDaemon(changes);
        if (interface != deviceInterface() || !m_devices.contains(signal.path()))
            return;
        ++m_changes[signal.path()];
        if (!invalidated.isEmpty())
            read(signal.path());
        Q_EMIT deviceDidChange(signal.path(), changes);
    });
}
