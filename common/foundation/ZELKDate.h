#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <QTimeZone>

/// A moment: seconds since 2001-01-01 00:00:00 UTC, the reference date of every stored event.
/// A plain value; comparisons are exact comparisons of the doubles.
class ZELKDate
{
public:
    /// Seconds between 1970-01-01 and 2001-01-01, both 00:00:00 UTC.
    static constexpr double secondsFrom1970 = 978307200.0;

    constexpr ZELKDate() = default;
    /// The moment `seconds` after the reference date (before it when negative).
    constexpr explicit ZELKDate(double seconds)
        : m_seconds(seconds)
    {
    }
    static ZELKDate fromDateTime(const QDateTime &moment);
    static constexpr ZELKDate fromSecondsSince1970(double seconds)
    {
        return ZELKDate(seconds - secondsFrom1970);
    }

    /// Bounds that no event reaches: 0001-01-01 and 4001-01-01 UTC.
    static constexpr ZELKDate distantPast() { return ZELKDate(-63113904000.0); }
    static constexpr ZELKDate distantFuture() { return ZELKDate(63113904000.0); }

    constexpr double timeIntervalSinceReferenceDate() const { return m_seconds; }
    /// Positive when this date is the later one.
    constexpr double timeIntervalSinceDate(ZELKDate other) const { return m_seconds - other.m_seconds; }
    constexpr ZELKDate addingTimeInterval(double seconds) const { return ZELKDate(m_seconds + seconds); }

    /// To the millisecond, in the given zone. Dates beyond a calendar's reach, NaN and infinities are
    /// drawn in to the distant bounds.
    QDateTime toDateTime(const QTimeZone &zone) const;

    /// "2024-03-05 14:02:11 +0100" in the zone of the current environment.
    QString description() const;

    friend constexpr auto operator<=>(const ZELKDate &, const ZELKDate &) = default;

private:
    double m_seconds = 0.0;
};

Q_DECLARE_METATYPE(ZELKDate)
