// What a display list holds, in hours of the day shown and percent.
#include "GraphFixture.h"
#include "NamedRows.h"

#include <QRandomGenerator>

namespace {

/// A position against the chart's beginning, in so many points; "O" for the view's origin.
QString text(double position, double origin, double unit)
{
    return position == 0.0 ? u"O"_s : QString::number(std::round((position - origin) / unit * 100.0) / 100.0);
}

QString hours(double x)
{
    return text(x, 10, hour);
}

/// "STATE FROM..TO ENTRY" of each block.
QString blocksOf(const GraphFixture &fixture)
{
    QStringList texts;
    for (const auto &[bounds, state, entry] : fixture.list.states())
        texts.append(u"%1 %2..%3 %4"_s.arg(state, hours(bounds.x()), hours(bounds.x() + bounds.width()),
                                           fixture.place(entry)));
    return texts.join(u", "_s);
}

/// "BATTERY STATE HOURS;PERCENT … / STATE …"
QString curvesOf(const GraphFixture &fixture)
{
    QString curves;
    for (const auto &battery : fixture.list.batteries().batteries()) {
        curves += (curves.isEmpty() ? u""_s : u", "_s) + battery.name;
        for (const ZELKLWCEntriesViewBatterySegment &segment : battery.segments) {
            curves += (&segment == &battery.segments.front() ? u" "_s : u" / "_s) + segment.state();
            for (const QPointF point : segment.points())
                curves += u" %1;%2"_s.arg(hours(point.x()), text(point.y(), 20, 2));
        }
    }
    return curves;
}

/// Events of every kind, some with duplicates, one of so many late by hours.
QString randomEvents(QRandomGenerator &random, int count, int lateOneOf = 50)
{
    static const QStringList words{u"sleep"_s, u"wake"_s,  u"off"_s,  u"on"_s,
                                   u"boot"_s,  u"start"_s, u"stop"_s, u"plain"_s};
    static const QStringList batteries{u""_s, u"@BAT1"_s, u"@"_s};
    QStringList texts;
    double hours = -60.0;
    for (int i = 0; i < count; ++i) {
        hours += random.bounded(3) == 0 ? 0.0005 : random.bounded(120.0 * 2.0 / count);
        const double late = random.bounded(lateOneOf) == 0 ? random.bounded(30.0) : 0.0;
        const QString reading = QString(u"bacx"_s[random.bounded(4)]) + QString::number(random.bounded(101)) +
                                batteries[std::min(random.bounded(9), random.bounded(3))];
        texts.append(QString::number(hours - late, 'f', 6) + u':' +
                     (random.bounded(2) ? reading : words[random.bounded(words.size())]));
    }
    return texts.join(u' ');
}

/// The blocks of a display list as they are defined: by words and dates, and walks over the log.
ZELKLWCEntriesViewDisplayList walkedBlocks(const GraphFixture &fixture)
{
    const ZELKLWCLog &log = fixture.log;
    const ZELKDate start = fixture.scale.period.startDate();
    const ZELKDate end = fixture.scale.period.endDate();
    ZELKLWCEntriesViewDisplayList list;
    const auto add = [&](const ZELKLWCLogEntry *pair, const ZELKLWCLogEntry *entry, ZELKDate to) {
        list.addState(
            {fixture.scale.blockBetween(std::max(pair->date(), start), to), pair->pairRepresents(), entry});
    };
    QStringList groups;
    QHash<QString, const ZELKLWCLogEntry *> latest;
    for (const ZELKLWCLogEntry *entry : log.visibleEntriesArray()) {
        if (!latest.contains(entry->group()))
            groups.append(entry->group());
        latest.insert(entry->group(), entry);
        if (!entry->pairRepresents().isNull() && entry->pair())
            add(entry->pair(), entry, entry->finalDate());
    }
    for (const QString &group : groups)
        if (const ZELKLWCLogEntry *entry = latest.value(group)->previous())
            if (entry->pair() && !entry->pairRepresents().isNull())
                add(entry->pair(), entry, std::min(entry->date(), end));
    QStringList awaited = log.groups();
    for (std::int64_t i = log.entryBeforeDate(end); i < log.count(); ++i) {
        const ZELKLWCLogEntry *entry = log.objectAtIndex(int(i));
        if (awaited.removeAll(entry->group()) > 0 && entry->pair())
            add(entry->pair(), entry->pair(), std::min(entry->date(), end));
    }
    return list;
}

/// How much of the axis left of x is covered.
double coveredUpTo(const std::vector<ZELKBlockRange> &ranges, double x)
{
    double covered = 0.0;
    for (const ZELKBlockRange &range : ranges)
        covered += std::clamp(x - range.from, 0.0, range.width());
    return covered;
}

/// First, lowest, highest and last level of each run of points within a column.
std::vector<std::array<double, 5>> extremesOf(const std::vector<QPointF> &points, double columnWidth)
{
    std::vector<std::array<double, 5>> runs;
    for (const QPointF point : points) {
        const double column = std::floor(point.x() / columnWidth);
        const double y = point.y();
        if (runs.empty() || runs.back()[0] != column)
            runs.push_back({column, y, y, y, y});
        auto &[inColumn, first, lowest, highest, last] = runs.back();
        lowest = std::min(lowest, y);
        highest = std::max(highest, y);
        last = y;
    }
    return runs;
}

} // namespace

class TestDisplayList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayLists_data()
    {
        const NamedRows<const char *, const char *, const char *> row("events", "blocks", "curves");
        row("no event", "", "", "");
        row("asleep when the day begins", "-8:sleep 6:wake", "Asleep 0..6 #1, Asleep 0..6 #0", "");
        row("asleep when it ends", "2:sleep 30:wake", "Asleep 2..24 #1, Asleep 2..24 #0", "");
        row("off all day", "-30:off 30:on", "Off 0..24 #0", "");
        row("still asleep", "2:sleep", "", "");
        row("an agent that was stopped", "-1:start -0.5:stop 5:start",
            "Unmonitored 0..5 #2, Unmonitored 0..5 #1", "");
        row("before the first start nothing is known", "3:start 5:stop", "", "");
        row("two groups", "1:start 2:sleep 3:stop 4:wake 5:start 6:sleep",
            "Asleep 2..4 #3, Unmonitored 3..5 #4, Awake 4..6 #5, Awake 4..6 #3", "");
        row("duplicates lengthen a block", "1:off 3:on 5:boot", "Off 1..5 #1, Off 1..3 #0", "");
        row("duplicates beyond the day turn it round", "1:off 3:on 30:boot", "Off 1..O #1, Off 1..3 #0", "");
        row("nothing but late entries", "-30:off -28:on 26:sleep 30:plain", "On 0..24 #1", "");

        row("a first reading", "2:b80", "", "BAT0  2;80 / Battery Power 2;80");
        row("readings before and in the day", "-2:b80 2:b60", "", "BAT0 Battery Power 0;70 2;60");
        row("and after it", "-2:b80 2:b60 26:b48", "", "BAT0 Battery Power 0;70 2;60 24;49");
        row("duplicates draw on", "-2:b50 2:b40 5:b40", "", "BAT0 Battery Power 0;45 2;40 5;40");
        row("unless they lie beyond the day", "-2:b50 2:b40 26:b40", "", "BAT0 Battery Power 0;45 2;40");
        row("another source", "-2:b50 2:a50 4:c60", "", "BAT0 Battery Power 0;50 2;50 / AC Power 2;50 4;60");
        row("away and back", "-1:b60 2:b50 4:x0 6:b40 30:b20", "",
            "BAT0 Battery Power 0;56.67 2;50 4;50 / Disconnected 4;0 6;40 / Battery Power 6;40 24;25");
        row("first of all away", "4:x30", "", "BAT0  4;O / Disconnected 4;30");
        row("no reading in the day", "-4:b80 10:plain 30:b46", "", "BAT0 Battery Power 0;76 24;52");
        row("none of a battery that is away", "-4:x80 10:plain 30:b46", "", "BAT0 Disconnected 0;76 24;52");
        // The reading that follows is taken then, and the line through it and its successor drawn back.
        row("none, and no entry in the day", "-4:b80 30:b46 40:b26", "", "BAT0 Battery Power 0;106 24;58");
        row("none, and another battery's after it", "-4:b80 30:b46@BAT1 40:b36", "",
            "BAT0 Battery Power 0;76 24;52, BAT1 Battery Power 0;46");
        row("none, and no later one", "-4:b80 10:plain", "", "BAT0 Battery Power 0;80");
        row("no reading beside another battery's", "-4:b80@BAT1 -2:b50 2:b40", "",
            "BAT0 Battery Power 0;45 2;40");
        row("two batteries in turn", "-1:b60@BAT1 -1:b30 1:c40@BAT1 2:b24 3:a42@BAT1", "",
            "BAT1 Battery Power 0;50 1;40 / AC Power 1;40 3;42, BAT0 Battery Power 0;28 2;24");
        row("of a battery without a name", "2:b80@ 4:b70@", "", "");
    }
    void displayLists()
    {
        QFETCH(QString, events);
        const GraphFixture fixture(events);
        QTEST(blocksOf(fixture), "blocks");
        QTEST(curvesOf(fixture), "curves");
    }

    void presenceMayBeIgnored()
    {
        GraphFixture fixture(u"-4:x80 10:plain 30:b46"_s);
        fixture.list.removeAllObjects();
        ZELKDisplayListBuilder(fixture.list, fixture.scale, fixture.log)
            .prepareBatteriesWithoutVisibleEntries(ZELKDisplayListBuilder::Presence::Ignored);
        QCOMPARE(curvesOf(fixture), u"BAT0 Battery Power 0;76"_s);
    }

    void sameBlocksAsWalked()
    {
        QRandomGenerator random(5);
        for (int round = 0; round < 60; ++round) {
            GraphFixture fixture(randomEvents(random, 20 + 10 * round));
            fixture.show(random.bounded(-3, 3), random.bounded(1, 5));
            const QString blocks = blocksOf(fixture);
            fixture.list = walkedBlocks(fixture);
            QCOMPARE(blocks, blocksOf(fixture));
        }
    }

    void mergedLooksTheSame()
    {
        constexpr double column = 0.25;
        QRandomGenerator random(6);
        for (int round = 0; round < 6; ++round) {
            GraphFixture fixture(randomEvents(random, 6000, 1000000));
            fixture.scale.chartRect.setWidth(60.0);
            fixture.show(-2, 4);
            auto merged = ZELKLWCEntriesViewDisplayList::displayList(column);
            ZELKDisplayListBuilder(merged, fixture.scale, fixture.log).prepareDisplayList();
            for (const QString &state : fixture.list.stateOrder()) {
                const auto plain = fixture.list.rangesForState(state);
                const auto ranges = merged.rangesForState(state);
                QVERIFY(plain.size() > 240);
                QVERIFY(ranges.size() < 500);
                for (double x = -1.0; x < 72.0; x += column)
                    QVERIFY(std::abs(coveredUpTo(plain, x) - coveredUpTo(ranges, x)) < column);
            }
            for (const auto &battery : fixture.list.batteries().batteries()) {
                const auto thinned = merged.batteries().segments(battery.name);
                QCOMPARE(thinned.size(), battery.segments.size());
                for (std::size_t i = 0; i < thinned.size(); ++i) {
                    const auto runs = extremesOf(thinned[i].points(), merged.curveColumnWidth());
                    QCOMPARE(runs, extremesOf(battery.segments[i].points(), merged.curveColumnWidth()));
                    QVERIFY(thinned[i].points().size() <= 4 * runs.size());
                    QCOMPARE(thinned[i].end(),
                             thinned[i].points().empty() ? QPointF() : thinned[i].points().back());
                }
            }
        }
    }

    void toolTips()
    {
        GraphFixture fixture(u"0:wake 2:sleep 4:wake 6:sleep 6.0005:wake"_s);
        const auto tip = [&](double hours, double y = 100.0) {
            const auto *block = fixture.list.blockAtPoint({10.0 + hours * hour, y}, {ZELKStateAsleep});
            return block ? block->entry->stringForToolTip() : QString();
        };
        for (const QString &asleep : {tip(2), tip(3), tip(3, 21.0)})
            QCOMPARE(asleep, QString(ZELKStateAsleep));
        // Awake, at a block's end, on the axis, above, and where a block is 1.8 points wide.
        for (const QString &nothing : {tip(1), tip(4), tip(3, 20.9), tip(3, 220.0), tip(6.0002)})
            QCOMPARE(nothing, QString());
    }
};

QTEST_GUILESS_MAIN(TestDisplayList)
#include "tst_display_list.moc"
