#pragma once

#include "ZELKLWCDuration.h"

/// A length of time anchored at its start: a period on the calendar. A plain value.
/// The end is not stored, it is always the start plus the duration; it lies before the start when that is
/// negative.
class ZELKLWCAbsoluteDuration : public ZELKLWCDuration
{
public:
    /// Nothing, at the reference date.
    constexpr ZELKLWCAbsoluteDuration() = default;
    constexpr ZELKLWCAbsoluteDuration(ZELKDate start, double seconds)
        : ZELKLWCDuration(seconds)
        , m_startDate(start)
    {
    }

    /// From the reference date on.
    static constexpr ZELKLWCAbsoluteDuration durationWithTimeInterval(double seconds)
    {
        return {{}, seconds};
    }
    static constexpr ZELKLWCAbsoluteDuration absoluteDurationWithDate(ZELKDate start, double seconds)
    {
        return {start, seconds};
    }
    static constexpr ZELKLWCAbsoluteDuration absoluteDurationFromDate(ZELKDate start, ZELKDate end)
    {
        return {start, end.timeIntervalSinceDate(start)};
    }

    constexpr ZELKDate startDate() const { return m_startDate; }
    /// Keeps the end where it is: the duration changes. To move a period, make a new one.
    void setStartDate(ZELKDate start);
    constexpr ZELKDate endDate() const { return m_startDate.addingTimeInterval(duration()); }
    /// Changes the duration.
    void setEndDate(ZELKDate end);

    /// Both ends belong to the period. A reversed period contains nothing.
    constexpr bool contains(ZELKDate date) const { return m_startDate <= date && date <= endDate(); }
    /// The same start and exactly the same number of seconds; false for nullptr.
    constexpr bool equal(const ZELKLWCAbsoluteDuration *other) const { return other && *other == *this; }
    /// Exchanges the ends of a reversed period, so that it runs forwards.
    void sortByDate();

    /// "START - END", each as a date describes itself.
    QString description() const;
    /// The title of the period, in the zone and with the names of the current environment. The day of its
    /// middle when it lasts at most 86400 seconds or lies within one day, which may have 25 hours
    /// ("Tuesday,  5 March 2024"); else the days of its ends with what they share said once
    /// (" 5 March - 12 April, 2024"). Days of the month are padded with a space.
    QString periodDescription() const;
    /// A variant that ZELKValue describes as description().
    QVariant toVariant() const { return QVariant::fromValue(*this); }

    friend constexpr bool operator==(const ZELKLWCAbsoluteDuration &,
                                     const ZELKLWCAbsoluteDuration &) = default;

private:
    static const bool s_describesItself;

    ZELKDate m_startDate;
};

Q_DECLARE_METATYPE(ZELKLWCAbsoluteDuration)

inline const bool ZELKLWCAbsoluteDuration::s_describesItself =
    QMetaType::registerConverter<ZELKLWCAbsoluteDuration, QString>(&ZELKLWCAbsoluteDuration::description);
