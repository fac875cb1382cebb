#pragma once

#include "ZELKDatabaseController.h"
#include "ZELKLWAEventPage.h"
#include "ZELKLWALifeSign.h"
#include "ZELKLWAPeriods.h"
#include "ZELKLWASettlingClock.h"
#include "ZELKLWAWaitingEvents.h"

#include <QObject>
#include <QTimer>

#include <optional>

/// The agent's records: one SQLite file, in which an event of the same time, name, monitor and properties
/// stands once. Times are kept in whole microseconds, as exactly as raw events tell them.
///
/// An event is on the disk when record() returns. Where the disk fails, that is one console line; the events
/// wait in memory (at most `mostWaiting`, the oldest go first), are read from there like the others, and are
/// written with the next event or a minute later. A damaged file is set aside under a new name and a new one
/// begun.
///
/// An event is served only once it has settled, which its burst decides (ZELKLWASettler).
class ZELKLWAEventStore : public QObject, public ZELKDatabaseController
{
    Q_OBJECT

public:
    static constexpr std::size_t mostWaiting = 10000;
    static constexpr int secondsBeforeRetry = 60;
    /// Between the announcement of a sleep and the sleep itself, and between the wake and its notice, when
    /// others hold the one up and hooks the other.
    static constexpr int secondsApart = 30;

    /// Who writes: the agent, of which these are the records, or a guest, which adds to them: what a guest
    /// adds, the agent settles, and a guest is no sign of the agent's life. It leaves a damaged file where it
    /// is: an agent may be writing there, or somebody have named a file of another kind.
    enum class Keeper { Agent, Guest };

    /// Opens nothing. Folders of `path` that are missing are made when it is opened.
    ZELKLWAEventStore(const QString &path, std::shared_ptr<const ZELKBundle> bundle,
                      std::shared_ptr<ZELKSQLitePort> port, Keeper keeper = Keeper::Agent,
                      QObject *parent = nullptr);
    ~ZELKLWAEventStore() override;

    QString className() const override { return QStringLiteral("ZELKLWAEventStore"); }

    /// Dates beyond the years 1715 to 2286 and events of more than a million characters are refused with a
    /// line.
    void record(const std::vector<ZELKLWAEvent> &events);
    /// Writes what waits; true when nothing does any more.
    bool save();
    std::size_t waiting() const { return m_waiting.size(); }

    /// Settles what has not: from now on those events are served. Where the disk does not take it, those in
    /// the file settle when it does.
    void settle();
    /// Whether anything recorded has yet to settle.
    bool hasUnsettled();

    /// Shows the settled events of `range` that stand after `after` in ascending order, at most `limit`. A
    /// failure is a console line.
    ZELKLWAEventPage::End eventsAfter(ZELKLWAEventPosition after, const ZELKLWAEventRange &range, int limit,
                                      const ZELKLWAEventPage::Handler &handler);
    /// What settles from now on settles after the end of that request, even when the clock is set back; once
    /// it was served, also in the agents that follow. For a request that brought nothing that is not needed:
    /// the next begins where it did.
    void requestWillBeServed(const ZELKLWAEventRange &range);
    void requestWasServed(const ZELKLWAEventRange &range);

    /// When the agent before this one was last known to live, if it left without its "Stopping monitor".
    std::optional<ZELKDate> unrecordedEnd();

    /// The times between an agent's start and its end here; the last one may go on, and then ends now. What
    /// ended without a word ends with the next start. Not those in which the clock was set back behind their
    /// begin.
    using Period = ZELKLWAPeriod;
    ZELKLWAPeriods recordedPeriods();
    /// When an agent first recorded here; nothing before, and while the file can not be used.
    std::optional<ZELKDate> beginning();
    /// The times before `start`, the agent's own, of which the records do not hold yet what the system kept:
    /// all before the first agent, of sleeps also those between one agent and the next, and of the
    /// accounting all since it was read last, for it is rotated when no agent looks. None while the file can
    /// not be used.
    ZELKLWAUnread unreadPast(ZELKDate start);
    /// What unreadPast() answered is among the records; `journal` when that could be read too. Else its
    /// times are answered again. Where the file could not be used then, nothing changes.
    void pastWasRead(ZELKDate start, bool journal);
    /// Those of `events` that the records do not hold, nor the like of them within `secondsApart`: of what
    /// an agent told in its own words and the system tells in others.
    std::vector<ZELKLWAEvent> unlikeRecorded(std::vector<ZELKLWAEvent> events);

Q_SIGNALS:
    /// Events were taken up that were not there before.
    void recorded();
    /// Events can be served that could not before.
    void settled();
    /// A damaged file was set aside, and what the records began with is not in the new one.
    void begunAnew();

protected:
    QUrl databaseURL() override;
    void databaseWillOpen(const QString &path) override;
    void databaseDidOpen() override;

private:
    // Settings that more than one step has to do with.
    static constexpr QLatin1String aliveSetting{"alive"};
    static constexpr QLatin1String beginningSetting{"beginning"};

    bool take(const ZELKLWAEvent &event);
    void dropOldest();
    std::size_t writeSome();
    void beginRecords();
    std::optional<ZELKDate> readUpTo(QLatin1String setting, ZELKDate start);
    void write(const std::function<void()> &statements);
    bool settleFile(qint64 time);
    void tryAgainLater();
    bool insert(const ZELKLWAWaitingEvents::Waiting &waiting);
    void require(const ZELKDatabaseResult &result);
    bool attempt(const std::function<void()> &work);
    bool recover(const QString &reason);
    bool isReplaceable(int code) const;
    void noteFailure();
    void reportFailure(const QString &reason);
    void reportRecovery();
    QString m_path;
    std::shared_ptr<ZELKSQLitePort> m_port;
    ZELKLWAWaitingEvents m_waiting;
    ZELKLWASettlingClock m_settlingClock;
    Keeper m_keeper;
    ZELKLWALifeSign m_lifeSign;
    bool m_wasSetAside = false;        // and the new file is not open yet
    bool m_pastIsAsked = false;        // and can be noted as read
    bool m_isSettlingDue = false;      // the file did not take it
    std::optional<qint64> m_dueServed; // nor this
    std::size_t m_dropped = 0;
    int m_failure = 0; // SQLite's code of what failed last
    bool m_failing = false;
    QTimer m_retry;
};
