#pragma once

#include <QString>

#include <vector>

/// A step that the ticks of the time axis may have. A plain value.
struct ZELKLWCEntriesViewMarkerInterval
{
    double timeInterval = 0.0; ///< seconds
    QString dateFormat;        ///< of the ticks' labels, in the letters of ZELKDateFormatter; may be empty

    static ZELKLWCEntriesViewMarkerInterval markerIntervalWithTimeInterval(double timeInterval,
                                                                           const QString &dateFormat)
    {
        return {timeInterval, dateFormat};
    }
    /// The steps of every graph, coarsest first: year, week, day, hour, minute. The year has 52 weeks, so
    /// that its ticks are also ticks of the weeks.
    static std::vector<ZELKLWCEntriesViewMarkerInterval> markerIntervals();

    friend bool operator==(const ZELKLWCEntriesViewMarkerInterval &,
                           const ZELKLWCEntriesViewMarkerInterval &) = default;
};
