#pragma once

#include "ZELKLWAWatcher.h"

class ZELKStartupMemory;

/// Tells once, when started, of the running boot (see ZELKStartup). What it tells of a boot stays the same
/// however often it is asked.
class ZELKLWAStartupWatcher : public ZELKLWAWatcher
{
    Q_OBJECT

public:
    struct Places
    {
        QString bootID = QStringLiteral("/proc/sys/kernel/random/boot_id");
        QString statistics = QStringLiteral("/proc/stat");
        QString utmp = QStringLiteral("/run/utmp");
        QString wtmp = QStringLiteral("/var/log/wtmp");
    };

    /// `memory` outlives it.
    ZELKLWAStartupWatcher(Places places, ZELKStartupMemory &memory, ZELKLWAEventSink sink,
                          QObject *parent = nullptr);

    /// A boot without identifier or time is one console line and no event.
    void start() override;
    void stop() override {}

private:
    Places m_places;
    ZELKStartupMemory &m_memory;
};
