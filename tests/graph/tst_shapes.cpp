// Places, shapes and what is merged: values alone, no log.
#include "NamedRows.h"
#include "ZELKChartScale.h"
#include "ZELKGraphColours.h"
#include "ZELKLWCEntriesViewDisplayList.h"
#include "ZELKLWCEntriesViewMarkerInterval.h"

using namespace Qt::StringLiterals;

namespace {

using Rounding = ZELKLWCEntriesViewDisplayList::Selector;

const ZELKDate start(1000.0);
// A tenth of a point for each second.
const ZELKChartScale scale{{40, 30, 100, 50}, {start, 1000.0}, 1.0};

QString rangesText(const std::vector<ZELKBlockRange> &ranges)
{
    QStringList texts;
    for (const ZELKBlockRange &range : ranges)
        texts.append(u"%1-%2%3"_s.arg(range.from).arg(range.to).arg(range.wide ? u"!"_s : QString()));
    return texts.join(u' ');
}

} // namespace

class TestShapes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void places_data()
    {
        const NamedRows<double, double, QPointF> row("seconds", "percentage", "point");
        row("beginning", 0, 0, {40, 30});
        row("middle", 500, 50, {90, 55});
        row("end", 1000, 100, {140, 80});
        row("before", -0.1, 0, {0, 0});
        row("after", 1000.1, 50, {0, 25});
        row("more than all", 10, 120, {41, 90});
    }
    void places()
    {
        QFETCH(double, seconds);
        QFETCH(double, percentage);
        QTEST(scale.convertDateAndPercentageToPoint(start.addingTimeInterval(seconds), percentage), "point");
    }

    void dates()
    {
        const auto secondsAt = [](double x, double y) {
            const auto date = scale.convertPointToDate({x, y});
            return date ? date->timeIntervalSinceDate(start) : -1.0;
        };
        QCOMPARE(secondsAt(40, 30), 0.0); // left and lower edge belong to the chart
        QCOMPARE(secondsAt(65, 79.9), 250.0);
        for (const QPointF outside : {QPointF(39.9, 50), {140, 50}, {65, 29.9}, {65, 80}})
            QCOMPARE(secondsAt(outside.x(), outside.y()), -1.0);
        for (const double seconds : {0.0, -5.0}) { // a log whose last entry is of yesterday may give either
            const ZELKChartScale nothing{scale.chartRect, {start, seconds}, 1.0};
            QCOMPARE(nothing.convertDateToPoint(start), QPointF());
            QCOMPARE(nothing.convertPointToDate({40, 30}), start);
        }
        QVERIFY(!ZELKChartScale{}.convertPointToDate({}));
    }

    void shapes_data()
    {
        const NamedRows<const char *, double, bool> row("state", "width", "isRounded");
        row("off", "Off", 20, false);
        row("asleep", "Asleep", 20, true);
        row("unmonitored", "Unmonitored", 2.01, true);
        row("too thin", "Asleep", 2.0, false);
        row("backwards", "Asleep", -20, false);
        row("a word without shape", "On", 20, false);
    }
    void shapes()
    {
        QFETCH(QString, state);
        QFETCH(double, width);
        auto list = ZELKLWCEntriesViewDisplayList::displayList();
        list.addState({QRectF(100, 10, width, 40), state, nullptr});
        list.addState({QRectF(100, 10, width, 40), {}, nullptr});
        QCOMPARE(list.states().size(), 1U);
        const QPainterPath path = list.combinedPathForState(state);
        const QRectF bounds = QRectF(100, 10, width, 40).normalized();
        QCOMPARE(path.boundingRect(), bounds);
        // The upper edge has the greater y.
        for (const double x : {bounds.left() + 0.3, bounds.right() - 0.3}) {
            QTEST(!path.contains(QPointF(x, bounds.bottom() - 0.3)), "isRounded");
            QVERIFY(path.contains(QPointF(x, bounds.top() + 0.3)));
            QVERIFY(path.contains(QPointF(x, bounds.bottom() - 2.1)));
        }
    }

    void orderOfPainting()
    {
        auto list = ZELKLWCEntriesViewDisplayList::displayList();
        list.setSelectorString(Rounding::roundedPathForState, u"Off"_s);
        list.setSelectorString(Rounding::pathForState, u"On"_s);
        list.addState({QRectF(0, 0, 9, 9), u"Off"_s, nullptr});
        list.removeAllObjects();
        QVERIFY(list.states().empty());
        QVERIFY(list.rangesForState(u"Off"_s).empty());
        QCOMPARE(list.stateOrder(), (QStringList{u"Off"_s, u"Asleep"_s, u"Unmonitored"_s, u"On"_s}));
        QCOMPARE(list.selectorForState(u"Off"_s), Rounding::roundedPathForState);
    }

    void ranges_data()
    {
        const NamedRows<const char *, const char *, const char *> row("blocks", "single", "merged");
        row("wide ones", "10-20 0-5", "0-5! 10-20!", "0-5! 10-20!");
        row("overlapping", "0-5 4-9 3-4.5", "0-9!", "0-9!");
        row("twice the same", "0-5 0-5 7-8 7-8", "0-5! 7-8", "0-5! 7-8");
        row("touching", "0-5 5-9 10-11 11-12", "0-5! 5-9! 10-11 11-12", "0-5! 5-9! 10-11 11-12");
        row("two points", "0-2 3-5.5", "0-2 3-5.5!", "0-2 3-5.5!");
        row("empty", "3-3", "", "");
        row("backwards", "30-10 12-20 9.5-10.5", "9.5-10.5 10.5-30", "9.5-10.5 10.5-30");
        row("thin before wide", "0-1.5 1-9 8-9.5", "0-1.5 1.5-9! 9-9.5", "0-1.5 1.5-9! 9-9.5");
        row("within a column", "4-4.125 4.25-4.375 4.5-5.5 4.75-5 5-5.25", "4-4.125 4.25-4.375 4.5-5.5",
            "4-4.25 4.5-5.5");
        row("wide between", "4-4.125 4.25-9 9.25-9.5", "4-4.125 4.25-9! 9.25-9.5",
            "4-4.125 4.25-9! 9.25-9.5");
    }
    void ranges()
    {
        QFETCH(QString, blocks);
        ZELKBlockRanges single;
        ZELKBlockRanges merged(0.5);
        for (const QString &block : blocks.split(u' ')) {
            const double from = block.section(u'-', 0, 0).toDouble();
            const double to = block.section(u'-', 1).toDouble();
            single.add(from, to);
            merged.add(from, to);
        }
        QTEST(rangesText(single.ranges()), "single");
        QTEST(rangesText(merged.ranges()), "merged");
    }

    void axisSteps()
    {
        QStringList steps;
        for (const auto &step : ZELKLWCEntriesViewMarkerInterval::markerIntervals())
            steps.append(u"%1 %2"_s.arg(qint64(step.timeInterval)).arg(step.dateFormat));
        QCOMPARE(steps, (QStringList{u"31449600 %Y"_s, u"604800 %e %B"_s, u"86400 %A, %e %B"_s,
                                     u"3600 %I:%M %p"_s, u"60 %I:%M %p"_s}));
    }

    void colours()
    {
        const auto list = ZELKLWCEntriesViewDisplayList::displayList();
        QCOMPARE(ZELKGraphColours::colouredStates(), list.stateOrder());
        for (const QString &state : list.stateOrder())
            QVERIFY(ZELKGraphColours::stateColour(state)->alphaF() < 0.9F);
        QVERIFY(!ZELKGraphColours::stateColour(u"Awake"_s));
        QVERIFY(!ZELKGraphColours::batteryColour(ZELKLWCEntriesViewBatterySegment::disconnected()));
        QCOMPARE(ZELKGraphColours::batteryColour(u"AC Power"_s), QColor(Qt::green));
    }
};

QTEST_GUILESS_MAIN(TestShapes)
#include "tst_shapes.moc"
