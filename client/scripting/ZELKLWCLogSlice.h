#pragma once

#include "ZELKDictionary.h"
#include "ZELKLWCLogEntrySelection.h"

#include <QList>
#include <QObject>

#include <optional>

class ZELKLWCDateRangeController;
class ZELKLWCEntriesView;
class ZELKLWCLog;
class ZELKLWCLogEntry;
struct ZELKScriptCommand;

/// What scripts, and the sheet for jumping, know of the range that is shown: its days, its entries, how long
/// the computer was in which state, and its picture.
class ZELKLWCLogSlice : public QObject
{
    Q_OBJECT

public:
    /// Not owned, to outlive the slice.
    struct Outlets
    {
        ZELKLWCDateRangeController &dateRange;
        ZELKLWCEntriesView &graph;
        ZELKLWCLog &log;
    };

    explicit ZELKLWCLogSlice(const Outlets &outlets, QObject *parent = nullptr);

    /// Of the range; distant past before there is one. Set, they are taken to whole days within what was
    /// recorded.
    ZELKDate start() const;
    void setStart(ZELKDate date);
    ZELKDate end() const;
    void setEnd(ZELKDate date);
    /// What setStart() and then setEnd() lead to, as one change: everybody who follows the range would else
    /// take up one between, that may be years long.
    void setStartAndEnd(ZELKDate start, ZELKDate end);
    /// Seconds.
    double duration() const;
    QString title() const;
    QList<ZELKLWCLogEntry *> events() const;
    std::uint64_t countOfEvents() const;

    /// Seconds in each state; nothing where the range has no events. Goes through all of them, so who wants
    /// several states asks once, and the summary for each.
    std::optional<ZELKDictionary> summary() const;
    static double awake(const ZELKDictionary &summary);
    static double asleep(const ZELKDictionary &summary);
    static double off(const ZELKDictionary &summary);
    /// Statistics of the events over the range; nothing without events.
    std::optional<ZELKLWCLogEntrySelection>
    selectionFromEvents(const ZELKLWCLogEntrySelection::Entries &events) const;

    /// Path of the slice on the bus.
    QString objectSpecifier() const;

    /// Writes the graph as a PNG file, whole or not at all. Arguments: "destinationFile", a path or the
    /// address of a local file; "width" and "height" in points, from 150 to 15000, the view's own where they
    /// are absent; "title" and "border", from 0 to 1, on unless they are 0. A number beyond its limits counts
    /// as 0 and the command goes on: the error of the file, if one follows, is the one that is told. This is
    /// meant.
    void scriptExport(ZELKScriptCommand &command);
    /// The default where the argument is absent; 0 and a script error where it is beyond the limits.
    static float evaluatedNumericArgumentFrom(ZELKScriptCommand &command, const QString &key, float minimum,
                                              float maximum, float base);

private:
    Outlets m_outlets;
};
