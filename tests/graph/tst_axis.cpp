// Where the parts of the graph stand, which ticks it has and which dates.
#include "GraphFixture.h"
#include "NamedRows.h"
#include "ZELKAxisTicks.h"
#include "ZELKPixelSpace.h"
#include "ZELKStateGradient.h"

namespace {

constexpr double day = 24.0 * hour;

QString text(const QRectF &rect)
{
    return u"%1,%2 %3x%4"_s.arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

ZELKAxisTicks ticksOf(double seconds, double chartWidth, double frameWidth, double labelWidth)
{
    ZELKGraphLayout layout;
    layout.frame = QRectF(0, 0, frameWidth, 160);
    layout.mediaRect = layout.frame.adjusted(10, 10, -10, -10);
    layout.chartRect = QRectF(frameWidth - 10 - chartWidth, 30, chartWidth, 100);
    layout.xAxisMarkerTextHeight = 20.0F;
    return ZELKAxisTicks::forPeriod({at(0), seconds}, layout,
                                    ZELKLWCEntriesViewMarkerInterval::markerIntervals(),
                                    [labelWidth](const QString &) { return QSizeF(labelWidth, 14); });
}

} // namespace

class TestAxis : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ticks_data()
    {
        const NamedRows<double, double, double, const char *, const char *> row("seconds", "width", "label",
                                                                                "ticks", "dates");
        row("an hour has none", hour, 600, 60, "", "");
        row("nor has what is narrower than a minute's tick", 30.0, 600, 60, "", "");
        row("nothing", 0, 600, 60, "", "");
        row("backwards", -day, 600, 60, "", "");
        row("minutes", 1200.0, 600, 60, "20 long", "12:02 AM 12:05 AM 12:08 AM 12:11 AM 12:14 AM 12:17 AM");
        row("a day", day, 700, 60, "24 long", "02:00 AM 06:00 AM 10:00 AM 02:00 PM 06:00 PM 10:00 PM");
        row("a day less a second", day - 1.0, 700, 60, "24 long",
            "02:00 AM 06:00 AM 10:00 AM 02:00 PM 06:00 PM 10:00 PM");
        row("less than two steps have no date, so the finer ones have", 1.5 * day, 700, 40,
            "2 long, 36 short",
            "02:00 AM 06:00 AM 10:00 AM 02:00 PM 06:00 PM 10:00 PM 02:00 AM 06:00 AM 10:00 AM");
        row("days and hours", 2.0 * day, 700, 60, "2 long, 48 short", "Wednesday,  6 March");
        row("two weeks, and days without dates", 14.0 * day, 700, 60, "2 long, 14 short", "12 March");
        row("weeks", 119.0 * day, 700, 60, "17 long", "12 March  2 April 23 April 14 May  4 June 25 June");
        row("a date wider than the frame", 14.0 * day, 700, 800, "2 long, 14 short", "");
        row("years of 364 days, and weeks", 3.0 * 364.0 * day, 2000, 60, "3 long, 156 short", "2025 2026");
    }
    void ticks()
    {
        QFETCH(double, seconds);
        QFETCH(double, width);
        QFETCH(double, label);
        const ZELKEnvironmentScope scope(inUtc());
        const ZELKAxisTicks axis = ticksOf(seconds, width, width + 20.0, label);
        const auto isLong = [](const auto &tick) { return tick.shape == ZELKAxisTicks::Shape::Major; };
        const auto longOnes = std::count_if(axis.ticks.begin(), axis.ticks.end(), isLong);
        QStringList counts;
        if (longOnes > 0)
            counts.append(u"%1 long"_s.arg(longOnes));
        if (longOnes < qsizetype(axis.ticks.size()))
            counts.append(u"%1 short"_s.arg(qsizetype(axis.ticks.size()) - longOnes));
        QTEST(counts.join(u", "_s), "ticks");
        QStringList dates;
        for (const ZELKAxisTicks::Label &one : axis.labels)
            dates.append(one.text);
        QTEST(dates.join(u' '), "dates");
    }

    void placesOfTicks()
    {
        const ZELKEnvironmentScope scope(inUtc());
        // Two and a half hours: the half counts as half a second, that is 0.05 points.
        const ZELKAxisTicks axis = ticksOf(2.5 * hour, 900, 920, 60);
        QCOMPARE(axis.ticks.size(), 3U + 0U);
        QCOMPARE(axis.ticks[0].x, 10.0 - 0.05);
        QCOMPARE(axis.ticks[2].x, 10.0 - 0.05 + 720.0);
        QCOMPARE(axis.labels.size(), 2U);
        QCOMPARE(text(axis.labels[0].rect), u"339.95,10 60x14"_s);
        // In a narrow frame ticks may stand nearer to each other.
        QCOMPARE(ticksOf(day, 40, 60, 60).ticks.size(), 0U);
        QCOMPARE(ticksOf(10.0 * hour, 60, 55, 60).ticks.size(), 10U);
    }

    void layouts_data()
    {
        const NamedRows<bool, bool, QRectF, const char *, const char *, const char *> row(
            "titled", "batteries", "frame", "title", "label", "chart");
        const QRectF frame(0, 0, 400, 200);
        row("nothing but dates", false, false, frame, "0,0 0x0", "0,0 0x0", "10,28 380x162");
        row("a title", true, false, frame, "150,10 100x16", "0,0 0x0", "10,50 380x140");
        row("batteries", false, true, frame, "0,0 0x0", "10,101.5 50x30", "66,28 324x162");
        row("both", true, true, frame, "150,10 100x16", "10,112.5 50x30", "66,50 324x140");
        row("elsewhere", true, true, frame.translated(7, 3), "157,13 100x16", "17,115.5 50x30",
            "73,53 324x140");
        row("narrower than the title", true, false, QRectF(0, 0, 90, 200), "10,10 70x16", "0,0 0x0",
            "10,50 70x140");
        row("no room", true, false, QRectF(0, 0, 90, 40), "10,10 70x16", "0,0 0x0", "10,50 70x-20");
    }
    void layouts()
    {
        QFETCH(bool, titled);
        QFETCH(bool, batteries);
        QFETCH(QRectF, frame);
        const auto layout =
            ZELKGraphLayout::inFrame(frame, {QSizeF(100, 16), QSizeF(50, 30), 12, titled, batteries});
        QTEST(text(layout.titleRect), "title");
        QTEST(text(layout.yAxisLabelRect), "label");
        QTEST(text(layout.chartRect), "chart");
        QCOMPARE(layout.hasChart(), layout.chartRect.height() > 0.0);
        QCOMPARE(layout.xAxisMarkerTextHeight, 18.0F);
    }

    void turnedOver()
    {
        const ZELKPixelSpace space{100.0, 2.0};
        QCOMPARE(space.pixel({10, 30}), QPointF(20, 140));
        QCOMPARE(space.transform().map(QPointF(10, 30)), QPointF(20, 140));
        QCOMPARE(space.turned({10, 30, 5, 7}), QRectF(10, 63, 5, 7));
        QCOMPARE(space.snapped(10.2), 10.0);
        QCOMPARE(space.snapped(10.3), 10.5);
    }

    void gradients()
    {
        const auto hsv = [](const QColor &colour) {
            return QString::asprintf("%.2f %.2f %.2f", double(colour.hsvSaturationF()),
                                     double(colour.valueF()), double(colour.alphaF()));
        };
        const auto ends = [&](const QColor &base) {
            const auto gradient = ZELKStateGradient::withBaseColour(base);
            return QStringList{hsv(gradient.dark), hsv(gradient.light)};
        };
        QCOMPARE(ends(QColor::fromHsvF(0.5F, 0.5F, 0.5F, 0.7F)),
                 (QStringList{u"0.62 0.41 0.70"_s, u"0.38 0.80 0.70"_s}));
        QCOMPARE(ends(QColor::fromHsvF(0.5F, 0.95F, 0.95F, 1.0F)),
                 (QStringList{u"1.00 0.86 1.00"_s, u"0.83 1.00 1.00"_s}));
        QCOMPARE(ends(QColor::fromHsvF(0.5F, 0.03F, 0.05F, 1.0F)),
                 (QStringList{u"0.00 0.00 1.00"_s, u"0.00 0.35 1.00"_s}));
        const auto gradient = ZELKStateGradient::withBaseColour(Qt::black);
        QVERIFY(std::abs(gradient.at(0.5).valueF() - 0.15F) < 0.001F);
        QCOMPARE(gradient.at(2.0), gradient.at(1.0));
    }
};

QTEST_GUILESS_MAIN(TestAxis)
#include "tst_axis.moc"
