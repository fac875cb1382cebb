#pragma once

#include "Files.h"
#include "PowerLines.h"
#include "ZELKLWAPowerSourceWatcher.h"

#include <QTemporaryDir>

/// A watcher on the private system bus, with a kernel of its own, and what it records.
struct WatchedPower
{
    WatchedPower() { watcher.setConfigurationFile(folder.filePath(u"none"_s)); }

    void kernelSays(int percent)
    {
        const QString battery = folder.filePath(u"BAT0/"_s);
        writeFile(battery + u"type"_s, "Battery\n");
        writeFile(battery + u"model_name"_s, "PRB-1\n");
        writeFile(battery + u"status"_s, "Discharging\n");
        writeFile(battery + u"capacity"_s, QByteArray::number(percent));
    }

    QTemporaryDir folder;
    QStringList lines;
    QList<ZELKDate> dates;
    ZELKLWAPowerSourceWatcher watcher{QDBusConnection::systemBus(), folder.path(),
                                      [this](const std::vector<ZELKLWAEvent> &events) {
                                          lines += powerLines(events);
                                          for (const ZELKLWAEvent &event : events)
                                              dates.append(event.date);
                                      }};
};
