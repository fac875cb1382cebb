#include "InspectorBed.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKInspectorKind.h"
#include "ZELKLWCInspectorDictionarySubViewController.h"

#include <QApplication>
#include <QDir>
#include <QScreen>
#include <QScrollArea>
#include <QSignalSpy>
#include <QStyle>

namespace {

using Rect = ZELKUprightRect;
using SubView = ZELKLWCInspectorSubViewController;

const QString frameKey = u"ZELK Window Frame Inspector"_s;

/// Runs until nothing is waiting any more.
void settle()
{
    QTest::qWait(0);
    QCoreApplication::processEvents();
}

class PanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // MARK: contents

    void contents_data()
    {
        const Rows<QList<QString>, QStringList> row;
        row("nothing", QStringList{}, QStringList{u"No Selection"_s});
        row("sleep", QStringList{ZELKEventSystemHasPoweredOn},
            QStringList{u"[Summary]"_s,
                        u"System powering on after 6 hours Date=Tuesday, 5 March 2024 | Time=17:00:00 | "
                        "Before=Asleep since 05/03/2024 11:00:00 | From then on=Awake | "
                        "Reported by=Power Events"_s,
                        u"[Properties]"_s, u"Duration=6h"_s});
        row("veto", QStringList{ZELKEventSystemWillNotSleep},
            QStringList{u"[Summary]"_s,
                        u"System will not sleep Date=Tuesday, 5 March 2024 | Time=10:00:00 | "
                        "Reported by=Power Events"_s,
                        u"[Properties]"_s, u"Idle Seconds=15m"_s, u"[Processes]"_s, u"one (1) | two (2)"_s});
        row("battery, repeated", QStringList{ZELKEventPowerStateChanged},
            QStringList{u"[Summary]"_s,
                        u"'BAT0' connected Date=Tuesday, 5 March 2024 | Time=08:00:00 | Repeated=once | "
                        "Last=Tue 05/03/2024 08:30:00 | Reported by=Power Source"_s,
                        u"[Device]"_s, u"Name=BAT0 | Current Capacity=90% | Time to Empty=1h 30m"_s,
                        u"[Duplicates]"_s, u"05/03/2024=08:30:00"_s});
        row("several", QStringList{ZELKEventPowerStateChanged, ZELKEventSystemHasPoweredOn},
            QStringList{
                u"[Summary]"_s,
                u"2 entries From=Tue 05/03/2024 08:00:00 | "
                "To=Tue 05/03/2024 17:00:00 | Length=9 hours"_s,
                u"[Usage]"_s, u"Awake=100.0%=9h"_s, u"[Power Source]"_s, u"Battery Power=100.0%=9h"_s,
                u"[BAT0]"_s, u"Minimum=90.0% | Average=90.0% | Maximum=90.0%"_s, u"[Sleeps]"_s,
                u"BAT0 awake=10.0%=an hour  10.0% in 1h | Unknown=1 of 1 sleeps | "
                "05/03/2024 11:00 - 17:00=Unknown  no charge was read shortly before and after, 6h"_s});
    }
    void contents()
    {
        const auto [events, expected] = Rows<QList<QString>, QStringList>::fetch();
        InspectorBed bed(1);
        for (const QString &event : events) {
            const int row = bed.rowOf(event);
            bed.view.selectionModel()->select({bed.model().index(row, 0), bed.model().index(row, 1)},
                                              QItemSelectionModel::Select);
        }
        bed.inspector->showInformationPanel();
        QCOMPARE(bed.shown(), expected);
    }

    /// Beyond what contents() shows.
    void otherSubViews()
    {
        const InspectorBed bed;
        const auto made = [](const QVariant &value) {
            return SubView::inspectorSubViewControllerWithAttributeValue(value, u"key"_s);
        };
        const auto name = [](const SubView &part) { return part.view()->objectName().mid(16); };
        QCOMPARE(name(*made(u"text"_s)), u"ScalarSubViewController"_s);
        const auto single = made(
            QVariant::fromValue(std::make_shared<const ZELKLWCLogEntrySelection>(bed.log.entry().first(1))));
        QCOMPARE(name(*single) + single->attributeKey(), u"EntrySubViewControllerEvent"_s);
        const auto unsupported = made(QByteArray("x"));
        QCOMPARE(unsupported->attributeKey(), u"Unsupported attribute"_s);
        QCOMPARE(name(*unsupported), u"MessageSubViewController"_s);
        const auto list = made(QVariantList{u"a"_s, QVariant::fromValue(ZELKDate(logStart))});
        QCOMPARE(list->numberOfRowsInTableView(), 2);
        QCOMPARE(list->tableViewObjectValueForTableColumn(u"any"_s, 1), QVariant(u"05/03/2024"_s));
        QVERIFY(!list->tableViewShouldSelectRow(0));
        const auto table = made(QVariant::fromValue(ZELKDictionary{{u"b"_s, 1}, {u"a"_s, 2}}));
        QCOMPARE(table->tableViewObjectValueForTableColumn(u"key"_s, 0), QVariant(u"b"_s));
        QCOMPARE(table->tableViewObjectValueForTableColumn(u"any"_s, 1), QVariant(2));
        const ZELKLWCInspectorDictionarySubViewController array(QVariantList{7}, u"key"_s); // has no keys
        QCOMPARE(array.tableViewObjectValueForTableColumn(u"key"_s, 0), QVariant(7));
    }

    void longLists()
    {
        const InspectorBed bed;
        QStringList names;
        for (int i = 0; i < 20000; ++i)
            names.append(u"process %1"_s.arg(i));
        const auto part = SubView::inspectorSubViewControllerWithAttributeValue(names, u"Processes"_s);
        auto &table = *part->view()->findChild<ZELKInspectorTableView *>();
        QStringList lines = InspectorBed::copied(table).split(u'\n');
        QCOMPARE(lines.size(), ZELKInspectorTableView::mostRows + 1);
        QCOMPARE(lines.last(), u"and 19,500 more"_s);
        QVERIFY(part->view()->heightForWidth(300) < 20 * table.fontMetrics().lineSpacing());
        QCOMPARE(table.accessibleName(), u"Processes"_s);
        const auto label = SubView::inspectorSubViewControllerWithLabel(QString(3000, u'N'));
        QVERIFY(label->view()->sizeHint().width() <= part->view()->sizeHint().width());
    }

    void copiesWhatIsSelected()
    {
        InspectorBed bed;
        bed.select(bed.rowOf(ZELKEventSystemHasPoweredOn), bed.rowOf(ZELKEventSystemHasPoweredOn));
        bed.inspector->showInformationPanel();
        auto &table = *bed.panel().findChild<ZELKInspectorTableView *>();
        bed.panel().takeKeys();
        QVERIFY(bed.panel().isAncestorOf(bed.panel().focusWidget()));
        table.setFocus();
        QTest::keyClick(&table, Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Date"_s);
        QTest::keyClick(&table, Qt::Key_Down, Qt::ShiftModifier); // whole cells, now
        QTest::keyClick(&table, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Date\nTime\nBefore"_s);
        QTest::keyClick(&table, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 u"Date\tTuesday, 5 March 2024\nTime\t17:00:00\nBefore\tAsleep since 05/03/2024 11:00:00"_s);
        QTest::keyClick(&table, Qt::Key_Escape);
        QVERIFY(!bed.inspector->isVisible());
        bed.inspector->showInformationPanel();
        bed.panel().takeKeys();
        bed.view.clearSelection(); // the keys stay in the panel
        settle();
        QVERIFY(bed.panel().isAncestorOf(QApplication::focusWidget()));
        QCOMPARE(QApplication::focusWidget()->accessibleName(), u"No Selection"_s);
    }

    // MARK: when it is made anew

    void onceForABurst()
    {
        InspectorBed bed;
        const auto burst = [&] {
            bed.select(0, 0);
            bed.select(1, 4);
            bed.show(0, 1);
            bed.grow(3);
            bed.controller.setSortDescriptors({{ZELKEntryArrangement::dateKey, false}});
            bed.view.selectAll();
            settle();
        };
        burst();
        QCOMPARE(bed.updates, 0); // it is hidden
        bed.inspector->showInformationPanel();
        QCOMPARE(bed.updates, 1);
        settle();
        bed.updates = 0;
        bed.range.setSelectionTag(8);
        burst();
        QCOMPARE(bed.updates, 1);
        bed.inspector->hideInformationPanel();
        burst();
        QCOMPARE(bed.updates, 1);
        bed.controller.doubleClickShowInformationPanel();
        QCOMPARE(bed.updates, 2);
        bed.select(2, 2); // hidden again before it comes to that
        bed.inspector->hideInformationPanel();
        settle();
        QCOMPARE(bed.updates, 2);
    }

    /// What the user selected in the panel is not lost because an entry arrives elsewhere.
    void staysWhereNothingChanged()
    {
        InspectorBed bed;
        const int last = bed.model().rowCount() - 1;
        bed.select(last, last);
        bed.inspector->showInformationPanel();
        const QWidget *view = bed.inspector->subViewControllers().at(1)->view();
        bed.next = logStart + 20 * day;
        bed.grow(1);
        settle();
        QCOMPARE(bed.updates, 2);
        QCOMPARE(bed.inspector->subViewControllers().at(1)->view(), view);
        bed.log.addExternalEntries({InspectorBed::battery(logStart + 2 * day, 77)}); // the same once more
        settle();
        QVERIFY(bed.shown().at(1).contains("Repeated=once"_L1));
        QFont larger = QApplication::font();
        const QFont usual = larger;
        const int height = bed.panel().height();
        larger.setPointSizeF(larger.pointSizeF() * 1.5);
        QApplication::setFont(larger);
        QTRY_VERIFY(bed.panel().height() > height * 5 / 4);
        QApplication::setFont(usual);
        settle();
    }

    // MARK: being shown

    void visibleAndSettingAreOne()
    {
        InspectorBed bed;
        const QString key = ZELKLWCInspectorController::visibleKey;
        bed.inspector->applicationDidFinishLaunching();
        settle();
        QVERIFY(!bed.inspector->isVisible());
        bed.inspector->showInformationPanel();
        QVERIFY(bed.inspector->isVisible() && bed.defaults.boolForKey(key));
        QCOMPARE(bed.window.focusWidget(), nullptr); // the keys stay where they were
        bed.defaults.setValue(key, false);
        QVERIFY(!bed.inspector->isVisible());
        bed.defaults.setValue(key, true);
        QVERIFY(bed.inspector->isVisible());
        bed.panel().close();
        QVERIFY(!bed.defaults.boolForKey(key));
    }

    void goesWithItsWindow()
    {
        InspectorBed bed;
        auto *window = new QWidget;
        ZELKLWCInspectorController inspector(
            {bed.range, bed.controller, bed.log, bed.defaults, bed.panelQueue, *window});
        inspector.awakeFromNib();
        inspector.showInformationPanel();
        delete window;
        QVERIFY(!inspector.isVisible() && bed.defaults.boolForKey(ZELKLWCInspectorController::visibleKey));
    }

    // MARK: frame

    void keepsItsCornerAndItsPlace()
    {
        InspectorBed bed;
        bed.inspector->showInformationPanel();
        bed.panel().setFrame({300, 500, 200, 60}, false);
        const Rect before = bed.panel().frame();
        bed.select(0, 0);
        bed.inspector->updateContents();
        const Rect after = bed.panel().frame(); // where it moves to
        QVERIFY(after.height > before.height && bed.panel().height() < int(after.height));
        QCOMPARE(after.maxX(), before.maxX());
        QCOMPARE(after.maxY(), before.maxY());
        QTRY_COMPARE(bed.panel().height(), int(after.height));
        bed.inspector->hideInformationPanel();
        QCOMPARE(bed.defaults.stringForKey(frameKey), after.string());
        bed.select(0, 6);
        bed.inspector->updateContents(); // nobody sees it, so that it need not move
        QCOMPARE(bed.panel().height(), int(bed.panel().frame().height));
        bed.defaults.setValue(frameKey, after.string());
        bed.makeInspector();
        bed.select(0, 0);
        bed.inspector->showInformationPanel();
        QCOMPARE(bed.panel().frame().string(), after.string());
        const int usual =
            bed.panel().style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &bed.panel());
        QCOMPARE(bed.panel().animationResizeTime(), usual / 1000.0 * 0.33);
    }

    void rememberedFrames()
    {
        const std::pair<QString, bool> frames[] = {
            {u"{{100, 100}, {200, 150}}"_s, true},   {u"{{-150, 100}, {200, 150}}"_s, true},
            {u"{{9000, 100}, {200, 150}}"_s, false}, // the screen is gone
            {u"{{100, -700}, {200, 150}}"_s, false}, {u"{{-200, 100}, {200, 150}}"_s, false}, // touches only
            {u"{{100, 100}, {200"_s, false},         {QString(), false}};
        for (const auto &[text, isSet] : frames) {
            InspectorBed bed;
            ZELKLWCInspectorWindow panel;
            panel.setDefaults(&bed.defaults);
            panel.setFrame({50, 60, 70, 80}, false);
            if (!text.isNull())
                bed.defaults.setValue(u"ZELK Window Frame test"_s, text);
            QCOMPARE(panel.setFrameUsingName(u"test"_s), isSet);
            QCOMPARE(panel.frame().string(), isSet ? text : u"{{50, 60}, {70, 80}}"_s);
            panel.saveFrameUsingName(u"again"_s);
            QCOMPARE(bed.defaults.stringForKey(u"ZELK Window Frame again"_s), isSet ? text : QString());
        }
    }

    void neverBeyondTheScreen()
    {
        InspectorBed bed(40);
        bed.inspector->showInformationPanel();
        bed.view.selectAll();
        QTRY_VERIFY(bed.shown().contains("[Sleeps]"_L1));
        const QRect screen = bed.panel().screen()->availableGeometry();
        QTRY_VERIFY(screen.contains(bed.panel().geometry()) && bed.panel().height() > screen.height() / 3);
        const auto &area = *bed.panel().findChild<QScrollArea *>();
        QVERIFY(area.widget()->height() > bed.panel().height());
        QTRY_COMPARE(area.viewport()->width(), area.widget()->width());
    }

    // MARK: label

    void labelFollowsTheTint()
    {
        InspectorBed bed;
        bed.select(0, 0);
        bed.inspector->showInformationPanel();
        const QPalette usual = QApplication::palette();
        const QPointer label = bed.panel().findChild<ZELKLWCInspectorLabelView *>();
        label->resize(200, 24);
        QCOMPARE(label->attributedTitle().attributesAt(0).colour, ZELKTextColour::rgb(0, 0, 0));
        QCOMPARE(label->accessibleName(), u"Summary"_s);
        QCOMPARE(label->borderColor(), usual.color(QPalette::Highlight));
        const QImage before = label->grab().toImage();
        QPalette other = usual;
        other.setColor(QPalette::Highlight, QColor(250, 180, 60));
        other.setColor(QPalette::Dark, Qt::magenta);
        QApplication::setPalette(other);
        settle();
        QVERIFY(label); // the panel is not made anew for it
        QCOMPARE(label->borderColor(), QColor(Qt::magenta));
        const QImage after = label->grab().toImage();
        QApplication::setPalette(usual);
        QVERIFY(before != after);
        QCOMPARE(after.pixelColor(150, 6), QColor(250, 180, 60)); // the upper half is plain
        QVERIFY(after.pixelColor(150, 21).valueF() >= after.pixelColor(150, 14).valueF());
        QVERIFY(after.pixelColor(150, 21).saturationF() < after.pixelColor(150, 14).saturationF());
    }

    // MARK: faults

    void missingInterfaceFiles()
    {
        InspectorBed bed;
        bed.select(0, 0);
        ZELKEnvironment environment = tableEnvironment();
        QDir(bed.folder.path()).mkpath(u"bundle"_s);
        environment.mainBundle = std::make_shared<ZELKBundle>(bed.folder.filePath(u"bundle"_s));
        QList<std::pair<QString, int>> failures;
        const auto note = [&](const ZELKAssertionFailure &failure) {
            failures.append({failure.file() + u' ' + failure.message(), failure.line()});
        };
        zelkSetFailureObserver(note);
        {
            const ZELKEnvironmentScope scope(environment);
            QCOMPARE(raised([&] { bed.inspector->loadInspectorFromNib(); }),
                     u"Unable to load ZELKLWCInspectorController nib."_s);
            try {
                bed.inspector->showInformationPanel();
            } catch (const ZELKAssertionFailure &failure) {
                note(failure);
            }
            const auto part = SubView::inspectorSubViewControllerWithLabel(u"Label"_s);
            QVERIFY(!part->view());
            QCOMPARE(part->attributeKey(), u"Label"_s);
        }
        zelkSetFailureObserver({});
        QCOMPARE(failures.size(), 2);
        QCOMPARE(failures.at(0), std::pair(u"client/ZELKLWCInspectorController Unable to load "
                                           "ZELKLWCInspectorController nib."_s,
                                           66));
        QCOMPARE(failures.at(1), std::pair(u"client/ZELKLWCInspectorSubViewController Unable to load "
                                           "ZELKLWCInspectorLabelSubViewController nib."_s,
                                           88));
        bed.inspector->showInformationPanel(); // it is there again
        bed.inspector->addSubViewController(
            std::make_unique<SubView>(QVariant(), u"key"_s, u"ZELKLWCInspectorSelection"_s));
        bed.inspector->layoutSubViewControllers();
        QVERIFY(bed.panel().height() > 0);
    }
};

} // namespace

QTEST_MAIN(PanelTest)
#include "tst_panel.moc"
