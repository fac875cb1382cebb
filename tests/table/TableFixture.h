#pragma once

#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKUserDefaults.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

inline constexpr double day = 86400.0;
// 2024-03-05 00:00:00 UTC
inline constexpr double logStart = 731289600.0;

/// In UTC, so many days after the first one.
inline ZELKEnvironment tableEnvironment(double today = 50.5)
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.clock = std::make_shared<ZELKFixedClock>(ZELKDate(logStart + today * day));
    environment.zone = QTimeZone::utc();
    environment.locale = QLocale(QLocale::English, QLocale::UnitedKingdom);
    environment.mainBundle = std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}), u"en"_s);
    return environment;
}

/// A log on a date range, shown whole.
struct TableFixture
{
    ZELKEnvironmentScope scope;
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};
    ZELKLWCDateRangeController range{defaults};
    ZELKLWCLog log;
    double next = logStart;
    int monitor = 0;

    explicit TableFixture(double today = 50.5)
        : scope(tableEnvironment(today))
    {
        range.awakeFromNib();
        log.setDateRange(&range);
        log.awakeFromNib();
        range.setSelectionTag(8);
    }
    /// Four events a day.
    void grow(int count)
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i, next += day / 4)
            events.append(ZELKMakeRawEvent(ZELKDate(next), u"event %1"_s.arg(next), u"org.example"_s));
        log.addExternalEntries(events);
    }
    /// Alike summaries, some dates that are the same, and once that is allowed some that are late.
    void growUnevenly(int count, QRandomGenerator &random, bool isLateAllowed)
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i) {
            next += random.bounded(3) > 0 ? day / 4 : 0.0;
            const double late = isLateAllowed && random.bounded(20) == 0 ? 3 * day : 0.0;
            const QString word =
                QStringList{u"Power"_s, u"power"_s, u"Sleep"_s, u"Zürich"_s}[random.bounded(4)];
            // Monitors keep events of one name from being merged.
            events.append(ZELKMakeRawEvent(ZELKDate(next - late), word + QString::number(random.bounded(3)),
                                           u"org.example.%1"_s.arg(++monitor)));
        }
        log.addExternalEntries(events);
    }
    void show(int firstDay, int days)
    {
        range.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(ZELKDate(logStart + firstDay * day), days * day - 1.0));
    }
};
