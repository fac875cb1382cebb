#pragma once

#include "ZELKDatabaseController.h"
#include "ZELKDate.h"
#include "ZELKRawEvent.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// The store's cache: raw events in a database file, the time of the last synchronisation, and what becomes
/// of damaged rows and files. It speaks in the store's name.
class ZELKLWCStoreCache : public ZELKDatabaseController
{
public:
    /// An empty `databaseFile` stands for the one in the user's documents folder. One that only reads leaves
    /// a damaged file where it is, and raises. Opens nothing.
    ZELKLWCStoreCache(std::shared_ptr<const ZELKBundle> bundle, std::shared_ptr<ZELKSQLitePort> port,
                      const QString &databaseFile, bool setsAside = true);
    ~ZELKLWCStoreCache() override;

    QString className() const override { return QStringLiteral("ZELKLWCStore"); }
    /// The cache's file; creates its folder. Empty when there is no documents folder.
    QUrl databaseURL() override;

    /// Caches the events in transactions of at most 10,000; false when one of them could not be kept.
    bool cacheEvents(const std::optional<QList<ZELKRawEvent>> &someEvents);
    /// Caches one event, whole and as a binary property list; false when it could not be kept. An exact
    /// duplicate is refused quietly, and counts as kept.
    bool cacheEvent(const std::optional<ZELKRawEvent> &anEvent);
    /// The cached events of a period, both ends inclusive, in date order; nothing means from the reference
    /// date and without end. A row that cannot be read is put aside and raised; the next call goes on without
    /// it.
    QList<ZELKRawEvent> sortedCachedEventsFromDate(std::optional<ZELKDate> from, std::optional<ZELKDate> to);

    /// Rows changed through this connection so far; an event that was there already changes none.
    std::uint64_t changeCount();

    /// Where an agent is met: the user's own, or that of all users.
    enum class Agent { OnSessionBus, OnSystemBus };

    /// When events were last brought; distant past at first, and when lastResult() failed().
    ZELKDate lastSyncDate();
    /// The same if this agent brought them, else distant past: what one agent had to give, and when it came
    /// to have it, says nothing of another.
    ZELKDate lastSyncDateWith(Agent agent);
    /// When another agent than this one last brought events, as far as that is kept.
    std::optional<ZELKDate> lastSyncDateOfOther(Agent agent);
    /// Both together, or neither; where the agent is another than before, the date before is kept for
    /// lastSyncDateOfOther(). Not a transaction of its own.
    void setLastSyncDate(std::optional<ZELKDate> date, Agent agent = Agent::OnSessionBus);

protected:
    static constexpr std::size_t eventsInTransaction = 10000;

    /// An event on its way into the cache.
    struct CacheRow
    {
        QString date; ///< null when the event has none
        QByteArray properties;
    };
    struct LastSync
    {
        ZELKDate date;
        Agent agent = Agent::OnSessionBus;
    };
    struct UnreadableRow
    {
        QString number;
        QVariant stored;
        QString error;
    };

    /// Sets a damaged cache aside. A file that never was one raises "… is no database.".
    void databaseWillOpen(const QString &path) override;
    void databaseDidOpen() override;

    CacheRow serialised(const ZELKRawEvent &event) const;
    /// One transaction; "lastSync" moves with it. False, and nothing of it is kept, when something failed,
    /// which the console has been told.
    bool writeRows(const std::vector<CacheRow> &rows, std::optional<LastSync> lastSync);
    bool inTransaction(const std::function<bool()> &write);
    /// Rows of the cache: the event and the row's number. Raises like forEachRow.
    ZELKDatabaseResult readRows(std::optional<ZELKDate> from, std::optional<ZELKDate> to,
                                const RowHandler &handler);
    static UnreadableRow unreadableRow(const ZELKDatabaseRow &row, const QString &error);
    /// Failing that, on the console, the row stays where it is.
    void setRowAside(const UnreadableRow &row);
    [[noreturn]] void failToInflate(const UnreadableRow &row) const;
    /// After a run that failed: a damaged file makes room for a new one, and a transaction that could not be
    /// undone ends with its connection.
    void recover(bool raised);
    [[noreturn]] void fail(const QString &message) const;

private:
    /// "lastSync", where it is another agent's.
    std::optional<QString> lastSyncOfFormer(Agent agent);
    bool insert(const CacheRow &row);

    QString m_databaseFile;
    bool m_setsAside;
    QString m_openedPath;
    std::shared_ptr<ZELKSQLitePort> m_sqlite;
};
