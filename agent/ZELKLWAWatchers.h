#pragma once

#include "ZELKFileShutdownMemory.h"
#include "ZELKLWADefaults.h"
#include "ZELKLWAEvent.h"
#include "ZELKLWAMachine.h"
#include "ZELKLWAOptions.h"
#include "ZELKLWAWatcher.h"
#include "ZELKSettingsPowerSourceNames.h"
#include "ZELKSettingsStartupMemory.h"

#include <QDBusConnection>

#include <memory>
#include <optional>
#include <vector>

class ZELKLWAPowerSourceWatcher;
class ZELKLWASleepWatcher;

/// Everything this computer's events come from, and what the sources have to tell each other: a wake makes
/// what was read before it out of date, and whatever happens shows that the machine is awake.
class ZELKLWAWatchers : public QObject
{
    Q_OBJECT

public:
    struct Buses
    {
        QDBusConnection system;
        /// Where a desktop is, for an agent that lives in its session.
        std::optional<QDBusConnection> session;
    };

    /// `settings` and `defaults` outlive it.
    ZELKLWAWatchers(const Buses &buses, const ZELKLWAOptions &options, ZELKUserDefaults &settings,
                    ZELKLWADefaults &defaults, ZELKLWAEventSink sink, const ZELKLWAMachine &machine = {},
                    QObject *parent = nullptr);
    ~ZELKLWAWatchers() override;

    void start();
    void stop();
    /// After start(): a sleep is still to come that was announced to the agent before.
    void goOnWith(const ZELKMoment &announcedSleep);
    /// Somebody asked for something.
    void checkClocks();
    /// The system bus went away, or there is another.
    void setSystemBus(const QDBusConnection &bus);

private:
    void makeSleepWatcher(const Buses &buses, const ZELKLWAMachine &machine);
    void makePowerWatchers(const QDBusConnection &systemBus, const ZELKLWAOptions &options,
                           ZELKLWADefaults &defaults);
    void makeAccountingWatchers(const ZELKLWAOptions &options, const ZELKLWAMachine &machine);
    ZELKLWAEventSink wakefulSink();

    ZELKLWAEventSink m_sink;
    ZELKSettingsStartupMemory m_startups;
    ZELKSettingsPowerSourceNames m_sourceNames;
    ZELKFileShutdownMemory m_shutdowns;
    std::vector<std::unique_ptr<ZELKLWAWatcher>> m_watchers;
    // Two of them.
    ZELKLWASleepWatcher *m_sleep = nullptr;
    ZELKLWAPowerSourceWatcher *m_power = nullptr;
};
