#pragma once

#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogSlice.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

inline constexpr double hour = 3600.0;
/// 2024-03-05 00:00:00 UTC, the first of four recorded days.
inline constexpr ZELKDate firstDay(731289600.0);

inline ZELKDate at(int day, double hours)
{
    return firstDay.addingTimeInterval((24 * day + hours) * hour);
}

inline ZELKEnvironment inUtc()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.clock = std::make_shared<ZELKFixedClock>(at(3, 23));
    environment.zone = QTimeZone::utc();
    environment.locale = QLocale(QLocale::English, QLocale::UnitedKingdom);
    environment.mainBundle = std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}), u"en"_s);
    return environment;
}

/// A slice of four days; on each the computer sleeps from 2 to 8 o'clock.
struct SliceFixture
{
    SliceFixture()
    {
        range.awakeFromNib();
        log.setDateRange(&range);
        log.awakeFromNib();
        graph.setLog(&log);
        graph.setDateRange(&range);
        graph.awakeFromNib();
        graph.resize(400, 200);
    }
    void record()
    {
        QList<ZELKRawEvent> events;
        for (int day = 0; day < 4; ++day)
            for (const bool isWake : {false, true})
                events.append(ZELKMakeRawEvent(
                    at(day, isWake ? 8 : 2), isWake ? ZELKEventSystemHasPoweredOn : ZELKEventSystemWillSleep,
                    ZELKMonitorPowerEvents));
        events.append(ZELKMakeRawEvent(at(3, 8.001), ZELKEventSystemHasPoweredOn, ZELKMonitorPowerEvents));
        log.addExternalEntries(events);
        range.setSelectionTag(8);
    }

    ZELKEnvironmentScope scope{inUtc()};
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};
    ZELKLWCDateRangeController range{defaults};
    ZELKLWCLog log;
    ZELKLWCEntriesView graph;
    ZELKLWCLogSlice slice{{range, graph, log}};
};
