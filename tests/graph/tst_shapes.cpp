// Places, shapes and what is merged: values alone, no log.
#include "NamedRows.h"
#include "ZELKChartScale.h"
#include "ZELKCoverage.h"
#include "ZELKLWCEntriesViewDisplayList.h"

#include <QRandomGenerator>

#include <map>
#include <utility>

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
    void places()
    {
        const auto place = [](double seconds, double percentage) {
            return scale.convertDateAndPercentageToPoint(start.addingTimeInterval(seconds), percentage);
        };
        QCOMPARE(place(0, 0), QPointF(40, 30));
        QCOMPARE(place(500, 120), QPointF(90, 90));
        QCOMPARE(place(1000, 100), QPointF(140, 80));
        for (const double outside : {-0.1, 1000.1})
            QCOMPARE(place(outside, 50), QPointF(0, 25));
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
        ZELKLWCEntriesViewDisplayList merged(0.25);
        merged.addState(list.states().front());
        QCOMPARE(merged.states().empty(), width == 2.0); // too thin for a pointer
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

    void shapesOutliveTheBlocks()
    {
        auto list = ZELKLWCEntriesViewDisplayList::displayList();
        list.setSelectorString(Rounding::roundedPathForState, u"Off"_s);
        list.addState({QRectF(0, 0, 9, 9), u"Off"_s, nullptr});
        list.removeAllObjects();
        QVERIFY(list.states().empty() && list.rangesForState(u"Off"_s).empty());
        QCOMPARE(list.stateOrder(), (QStringList{u"Off"_s, u"Asleep"_s, u"Unmonitored"_s}));
        QCOMPARE(list.selectorForState(u"Off"_s), Rounding::roundedPathForState);
    }

    void ranges_data()
    {
        const NamedRows<const char *, const char *> row("blocks", "merged");
        row("wide ones", "10-20 0-5", "0-5! 10-20!");
        row("overlapping", "0-5 4-9 3-4.5", "0-9!");
        row("twice the same", "0-5 0-5 7-8 7-8", "0-5! 7-8");
        row("touching", "0-5 5-9 10-11 11-12", "0-5! 5-9! 10-11 11-12");
        row("two points", "0-2 3-5.5", "0-2 3-5.5!");
        row("empty", "3-3", "");
        row("backwards", "30-10 12-20 9.5-10.5", "9.5-10.5 10.5-30");
        row("thin before wide", "0-1.5 1-9 8-9.5", "0-1.5 1.5-9! 9-9.5");
        row("within a column", "4-4.125 4.25-4.375 4.25-4.4375 4.5-5.5 4.75-5 5-5.75",
            "4-4.3125 4.5-5.5 5.5-5.75");
        row("the earlier one last", "4.25-4.375 4-4.125", "4-4.125 4.25-4.375");
        row("within a wide one", "4.25-9 4.375-4.5", "4.25-9!");
        row("a wide one's thin rest", "0-1.5 1-3.25", "0-1.5 1.5-3.25");
        row("wide between", "4-4.125 4.25-9 9.25-9.5", "4-4.125 4.25-9! 9.25-9.5");
    }
    void ranges()
    {
        QFETCH(QString, blocks);
        ZELKBlockRanges merged(0.5);
        for (const QString &block : blocks.split(u' '))
            merged.add(block.section(u'-', 0, 0).toDouble(), block.section(u'-', 1).toDouble());
        QTEST(rangesText(merged.ranges()), "merged");
    }

    void boxCutsNothingButWhatLiesOutside()
    {
        QRandomGenerator random(9);
        const auto place = [&random] {
            return QPointF(random.bounded(60.0) - 20.0, random.bounded(60.0) - 20.0);
        };
        const auto sharesOf = [](const QRect &box, const std::vector<QPointF> &line) {
            ZELKCoverage coverage(box);
            coverage.addLine(line, 1.5);
            std::map<std::pair<int, int>, float> shares;
            coverage.takeRows([&shares](int y, int x, std::span<const float> row) {
                for (const float share : row)
                    shares[{x++, y}] = share;
            });
            return shares;
        };
        for (int round = 0; round < 50; ++round) {
            const std::vector<QPointF> line{place(), place(), place()};
            auto whole = sharesOf(QRect(-30, -30, 90, 90), line);
            auto cut = sharesOf(QRect(3, 4, 11, 9), line);
            for (int x = 3; x < 14; ++x)
                for (int y = 4; y < 13; ++y)
                    QVERIFY(std::abs(whole[{x, y}] - cut[{x, y}]) < 1e-4F);
        }
    }

    void linesThatGoBack()
    {
        ZELKThinnedLine line(1.0);
        for (const QPointF point :
             {QPointF(0, 5), {1, 5}, {1.1, 6}, {1.2, 4}, {1.3, 6}, {1.4, 5}, {0.5, 9}, {0.6, 7}, {0.7, 6}})
            line.append(point);
        const std::vector<QPointF> kept{{0, 5}, {1, 5}, {1.2, 4}, {1.3, 6}, {1.4, 5}, {0.5, 9}, {0.7, 6}};
        QCOMPARE(line.points(), kept);
    }
};

QTEST_GUILESS_MAIN(TestShapes)
#include "tst_shapes.moc"
