#pragma once

#include "ZELKIdleMemory.h"
#include "ZELKInterruptedSleep.h"
#include "ZELKLWABackfill.h"
#include "ZELKLWAControlService.h"
#include "ZELKLWAEventStore.h"
#include "ZELKLWAMachine.h"
#include "ZELKLWAOptions.h"
#include "ZELKLWAService.h"
#include "ZELKLWASettler.h"
#include "ZELKLWAUpdateAnnouncer.h"
#include "ZELKLWAWatchers.h"
#include "ZELKUserDefaults.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <memory>

/// The agent: records what its watchers see, and serves it on a bus under the bundle's identifier. "Starting
/// monitor" and "Stopping monitor" frame the time in which it does. It also reads what the system kept of
/// the time before its records began, and of the sleeps while no agent was there.
class ZELKLWAAgent : public QObject
{
    Q_OBJECT

public:
    /// How long a client that was told of the end may take to fetch it.
    static constexpr int millisecondsToFetchTheEnd = 1000;

    /// Where it serves, and where the system's services are: for all users' agent the same. An agent of one
    /// user serves on the bus of his session.
    struct Buses
    {
        QDBusConnection serving;
        QDBusConnection system;
    };

    /// `bundle` is the agent's own.
    ZELKLWAAgent(std::shared_ptr<const ZELKBundle> bundle, const Buses &buses, const ZELKLWAOptions &options,
                 const ZELKLWAMachine &machine = {}, QObject *parent = nullptr);
    ~ZELKLWAAgent() override;

    /// Takes the two bus names, then records. False, with one console line and nothing recorded, when the bus
    /// does not give them, as when another agent has them.
    bool start();
    /// It finished because the bus it served on went away: at the end of a session, or with a bus that is
    /// started again.
    bool hasLostBus() const { return m_lostBus; }

public Q_SLOTS:
    /// Records the end, tells the clients and, once they have fetched it or the time for that is over, is
    /// finished.
    void terminate();
    /// The system bus went away, or there is another. For an agent that serves on a bus of its own; who
    /// serves on the system bus finishes with it.
    void setSystemBus(const QDBusConnection &bus);

Q_SIGNALS:
    void finished();

private Q_SLOTS:
    void busDidDisconnect();

private:
    bool serve();
    bool takeNames();
    QString version() const;
    bool isQuiet() const;
    void recordOwn(QLatin1String event, ZELKDate date);
    ZELKDate recordStart();
    void goOnWithSleep();
    void record(const std::vector<ZELKLWAEvent> &events);
    void readPast(ZELKDate start);
    void pastWasRead(ZELKDate start, bool complete);
    void stopRecording();
    void finish();

    std::shared_ptr<const ZELKBundle> m_bundle;
    QDBusConnection m_bus;
    ZELKUserDefaults m_settings;
    ZELKLWADefaults m_defaults;
    ZELKLWAEventStore m_store;
    ZELKLWASettler m_settler;
    ZELKLWAUpdateAnnouncer m_announcer;
    ZELKLWAService m_service;
    ZELKLWAControlService m_controlService;
    ZELKInterruptedSleep m_sleep;
    ZELKLWAWatchers m_watchers;
    ZELKLWABackfillPlaces m_pastPlaces;
    std::unique_ptr<ZELKLWABackfill> m_past;
    ZELKIdleMemory m_idleMemory;
    QTimer m_lastFetch;
    bool m_lostBus = false;
    enum class Phase { Made, Recording, Ending, Finished } m_phase = Phase::Made;
};
