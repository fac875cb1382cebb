#include "ZELKGraphDescription.h"

#include "ZELKDisplayListBuilder.h"
#include "ZELKEnvironment.h"
#include "ZELKFormat.h"
#include "ZELKGraphColours.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using DisplayList = ZELKLWCEntriesViewDisplayList;
using Battery = ZELKLWCEntriesViewBatteries::Battery;
using Segment = ZELKLWCEntriesViewBatterySegment;

// A point for each second and each percent. It begins right of where dates outside the period are put.
constexpr double chartStart = 1.0;

QString text(const char *topic)
{
    const QString table = QStringLiteral("ZELKLWCEntriesView");
    const QString key = table + QLatin1Char('.') + QLatin1String(topic);
    return ZELKEnvironment::current().mainBundle->localizedStringForKey(key, {}, table);
}

/// How many blocks of a state there are to the eye, and how long they are together.
struct Times
{
    int count = 0;
    double seconds = 0.0;
};

Times timesOf(const DisplayList &list, const QString &state, double periodEnd)
{
    std::vector<std::pair<double, double>> blocks;
    for (const ZELKLWCEntriesViewState &block : list.states()) {
        const double from = block.bounds.x();
        const double to = from + block.bounds.width();
        if (block.state == state && from >= chartStart)
            blocks.emplace_back(from, to >= chartStart ? to : periodEnd);
    }
    std::sort(blocks.begin(), blocks.end());
    Times times;
    double covered = 0.0;
    for (const auto &[from, to] : blocks) {
        times.count += from >= covered ? 1 : 0;
        times.seconds += std::max(0.0, to - std::max(from, covered));
        covered = std::max(covered, to);
    }
    return times;
}

/// A day ends a second before the next one begins: what lasts so long is rounded to minutes.
QString lengthText(double seconds)
{
    constexpr double minute = 60.0;
    return ZELKLWCDuration::longStringFromDuration(seconds < minute ? seconds
                                                                    : std::round(seconds / minute) * minute);
}

QString blocksText(const QString &state, const Times &times)
{
    const QString word = ZELKLWCLogEntry::localizedStringForKey(state, state, QStringLiteral("General"));
    const QString length = lengthText(times.seconds);
    return times.count == 1 ? ZELKFormat(text("once"), {word, length})
                            : ZELKFormat(text("times"), {word, times.count, length});
}

QString levelsText(const Battery &battery)
{
    const auto isPainted = [](const Segment &segment) {
        return !segment.isEmpty() && ZELKGraphColours::batteryColour(segment.state());
    };
    const auto level = [](QPointF point) { return std::clamp(int(std::lround(point.y())), 0, 100); };
    const auto first = std::find_if(battery.segments.begin(), battery.segments.end(), isPainted);
    if (first == battery.segments.end())
        return {};
    const auto last = std::find_if(battery.segments.rbegin(), battery.segments.rend(), isPainted);
    const int from = level(first->start());
    const int to = level(last->end());
    return from == to ? ZELKFormat(text("level"), {battery.name, to})
                      : ZELKFormat(text("levels"), {battery.name, from, to});
}

} // namespace

QString ZELKGraphDescription::description(const ZELKLWCLog &log, const ZELKLWCDateRangeController &dateRange)
{
    if (!dateRange.absoluteDuration())
        return {};
    const ZELKLWCAbsoluteDuration &period = *dateRange.absoluteDuration();
    const ZELKChartScale scale{{chartStart, 0.0, period.duration(), 100.0}, period, 0.0};
    DisplayList list;
    ZELKDisplayListBuilder(list, scale, log).prepareDisplayList();

    const int entries = int(log.countOfVisibleEntries());
    QStringList parts{period.periodDescription().simplified(),
                      ZELKFormat(text(entries == 1 ? "entry" : "entries"), {entries})};
    for (const QString &state : ZELKGraphColours::colouredStates())
        if (const Times times = timesOf(list, state, chartStart + period.duration()); times.count > 0)
            parts.append(blocksText(state, times));
    for (const Battery &battery : list.batteries().batteries())
        parts.append(levelsText(battery));
    parts.removeAll(QString());
    return parts.join(QStringLiteral("; "));
}
