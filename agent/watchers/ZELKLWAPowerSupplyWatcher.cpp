#include "ZELKLWAPowerSupplyWatcher.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKKernelPowerSupplies.h"

#include <chrono>

namespace {

constexpr int secondsBetweenReadings = 60;

} // namespace

ZELKLWAPowerSupplyWatcher::ZELKLWAPowerSupplyWatcher(const QString &folder, ZELKLWAEventSink sink,
                                                     QObject *parent)
    : ZELKLWAPowerSupplyWatcher(folder, std::move(sink), std::make_shared<ZELKPowerSourceLedger>(), parent)
{
}

ZELKLWAPowerSupplyWatcher::ZELKLWAPowerSupplyWatcher(const QString &folder, ZELKLWAEventSink sink,
                                                     std::shared_ptr<ZELKPowerSourceLedger> ledger,
                                                     QObject *parent)
    : ZELKLWAWatcher(std::move(sink), parent)
    , m_folder(folder)
    , m_ledger(std::move(ledger))
{
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    setInterval(secondsBetweenReadings);
    connect(&m_timer, &QTimer::timeout, this, [this] { zelkGuard([&] { readNow(); }); });
}

void ZELKLWAPowerSupplyWatcher::start()
{
    m_ledger->readerDidChange();
    readNow();
    m_timer.start();
}

void ZELKLWAPowerSupplyWatcher::stop()
{
    m_timer.stop();
}

void ZELKLWAPowerSupplyWatcher::setInterval(int seconds)
{
    m_timer.setInterval(std::chrono::seconds(seconds));
}

void ZELKLWAPowerSupplyWatcher::readNow()
{
    checkWake();
    record(m_ledger->eventsFor(ZELKKernelPowerSupplies::read(m_folder),
                               ZELKEnvironment::current().clock->now()));
}
