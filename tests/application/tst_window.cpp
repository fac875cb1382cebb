#include "WindowBed.h"
#include "ZELKAssertion.h"
#include "ZELKElidedLabel.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>

namespace {

class WindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void popUpAndRange()
    {
        const Session session;
        QAbstractItemModelTester tester(session.find<ZELKLWCLogTableView>("table").model(),
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
        QCOMPARE(session.shownTag(), 8);
        QCOMPARE(session.rows(), 77);
        session.pick(7);
        QCOMPARE(session.rows(), 7);
        QCOMPARE(session.text("countLabel"), u"7 of 77 entries"_s);
        session.wiring.dateRange().setSelectionTag(5);
        QCOMPARE(session.shownTag(), 5);
        QCOMPARE(session.rows(), 29);
        QAction *everything = nullptr;
        for (QAction *preset : session.find<QMenu>("rangeMenu").actions()) {
            QVERIFY(!preset->data().isValid() || preset->isChecked() == (preset->data().toInt() == 5));
            everything = preset->data().toInt() == 8 ? preset : everything;
        }
        everything->trigger();
        QCOMPARE(session.shownTag(), 8);
        QCOMPARE(session.text("countLabel"), u"77 entries"_s);
    }

    void presetsThatCannotBeHad()
    {
        const Session session(false);
        session.wiring.log().addExternalEntries(eventEachDay(QDate(2024, 3, 28), QDate(2024, 3, 31)));
        QList<int> offered;
        for (int tag = 1; tag < 10; ++tag)
            if (tag != 6 && session.canPick(tag)) // the week, in which the data lie whole
                offered.append(tag);
        QCOMPARE(offered, (QList{1, 2, 8, 9}));
        QVERIFY(!session.find<QAction>("actionDayForward").isEnabled());
    }

    void movesByDays()
    {
        const Session session;
        session.pick(2);
        QTest::mouseClick(&session.find<QToolButton>("actionDayBackwardButton"), Qt::LeftButton);
        QCOMPARE(session.shownTag(), 9);
        QCOMPARE(session.rows(), 1);
        QCOMPARE(session.find<ZELKElidedLabel>("periodLabel").fullText(), u"Friday, 29 March 2024"_s);
        session.press(Qt::Key_Right, Qt::AltModifier);
        QCOMPARE(session.shownTag(), 2);
        session.press(Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(session.rows(), 3);
        session.press(Qt::Key_T, Qt::ControlModifier);
        QCOMPARE(session.shownTag(), 1);
        QVERIFY(session.find<QToolButton>("actionRange1Button").isChecked());
        session.press(Qt::Key_0, Qt::ControlModifier);
        QCOMPARE(session.shownTag(), 8);
    }

    /// Rows follow while the end is looked at; what is looked at elsewhere stays in its place.
    void rowsArriveLive()
    {
        const Session session;
        session.add(500);
        QCOMPARE(session.rows(), 577);
        auto &table = session.find<ZELKLWCLogTableView>("table");
        QVERIFY(table.viewport()->rect().contains(table.visualRect(table.model()->index(576, 0)).center()));
        QCOMPARE(table.currentIndex().row(), 576);
        table.verticalScrollBar()->setValue(100);
        const auto lookedAt = [&] { return table.indexAt({0, 0}).data().toString(); };
        const QString before = lookedAt();
        session.add(50, localDate(2024, 3, 31, 14));
        QCOMPARE(lookedAt(), before);
        session.pick(1); // rows before it go
        QCoreApplication::processEvents();
        QCOMPARE(lookedAt(), before);
        session.pick(5); // it goes itself
        QCoreApplication::processEvents();
        QCOMPARE(table.verticalScrollBar()->value(), table.verticalScrollBar()->maximum());
    }

    void startsAndStops()
    {
        ApplicationFixture fixture;
        const Session session(fixture);
        auto &button = session.find<QPushButton>("startStopButton");
        QCOMPARE(button.text(), u"Start Recording…"_s);
        QCOMPARE(session.text("stateLabel"), u"Not installed"_s);
        QTest::mouseClick(&button, Qt::LeftButton);
        answerSheet(session.window, 1);
        QCOMPARE(fixture.workspace->launches, QStringList{u"org.zelk.lullwatch.agent"_s});
        fixture.letAgentRun(true);
        QTRY_COMPARE(session.text("stateLabel"), u"Recording in this session"_s);
        QCOMPARE(session.find<QLabel>("stateLabel").toolTip(), // nothing is amiss
                 Qt::convertFromPlainText(u"Recording agent, version 1"_s));
        QCOMPARE(button.text(), u"Stop Recording"_s);
        session.find<QAction>("actionStartStop").trigger();
        QCOMPARE(fixture.workspace->terminations, 1);
        fixture.letAgentRun(false);
        QTRY_COMPARE(button.text(), u"Start Recording…"_s);
        // That monitoring stopped is an event itself.
        QTRY_COMPARE(session.rows(), 78);
    }

    void profileHasNoAgent()
    {
        const ApplicationFixture fixture;
        const Session session(fixture, fixture.profile());
        QVERIFY(!session.find<QPushButton>("startStopButton").isEnabled());
        QCOMPARE(session.text("stateLabel"), u"Profile “test”, not recording"_s);
        QVERIFY(session.wiring.startAgentIfAbsent());
    }

    void emptyTexts()
    {
        const Session session(false);
        auto &pages = session.find<QStackedWidget>("pages");
        auto &remedy = session.find<QPushButton>("emptyButton");
        session.add(1);
        QCOMPARE(session.text("countLabel"), u"1 entry"_s);
        session.wiring.log().addExternalEntries(eventEachDay(QDate(2024, 4, 10), QDate(2024, 4, 10)));
        session.pick(2);
        QCOMPARE(pages.currentIndex(), 1);
        QCOMPARE(session.text("emptyLabel"), u"No entries in this range"_s);
        QTest::mouseClick(&remedy, Qt::LeftButton);
        QCOMPARE(session.shownTag(), 8);
        QTest::keyClicks(&session.find<QLineEdit>("filterField"), u"Noon"_s);
        QCOMPARE(session.text("emptyLabel"), u"No entry contains “Noon”"_s);
        QTest::mouseClick(&remedy, Qt::LeftButton);
        QCOMPARE(pages.currentIndex(), 0);
    }

    void failures()
    {
        ApplicationFixture fixture;
        const Session session(fixture);
        const auto &line = session.find<QLineEdit>("failureLine");
        QVERIFY(!line.isVisible());
        zelkGuard([] { ZELKAssertion::fail(u"client/X"_s, 0, u"X lost\nits way"_s); });
        QVERIFY(line.isVisible());
        Q_EMIT session.wiring.store().fetchFinished(false); // there is no agent, which is no failure
        QVERIFY(line.text().endsWith("10:00:00 X lost its way"_L1));
        fixture.letAgentRun(true);
        session.wiring.agentController().updateState();
        Q_EMIT session.wiring.store().fetchFinished(false);
        QVERIFY(line.text().endsWith("The recording agent did not answer. What is shown may not be all."_L1));
        Q_EMIT session.wiring.store().fetchFinished(true);
        QVERIFY(!line.isVisible());
    }

    void remembers()
    {
        const ApplicationFixture fixture;
        QList<int> heights;
        {
            Session session(fixture);
            session.wiring.store().setLastSyncDate(ZELKDate(700000000.0));
            session.pick(5);
            session.window.resize(1177, 644);
            QHeaderView &columns = *session.find<ZELKLWCLogTableView>("table").horizontalHeader();
            columns.resizeSection(0, 301);
            columns.setSortIndicator(0, Qt::DescendingOrder);
            session.find<QSplitter>("parts").setSizes({222, 2222});
            heights = session.find<QSplitter>("parts").sizes();
            QVERIFY(session.window.close());
            session.session.applicationWillTerminate();
        }
        const Session session(fixture, false);
        QCOMPARE(session.shownTag(), 5);
        QCOMPARE(session.rows(), 29);
        QCOMPARE(session.window.size(), QSize(1177, 644));
        QCOMPARE(session.find<QSplitter>("parts").sizes(), heights);
        const auto &table = session.find<ZELKLWCLogTableView>("table");
        QCOMPARE(table.horizontalHeader()->sectionSize(0), 301);
        QCOMPARE(table.currentIndex().row(), 0); // where the newest are now
        QVERIFY(session.find<QAction>("actionSortDescending").isChecked());
        QCOMPARE(session.wiring.store().lastSyncDate(), ZELKDate(700000000.0));
    }

    /// Whatever the font, nothing is cut off that is not meant to give way.
    void anyFont()
    {
        const QFont usual = QApplication::font();
        const Session session;
        const auto &table = session.find<ZELKLWCLogTableView>("table");
        const int iconSize = session.find<QToolBar>("toolBar").iconSize().height();
        const int rowHeight = table.uniformRowHeight();
        for (const int points : {8, 24}) {
            QFont font = usual;
            font.setPointSize(points);
            QApplication::setFont(font);
            session.window.resize(session.window.sizeHint().expandedTo({1600, 900}));
            QCoreApplication::processEvents();
            const bool isLarger = points > usual.pointSize();
            QCOMPARE(session.find<QToolBar>("toolBar").iconSize().height() > iconSize, isLarger);
            QCOMPARE(table.uniformRowHeight() > rowHeight, isLarger);
            QTRY_COMPARE(cutOff(session.window), QStringList());
            const QFontMetrics metrics(table.font());
            QVERIFY(metrics.horizontalAdvance(table.model()->index(0, 0).data().toString()) <
                    table.columnWidth(0));
        }
        QApplication::setFont(usual);
    }

    static QStringList cutOff(const QMainWindow &window)
    {
        QStringList names;
        for (const QWidget *widget : window.findChildren<QWidget *>()) {
            const bool hasText = widget->inherits("QLabel") || widget->inherits("QAbstractButton");
            const QSize least = widget->minimumSizeHint();
            if (widget->isVisible() && hasText && !widget->inherits("ZELKElidedLabel") &&
                (widget->width() < least.width() || widget->height() < least.height()))
                names.append(widget->objectName());
        }
        return names;
    }

    void symbolsFollowThePalette()
    {
        const QPalette usual = QApplication::palette();
        const Session session;
        const QIcon icon = session.find<QAction>("actionDayBackward").icon();
        const QIcon overflow = session.find<QToolButton>("qt_toolbar_ext_button").icon();
        QVERIFY(!icon.isNull() && !overflow.isNull());
        const auto darkest = [](const QIcon &symbol) {
            const QImage image = symbol.pixmap(32).toImage();
            int shade = 255;
            for (int x = 0; x < image.width(); ++x)
                for (int y = 0; y < image.height(); ++y)
                    if (image.pixelColor(x, y).alpha() > 200)
                        shade = qMin(shade, qGray(image.pixel(x, y)));
            return shade;
        };
        QVERIFY(darkest(icon) < 80);
        QPalette dark = usual;
        for (const auto role : {QPalette::ButtonText, QPalette::Text})
            dark.setColor(role, Qt::white);
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128)); // as many a scheme leaves it
        QApplication::setPalette(dark);
        QVERIFY(darkest(icon) > 200 && darkest(overflow) > 200);
        const QColor search = session.find<QLineEdit>("filterField").palette().placeholderText().color();
        QVERIFY(search.alpha() == 255 && qGray(search.rgb()) > 100);
        QApplication::setPalette(usual);
    }
};

} // namespace

QTEST_MAIN(WindowTest)

#include "tst_window.moc"
