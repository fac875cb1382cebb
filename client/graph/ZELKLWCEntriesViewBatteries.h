#pragma once

#include "ZELKLWCEntriesViewBatterySegment.h"

#include <QStringList>

#include <deque>
#include <vector>

class ZELKLWCLogEntryPowerStatus;

/// The curves of all batteries, and the last reading of each that a curve was made from.
class ZELKLWCEntriesViewBatteries
{
public:
    using Segments = std::vector<ZELKLWCEntriesViewBatterySegment>;

    /// One battery; for those who add many points to it.
    struct Battery
    {
        QString name;
        Segments segments; ///< in the order started
        const ZELKLWCLogEntryPowerStatus *lastEntry = nullptr;

        ZELKLWCEntriesViewBatterySegment *currentSegment()
        {
            return segments.empty() ? nullptr : &segments.back();
        }
    };

    /// How many batteries have segments.
    int count() const;
    void removeAllObjects() { m_batteries.clear(); }
    /// Made when it is new. Stays where it is until removeAllObjects().
    Battery &battery(const QString &name);
    /// In the order of first sight; those without segments too.
    const std::deque<Battery> &batteries() const { return m_batteries; }
    std::deque<Battery> &batteries() { return m_batteries; }

    /// Empty for an unknown battery.
    Segments segments(const QString &name) const;
    /// The last segment started; null when there is none.
    ZELKLWCEntriesViewBatterySegment *currentSegmentForBattery(const QString &name);
    void addSegment(const ZELKLWCEntriesViewBatterySegment &segment, const QString &name);
    /// The entry is the log's.
    void setLastEntry(const ZELKLWCLogEntryPowerStatus *entry, const QString &name);
    const ZELKLWCLogEntryPowerStatus *lastEntryForBattery(const QString &name) const;

private:
    const Battery *find(const QString &name) const;

    std::deque<Battery> m_batteries; // few: a walk finds them sooner than a hash
};
