#pragma once

#include "GraphFixture.h"

/// Display lists made step by step from entries, words and dates alone, with a walk over the log wherever
/// something is looked for: what a quicker way has to come to.
struct PlainGraph
{
    using Segment = ZELKLWCEntriesViewBatterySegment;
    using Reading = const ZELKLWCLogEntryPowerStatus *;

    const ZELKChartScale &scale;
    const ZELKLWCLog &log;
    ZELKLWCEntriesViewDisplayList list = ZELKLWCEntriesViewDisplayList::displayList();
    ZELKDate start = scale.period.startDate();
    ZELKDate end = scale.period.endDate();

    static ZELKLWCEntriesViewDisplayList displayList(const ZELKChartScale &scale, const ZELKLWCLog &log)
    {
        PlainGraph graph{scale, log};
        if (log.count() > 0)
            graph.fill();
        return graph.list;
    }
    static Reading reading(const ZELKLWCLogEntry *entry) { return dynamic_cast<Reading>(entry); }
    static QString word(Reading entry, const QString &key) { return entry->property(key).toString(); }
    QPointF point(ZELKDate date, double percentage) const
    {
        return scale.convertDateAndPercentageToPoint(date, percentage);
    }
    QPointF pointBetween(ZELKDate date, Reading a, Reading b) const
    {
        return point(date, double(ZELKLWCLog::interpolatePercentageChargedForDate(date, *a, *b)));
    }
    void block(const ZELKLWCLogEntry *pair, const ZELKLWCLogEntry *entry, ZELKDate to)
    {
        if (!pair->pairRepresents().isNull())
            list.addState(
                {scale.blockBetween(std::max(pair->date(), start), to), pair->pairRepresents(), entry});
    }

    void fill()
    {
        QStringList groups;
        QHash<QString, const ZELKLWCLogEntry *> latest;
        const QList<ZELKLWCLogEntry *> visible = log.visibleEntriesArray();
        for (const ZELKLWCLogEntry *entry : visible) {
            if (!groups.contains(entry->group()))
                groups.append(entry->group());
            latest.insert(entry->group(), entry);
            if (!entry->pairRepresents().isNull() && entry->pair())
                block(entry->pair(), entry, entry->finalDate());
            if (Reading status = reading(entry); status && !word(status, ZELKPropertyName).isNull())
                draw(status, log.powerEventForBatteryBefore(word(status, ZELKPropertyName), visible.first()));
        }
        for (const QString &group : groups) {
            const ZELKLWCLogEntry *entry = latest.value(group)->previous();
            if (entry && entry->pair() && !entry->pairRepresents().isNull())
                block(entry->pair(), entry, std::min(entry->date(), end));
        }
        QStringList awaited = log.groups();
        for (std::int64_t i = log.entryBeforeDate(end); i < log.count() && !awaited.isEmpty(); ++i) {
            const ZELKLWCLogEntry *entry = log.objectAtIndex(int(i));
            if (awaited.removeAll(entry->group()) > 0 && entry->pair())
                block(entry->pair(), entry->pair(), std::min(entry->date(), end));
        }
        if (list.batteries().count() == 0)
            drawUnread();
        for (const QString &name : log.batteryEnumerator()) {
            Reading last = list.batteries().lastEntryForBattery(name);
            if (last && reading(last->previous()))
                list.batteries().currentSegmentForBattery(name)->addPoint(
                    pointBetween(end, last, reading(last->previous())));
        }
    }
    void draw(Reading entry, Reading earlier)
    {
        ZELKLWCEntriesViewBatteries &batteries = list.batteries();
        const QString name = word(entry, ZELKPropertyName);
        const QString source = word(entry, ZELKPropertyPowerSourceState);
        batteries.setLastEntryForBattery(entry, name);
        if (!batteries.currentSegmentForBattery(name))
            batteries.addSegmentToBattery(
                earlier ? Segment::batterySegmentForState(word(earlier, ZELKPropertyPowerSourceState),
                                                          pointBetween(start, earlier, entry))
                        : Segment(),
                name);
        const QPointF here = point(entry->date(), entry->percentageCharged());
        Segment &current = *batteries.currentSegmentForBattery(name);
        if (entry->connected())
            current.addPoint(here);
        else
            current.disconnectionPoint(here);
        if (!entry->duplicates().isEmpty() && entry->finalDate() != entry->date() &&
            scale.period.contains(entry->finalDate()))
            current.addPoint(point(entry->finalDate(), entry->percentageCharged()));
        if (entry->change() == 2 && !entry->connected())
            batteries.addSegmentToBattery(Segment::batterySegmentForState(Segment::disconnected(), here),
                                          name);
        else if (entry->change() == 2 || entry->change() == 4)
            batteries.addSegmentToBattery(Segment::batterySegmentForState(source, here), name);
    }
    void drawUnread()
    {
        const std::int64_t index = log.entryBeforeDate(start);
        for (const QString &name : log.batteryEnumerator()) {
            if (index == ZELKLWCLog::notFound)
                break;
            const ZELKLWCLogEntry *entry = log.objectAtIndex(int(index));
            Reading event = reading(entry);
            if (!event || word(event, ZELKPropertyName) != name)
                event = log.powerEventForBatteryBefore(name, entry);
            if (!event)
                continue;
            Reading newer = reading(event->previous());
            list.batteries().setLastEntryForBattery(event, name);
            list.batteries().addSegmentToBattery(
                Segment::batterySegmentForState(
                    event->connected() ? word(event, ZELKPropertyPowerSourceState) : Segment::disconnected(),
                    newer ? pointBetween(start, event, newer) : point(start, event->percentageCharged())),
                name);
        }
    }
};
