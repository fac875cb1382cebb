#include "ZELKApplicationWiring.h"

#include "ZELKAssertion.h"
#include "ZELKNoAgent.h"
#include "ZELKSQLitePort.h"

using Notification = ZELKLWCDateRangeController::ApplicationNotification;

namespace {

ZELKLWCStore::World storeWorld(const ZELKApplicationSettings &settings,
                               const ZELKApplicationWiring::World &world)
{
    ZELKLWCStore::World store{settings.bundle, world.sqlite, world.bus, settings.cacheFile()};
    if (world.systemBus)
        store.systemBus = *world.systemBus;
    store.servesUpdates = world.servesBus;
    store.setsDamagedAside = world.setsDamagedAside;
    return store;
}

} // namespace

ZELKApplicationWiring::World ZELKApplicationWiring::World::real(const ZELKApplicationSettings &settings)
{
    if (!settings.knowsAgent())
        return withoutAgent();
    const QDBusConnection session = QDBusConnection::sessionBus();
    const QDBusConnection system = QDBusConnection::systemBus();
    World world{ZELKAgentPorts::onBuses(system, session), session, std::make_shared<ZELKSQLitePort>()};
    world.systemBus = system;
    if (settings.databaseFile.isEmpty())
        world.applicationsMenu = ZELKApplicationsMenu::Folders::standard();
    return world;
}

ZELKApplicationWiring::World ZELKApplicationWiring::World::withoutAgent()
{
    return {ZELKNoAgent::ports(), ZELKNoAgent::bus(), std::make_shared<ZELKSQLitePort>()};
}

ZELKApplicationWiring::ZELKApplicationWiring(const ZELKApplicationSettings &settings, const World &world)
    : m_settings(settings)
    , m_bus(world.bus)
    , m_systemBus(world.systemBus.value_or(ZELKNoAgent::bus()))
    , m_servesBus(world.servesBus)
    , m_applicationsMenu(world.applicationsMenu)
    , m_defaults(settings.defaultsFile())
    , m_dateRange(m_defaults)
    , m_agentController(world.ports)
    , m_store(new ZELKLWCStore(storeWorld(settings, world)))
    , m_agentWatch(m_agentController, world.agentPatience)
{
    ZELKLWClientAppDelegate::initialize(*settings.bundle, m_defaults);
    connectOutlets();
    awakeFromNib();
    m_agentWatch.watchBus(world.bus);
    if (world.systemBus)
        m_agentWatch.watchBus(*world.systemBus);
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
