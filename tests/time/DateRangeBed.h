#pragma once

#include "ZELKEnvironment.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

/// A place and a moment to stand in: a clock that can be put, a zone, names in English, keys for texts.
struct LocalTime
{
    explicit LocalTime(const QByteArray &zone = "Europe/Berlin")
        : scope(ZELKEnvironment{clock, QTimeZone(zone), QLocale::c(), std::make_shared<ZELKBundle>()})
    {
    }
    void setNow(const char *local) { clock->setNow(date(local)); }

    /// "2024-03-05 14:02:11", in the zone; a date alone is its 00:00:00.
    static ZELKDate date(const char *local)
    {
        const QString text = QLatin1String(local) + QLatin1String(" 00:00:00");
        const QDateTime wall = QDateTime::fromString(text.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        return ZELKDate::fromDateTime(QDateTime(wall.date(), wall.time(), ZELKEnvironment::current().zone));
    }
    static QString text(ZELKDate date) { return date.description().left(19); }

    std::shared_ptr<ZELKFixedClock> clock = std::make_shared<ZELKFixedClock>();
    ZELKEnvironmentScope scope;
};

/// A controller in its place and time, with the user's settings beside it.
struct DateRangeBed
{
    using Controller = ZELKLWCDateRangeController;

    explicit DateRangeBed(const char *now, const QByteArray &zone = "Europe/Berlin")
        : local(zone)
    {
        local.setNow(now);
    }
    /// One that has awoken, on data between those dates.
    DateRangeBed(const char *now, const char *past, const char *future,
                 const QByteArray &zone = "Europe/Berlin")
        : DateRangeBed(now, zone)
    {
        controller.awakeFromNib();
        bound(past, future);
    }
    void bound(const char *past, const char *future)
    {
        controller.setDistantPastDistantFuture(LocalTime::date(past), LocalTime::date(future));
    }
    void set(const char *start, const char *end)
    {
        controller.setAbsoluteDuration(std::make_shared<ZELKLWCAbsoluteDuration>(
            ZELKLWCAbsoluteDuration::absoluteDurationFromDate(LocalTime::date(start), LocalTime::date(end))));
    }
    QString range() const { return text(controller); }

    /// "2024-03-04 to 2024-03-05", without the times of whole days.
    static QString text(const Controller &of)
    {
        const auto held = of.absoluteDuration();
        if (!held)
            return {};
        const QString start = LocalTime::text(held->startDate()).remove(QLatin1String(" 00:00:00"));
        return start + QLatin1String(" to ") +
               LocalTime::text(held->endDate()).remove(QLatin1String(" 23:59:59"));
    }

    LocalTime local;
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(QStringLiteral("settings.ini"))};
    Controller controller{defaults};
};
