#include "ApplicationFixture.h"
#include "ZELKAssertion.h"
#include "ZELKElidedLabel.h"
#include "ZELKWindowSession.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>
#include <QToolButton>

namespace {

/// A window that has finished launching, over 77 days with an event each.
struct Session
{
    explicit Session(const ApplicationFixture &fixture, bool isFilled = true)
        : session(fixture.settings(), fixture.world)
        , wiring(session.wiring())
        , window(*session.mainWindow().window())
    {
        if (isFilled)
            wiring.store().cacheEvents(eventEachDay(QDate(2024, 1, 15), QDate(2024, 3, 31)));
        session.start(false);
        QCoreApplication::processEvents();
    }
    template <typename Type>
    Type &find(const char *name) const
    {
        auto *found = window.findChild<Type *>(QString::fromLatin1(name));
        Q_ASSERT(found);
        return *found;
    }
    QString text(const char *label) const { return find<QLabel>(label).text(); }
    int rows() const { return find<QTableView>("table").model()->rowCount(); }
    int shownTag() const { return find<QComboBox>("filterPopUpButton").currentData().toInt(); }
    void pick(int tag) const
    {
        auto &popUp = find<QComboBox>("filterPopUpButton");
        popUp.setCurrentIndex(popUp.findData(tag));
        Q_EMIT popUp.activated(popUp.currentIndex());
    }
    bool canPick(int tag) const
    {
        auto &popUp = find<QComboBox>("filterPopUpButton");
        return qobject_cast<QStandardItemModel *>(popUp.model())->item(popUp.findData(tag))->isEnabled();
    }
    void add(int count, ZELKDate first = localDate(2024, 3, 31, 13)) const
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i)
            events.append(ZELKMakeRawEvent(first.addingTimeInterval(i), u"new"_s, u"org.example"_s));
        wiring.log().addExternalEntries(events);
        QCoreApplication::processEvents();
    }

    ZELKWindowSession session;
    ZELKApplicationWiring &wiring;
    QMainWindow &window;
};

class WindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void popUpAndRange()
    {
        const ApplicationFixture fixture;
        const Session session(fixture);
        QAbstractItemModelTester tester(session.find<QTableView>("table").model(),
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
        const ApplicationFixture fixture;
        const Session session(fixture, false);
        session.wiring.log().addExternalEntries(eventEachDay(QDate(2024, 3, 28), QDate(2024, 3, 31)));
        for (const int tag : {1, 2, 8})
            QVERIFY2(session.canPick(tag), qPrintable(QString::number(tag)));
        for (const int tag : {3, 4, 5, 7, 9})
            QVERIFY2(!session.canPick(tag), qPrintable(QString::number(tag)));
        QVERIFY(!session.find<QAction>("actionDayForward").isEnabled());
    }

    void movesByDays()
    {
        const ApplicationFixture fixture;
        const Session session(fixture);
        session.pick(2);
        QTest::mouseClick(&session.find<QToolButton>("backwardButton"), Qt::LeftButton);
        QCOMPARE(session.shownTag(), 9);
        QCOMPARE(session.rows(), 1);
        QCOMPARE(session.find<ZELKElidedLabel>("periodLabel").fullText(), u"Friday, 29 March 2024"_s);
        QVERIFY(!session.canPick(9));
        session.find<QAction>("actionDayForward").trigger();
        QCOMPARE(session.shownTag(), 2);
        session.find<QAction>("actionZoomOut").trigger();
        QCOMPARE(session.rows(), 3);
    }

    /// Rows follow while the end is looked at; what is looked at elsewhere stays in its place.
    void rowsArriveLive()
    {
        const ApplicationFixture fixture;
        const Session session(fixture);
        session.add(500);
        QCOMPARE(session.rows(), 577);
        auto &table = session.find<QTableView>("table");
        QCOMPARE(table.indexAt({1, table.viewport()->height() - 2}).row(), 576);
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
        QCOMPARE(button.text(), u"Stop Recording"_s);
        session.find<QAction>("actionStartStop").trigger();
        QCOMPARE(fixture.workspace->terminations, 1);
        fixture.letAgentRun(false);
        QTRY_COMPARE(button.text(), u"Start Recording…"_s);
        // That monitoring stopped is an event itself.
        QTRY_COMPARE(session.rows(), 78);
    }

    void showsErrorsWithoutWaiting()
    {
        const ApplicationFixture fixture;
        fixture.workspace->launchesByIdentifier = false;
        fixture.workspace->launchError = ZELKAgentError(u"test"_s, 1, u"<b>It</b> will not"_s, u"because"_s);
        const Session session(fixture);
        session.find<QPushButton>("startStopButton").click();
        answerSheet(session.window, 1);
        const auto *box = session.window.findChild<QMessageBox *>();
        QVERIFY(box && box->isVisible());
        QCOMPARE(box->windowModality(), Qt::WindowModal);
        QCOMPARE(box->text(), u"<b>It</b> will not"_s);
        QCOMPARE(box->textFormat(), Qt::PlainText);
        QCOMPARE(box->informativeText(), u"because"_s);
    }

    void profileHasNoAgent()
    {
        const ApplicationFixture fixture;
        const ZELKApplicationSettings profile = fixture.profile();
        ZELKWindowSession session(profile, ZELKApplicationWiring::World::real(profile));
        session.start(false);
        QCoreApplication::processEvents();
        const QMainWindow &window = *session.mainWindow().window();
        QVERIFY(!window.findChild<QPushButton *>(u"startStopButton"_s)->isEnabled());
        QCOMPARE(window.findChild<QLabel *>(u"stateLabel"_s)->text(), u"Profile “test”, not recording"_s);
        QVERIFY(session.wiring().startAgentIfAbsent());
    }

    void emptyTexts()
    {
        ApplicationFixture fixture;
        const Session session(fixture, false);
        auto &pages = session.find<QStackedWidget>("pages");
        QCOMPARE(pages.currentIndex(), 1);
        QVERIFY(session.text("emptyLabel").startsWith("Nothing has been recorded yet."_L1));
        fixture.letAgentRun(true);
        session.wiring.agentController().updateState();
        QVERIFY(session.text("emptyLabel").startsWith("Recording has begun."_L1));
        session.add(1);
        QCOMPARE(pages.currentIndex(), 0);
        QCOMPARE(session.text("countLabel"), u"1 entry"_s);
        session.wiring.log().addExternalEntries(eventEachDay(QDate(2024, 4, 10), QDate(2024, 4, 10)));
        session.pick(2);
        QCOMPARE(pages.currentIndex(), 1);
        QCOMPARE(session.text("emptyLabel"), u"Nothing was recorded on these days."_s);
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
        {
            Session session(fixture);
            session.wiring.store().setLastSyncDate(ZELKDate(700000000.0));
            session.pick(5);
            session.window.resize(777, 444);
            QVERIFY(session.window.close());
            session.session.applicationWillTerminate();
        }
        const Session session(fixture, false);
        QCOMPARE(session.shownTag(), 5);
        QCOMPARE(session.rows(), 29);
        QCOMPARE(session.window.size(), QSize(777, 444));
        QCOMPARE(session.wiring.store().lastSyncDate(), ZELKDate(700000000.0));
    }

    void everythingHasAKeyAndAName()
    {
        const ApplicationFixture fixture;
        const Session session(fixture);
        for (const QAction *action : session.window.findChildren<QAction *>())
            if (!action->isSeparator() && !action->menu() && action->parent() == &session.window)
                QVERIFY2(!action->text().startsWith("ZELK"_L1) &&
                             (action->text().contains(u'&') || !action->shortcut().isEmpty()),
                         qPrintable(action->text()));
        for (const char *name :
             {"table", "filterPopUpButton", "backwardButton", "forwardButton", "startStopButton"}) {
            const auto &control = session.find<QWidget>(name);
            QVERIFY2(control.focusPolicy() & Qt::TabFocus, name);
            const auto *button = qobject_cast<const QPushButton *>(&control);
            QVERIFY2(!control.accessibleName().isEmpty() || (button && !button->text().isEmpty()), name);
        }
        for (const QLabel *label : session.window.findChildren<QLabel *>())
            QVERIFY2(!label->text().startsWith("ZELK"_L1), qPrintable(label->objectName()));
    }
};

} // namespace

QTEST_MAIN(WindowTest)

#include "tst_window.moc"
