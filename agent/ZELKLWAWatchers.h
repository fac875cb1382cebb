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
#include <vector>

class ZELKLWAPowerSourceWatcher;
class ZELKLWASleepWatcher;

/// Everything this computer's events come from, and what the sources have to tell each other: a wake makes
/// what was read before it out of date, and whatever happens shows that the machine is awake.
class ZELKLWAWatchers : public QObject
{
    Q_OBJECT

public:
    /// `settings` and `defaults` outlive it.
    ZELKLWAWatchers(const QDBusConnection &systemBus, const ZELKLWAOptions &options,
                    ZELKUserDefaults &settings, ZELKLWADefaults &defaults, ZELKLWAEventSink sink,
                    const ZELKLWAMachine &machine = {}, QObject *parent = nullptr);
    ~ZELKLWAWatchers() override;

    void start();
    void stop();
    /// Somebody asked for something.
    void checkClocks();

private:
    void makeSleepWatcher(const QDBusConnection &systemBus, const ZELKLWAOptions &options,
                          const ZELKLWAMachine &machine);
    void makePowerWatchers(const QDBusConnection &systemBus, const ZELKLWAOptions &options,
                           ZELKLWADefaults &defaults);
    void makeAccountingWatchers(const ZELKLWAOptions &options, const ZELKLWAMachine &machine);
    ZELKLWAEventSink wakefulSink();

    ZELKLWAEventSink m_sink;
    ZELKSettingsStartupMemory m_startups;
    ZELKSettingsPowerSourceNames m_sourceNames;
    ZELKFileShutdownMemory m_shutdowns;
    std::vector<std::unique_ptr<ZELKLWAWatcher>> m_watchers;
    ZELKLWASleepWatcher *m_sleep = nullptr; // one of them
};
