#include "ZELKApplicationWiring.h"

#include "ZELKAssertion.h"
#include "ZELKNoAgent.h"
#include "ZELKSQLitePort.h"
#include "ZELKServiceNames.h"

using Notification = ZELKLWCDateRangeController::ApplicationNotification;

namespace {

ZELKLWCStore::World storeWorld(const ZELKApplicationSettings &settings,
                               const ZELKApplicationWiring::World &world)
{
    ZELKLWCStore::World store{settings.bundle, world.sqlite, world.bus, settings.cacheFile()};
    store.servesUpdates = world.servesUpdates;
    store.setsDamagedAside = world.setsDamagedAside;
    return store;
}

} // namespace

ZELKApplicationWiring::World ZELKApplicationWiring::World::real(const ZELKApplicationSettings &settings)
{
    if (!settings.knowsAgent())
        return withoutAgent();
    const QDBusConnection session = QDBusConnection::sessionBus();
    return {ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), session), session,
            std::make_shared<ZELKSQLitePort>()};
}

ZELKApplicationWiring::World ZELKApplicationWiring::World::withoutAgent()
{
    return {ZELKNoAgent::ports(), ZELKNoAgent::bus(), std::make_shared<ZELKSQLitePort>()};
}

ZELKApplicationWiring::ZELKApplicationWiring(const ZELKApplicationSettings &settings, const World &world)
    : m_settings(settings)
    , m_defaults(settings.defaultsFile())
    , m_dateRange(m_defaults)
    , m_agentController(world.ports)
    , m_store(new ZELKLWCStore(storeWorld(settings, world)))
{
    ZELKLWClientAppDelegate::initialize(*settings.bundle, m_defaults);
    connectOutlets();
    awakeFromNib();
    watchAgent(world.bus);
}

ZELKApplicationWiring::~ZELKApplicationWiring() = default;

void ZELKApplicationWiring::EndStore::operator()(ZELKLWCStore *store) const
{
    zelkGuard([store] { store->applicationWillTerminate(); });
    delete store;
}

void ZELKApplicationWiring::connectOutlets()
{
    m_log.setDateRange(&m_dateRange);
    m_store->setAgentController(&m_agentController);
    m_store->setLogController(&m_log);
    m_delegate.setLog(&m_log);
    m_delegate.setStore(m_store.get());
    m_delegate.setAgentController(&m_agentController);
}

void ZELKApplicationWiring::awakeFromNib()
{
    m_dateRange.awakeFromNib();
    m_log.awakeFromNib();
    m_store->awakeFromNib();
}

/// The controller only looks when somebody asks it to. An agent that was killed, or started from elsewhere,
/// shows at the bus; then the controller is to look until the state has settled.
void ZELKApplicationWiring::watchAgent(const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return;
    m_agentWatcher.setConnection(bus);
    m_agentWatcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_agentWatcher.addWatchedService(ZELKServiceNames::controlServiceName(m_agentController.agentName()));
    QObject::connect(&m_agentWatcher, &QDBusServiceWatcher::serviceOwnerChanged, &m_agentController,
                     [this](const QString &, const QString &, const QString &owner) {
                         zelkGuard([&] { agentOwnerChanged(!owner.isEmpty()); });
                     });
}

void ZELKApplicationWiring::agentOwnerChanged(bool isThere)
{
    if (isThere != m_agentController.installed() && !m_agentController.isStateChangeExpected())
        m_agentController.expectStateChange();
}

void ZELKApplicationWiring::applicationDidFinishLaunching()
{
    m_dateRange.applicationDidNotify(Notification::DidFinishLaunching);
    m_delegate.applicationDidFinishLaunching();
}

std::optional<ZELKAgentError> ZELKApplicationWiring::startAgentIfAbsent()
{
    if (m_agentController.installed())
        return std::nullopt;
    return m_agentController.startWithState(ZELKAgentController::SessionApplication);
}

void ZELKApplicationWiring::applicationWillTerminate()
{
    if (m_log.count() > 0)
        m_dateRange.applicationDidNotify(Notification::WillTerminate);
    m_delegate.applicationWillTerminate();
    m_store->applicationWillTerminate();
}
