#pragma once

#include "ZELKDate.h"
#include "ZELKLWCStoreCache.h"
#include "ZELKRawEvent.h"
#include "ZELKServiceNames.h"
#include "ZELKToldTimes.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

class ZELKAgentController;
class ZELKAgentEventService;
class ZELKEventFetch;
class ZELKLWCLog;

/// Brings raw events from the agent into the application: fetches what is new, keeps it in a cache of its
/// own, and hands the log what it does not have yet. The agent calls back when there is more; a poll each 240
/// seconds stands in where it cannot.
///
/// An event is safe in the cache before the log sees it. What the cache refuses (a full disk, a lock held for
/// long) leaves "lastSync" where it was, so that the next synchronisation brings what is missing.
class ZELKLWCStore : public QObject, public ZELKLWCStoreCache
{
    Q_OBJECT

public:
    struct World
    {
        std::shared_ptr<const ZELKBundle> bundle;
        std::shared_ptr<ZELKSQLitePort> sqlite;
        /// Where the store serves and the user's agent is met; an unconnected one means neither.
        QDBusConnection bus;
        /// The cache's file; empty for the one in the user's documents folder.
        QString databaseFile = {};
        /// Milliseconds for a bus's answer, the agent's, and each silence in its stream, after which it has
        /// failed. Less than usual only where a test waits for it.
        int agentLimit = ZELKServiceNames::callTimeoutMilliseconds;
        /// Serve the call-back: for a store that stays. One of a short command would keep the name from it.
        bool servesUpdates = true;
        /// A damaged cache makes room for a new one; else it stays where it is, and is only told of.
        bool setsDamagedAside = true;
        /// Where the agent for all users is met, which comes first.
        QDBusConnection systemBus = QDBusConnection(QString());
    };

    /// Serves the call-back on the bus. When the name is taken there (another copy of the application) there
    /// is no service and no poll; fetching on request works all the same.
    explicit ZELKLWCStore(const World &world, QObject *parent = nullptr);
    /// Lets go of the agent and the service, and clears "lastSync": a store that is made anew asks the agent
    /// for everything. Quitting is not this; see applicationWillTerminate().
    ~ZELKLWCStore() override;

    /// The end of the program: closes what is open and keeps "lastSync", so that the next start asks only for
    /// what is new. The store is not used after it.
    void applicationWillTerminate();

    /// Both not owned. Connect them before awakeFromNib(), which raises when one is missing.
    void setAgentController(ZELKAgentController *controller) { m_agentController = controller; }
    ZELKAgentController *agentController() const { return m_agentController; }
    void setLogController(ZELKLWCLog *log) { m_logController = log; }
    ZELKLWCLog *logController() const { return m_logController; }
    void awakeFromNib();

    /// Feeds the log from the cache alone.
    void syncWithLocalCache();
    /// Fetches from the agent.
    void sync();
    /// Asks the agent for all since the last synchronisation. The events arrive while the event loop runs; a
    /// request during a fetch is kept until it has ended.
    void fetchAgentEvents();
    bool isFetching() const { return m_fetching; }
    /// Events that have come in the fetch under way, or else in the last one.
    std::uint64_t streamedCount() const { return m_streamedCount; }
    /// Hands the log the cached events that are newer than its last.
    void updateLogEvents();
    /// The cache could not be read to its end when the log was last fed from it.
    bool isLogBehind() const { return m_logIsBehind; }
    /// After a change of the agent's installation: fetches, or notes in a log with entries that monitoring
    /// stopped.
    void updateAgentConnection();
    /// The agent has more.
    void eventsDidChange();

    /// Makes an event here, caches it and gives it to the log.
    void addEntryForMonitor(const QString &event, const QString &monitor, ZELKDate time);

    /// Bus name of the store's own service.
    QString updateIdentifier();
    bool hasUpdateConnection() const { return m_updateConnection; }
    const QTimer &updateTimer() const { return m_updateTimer; }

Q_SIGNALS:
    /// A fetch has ended: `complete` when all the agent had to give is in the cache and in the log.
    void fetchFinished(bool complete);
    void logIsBehindChanged(bool isBehind);

private:
    void feedLog();
    void setLogIsBehind(bool isBehind);
    void registerUpdateConnection();
    void endAgentConnection();
    Agent agent() const;
    QString callBackName();
    void askAgent();
    void showCached(ZELKDate to, const ZELKToldTimes::Taker &take);
    void beginReading(const QDBusUnixFileDescriptor &events);
    bool takeFetchedEvent(std::string_view event);
    std::optional<CacheRow> rowForFetchedEvent(std::string_view event);
    void endReading(bool complete, const QString &error);
    void endFetch(bool complete);

    QDBusConnection m_bus;
    QDBusConnection m_systemBus;
    int m_agentLimit;
    bool m_servesUpdates;
    ZELKAgentController *m_agentController = nullptr;
    ZELKLWCLog *m_logController = nullptr;
    std::unique_ptr<QObject> m_agentLookUp; // while the buses are asked for the agent
    std::unique_ptr<ZELKAgentEventService> m_agentConnection;
    std::unique_ptr<QObject> m_updateService;
    bool m_updateConnection = false;
    bool m_isOnSystemBus = false; // the update service
    QString m_updateIdentifier;
    QTimer m_updateTimer;
    bool m_terminated = false;

    bool m_fetching = false;
    bool m_fetchAgain = false;
    LastSync m_fetchSync; // "now" of the fetch under way, and whom it asks
    std::uint64_t m_streamedCount = 0;
    std::uint64_t m_fetchedCount = 0;
    std::vector<CacheRow> m_fetched; // not yet written
    ZELKRawEventReader m_fetchedReader;
    ZELKToldTimes m_toldTimes{
        [this](ZELKDate to, const ZELKToldTimes::Taker &take) { showCached(to, take); }};
    std::unique_ptr<ZELKEventFetch> m_fetch;

    bool m_logIsBehind = false;        // the last reading for the log failed …
    std::uint64_t m_handedOfFinal = 0; // … after so many rows of the log's final date
};
