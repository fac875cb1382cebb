#pragma once

#include "ZELKAgentController.h"
#include "ZELKAgentWatch.h"
#include "ZELKApplicationSettings.h"
#include "ZELKApplicationsMenu.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCStore.h"
#include "ZELKLWClientAppDelegate.h"
#include "ZELKUserDefaults.h"

#include <QDBusConnection>

#include <memory>
#include <optional>

class ZELKSQLitePort;

/// The application's objects, made, connected and ended in the right order; the window and every command use
/// the same. What fails in the configuration throws.
class ZELKApplicationWiring
{
public:
    /// The outside as it is met.
    struct World
    {
        ZELKAgentPorts ports;
        QDBusConnection bus;
        std::shared_ptr<ZELKSQLitePort> sqlite;
        /// Whether this run is found on the bus: by the agent, which tells of updates, and by scripts. A run
        /// that ends by itself is not: it would keep their names from a window that stays.
        bool servesBus = true;
        /// As the store's world has it.
        bool setsDamagedAside = true;
        /// The system's bus: a job of the system is watched for there, and people's accounts are asked for.
        /// Nothing for a run without one.
        std::optional<QDBusConnection> systemBus = {};
        /// The desktop's applications menu, where this run may offer to come into it.
        std::optional<ZELKApplicationsMenu::Folders> applicationsMenu = {};
        std::chrono::milliseconds agentPatience = ZELKAgentWatch::usualPatience;

        /// The user's session bus and the system's; without an agent for settings that know of none.
        static World real(const ZELKApplicationSettings &settings);
        /// Nothing but the file system.
        static World withoutAgent();
    };

    /// Probes the agent once, which may block for the time limit of a remote call; touches neither the cache
    /// nor the log.
    ZELKApplicationWiring(const ZELKApplicationSettings &settings, const World &world);
    ~ZELKApplicationWiring();
    ZELKApplicationWiring(const ZELKApplicationWiring &) = delete;
    ZELKApplicationWiring &operator=(const ZELKApplicationWiring &) = delete;

    /// Launching has finished: the remembered range comes back, then the cache is read, then the agent asked.
    void applicationDidFinishLaunching();
    /// Starts the agent in its session form unless it is installed in some form already; does not wait for
    /// it.
    std::optional<ZELKAgentError> startAgentIfAbsent();
    /// The range is remembered and the store ended, with the time of its last synchronisation kept. A log
    /// without entries leaves the remembered range as it was: what is visible of nothing is only the day on
    /// which that was seen.
    void applicationWillTerminate();

    const ZELKApplicationSettings &settings() const { return m_settings; }
    /// Where services of the application stand.
    const QDBusConnection &bus() const { return m_bus; }
    /// Not connected in a run without one.
    const QDBusConnection &systemBus() const { return m_systemBus; }
    bool servesBus() const { return m_servesBus; }
    const std::optional<ZELKApplicationsMenu::Folders> &applicationsMenu() const
    {
        return m_applicationsMenu;
    }
    ZELKUserDefaults &defaults() { return m_defaults; }
    ZELKLWCDateRangeController &dateRange() { return m_dateRange; }
    ZELKLWCLog &log() { return m_log; }
    ZELKAgentController &agentController() { return m_agentController; }
    ZELKLWCStore &store() { return *m_store; }
    ZELKLWClientAppDelegate &delegate() { return m_delegate; }

private:
    /// However the store goes, also when a constructor throws, it is as at the end of the program: a store
    /// that is merely destroyed forgets its last synchronisation.
    struct EndStore
    {
        void operator()(ZELKLWCStore *store) const;
    };

    void connectOutlets();
    void awakeFromNib();

    ZELKApplicationSettings m_settings;
    QDBusConnection m_bus;
    QDBusConnection m_systemBus;
    bool m_servesBus;
    std::optional<ZELKApplicationsMenu::Folders> m_applicationsMenu;
    ZELKUserDefaults m_defaults;
    ZELKLWCDateRangeController m_dateRange;
    ZELKLWCLog m_log;
    ZELKAgentController m_agentController;
    std::unique_ptr<ZELKLWCStore, EndStore> m_store;
    ZELKLWClientAppDelegate m_delegate;
    ZELKAgentWatch m_agentWatch;
};
