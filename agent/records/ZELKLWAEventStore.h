#pragma once

#include "ZELKDatabaseController.h"
#include "ZELKLWAEvent.h"
#include "ZELKRawEvent.h"

#include <QObject>
#include <QTimer>

#include <deque>

/// Where an event stands among all: by time in microseconds since 2001-01-01 UTC, then by the order of
/// arrival.
struct ZELKLWAEventPosition
{
    qint64 time = 0;
    qint64 row = 0;

    friend auto operator<=>(const ZELKLWAEventPosition &, const ZELKLWAEventPosition &) = default;
};

/// The agent's records: one SQLite file, in which an event of the same time, name, monitor and properties
/// stands once. Times are kept in whole microseconds, as exactly as raw events tell them.
///
/// An event is on the disk when record() returns. Where the disk fails, that is one console line; the events
/// wait in memory (at most `mostWaiting`, the oldest go first), are read from there like the others, and are
/// written with the next event or a minute later. A damaged file is set aside under a new name and a new one
/// begun.
class ZELKLWAEventStore : public QObject, public ZELKDatabaseController
{
    Q_OBJECT

public:
    static constexpr std::size_t mostWaiting = 10000;
    static constexpr int secondsBeforeRetry = 60;

    using EventHandler = std::function<bool(ZELKLWAEventPosition, const ZELKRawEventView &)>;
    enum class Reading { Complete, Stopped, Failed };

    /// Opens nothing. Folders of `path` that are missing are made when it is opened.
    ZELKLWAEventStore(const QString &path, std::shared_ptr<const ZELKBundle> bundle,
                      std::shared_ptr<ZELKSQLitePort> port, QObject *parent = nullptr);
    ~ZELKLWAEventStore() override;

    QString className() const override { return QStringLiteral("ZELKLWAEventStore"); }

    /// Dates beyond the years 1715 to 2286 and events of more than a million characters are refused with a
    /// line.
    void record(const std::vector<ZELKLWAEvent> &events);
    /// Writes what waits; true when nothing does any more.
    bool save();
    std::size_t waiting() const { return m_waiting.size(); }

    /// A date as the records keep it; drawn in to the bounds of the type, NaN to the lowest.
    static qint64 timeOf(ZELKDate date);
    /// Shows in ascending order the events that stand after `after` and up to the time `to` (inclusive), at
    /// most `limit`; false from the handler stops. The texts are valid only within the handler.
    Reading eventsAfter(ZELKLWAEventPosition after, qint64 to, int limit, const EventHandler &handler);

Q_SIGNALS:
    /// Events were taken up that were not there before.
    void recorded();

protected:
    QUrl databaseURL() override;
    void databaseWillOpen(const QString &path) override;
    void databaseDidOpen() override;

private:
    struct Waiting
    {
        ZELKLWAEventPosition position;
        ZELKLWAEvent event;
    };

    bool take(const ZELKLWAEvent &event);
    void dropOldest();
    std::size_t writeSome();
    bool insert(const Waiting &waiting);
    bool attempt(const std::function<void()> &work);
    bool recover(const QString &reason);
    void noteFailure();
    void reportFailure(const QString &reason);
    void reportRecovery();
    Reading readAfter(ZELKLWAEventPosition after, qint64 to, int limit, const EventHandler &handler);
    std::vector<const Waiting *> waitingAfter(ZELKLWAEventPosition after, qint64 to) const;

    QString m_path;
    std::shared_ptr<ZELKSQLitePort> m_port;
    std::deque<Waiting> m_waiting;
    qint64 m_arrivals = 0;
    std::size_t m_dropped = 0;
    int m_failure = 0; // SQLite's code of what failed last
    bool m_failing = false;
    QTimer m_retry;
};
