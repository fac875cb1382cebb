#pragma once

#include "ZELKEnvironment.h"

#include <QtTest>

/// A place and a moment to stand in: a clock that can be put, a zone, names in English, keys for texts.
class LocalTime
{
public:
    explicit LocalTime(const QByteArray &zone = "Europe/Berlin", const QString &now = {})
        : m_clock(std::make_shared<ZELKFixedClock>())
        , m_scope(ZELKEnvironment{m_clock, QTimeZone(zone), QLocale::c(), std::make_shared<ZELKBundle>()})
    {
        if (!now.isEmpty())
            setNow(now);
    }

    void setNow(const QString &local) { m_clock->setNow(date(local)); }

    /// "2024-03-05 14:02:11", in the zone; a date alone is its 00:00:00.
    static ZELKDate date(const QString &local)
    {
        const QDate day = QDate::fromString(local.left(10), Qt::ISODate);
        const QTime time = local.size() > 10 ? QTime::fromString(local.mid(11), Qt::ISODate) : QTime(0, 0);
        return ZELKDate::fromDateTime(QDateTime(day, time, ZELKEnvironment::current().zone));
    }

    /// The other way round.
    static QString text(ZELKDate date) { return date.description().left(19); }

private:
    std::shared_ptr<ZELKFixedClock> m_clock;
    ZELKEnvironmentScope m_scope;
};
