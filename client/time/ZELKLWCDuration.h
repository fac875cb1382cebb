#pragma once

#include "ZELKDate.h"

#include <QMetaType>
#include <QString>
#include <QVariant>

/// A length of time in seconds that can spell itself, short ("1h 5m") and long ("1 hour, 5 minutes"). A plain
/// value. Negative lengths are allowed and spell with negative counts.
///
/// The texts come from the table "Durations" of the current environment's main bundle; without a table each
/// key is its own text, and a divider is one space.
class ZELKLWCDuration
{
public:
    constexpr ZELKLWCDuration() = default;
    constexpr explicit ZELKLWCDuration(double seconds)
        : m_duration(seconds)
    {
    }

    static constexpr ZELKLWCDuration durationWithTimeInterval(double seconds)
    {
        return ZELKLWCDuration(seconds);
    }
    /// From the first date to the second; negative when the second is the earlier one.
    static constexpr ZELKLWCDuration durationBetweenDate(ZELKDate first, ZELKDate second)
    {
        return ZELKLWCDuration(second.timeIntervalSinceDate(first));
    }

    /// Seconds.
    constexpr double duration() const { return m_duration; }
    constexpr void setDuration(double seconds) { m_duration = seconds; }

    QString stringValue() const { return shortStringFromDuration(m_duration); }
    QString longStringValue() const { return longStringFromDuration(m_duration); }
    QString description() const { return stringValue(); }
    /// A variant that ZELKValue describes as stringValue().
    QVariant toVariant() const { return QVariant::fromValue(*this); }

    static QString shortStringFromDuration(double seconds);
    static QString longStringFromDuration(double seconds);

    /// Seconds are truncated toward zero, not rounded. Days, hours, minutes and seconds show where they are
    /// not 0, joined by the divider; nothing at all shows as 0 seconds. One oddity is meant: 0 minutes show
    /// between hours and seconds ("1h 0m 5s"), but not between days and seconds ("1d 5s"). Lengths beyond 64
    /// bits of seconds are drawn in to them, and what is not a number counts as 0.
    static QString stringFromDuration(double seconds, const QString &dayKey, const QString &hourKey,
                                      const QString &minuteKey, const QString &secondKey,
                                      const QString &dividerKey, const QString &formatKey);
    /// One component: `localisedFormat` filled with the count and the unit's text. Every count but exactly 1
    /// takes the plural, which is the unit key with "s" appended.
    static QString stringFor(int count, const QString &unitKey, const QString &localisedFormat);

    friend constexpr bool operator==(const ZELKLWCDuration &, const ZELKLWCDuration &) = default;

private:
    static const bool s_describesItself;

    double m_duration = 0.0;
};

Q_DECLARE_METATYPE(ZELKLWCDuration)

inline const bool ZELKLWCDuration::s_describesItself =
    QMetaType::registerConverter<ZELKLWCDuration, QString>(&ZELKLWCDuration::stringValue);
