#pragma once

#include "ZELKJournalReading.h"
#include "ZELKLWAEvent.h"
#include "ZELKLWAPeriods.h"

#include <deque>
#include <utility>

class ZELKPowerSourceNameMemory;

/// Where the past is kept.
struct ZELKLWABackfillPlaces
{
    QStringList journals; ///< files and folders
    QStringList wtmp;     ///< each with what rotation made of it
    QStringList upower;   ///< folders
    /// The kernel's folder that batteries are named after.
    QString powerSupply = QStringLiteral("/sys/class/power_supply");

    /// Those of this computer that are there. Of the journal's folders only this computer's own, since other
    /// computers' and containers' may lie beside it. `root` stands before every path.
    static ZELKLWABackfillPlaces ofSystem(const QString &root = QString());
};

/// Tells of what happened while no agent was there. It works in small steps between the agent's other work,
/// and has the journal read by a process of its own.
///
/// Every event's time and text come from the source alone, so that the same past told again adds nothing.
/// Only what is dated in the given times is told: the watchers told of the others, of sleeps and charges in
/// dates of their own.
class ZELKLWABackfill : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t eventsABatch = 500;

    /// Answers which of the sleeps that were found, in ascending order, are to be told, and what else.
    using SleepFilter = std::function<std::vector<ZELKLWAEvent>(const std::vector<ZELKLWAEvent> &sleeps)>;

    /// `program` reads journals for it (ZELKJournalReader::option); the agent's own, unless named. Nothing
    /// after the present is told, whatever `unread` says.
    ZELKLWABackfill(ZELKLWABackfillPlaces places, ZELKLWAUnread unread, ZELKLWAEventSink sink,
                    const QString &program = {}, QObject *parent = nullptr);
    /// Of all times before `until`.
    ZELKLWABackfill(ZELKLWABackfillPlaces places, ZELKDate until, ZELKLWAEventSink sink,
                    const QString &program = {}, QObject *parent = nullptr);

    /// Has the last word on sleeps; called once, also where there are none.
    void setSleepFilter(SleepFilter filter) { m_sleepFilter = std::move(filter); }
    /// Knows what batteries are called; until start() has returned.
    void setNames(ZELKPowerSourceNameMemory *names) { m_names = names; }

    /// Once in its life.
    void start();
    /// Ends without a signal. What was told is told; another one has to begin anew.
    void stop();

Q_SIGNALS:
    /// `complete` unless the journal should be tried another time: its reader could not be started, or the
    /// user may not read it yet. Places that are damaged do not get better by that. Each has had its console
    /// line.
    void finished(bool complete);

private:
    /// Adds events; false when there are no more to come.
    using Source = std::function<bool(std::vector<ZELKLWAEvent> &)>;

    void addSources();
    void readJournals();
    void takeSleeps(const std::vector<ZELKSleepMark> &marks, bool complete);
    void continueSoon();
    void step();
    void tellSome();
    void take(const std::vector<ZELKLWAEvent> &events, const ZELKLWAPeriods &times);
    void addSource(const ZELKLWAPeriods &times, Source source);

    ZELKLWABackfillPlaces m_places;
    ZELKLWAUnread m_unread;
    SleepFilter m_sleepFilter;
    ZELKPowerSourceNameMemory *m_names = nullptr;
    ZELKLWAEventSink m_sink;
    ZELKJournalReading m_journals;
    QTimer m_soon;
    std::deque<std::pair<Source, const ZELKLWAPeriods *>> m_sources;
    std::deque<ZELKLWAEvent> m_ready;
    bool m_running = false;
    bool m_readsJournals = false;
    bool m_complete = true;
};
