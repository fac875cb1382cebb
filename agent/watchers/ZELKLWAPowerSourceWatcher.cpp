#include "ZELKLWAPowerSourceWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKBusCall.h"

#include <QDBusMessage>

ZELKLWAPowerSourceWatcher::ZELKLWAPowerSourceWatcher(const QDBusConnection &systemBus,
                                                     const QString &powerSupplyFolder, ZELKLWAEventSink sink,
                                                     ZELKPowerSourceNameMemory *names, QObject *parent)
    : ZELKLWAWatcher(sink, parent)
    , m_bus(systemBus)
    , m_ledger(std::make_shared<ZELKPowerSourceLedger>(names))
    , m_uPower(systemBus, powerSupplyFolder, sink, m_ledger)
    , m_kernel(powerSupplyFolder, std::move(sink), m_ledger)
    , m_services(ZELKUPowerPort::serviceName(), systemBus)
{
    m_uPower.setWakeCheck([this] { checkWake(); });
    m_kernel.setWakeCheck([this] { checkWake(); });
    connect(&m_services, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                zelkGuard([&] {
                    if (m_session)
                        use(owner.isEmpty() ? Reader::Kernel : Reader::UPower);
                });
            });
    connect(&m_uPower, &ZELKLWAUPowerWatcher::didFail, this, [this] { use(Reader::Kernel); });
}

void ZELKLWAPowerSourceWatcher::start()
{
    if (m_session)
        return;
    m_session = std::make_unique<QObject>();
    if (m_bus.isConnected())
        lookForUPower();
    else
        use(Reader::Kernel);
}

void ZELKLWAPowerSourceWatcher::stop()
{
    m_session.reset();
    use(Reader::None);
}

void ZELKLWAPowerSourceWatcher::setInterval(int seconds)
{
    m_kernel.setInterval(seconds);
}

void ZELKLWAPowerSourceWatcher::setConfigurationFile(const QString &file)
{
    m_uPower.setConfigurationFile(file);
}

void ZELKLWAPowerSourceWatcher::systemDidWake(ZELKDate wake)
{
    m_uPower.systemDidWake(wake);
    if (m_reader == Reader::Kernel)
        m_kernel.readNow();
}

void ZELKLWAPowerSourceWatcher::setBus(const QDBusConnection &systemBus)
{
    const bool runs = m_session != nullptr;
    stop();
    m_bus = systemBus;
    m_uPower.setBus(systemBus);
    m_services.setConnection(systemBus);
    if (runs)
        start();
}

void ZELKLWAPowerSourceWatcher::lookForUPower()
{
    ZELKBusCall::askForOwner(m_bus, ZELKUPowerPort::serviceName(), m_session.get(), [this](bool isThere) {
        if (m_reader != Reader::None)
            return;
        if (isThere)
            use(Reader::UPower);
        else
            startUPower();
    });
}

/// When it is there, the bus has told of its owner before it answers.
void ZELKLWAPowerSourceWatcher::startUPower()
{
    QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
    request << ZELKUPowerPort::serviceName() << 0U;
    ZELKBusCall::send(m_bus, request, m_session.get(), [this](const QDBusMessage &answer) {
        if (m_reader == Reader::None)
            use(answer.type() == QDBusMessage::ReplyMessage ? Reader::UPower : Reader::Kernel);
    });
}

/// UPower is begun with anew when it has a new owner.
void ZELKLWAPowerSourceWatcher::use(Reader reader)
{
    if (reader == Reader::Kernel && m_reader == Reader::Kernel)
        return;
    m_uPower.stop();
    m_kernel.stop();
    m_reader = reader;
    if (reader == Reader::UPower)
        m_uPower.start();
    else if (reader == Reader::Kernel)
        m_kernel.start();
}
