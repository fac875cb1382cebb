#include "ZELKLWCStore.h"

#include "ZELKAgentController.h"
#include "ZELKAgentEventService.h"
#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKEventFetch.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCUpdateService.h"
#include "ZELKLogFeed.h"
#include "ZELKServiceNames.h"

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

// Deliberate: the second after a boundary is never asked for again.
constexpr double secondsPastBoundary = 1.0;
constexpr auto pollInterval = 240s;
constexpr auto delayAfterInstallation = 100ms;

} // namespace

ZELKLWCStore::ZELKLWCStore(const World &world, QObject *parent)
    : QObject(parent)
    , ZELKLWCStoreCache(world.bundle, world.sqlite, world.databaseFile, world.setsDamagedAside)
    , m_bus(world.bus)
    , m_systemBus(world.systemBus)
    , m_agentLimit(world.agentLimit)
    , m_servesUpdates(world.servesUpdates)
{
    registerUpdateConnection();
    if (!m_updateConnection)
        return;
    connect(&m_updateTimer, &QTimer::timeout, this, [this] { zelkGuard([this] { fetchAgentEvents(); }); });
    m_updateTimer.start(pollInterval);
}

ZELKLWCStore::~ZELKLWCStore()
{
    if (m_terminated)
        return;
    zelkGuard([this] { endAgentConnection(); });
    inTransaction([this] {
        setLastSyncDate(std::nullopt);
        return !lastResult().failed();
    });
    m_updateTimer.stop();
    closeDatabase();
}

void ZELKLWCStore::applicationWillTerminate()
{
    m_terminated = true;
    endAgentConnection();
    m_updateTimer.stop();
    closeDatabase();
}

void ZELKLWCStore::endAgentConnection()
{
    m_fetch.reset();
    m_fetching = false;
    m_agentConnection.reset();
    if (m_updateConnection)
        m_bus.unregisterService(m_updateIdentifier);
    m_updateConnection = false;
    m_updateService.reset();
    m_updateIdentifier.clear();
}

void ZELKLWCStore::awakeFromNib()
{
    if (!m_agentController)
        fail(ZELKFormat("%@ agentController is not connected.", {className()}));
    if (!m_logController)
        fail(ZELKFormat("%@ logController is not connected.", {className()}));
    connect(m_agentController, &ZELKAgentController::installedChanged, this, [this] {
        QTimer::singleShot(delayAfterInstallation, this,
                           [this] { zelkGuard([this] { updateAgentConnection(); }); });
    });
}

// MARK: services

QString ZELKLWCStore::updateIdentifier()
{
    if (m_updateIdentifier.isEmpty())
        m_updateIdentifier = ZELKServiceNames::storeServiceName(bundle().bundleIdentifier());
    return m_updateIdentifier;
}

void ZELKLWCStore::registerUpdateConnection()
{
    if (!m_servesUpdates || !m_bus.isConnected())
        return;
    // The object before the name: who finds the name finds the object, and where another store of this
    // connection has the object, its name is left alone.
    auto service = std::make_unique<ZELKLWCUpdateService>([this] { eventsDidChange(); });
    m_updateConnection = service->registerOn(m_bus, ZELKServiceNames::storeServicePath()) &&
                         m_bus.registerService(updateIdentifier());
    if (!m_updateConnection)
        return;
    service->registerOn(m_systemBus, ZELKServiceNames::storeServicePath());
    m_updateService = std::move(service);
}

/// A name on the system bus is one for the whole machine, and not for a user to own; there the agent calls
/// back the connection itself.
QString ZELKLWCStore::callBackName()
{
    return m_agentConnection->isOn(m_systemBus) ? m_systemBus.baseService() : updateIdentifier();
}

ZELKAgentEventService *ZELKLWCStore::agentConnection()
{
    if (m_agentConnection && m_agentConnection->isValid())
        return m_agentConnection.get();
    if (!m_fetch)
        m_fetching = false; // a request that waits goes with its connection
    for (const QDBusConnection *bus : {&m_systemBus, &m_bus}) {
        m_agentConnection = ZELKAgentEventService::lookUp(*bus, m_agentController->agentName(), m_agentLimit);
        if (m_agentConnection)
            break;
    }
    return m_agentConnection.get();
}

void ZELKLWCStore::updateAgentConnection()
{
    if (m_terminated)
        return;
    if (m_agentController->installed())
        return fetchAgentEvents();
    m_agentConnection.reset();
    if (m_fetching)
        endReading(false, QStringLiteral("The agent has gone."));
    if (m_logController->count() >= 1)
        addEntryForMonitor(ZELKEventStoppingMonitor, ZELKMonitorLullwatch,
                           ZELKEnvironment::current().clock->now());
}

void ZELKLWCStore::eventsDidChange()
{
    fetchAgentEvents();
}

void ZELKLWCStore::sync()
{
    fetchAgentEvents();
}

// MARK: fetching

void ZELKLWCStore::fetchAgentEvents()
{
    // The bus may call before the outlets are connected.
    const bool installed = m_agentController && m_agentController->installed();
    ZELKAgentEventService *agent = installed ? agentConnection() : nullptr;
    if (!agent) {
        if (!m_fetching)
            endFetch(false);
        return;
    }
    if (m_servesUpdates)
        agent->registerForEventUpdates(callBackName());
    if (m_fetching) {
        m_fetchAgain = true;
        return;
    }
    std::optional<ZELKDate> last;
    const bool raised = !zelkGuard([&] { last = lastSyncDate(); });
    if (raised || lastResult().failed()) {
        recover(raised);
        return endFetch(false);
    }
    m_fetching = true;
    m_fetchDate = ZELKEnvironment::current().clock->now();
    m_streamedCount = 0;
    m_fetchedCount = 0;
    agent->sortedEventsFromDate(last->addingTimeInterval(secondsPastBoundary), m_fetchDate,
                                [this](const QDBusUnixFileDescriptor &events, const QString &error) {
                                    if (events.isValid())
                                        beginReading(events);
                                    else
                                        endReading(false, error);
                                });
}

void ZELKLWCStore::beginReading(const QDBusUnixFileDescriptor &events)
{
    m_fetched.clear();
    m_fetch = std::make_unique<ZELKEventFetch>(
        events, [this](std::string_view event) { return takeFetchedEvent(event); }, m_agentLimit);
    connect(m_fetch.get(), &ZELKEventFetch::finished, this,
            [this](bool complete, const QString &error) { zelkGuard([&] { endReading(complete, error); }); });
}

bool ZELKLWCStore::takeFetchedEvent(std::string_view event)
{
    ++m_streamedCount;
    std::optional<CacheRow> row;
    zelkGuard([&] { row = rowForFetchedEvent(event); });
    if (row) {
        m_fetched.push_back(std::move(*row));
        ++m_fetchedCount;
    }
    if (m_fetched.size() <= eventsInTransaction)
        return true;
    // One more than a transaction holds: the last one stays back for the transaction that moves "lastSync".
    CacheRow last = std::move(m_fetched.back());
    m_fetched.pop_back();
    const bool written = writeRows(m_fetched, std::nullopt);
    m_fetched.clear();
    if (written)
        m_fetched.push_back(std::move(last));
    return written;
}

std::optional<ZELKLWCStore::CacheRow> ZELKLWCStore::rowForFetchedEvent(std::string_view event)
{
    ZELKRawEventReader &reader = m_fetchedReader;
    const ZELKRawEventReader::Kind kind = reader.read(event);
    if (kind == ZELKRawEventReader::Kind::Texts && ZELKIsDateText(reader.view().date))
        return CacheRow{QString::fromLatin1(reader.view().date.data(), qsizetype(reader.view().date.size())),
                        QByteArray(event.data(), qsizetype(event.size()))};
    if (kind == ZELKRawEventReader::Kind::Dictionary) {
        // A date of another kind counts by what the cache would be given for it.
        CacheRow row = serialised(reader.dictionary());
        if (ZELKIsDateText(std::string_view(row.date.toUtf8())))
            return row;
    }
    const QString reason =
        kind == ZELKRawEventReader::Kind::Faulty ? reader.error() : QStringLiteral("its date is no number");
    ZELKConsole::log(ZELKFormat("agent event %lu skipped: %@", {m_streamedCount, reason}));
    return std::nullopt;
}

void ZELKLWCStore::endReading(bool complete, const QString &error)
{
    // The fetch is still in its own call; it is freed once that has returned.
    if (ZELKEventFetch *ended = m_fetch.release())
        ended->deleteLater();
    const std::vector<CacheRow> rows = std::exchange(m_fetched, {});
    const bool anything = m_fetchedCount > 0;
    const bool written =
        rows.empty() || writeRows(rows, complete ? std::optional(m_fetchDate) : std::nullopt);
    if (!complete)
        ZELKConsole::log(ZELKFormat("agent events could not be fetched: %@", {error}));
    if (complete && written && anything)
        ZELKConsole::log(ZELKFormat("agent provided %u entries up to %@.", {m_fetchedCount, m_fetchDate}));
    if (complete && written && (anything || m_logIsBehind))
        zelkGuard([this] { updateLogEvents(); });
    endFetch(complete && written && !m_logIsBehind);
}

void ZELKLWCStore::endFetch(bool complete)
{
    m_fetching = false;
    Q_EMIT fetchFinished(complete);
    if (std::exchange(m_fetchAgain, false))
        fetchAgentEvents();
}

// MARK: the log

void ZELKLWCStore::syncWithLocalCache()
{
    updateLogEvents();
}

void ZELKLWCStore::updateLogEvents()
{
    try {
        feedLog();
    } catch (...) {
        setLogIsBehind(true);
        throw;
    }
}

void ZELKLWCStore::feedLog()
{
    std::vector<UnreadableRow> unreadable;
    ZELKRawEventReader reader;
    ZELKLogFeed feed(*m_logController, m_handedOfFinal);
    const ZELKDatabaseResult result = readRows(feed.from(), std::nullopt, [&](const ZELKDatabaseRow &row) {
        const ZELKRawEventReader::Kind kind = reader.read(row.column(0).bytes);
        if (kind == ZELKRawEventReader::Kind::Faulty)
            unreadable.push_back(unreadableRow(row, reader.error()));
        else
            feed.hand(reader, kind);
        return true;
    });
    feed.end();
    m_handedOfFinal = result.failed() ? feed.handedOfFinalDate() : 0;
    setLogIsBehind(result.failed());
    for (const UnreadableRow &row : unreadable) {
        setRowAside(row);
        zelkGuard([&] { failToInflate(row); });
    }
}

void ZELKLWCStore::setLogIsBehind(bool isBehind)
{
    if (std::exchange(m_logIsBehind, isBehind) != isBehind)
        Q_EMIT logIsBehindChanged(isBehind);
}

void ZELKLWCStore::addEntryForMonitor(const QString &event, const QString &monitor, ZELKDate time)
{
    const ZELKRawEvent raw = ZELKMakeRawEvent(time, event, monitor);
    cacheEvents(QList<ZELKRawEvent>{raw});
    m_logController->addExternalEntries({raw});
}
