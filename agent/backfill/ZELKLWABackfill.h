#pragma once

#include "ZELKJournalReading.h"
#include "ZELKLWAEvent.h"

#include <deque>

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

/// Tells of what happened before the agent was there. It works in small steps between the agent's other work,
/// and has the journal read by a process of its own.
///
/// Every event's time and text come from the source alone, so that the same past told again adds nothing.
/// Only what is dated before `until`, the agent's own beginning, is told: from then on the watchers tell of
/// sleeps and charges in times of their own.
class ZELKLWABackfill : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t eventsABatch = 500;

    /// `program` reads journals for it (ZELKJournalReader::option); the agent's own, unless named.
    ZELKLWABackfill(ZELKLWABackfillPlaces places, ZELKDate until, ZELKLWAEventSink sink,
                    const QString &program = {}, QObject *parent = nullptr);

    /// Once in its life.
    void start();
    /// Ends without a signal. What was told is told; another one has to begin anew.
    void stop();

Q_SIGNALS:
    /// `complete` unless it should be tried another time. Places that are damaged or may not be read do not
    /// get better by that: they have had their console lines.
    void finished(bool complete);

private:
    /// Adds events; false when there are no more to come.
    using Source = std::function<bool(std::vector<ZELKLWAEvent> &)>;

    void addSources();
    void continueSoon();
    void step();
    void tellSome();
    void take(const std::vector<ZELKLWAEvent> &events);

    ZELKLWABackfillPlaces m_places;
    ZELKDate m_until;
    ZELKLWAEventSink m_sink;
    ZELKJournalReading m_journals;
    QTimer m_soon;
    std::deque<Source> m_sources;
    std::deque<ZELKLWAEvent> m_ready;
    bool m_running = false;
    bool m_readsJournals = false;
    bool m_complete = true;
};
