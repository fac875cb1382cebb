#include "WindowBed.h"
#include "ZELKArchive.h"
#include "ZELKColourButton.h"
#include "ZELKElidedLabel.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKPreferences.h"
#include "ZELKSearchField.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QDateEdit>
#include <QDialog>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>

namespace {

using Item = ZELKLWCLogTableController::MenuItem;

/// Each day of a week a sleep at noon, and a wake ten minutes later.
QList<ZELKRawEvent> naps()
{
    QList<ZELKRawEvent> events;
    for (int day = 25; day <= 31; ++day)
        for (const bool isWake : {false, true})
            events.append(
                ZELKMakeRawEvent(localDate(2024, 3, day, 12, isWake ? 10 : 0),
                                 QString(isWake ? ZELKEventSystemHasPoweredOn : ZELKEventSystemWillSleep),
                                 u"org.zelk.monitor.watcher.powerevents"_s));
    return events;
}

struct NapSession : Session
{
    NapSession()
        : Session(false)
    {
        wiring.log().addExternalEntries(naps());
        QCoreApplication::processEvents();
        view.setFocus();
    }
    QAction &action(const char *name) const { return find<QAction>(name); }
    void click(int row) const
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                          view.visualRect(view.model()->index(row, 1)).center());
    }
    QList<int> selectedRows()
    {
        QList<int> rows;
        for (const ZELKRowRange &range : table().selectedRows())
            rows += {range.first, range.last};
        return rows;
    }

    ZELKLWCLogTableView &view = find<ZELKLWCLogTableView>("table");
};

class WindowPartsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searches()
    {
        NapSession session;
        auto &field = session.find<ZELKSearchField>("filterField");
        const auto &matches = session.find<QLabel>("matchLabel");
        QVERIFY(!matches.isVisible() && !session.action("actionClearSearch").isEnabled());
        session.press(Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(session.window.focusWidget(), &field);
        QTest::keyClicks(&field, session.view.model()->index(1, 1).data().toString());
        QCOMPARE(session.rows(), 7);
        QVERIFY(matches.isVisible() && session.action("actionClearSearch").isEnabled());
        QCOMPARE(matches.text(), u"7 of 14 match"_s);
        QCOMPARE(session.text("countLabel"), u"14 entries"_s);
        session.press(Qt::Key_Down);
        QCOMPARE(session.window.focusWidget(), &session.view);
        session.press(Qt::Key_Escape); // in the list, too
        QCOMPARE(session.rows(), 14);
        session.press(Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(&field, u"x"_s);
        QCOMPARE(session.rows(), 0);
        session.press(Qt::Key_Escape);
        QCOMPARE(session.rows(), 14);
        QCOMPARE(session.window.focusWidget(), &field);
        session.press(Qt::Key_Escape);
        QCOMPARE(session.window.focusWidget(), &session.view);
    }

    void rowsHaveActions()
    {
        NapSession session;
        const QList<const char *> names{"actionCopy", "actionSelectPair", "actionExtendToPair",
                                        "actionJumpToSelection"};
        for (const char *name : names)
            QVERIFY2(!session.action(name).isEnabled(), name);
        session.click(3);
        for (const char *name : names)
            QVERIFY2(session.action(name).isEnabled(), name);
        session.press(Qt::Key_C, Qt::ControlModifier);
        QVERIFY(QApplication::clipboard()->mimeData()->hasFormat(u"text/rtf"_s));
        const QString line = session.view.model()->index(3, 0).data().toString() + u'\t' +
                             session.view.model()->index(3, 1).data().toString();
        QCOMPARE(QApplication::clipboard()->text(), line);
        session.press(Qt::Key_J, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(session.selectedRows(), (QList{2, 3}));
        QVERIFY(!session.action("actionSelectPair").isEnabled()); // of two rows
        session.click(3);
        session.press(Qt::Key_J, Qt::ControlModifier);
        QCOMPARE(session.selectedRows(), (QList{2, 2}));
        session.press(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(session.selectedRows(), (QList{0, 13}));
    }

    void showsSelectedDays()
    {
        NapSession session;
        session.action("actionSortDescending").trigger();
        session.click(3); // the 30th
        QTest::mouseClick(session.view.viewport(), Qt::RightButton);
        const QPoint place = session.view.visualRect(session.view.currentIndex()).center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, place, session.view.mapToGlobal(place));
        QApplication::sendEvent(session.view.viewport(), &event);
        auto &menu = session.find<QMenu>("contextMenu");
        QVERIFY(menu.isVisible() && menu.actions().contains(&session.action("actionCopy")));
        menu.close();
        QTest::keyClick(&session.view, Qt::Key_F10, Qt::ShiftModifier);
        QVERIFY(menu.isVisible());
        menu.close();
        session.click(3);
        session.action("actionJumpToSelection").trigger();
        QCOMPARE(session.find<ZELKElidedLabel>("periodLabel").fullText(), u"Saturday, 30 March 2024"_s);
        QCOMPARE(session.rows(), 2);
    }

    void sortsByMenu()
    {
        NapSession session;
        const auto first = [&] { return session.view.model()->index(0, 0).data().toString(); };
        const QString oldest = first();
        QVERIFY(session.action("actionSortByDate").isChecked() &&
                session.action("actionSortAscending").isChecked());
        session.action("actionSortDescending").trigger();
        QVERIFY(first() != oldest);
        QCOMPARE(session.view.horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
        session.action("actionSortBySummary").trigger();
        QCOMPARE(session.view.horizontalHeader()->sortIndicatorSection(), 1);
        session.view.horizontalHeader()->setSortIndicator(0, Qt::AscendingOrder); // as a click does
        QVERIFY(session.action("actionSortByDate").isChecked() &&
                session.action("actionSortAscending").isChecked());
        QCOMPARE(first(), oldest);
    }

    void customDays()
    {
        NapSession session;
        session.press(Qt::Key_G, Qt::ControlModifier);
        auto &from = session.find<QDateEdit>("fromDay");
        auto &to = session.find<QDateEdit>("toDay");
        QDialog &sheet = *qobject_cast<QDialog *>(from.window());
        QVERIFY(sheet.isVisible());
        QCOMPARE(sheet.windowModality(), Qt::WindowModal);
        QCOMPARE(session.shownTag(), 8); // nothing has been chosen yet
        QCOMPARE(from.date(), QDate(2024, 3, 25));
        QCOMPARE(to.date(), QDate(2024, 3, 31));
        to.setDate(QDate(2024, 3, 27));
        from.setDate(QDate(2024, 3, 28)); // takes the other along
        QTest::keyClick(&to, Qt::Key_Return);
        QVERIFY(!sheet.isVisible());
        QCOMPARE(session.rows(), 2);
        QCOMPARE(session.shownTag(), 9);
        session.pick(9); // once more, given up
        QTest::keyClick(&from, Qt::Key_Escape);
        QCOMPARE(session.rows(), 2);
        session.find<QAction>("actionRange9").trigger();
        from.setDate(QDate(2024, 3, 30));
        to.setDate(QDate(2024, 3, 30));
        sheet.accept();
        QCOMPARE(session.shownTag(), 2); // yesterday
    }

    void preferencesHoldAtOnce()
    {
        NapSession session;
        session.press(Qt::Key_Comma, Qt::ControlModifier);
        ZELKUserDefaults &defaults = session.wiring.defaults();
        auto &dates = session.find<QCheckBox>("relativeDates");
        auto &colour = session.find<ZELKColourButton>("highlightColour");
        QVERIFY(dates.window()->isVisible() && dates.isChecked());
        const auto newest = [&] { return session.view.model()->index(13, 0).data().toString(); };
        QVERIFY2(newest().startsWith("Today"_L1), qPrintable(newest()));
        QTest::keyClick(&dates, Qt::Key_Space);
        QVERIFY2(newest().startsWith("31/03/2024"_L1), qPrintable(newest()));
        QVERIFY(!session.action("actionRelativeDates").isChecked());
        const int height = session.view.uniformRowHeight();
        session.press(Qt::Key_D, Qt::ControlModifier);
        QVERIFY(session.find<QCheckBox>("eventDetail").isChecked());
        QVERIFY(session.view.uniformRowHeight() > height);

        const QColor before = colour.colour();
        QTest::mouseClick(&colour, Qt::LeftButton);
        auto *dialog = colour.findChild<QColorDialog *>();
        QVERIFY(dialog);
        dialog->setCurrentColor(Qt::cyan);
        QCOMPARE(session.table().highlightColour(), QColor(Qt::cyan));
        dialog->reject();
        QCOMPARE(session.table().highlightColour(), before);
        defaults.setValue(u"highlightColour"_s, ZELKArchive::archivedColour(Qt::green));
        QCOMPARE(colour.colour(), QColor(Qt::green));
        QTest::keyClick(&session.find<QCheckBox>("highlight"), Qt::Key_Space);
        QVERIFY(!colour.isEnabled() && !session.table().highlightRelated());

        QTest::mouseClick(&session.find<QPushButton>("revert"), Qt::LeftButton);
        QVERIFY(dates.isChecked() && colour.isEnabled() && !session.action("actionDetail").isChecked());
        QCOMPARE(colour.colour(), before);
        QCOMPARE(session.view.uniformRowHeight(), height);
    }

    // MARK: accessibility

    void tableFollowsTheGraph()
    {
        Session session;
        session.pick(8);
        auto &graph = session.find<ZELKLWCEntriesView>("graph");
        QTRY_VERIFY(graph.isVisible() && !graph.cell().dataSourceChanged());
        QVERIFY(!graph.description().isEmpty());
        const int rows = session.rows();
        graph.setFocus();
        session.press(Qt::Key_End);
        QTRY_COMPARE(session.table().selectedRows().size(), std::size_t(1));
        const ZELKLWCLogEntry *last = session.table().firstSelectedEntry();
        QCOMPARE(last->date(), session.wiring.log().objectAtIndex(session.wiring.log().count() - 1)->date());
        session.press(Qt::Key_Home);
        QTRY_COMPARE(session.table().firstSelectedEntry(), session.wiring.log().objectAtIndex(0));
        session.press(Qt::Key_Return);
        QCOMPARE(session.shownTag(), ZELKLWCDateRangeController::customTag);
        QTRY_VERIFY(session.rows() < rows);
    }
    void keysOfTheGraphStepThroughTheRows()
    {
        NapSession session;
        QTest::keyClicks(&session.find<ZELKSearchField>("filterField"),
                         session.view.model()->index(1, 1).data().toString());
        QCOMPARE(session.rows(), 7);
        session.find<ZELKLWCEntriesView>("graph").setFocus();
        for (const Qt::Key key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Right})
            session.press(key);
        QTRY_COMPARE(session.table().firstSelectedEntry(), session.table().model().entryAtRow(2));
    }

    void everyControlIsReachableAndNamed()
    {
        const Session session;
        for (const QWidget *widget : session.window.findChildren<QWidget *>()) {
            const bool isControl = widget->inherits("QAbstractButton") || widget->inherits("QComboBox") ||
                                   widget->inherits("QLineEdit") || widget->inherits("QDateEdit") ||
                                   widget == &session.find<QWidget>("table");
            // Parts of other controls, and of the tool bar where it is too narrow; a remedy that is not
            // needed.
            const bool isAway = widget->window() == &session.window && widget->isHidden();
            if (!isControl || isAway || widget->objectName().startsWith("qt_"_L1) ||
                widget->objectName().isEmpty())
                continue;
            const QByteArray name = widget->objectName().toLatin1();
            const auto *button = qobject_cast<const QAbstractButton *>(widget);
            QVERIFY2(widget->focusPolicy() & Qt::TabFocus && isInFocusChain(*widget), name);
            QVERIFY2(!widget->accessibleName().isEmpty() || (button && !button->text().isEmpty()), name);
        }
        for (const QLabel *label : session.window.findChildren<QLabel *>())
            QVERIFY2(!label->text().contains(u'&') || label->buddy(), qPrintable(label->text()));
        for (const char *label : {"rangeLabel", "fromLabel", "toLabel", "highlightColourLabel"})
            QVERIFY2(session.find<QLabel>(label).buddy(), label);
        checkTabOrder(session.window);
    }

    static bool isInFocusChain(const QWidget &wanted)
    {
        const QWidget *first = wanted.window();
        for (const QWidget *widget = first->nextInFocusChain(); widget != first;
             widget = widget->nextInFocusChain())
            if (widget == &wanted)
                return true;
        return false;
    }

    /// From left to right, then down.
    static void checkTabOrder(const QMainWindow &window)
    {
        QStringList order;
        const QWidget *first = window.findChild<QWidget *>(u"filterPopUpButton"_s);
        for (const QWidget *widget = first; order.isEmpty() || widget != first;
             widget = widget->nextInFocusChain())
            if (widget->window() == &window && widget->focusPolicy() & Qt::TabFocus && widget->isVisible() &&
                !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_"_L1))
                order.append(widget->objectName());
        QCOMPARE(
            order,
            (QStringList{u"filterPopUpButton"_s, u"actionMonthBackwardButton"_s, u"actionDayBackwardButton"_s,
                         u"actionRange1Button"_s, u"actionDayForwardButton"_s, u"actionMonthForwardButton"_s,
                         u"actionZoomInButton"_s, u"actionZoomOutButton"_s, u"actionInspectorButton"_s,
                         u"startStopButton"_s, u"filterField"_s, u"graph"_s, u"partsHandle"_s, u"table"_s}));
    }

    void splitterMovesByKeys()
    {
        const Session session;
        session.window.resize(900, 700);
        const auto &graph = session.find<ZELKLWCEntriesView>("graph");
        QTRY_VERIFY(graph.isVisible() && !graph.cell().dataSourceChanged());
        auto &handle = session.find<QWidget>("partsHandle");
        QVERIFY(!handle.accessibleName().isEmpty());
        const int height = graph.height();
        QTest::keyClick(&handle, Qt::Key_Down);
        QVERIFY(graph.height() > height);
        for (int i = 0; i < 60; ++i)
            QTest::keyClick(&handle, Qt::Key_Up);
        QVERIFY(graph.height() < height && graph.height() >= graph.minimumSizeHint().height());
    }

    void menusAreUnambiguous()
    {
        const Session session;
        checkMnemonics(session.window.menuBar()->actions(), u"menu bar"_s);
        for (const QMenu *menu : session.window.findChildren<QMenu *>())
            if (menu->objectName().endsWith("Menu"_L1) && menu->objectName() != u"contextMenu"_s)
                checkMnemonics(menu->actions(), menu->objectName());
        QHash<QKeySequence, QString> shortcuts;
        for (const QAction *action : session.window.findChildren<QAction *>())
            for (const QKeySequence &key : action->shortcuts()) {
                QVERIFY2(!shortcuts.contains(key),
                         qPrintable(action->text() + u" and "_s + shortcuts.value(key)));
                shortcuts.insert(key, action->text());
            }
        for (const char *key : {"Ctrl+C", "Ctrl+A", "Ctrl+F", "Ctrl+W", "Ctrl+Q", "Ctrl+,", "Ctrl++",
                                "Ctrl+-", "F1", "F5", "F11"})
            QVERIFY2(shortcuts.contains(QKeySequence(QString::fromLatin1(key))), key);
    }

    static void checkMnemonics(const QList<QAction *> &actions, const QString &menu)
    {
        QStringList letters;
        for (const QAction *action : actions) {
            if (action->isSeparator())
                continue;
            const QKeySequence letter = QKeySequence::mnemonic(action->text());
            QVERIFY2(!letter.isEmpty() && !action->text().startsWith("ZELK"_L1),
                     qPrintable(menu + u": "_s + action->text()));
            QVERIFY2(!letters.contains(letter.toString()), qPrintable(menu + u": "_s + action->text()));
            letters.append(letter.toString());
        }
    }

    void hintsShowInTheStatusBar()
    {
        const Session session;
        session.find<QAction>("actionDayBackward").showStatusText(&session.window);
        QCOMPARE(session.window.statusBar()->currentMessage(), u"The days before, moved by one day"_s);
        QVERIFY(session.find<QLabel>("countLabel").isVisible());
        QCOMPARE(session.find<QToolButton>("actionDayBackwardButton").toolTip(),
                 u"The days before, moved by one day (Alt+Left)"_s);
    }
};

} // namespace

QTEST_MAIN(WindowPartsTest)

#include "tst_window_parts.moc"
