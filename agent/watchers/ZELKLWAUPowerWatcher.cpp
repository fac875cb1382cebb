#include "ZELKLWAUPowerWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"

ZELKLWAUPowerWatcher::ZELKLWAUPowerWatcher(const QDBusConnection &systemBus, const QString &powerSupplyFolder,
                                           ZELKLWAEventSink sink,
                                           std::shared_ptr<ZELKPowerSourceLedger> ledger, QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_ledger(std::move(ledger))
    , m_devices(powerSupplyFolder)
    , m_port(systemBus)
{
    m_secondLook.setSingleShot(true);
    m_secondLook.setInterval(millisecondsToLeave);
    connectPort();
}

/// The port's signals come from within its guard.
void ZELKLWAUPowerWatcher::connectPort()
{
    connect(&m_port, &ZELKUPowerPort::deviceDidArrive, this, &ZELKLWAUPowerWatcher::takeDevice);
    connect(&m_port, &ZELKUPowerPort::deviceDidChange, this,
            [this](const QString &path, const QVariantMap &changes) {
                if (m_devices.changeDevice(path, changes))
                    tell();
            });
    connect(&m_port, &ZELKUPowerPort::deviceDidLeave, this, [this](const QString &path) {
        if (!m_devices.removeDevice(path))
            return;
        tell();
        m_secondLook.start();
    });
    connect(&m_secondLook, &QTimer::timeout, this, [this] { zelkGuard([this] { tell(); }); });
    connect(&m_port, &ZELKUPowerPort::onBatteryDidChange, this, [this](std::optional<bool> onBattery) {
        if (m_devices.setOnBattery(onBattery))
            tell();
    });
    connect(&m_port, &ZELKUPowerPort::didStart, this, [this] {
        m_isComplete = true;
        tell();
    });
    connect(&m_port, &ZELKUPowerPort::didFail, this, [this] {
        ZELKConsole::log(QStringLiteral("UPower does not tell of its devices."));
        stop();
        Q_EMIT didFail();
    });
}

void ZELKLWAUPowerWatcher::start()
{
    m_ledger->readerDidChange();
    m_isComplete = false;
    m_devices.clear();
    m_devices.setLevels(ZELKUPowerLevels::read(m_configurationFile));
    m_port.start();
}

void ZELKLWAUPowerWatcher::stop()
{
    m_isComplete = false;
    m_secondLook.stop();
    m_port.stop();
}

void ZELKLWAUPowerWatcher::setBus(const QDBusConnection &systemBus)
{
    stop();
    m_port.setBus(systemBus);
}

void ZELKLWAUPowerWatcher::systemDidWake(ZELKDate wake)
{
    m_devices.systemDidWake(wake);
    for (const QString &path : m_devices.paths())
        m_port.refresh(path);
}

void ZELKLWAUPowerWatcher::takeDevice(const QString &path, const QVariantMap &properties)
{
    if (m_devices.setDevice(path, properties))
        tell();
    else
        m_port.ignore(path);
}

void ZELKLWAUPowerWatcher::tell()
{
    if (!m_isComplete)
        return;
    checkWake();
    const ZELKDate now = ZELKEnvironment::current().clock->now();
    record(m_ledger->eventsFor(m_devices.supplies(now), now));
}
