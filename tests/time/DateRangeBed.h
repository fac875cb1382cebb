#pragma once

#include "LocalTime.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

/// A controller in its place and time, with the user's settings beside it.
struct DateRangeBed
{
    explicit DateRangeBed(const QString &now, const QByteArray &zone = "Europe/Berlin")
        : local(zone, now)
        , defaults(folder.filePath(QStringLiteral("settings.ini")))
        , controller(defaults)
    {
    }

    void awake(const QString &past, const QString &future)
    {
        controller.awakeFromNib();
        bound(past, future);
    }

    void bound(const QString &past, const QString &future)
    {
        controller.setDistantPastDistantFuture(LocalTime::date(past), LocalTime::date(future));
    }

    void set(const QString &start, const QString &end)
    {
        controller.setAbsoluteDuration(std::make_shared<ZELKLWCAbsoluteDuration>(
            ZELKLWCAbsoluteDuration::absoluteDurationFromDate(LocalTime::date(start), LocalTime::date(end))));
    }

    /// The range with whole days shortened: "2024-03-04 to 2024-03-05", the end at 23:59:59.
    QString range() const
    {
        const auto held = controller.absoluteDuration();
        return held ? shortened(held->startDate(), " 00:00:00") + QStringLiteral(" to ") +
                          shortened(held->endDate(), " 23:59:59")
                    : QString();
    }

    static QString shortened(ZELKDate date, const char *time)
    {
        const QString text = LocalTime::text(date);
        return text.endsWith(QLatin1String(time)) ? text.left(10) : text;
    }

    LocalTime local;
    QTemporaryDir folder;
    ZELKUserDefaults defaults;
    ZELKLWCDateRangeController controller;
};

/// A row that begins with texts.
inline QTestData &row(const char *name, std::initializer_list<const char *> texts)
{
    QTestData &data = QTest::newRow(name);
    for (const char *text : texts)
        data << QString::fromLatin1(text);
    return data;
}
