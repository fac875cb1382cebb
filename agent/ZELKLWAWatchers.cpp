#include "ZELKLWAWatchers.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKLWADeviceWatcher.h"
#include "ZELKLWAPowerSourceWatcher.h"
#include "ZELKLWASleepWatcher.h"
#include "ZELKLWAStartupWatcher.h"
#include "ZELKLWASystemAccountingWatcher.h"

ZELKLWAWatchers::ZELKLWAWatchers(const Buses &buses, const ZELKLWAOptions &options,
                                 ZELKUserDefaults &settings, ZELKLWADefaults &defaults, ZELKLWAEventSink sink,
                                 const ZELKLWAMachine &machine, QObject *parent)
    : QObject(parent)
    , m_sink(std::move(sink))
    , m_startups(settings)
    , m_sourceNames(settings)
    , m_shutdowns(options.database + QStringLiteral("-shutdown"))
{
    makeAccountingWatchers(options, machine);
    makeSleepWatcher(buses, machine);
    makePowerWatchers(buses.system, options, defaults);
}

ZELKLWAWatchers::~ZELKLWAWatchers() = default;

void ZELKLWAWatchers::makeAccountingWatchers(const ZELKLWAOptions &options, const ZELKLWAMachine &machine)
{
    m_watchers.push_back(std::make_unique<ZELKLWASystemAccountingWatcher>(options.wtmp, wakefulSink()));
    ZELKLWAStartupWatcher::Places places = machine.kernel;
    places.wtmp = options.wtmp;
    m_watchers.push_back(std::make_unique<ZELKLWAStartupWatcher>(places, m_startups, wakefulSink()));
}

void ZELKLWAWatchers::makeSleepWatcher(const Buses &buses, const ZELKLWAMachine &machine)
{
    auto sleep = std::make_unique<ZELKLWASleepWatcher>(buses.system, m_sink, machine.suspendClock,
                                                       m_shutdowns, buses.session);
    m_sleep = sleep.get();
    m_watchers.push_back(std::move(sleep));
}

void ZELKLWAWatchers::makePowerWatchers(const QDBusConnection &systemBus, const ZELKLWAOptions &options,
                                        ZELKLWADefaults &defaults)
{
    auto power = std::make_unique<ZELKLWAPowerSourceWatcher>(systemBus, options.powerSupply, wakefulSink(),
                                                             &m_sourceNames);
    power->setInterval(defaults.powerSupplyInterval());
    connect(&defaults, &ZELKLWADefaults::powerSupplyIntervalChanged, power.get(),
            &ZELKLWAPowerSourceWatcher::setInterval);
    ZELKPoweredDevices::Folders folders;
    folders.powerSupply = options.powerSupply;
    auto devices = std::make_unique<ZELKLWADeviceWatcher>(folders, wakefulSink());
    power->setWakeCheck([this] { checkClocks(); });
    devices->setWakeCheck([this] { checkClocks(); });
    connect(m_sleep, &ZELKLWASleepWatcher::didWake, this, [power = power.get(), devices = devices.get()] {
        zelkGuard([&] {
            power->systemDidWake(ZELKEnvironment::current().clock->now());
            devices->systemDidWake();
        });
    });
    m_power = power.get();
    m_watchers.push_back(std::move(power));
    m_watchers.push_back(std::move(devices));
}

/// What another source tells comes after the sleep that it shows to be over.
ZELKLWAEventSink ZELKLWAWatchers::wakefulSink()
{
    return [this](const std::vector<ZELKLWAEvent> &events) {
        checkClocks();
        m_sink(events);
    };
}

void ZELKLWAWatchers::checkClocks()
{
    if (m_sleep)
        m_sleep->checkClocks();
}

void ZELKLWAWatchers::goOnWith(const ZELKMoment &announcedSleep)
{
    m_sleep->goOnWith(announcedSleep);
}

void ZELKLWAWatchers::setSystemBus(const QDBusConnection &bus)
{
    m_sleep->setBus(bus);
    m_power->setBus(bus);
}

void ZELKLWAWatchers::start()
{
    for (const auto &watcher : m_watchers)
        watcher->start();
}

void ZELKLWAWatchers::stop()
{
    for (const auto &watcher : m_watchers)
        watcher->stop();
}
