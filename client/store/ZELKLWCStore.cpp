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
    m_agentLookUp.reset();
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
    m_isOnSystemBus = service->registerOn(m_systemBus, ZELKServiceNames::storeServicePath());
    m_updateService = std::move(service);
}

ZELKLWCStore::Agent ZELKLWCStore::agent() const
{
    return m_agentConnection->isOn(m_systemBus) ? Agent::OnSystemBus : Agent::OnSessionBus;
}

/// A name on the system bus is one for the whole machine, and not for a user to own; there the agent calls
/// back the connection itself. Empty where nothing of ours would answer: the name may be another copy's,
/// which the agent would forget together with us.
QString ZELKLWCStore::callBackName()
{
    if (agent() == Agent::OnSystemBus)
        return m_isOnSystemBus ? m_systemBus.baseService() : QString();
    return m_updateConnection ? updateIdentifier() : QString();
}

void ZELKLWCStore::updateAgentConnection()
{
    if (m_terminated)
        return;
    if (m_agentController->installed())
        return fetchAgentEvents();
    m_agentConnection.reset();
    if (std::exchange(m_agentLookUp, nullptr))
        endFetch(false);
    else if (m_fetching)
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
    if (m_fetching) {
        m_fetchAgain = m_fetchAgain || installed;
        return;
    }
    if (!installed || !(m_systemBus.isConnected() || m_bus.isConnected()))
        return endFetch(false);
    m_fetching = true;
    // Each time anew: an agent may have gone, and that for all users comes first as soon as it is there.
    m_agentLookUp =
        ZELKAgentEventService::lookUp({m_systemBus, m_bus}, m_agentController->agentName(), m_agentLimit,
                                      [this](std::unique_ptr<ZELKAgentEventService> agent) {
                                          // It is still in its own call.
                                          m_agentLookUp.release()->deleteLater();
                                          m_agentConnection = std::move(agent);
                                          askAgent();
                                      });
}

void ZELKLWCStore::askAgent()
{
    if (!m_agentConnection)
        return endFetch(false);
    if (const QString name = callBackName(); !name.isEmpty())
        m_agentConnection->registerForEventUpdates(name);
    std::optional<ZELKDate> last;
    const bool raised = !zelkGuard([&] {
        m_toldTimes.setUntil(lastSyncDateOfOther(agent()));
        last = lastSyncDateWith(agent());
    });
    if (raised || lastResult().failed()) {
        recover(raised);
        return endFetch(false);
    }
    m_fetchSync = {ZELKEnvironment::current().clock->now(), agent()};
    m_streamedCount = 0;
    m_fetchedCount = 0;
    m_agentConnection->sortedEventsFromDate(
        last->addingTimeInterval(secondsPastBoundary), m_fetchSync.date,
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
        return m_toldTimes.hold(reader.view())
                   ? std::nullopt
                   : std::optional(CacheRow{
                         QString::fromLatin1(reader.view().date.data(), qsizetype(reader.view().date.size())),
                         QByteArray(event.data(), qsizetype(event.size()))});
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

void ZELKLWCStore::showCached(ZELKDate to, const ZELKToldTimes::Taker &take)
{
    ZELKRawEventReader reader;
    readRows(std::nullopt, to, [&](const ZELKDatabaseRow &row) {
        if (reader.read(row.column(0).bytes) == ZELKRawEventReader::Kind::Texts)
            take(reader.view());
        return true;
    });
}

void ZELKLWCStore::endReading(bool complete, const QString &error)
{
    // The fetch is still in its own call; it is freed once that has returned.
    if (ZELKEventFetch *ended = m_fetch.release())
        ended->deleteLater();
    const std::vector<CacheRow> rows = std::exchange(m_fetched, {});
    const bool anything = m_fetchedCount > 0;
    const bool written =
        rows.empty() || writeRows(rows, complete ? std::optional(m_fetchSync) : std::nullopt);
    if (!complete)
        ZELKConsole::log(ZELKFormat("agent events could not be fetched: %@", {error}));
    if (complete && written && anything)
        ZELKConsole::log(
            ZELKFormat("agent provided %u entries up to %@.", {m_fetchedCount, m_fetchSync.date}));
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
