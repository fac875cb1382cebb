// The graph as a widget: what pointing, keys and changes of the data do.
#include "GraphFixture.h"
#include "NamedRows.h"
#include "ZELKGraphDescription.h"
#include "ZELKLWCEntriesView.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QToolTip>

namespace {

struct DragView : ZELKLWCEntriesView
{
    void drag(std::unique_ptr<QMimeData> pasteboard, const QImage &, QPointF grip) override
    {
        grips.append(grip.toPoint());
        dragged.append(pasteboard->data(QLatin1String(tiffType)));
    }
    QList<QByteArray> dragged;
    QList<QPoint> grips;
};

/// Three days, of which the second is shown first: asleep from 4 to 8, off from 12 to 18.
struct Bed : GraphFixture
{
    DragView view;

    Bed()
        : GraphFixture(u"-20:plain 1:b50 4:sleep 8:wake 12:off 18:on 23:b40 40:plain"_s)
    {
        view.setLog(&log);
        view.setDateRange(&range);
        view.awakeFromNib();
        view.resize(800, 220);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view))
            qFatal("no window");
        settle();
        view.setFocus();
    }
    void settle() { QTRY_VERIFY(!view.cell().dataSourceChanged()); }
    /// In the middle of the chart's height.
    QPoint placeOf(double hours) const
    {
        const ZELKChartScale &chart = view.cell().drawing().chartScale();
        return {qRound(chart.convertDateToPoint(at(hours)).x()),
                qRound(view.height() - chart.chartRect.center().y())};
    }
    /// Hours of the selection, rounded to a tenth; -1 without one.
    double selected() const
    {
        const auto date = view.selection();
        return date ? std::round(date->timeIntervalSinceDate(dayStart) / hour * 10.0) / 10.0 : -1.0;
    }
    double shownDays() const { return std::ceil(range.absoluteDuration()->duration() / hour / 24.0); }
};

class TestView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pointingSelectsAsLongAsItLasts()
    {
        Bed bed;
        QSignalSpy spy(&bed.view, &ZELKLWCEntriesView::selectionDidChange);
        const auto move = [&bed](QPoint place) { QTest::mouseMove(&bed.view, place); };
        move(bed.placeOf(3));
        QCOMPARE(spy.count(), 0);
        QTest::mousePress(&bed.view, Qt::LeftButton, {}, bed.placeOf(6));
        QCOMPARE(bed.selected(), 6.0);
        QCOMPARE(bed.view.property("selection").value<ZELKDate>(), *bed.view.selection());
        move(bed.placeOf(9));
        QCOMPARE(bed.selected(), 9.0);
        move({2, 2}); // beside the chart, in the view
        QCOMPARE(bed.selected(), 9.0);
        move({-50, 100});
        move(bed.placeOf(12)); // it has left the view
        QTest::mouseRelease(&bed.view, Qt::LeftButton, {}, bed.placeOf(12));
        QCOMPARE(bed.selected(), 9.0);
        QCOMPARE(spy.count(), 2);
        QTest::mouseClick(&bed.view, Qt::LeftButton, {}, {2, 2});
        QTest::mouseClick(&bed.view, Qt::RightButton, {}, bed.placeOf(3));
        QCOMPARE(spy.count(), 2);
    }

    void doubleClickNarrowsToTheDay_data()
    {
        NamedRows<bool> row("byKey");
        row("double click", false);
        row("Return", true);
    }
    void doubleClickNarrowsToTheDay()
    {
        QFETCH(bool, byKey);
        Bed bed;
        bed.show(-1, 3);
        bed.settle();
        QTest::keyClick(&bed.view, Qt::Key_Return);
        QCOMPARE(bed.shownDays(), 3.0);
        const QPoint place = bed.placeOf(30);
        QTest::mouseClick(&bed.view, Qt::LeftButton, {}, place);
        if (byKey)
            QTest::keyClick(&bed.view, Qt::Key_Return);
        else
            QTest::mouseDClick(&bed.view, Qt::LeftButton, {}, place);
        QCOMPARE(bed.shownDays(), 1.0);
        QCOMPARE(bed.range.absoluteDuration()->startDate(), at(24));
        bed.settle();
        QTest::mouseRelease(&bed.view, Qt::LeftButton, {}, place);
        QVERIFY(std::abs(bed.selected() - 30.0) < 0.5);
    }

    void withAKeyHeldThePictureIsDragged_data()
    {
        NamedRows<Qt::KeyboardModifier, int> row("modifier", "drags");
        row("alt", Qt::AltModifier, 1);
        row("control", Qt::ControlModifier, 1);
        row("shift", Qt::ShiftModifier, 0);
    }
    void withAKeyHeldThePictureIsDragged()
    {
        QFETCH(Qt::KeyboardModifier, modifier);
        QFETCH(int, drags);
        Bed bed;
        QTest::mousePress(&bed.view, Qt::LeftButton, modifier, bed.placeOf(6));
        QCOMPARE(bed.selected(), 6.0);
        for (const double place : {6.05, 10.0, 11.0})
            QTest::mouseMove(&bed.view, bed.placeOf(place));
        QTest::mouseRelease(&bed.view, Qt::LeftButton, modifier, bed.placeOf(11));
        QCOMPARE(bed.view.dragged.size(), drags);
        if (drags > 0)
            QVERIFY(bed.view.dragged.first().startsWith("II*") || bed.view.dragged.first().startsWith("MM"));
        QCOMPARE(bed.selected(), drags > 0 ? 6.0 : 11.0);
    }

    void dragsMayBeginAtTheEdge()
    {
        Bed bed;
        const QPoint nearEdge(bed.placeOf(6).x(), bed.view.height() - 3);
        const auto move = [&](int below) {
            QTest::mouseMove(&bed.view, QPoint(nearEdge.x(), bed.view.height() + below));
        };
        QTest::mousePress(&bed.view, Qt::LeftButton, Qt::ControlModifier, nearEdge);
        move(4);
        QVERIFY(bed.view.dragged.isEmpty());
        move(10);
        QCOMPARE(bed.view.grips, QList<QPoint>{nearEdge});
        QTest::mouseRelease(&bed.view, Qt::LeftButton, {}, bed.placeOf(8));
        QVERIFY(!bed.view.selection());
    }

    void keysGoFromEntryToEntry_data()
    {
        const NamedRows<double, QList<Qt::Key>, double> row("clicked", "keys", "hours");
        constexpr double nowhere = -1.0;
        row("first", nowhere, {Qt::Key_Right}, 1.0);
        row("last", nowhere, {Qt::Key_Left}, 23.0);
        row("forward", nowhere, {Qt::Key_Home, Qt::Key_Right, Qt::Key_Right}, 8.0);
        row("back from the last", nowhere, {Qt::Key_End, Qt::Key_Left}, 18.0);
        row("stays in the range", nowhere, {Qt::Key_Home, Qt::Key_Left}, 1.0);
        row("not beyond the end", nowhere, {Qt::Key_End, Qt::Key_Right}, 23.0);
        row("back from the entry before", 9.0, {Qt::Key_Left}, 4.0);
        row("and from the one after", 7.5, {Qt::Key_Left}, 4.0);
        row("on from the one after", 7.5, {Qt::Key_Right}, 12.0);
        row("half way is later", 10.0, {Qt::Key_Right}, 18.0);
    }
    void keysGoFromEntryToEntry()
    {
        QFETCH(double, clicked);
        QFETCH(QList<Qt::Key>, keys);
        Bed bed;
        if (clicked > 0.0)
            bed.view.setSelection(at(clicked));
        QSignalSpy spy(&bed.view, &ZELKLWCEntriesView::selectionDidChange);
        for (const Qt::Key key : keys)
            QTest::keyClick(&bed.view, key);
        QTEST(bed.selected(), "hours");
        QVERIFY(spy.count() > 0);
        bed.show(1, 1); // the selection is left behind
        QTest::keyClick(&bed.view, Qt::Key_Return);
        QCOMPARE(bed.range.absoluteDuration()->startDate(), at(24));
        QTest::keyClick(&bed.view, Qt::Key_Right);
        QCOMPARE(bed.selected(), 40.0);
    }

    void keysStepThroughWhatIsListed()
    {
        Bed bed;
        QList<ZELKDate> rows;
        for (const ZELKLWCLogEntry *entry : bed.log.visibleEntriesArray())
            if (entry->date() == at(18) || entry->date() == at(4) || entry->date() == at(12))
                rows.prepend(entry->date());
        bed.view.setListedEntries([&rows](ZELKDate date) {
            return ZELKDateNeighbours(date, int(rows.size()), ZELKDateNeighbours::Order::None,
                                      [&rows](int row) { return rows.at(row); });
        });
        QList<double> hours;
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}) {
            QTest::keyClick(&bed.view, key);
            hours.append(bed.selected());
            // A list looks for the last entry before a date and the first one after it.
            QVERIFY(bed.view.selection()->timeIntervalSinceDate(at(hours.last())) > 0.0);
        }
        QCOMPARE(hours, (QList<double>{4.0, 12.0, 18.0, 18.0, 12.0}));
        rows.clear();
        QTest::keyClick(&bed.view, Qt::Key_Right);
        QCOMPARE(bed.selected(), 12.0);
        QTest::keyClick(&bed.view, Qt::Key_Return);
        QCOMPARE(bed.range.absoluteDuration()->startDate(), at(0));
    }

    void onlyChangesAreDrawnAnew()
    {
        Bed bed;
        const auto drawn = [&bed] { return bed.view.cell().drawing().image().cacheKey(); };
        const qint64 first = drawn();
        bed.view.repaint();
        QCOMPARE(drawn(), first);
        bed.log.addExternalEntries({eventFrom(u"41:plain"_s), eventFrom(u"42:plain"_s)});
        bed.settle();
        QTRY_VERIFY(drawn() != first);
        const qint64 second = drawn();
        bed.show(1, 1);
        bed.settle();
        QVERIFY(drawn() != second);
        bed.view.setMostEntriesWhileResizing(0); // for this moment the old drawing does
        const qint64 third = drawn();
        bed.view.resize(700, 220);
        bed.view.repaint();
        QCOMPARE(drawn(), third);
        QTRY_COMPARE(bed.view.cell().drawing().size(), QSizeF(700, 220));
        QFont larger = bed.view.font();
        larger.setPointSizeF(2.0 * larger.pointSizeF());
        bed.view.setFont(larger);
        QVERIFY(bed.view.cell().dataSourceChanged());
    }

    void blocksHaveToolTips()
    {
        Bed bed;
        const auto tip = [&bed](double hours) {
            const QPoint place = bed.placeOf(hours);
            QHelpEvent event(QEvent::ToolTip, place, bed.view.mapToGlobal(place));
            QApplication::sendEvent(&bed.view, &event);
            return QToolTip::text();
        };
        QCOMPARE(tip(6), ZELKStateAsleep);
        QCOMPARE(tip(14), ZELKStateOff);
        tip(10);
        QTRY_VERIFY(!QToolTip::isVisible());
    }

    void whatItShowsIsTold_data()
    {
        const NamedRows<const char *, const char *> row("events", "told");
        row("nothing", "40:plain", "0 entries");
        row("blocks and curves", "1:b50 4:sleep 8:wake 9:sleep 9.5:wake 12:off 18:on 23:b40 40:plain",
            "8 entries; Off once, 6 hours; Asleep 2 times, 4 hours, 30 minutes in all; BAT0 from 50 % to 40 "
            "%");
        row("off all day", "-30:off 30:on", "0 entries; Off once, 1 day");
        row("across both ends", "-8:sleep 6:wake 22:sleep 30:wake",
            "2 entries; Asleep 2 times, 8 hours in all");
        row("duplicates beyond the day", "1:off 3:on 30:boot", "2 entries; Off once, 23 hours");
        row("levels that readings outside tell", "-4:b80@BAT1 -2:a50 4:sleep 26:a64 40:b20@BAT1",
            "1 entry; BAT1 from 75 % to 42 %; BAT0 from 51 % to 63 %");
        row("away", "-4:x80 40:plain", "0 entries");
    }
    void whatItShowsIsTold()
    {
        QFETCH(QString, events);
        QFETCH(QString, told);
        const GraphFixture fixture(events);
        QCOMPARE(ZELKGraphDescription::description(fixture.log, fixture.range),
                 u"Tuesday, 5 March 2024; "_s + told);
    }

    void assistiveProgramsAreTold()
    {
        Bed bed;
        QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&bed.view);
        QCOMPARE(interface->role(), QAccessible::Chart);
        const QString told = interface->text(QAccessible::Description);
        QCOMPARE(told, ZELKGraphDescription::description(bed.log, bed.range));
        bed.show(1, 1);
        QCOMPARE(interface->text(QAccessible::Description),
                 ZELKGraphDescription::description(bed.log, bed.range));
        QVERIFY(interface->text(QAccessible::Description) != told);
        bed.view.setLabelTopLeft(ZELKAttributedString(u"Click there.\n"_s));
        bed.view.setLabelBanner(ZELKAttributedString(u"Welcome"_s));
        QVERIFY(interface->text(QAccessible::Description).startsWith(u"Click there.\nWelcome\nWednesday"_s));
    }
};

} // namespace

QTEST_MAIN(TestView)
#include "tst_view.moc"
