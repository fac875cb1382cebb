#include "ZELKApplicationWiring.h"

#include "ZELKAssertion.h"
#include "ZELKNoAgent.h"
#include "ZELKSQLitePort.h"
#include "ZELKServiceNames.h"

#include <utility>

using Notification = ZELKLWCDateRangeController::ApplicationNotification;

namespace {

ZELKLWCStore::World storeWorld(const ZELKApplicationSettings &settings,
                               const ZELKApplicationWiring::World &world)
{
    ZELKLWCStore::World store{settings.bundle, world.sqlite, world.bus, settings.cacheFile()};
    if (world.systemBus)
        store.systemBus = *world.systemBus;
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
    const QDBusConnection system = QDBusConnection::systemBus();
    World world{ZELKAgentPorts::onBuses(system, session), session, std::make_shared<ZELKSQLitePort>()};
    world.systemBus = system;
    return world;
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
    if (world.systemBus)
        watchAgent(*world.systemBus);
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
    QObject::connect(&m_agentController, &ZELKAgentController::stateChanged, &m_agentController,
                     [this] { zelkGuard([this] { agentStateChanged(); }); });
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
    auto watcher = std::make_unique<QDBusServiceWatcher>(
        ZELKServiceNames::controlServiceName(m_agentController.agentName()), bus);
    QObject::connect(watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, &m_agentController,
                     [this](const QString &, const QString &, const QString &owner) {
                         zelkGuard([&] { agentOwnerChanged(!owner.isEmpty()); });
                     });
    m_agentWatchers.push_back(std::move(watcher));
}

/// The service of a job that died comes back when the job's manager starts it again. Then nothing has
/// changed, and the controller, which waits for a change, would look without end.
void ZELKApplicationWiring::agentOwnerChanged(bool isThere)
{
    const bool works = m_agentController.installed() && m_agentController.enabled();
    if (isThere && works && std::exchange(m_isAgentMissing, false)) {
        m_agentController.checkForStateChange();
        m_agentController.forgetExpectedStateChange();
    }
    if (isThere == m_agentController.installed() || m_agentController.isStateChangeExpected())
        return;
    m_isAgentMissing = !isThere;
    m_agentController.expectStateChange();
}

void ZELKApplicationWiring::agentStateChanged()
{
    const int state = m_agentController.state();
    if (state == ZELKAgentController::Inconsistent || !std::exchange(m_isAgentMissing, false))
        return;
    if (state != ZELKAgentController::NotInstalled)
        m_agentController.forgetExpectedStateChange();
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
