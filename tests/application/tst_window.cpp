#include "ApplicationFixture.h"
#include "ZELKAssertion.h"
#include "ZELKElidedLabel.h"
#include "ZELKWindowSession.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
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
        : Session(fixture, fixture.settings(), isFilled)
    {
    }
    Session(const ApplicationFixture &fixture, const ZELKApplicationSettings &settings, bool isFilled)
        : session(settings, fixture.world)
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
            events.append(ZELKMakeRawEvent(first.addingTimeInterval(i), QStringLiteral("new"),
                                           QStringLiteral("org.example")));
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
    void popUpAndRange();
    void presetsThatCannotBeHad();
    void movesByDays();
    void rowsArriveLive();
    void keepsItsPlace();
    void cacheGrowsBehindItsBack();
    void startsAndStops();
    void showsErrorsWithoutWaiting();
    void profileHasNoAgent();
    void emptyTexts();
    void failures();
    void remembers();
    void everythingHasAKeyAndAName();
};

void WindowTest::popUpAndRange()
{
    const ApplicationFixture fixture;
    const Session session(fixture);
    QAbstractItemModelTester tester(session.find<QTableView>("table").model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    QCOMPARE(session.shownTag(), 8);
    QCOMPARE(session.rows(), 77);
    session.pick(7);
    QCOMPARE(session.wiring.dateRange().selectionTag(), 7);
    QCOMPARE(session.rows(), 7);
    QCOMPARE(session.text("countLabel"), QStringLiteral("7 of 77 entries"));
    session.wiring.dateRange().setSelectionTag(5);
    QCOMPARE(session.shownTag(), 5);
    QCOMPARE(session.rows(), 29);
    QCOMPARE(session.find<ZELKElidedLabel>("periodLabel").fullText(),
             session.wiring.dateRange().absoluteDuration()->periodDescription().simplified());
    for (const QAction *preset : session.find<QMenu>("rangeMenu").actions())
        if (preset->data().isValid())
            QCOMPARE(preset->isChecked(), preset->data().toInt() == 5);
    for (QAction *preset : session.find<QMenu>("rangeMenu").actions())
        if (preset->data().toInt() == 8)
            preset->trigger();
    QCOMPARE(session.shownTag(), 8);
    QCOMPARE(session.text("countLabel"), QStringLiteral("77 entries"));
}

void WindowTest::presetsThatCannotBeHad()
{
    const ApplicationFixture fixture;
    const Session session(fixture, false);
    session.wiring.log().addExternalEntries(eventEachDay(QDate(2024, 3, 28), QDate(2024, 3, 31)));
    QVERIFY(session.canPick(1) && session.canPick(2) && session.canPick(8));
    QVERIFY(!session.canPick(3) && !session.canPick(4) && !session.canPick(5) && !session.canPick(7));
    QVERIFY(!session.canPick(9));
    QVERIFY(!session.find<QAction>("actionDayForward").isEnabled());
}

void WindowTest::movesByDays()
{
    const ApplicationFixture fixture;
    const Session session(fixture);
    session.pick(2);
    QTest::mouseClick(&session.find<QToolButton>("backwardButton"), Qt::LeftButton);
    QCOMPARE(session.shownTag(), 9);
    QCOMPARE(session.rows(), 1);
    QCOMPARE(session.find<ZELKElidedLabel>("periodLabel").fullText(),
             QStringLiteral("Friday, 29 March 2024"));
    QVERIFY(!session.canPick(9));
    session.find<QAction>("actionDayForward").trigger();
    QCOMPARE(session.shownTag(), 2);
    session.find<QAction>("actionZoomOut").trigger();
    QCOMPARE(session.rows(), 3);
}

void WindowTest::rowsArriveLive()
{
    const ApplicationFixture fixture;
    const Session session(fixture);
    session.add(500);
    QCOMPARE(session.rows(), 577);
    auto &table = session.find<QTableView>("table");
    QCOMPARE(table.indexAt({1, table.viewport()->height() - 2}).row(), 576);
    QCOMPARE(table.currentIndex().row(), 576);
    QCOMPARE(session.text("countLabel"), QStringLiteral("577 entries"));
}

void WindowTest::keepsItsPlace()
{
    const ApplicationFixture fixture;
    const Session session(fixture);
    session.add(500);
    auto &table = session.find<QTableView>("table");
    table.verticalScrollBar()->setValue(100);
    const QString looking = table.indexAt({0, 0}).data().toString();
    session.add(50, localDate(2024, 3, 31, 14));
    QCOMPARE(table.indexAt({0, 0}).data().toString(), looking);
    session.pick(1); // rows before it go
    QCoreApplication::processEvents();
    QCOMPARE(table.indexAt({0, 0}).data().toString(), looking);
    session.pick(5); // it goes itself
    QCoreApplication::processEvents();
    QCOMPARE(table.verticalScrollBar()->value(), table.verticalScrollBar()->maximum());
}

void WindowTest::cacheGrowsBehindItsBack()
{
    const ApplicationFixture fixture;
    const Session session(fixture);
    {
        ZELKApplicationWiring other(fixture.settings(), ZELKApplicationWiring::World::withoutAgent());
        other.store().cacheEvents(QList{ZELKMakeRawEvent(localDate(2024, 3, 31, 15), QStringLiteral("other"),
                                                         QStringLiteral("org.example"))});
    }
    session.wiring.store().sync();
    QCOMPARE(session.rows(), 78);
}

void WindowTest::startsAndStops()
{
    ApplicationFixture fixture;
    const Session session(fixture);
    auto &button = session.find<QPushButton>("startStopButton");
    QCOMPARE(button.text(), QStringLiteral("Start Recording…"));
    QCOMPARE(session.text("stateLabel"), QStringLiteral("Not installed"));
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(fixture.workspace->launches, QStringList{QStringLiteral("org.zelk.lullwatch.agent")});
    fixture.letAgentRun(true);
    QTRY_COMPARE(session.text("stateLabel"), QStringLiteral("Recording in this session"));
    QCOMPARE(button.text(), QStringLiteral("Stop Recording"));
    session.find<QAction>("actionStartStop").trigger();
    QCOMPARE(fixture.workspace->terminations, 1);
    fixture.letAgentRun(false);
    QTRY_COMPARE(button.text(), QStringLiteral("Start Recording…"));
    // That monitoring stopped is an event itself.
    QTRY_COMPARE(session.rows(), 78);
}

void WindowTest::showsErrorsWithoutWaiting()
{
    ApplicationFixture fixture;
    fixture.workspace->launchesByIdentifier = false;
    fixture.workspace->launchError = ZELKAgentError(
        QStringLiteral("test"), 1, QStringLiteral("<b>It</b> will not"), QStringLiteral("because"));
    const Session session(fixture);
    session.find<QPushButton>("startStopButton").click();
    const auto *box = session.window.findChild<QMessageBox *>();
    QVERIFY(box && box->isVisible());
    QCOMPARE(box->windowModality(), Qt::WindowModal);
    QCOMPARE(box->text(), QStringLiteral("<b>It</b> will not"));
    QCOMPARE(box->textFormat(), Qt::PlainText);
    QCOMPARE(box->informativeText(), QStringLiteral("because"));
}

void WindowTest::profileHasNoAgent()
{
    const ApplicationFixture fixture;
    const ZELKApplicationSettings profile = fixture.profile();
    ZELKWindowSession session(profile, ZELKApplicationWiring::World::real(profile));
    session.start(false);
    QCoreApplication::processEvents();
    const QMainWindow &window = *session.mainWindow().window();
    QVERIFY(!window.findChild<QPushButton *>(QStringLiteral("startStopButton"))->isEnabled());
    QCOMPARE(window.findChild<QLabel *>(QStringLiteral("stateLabel"))->text(),
             QStringLiteral("Profile “test”, not recording"));
    QVERIFY(session.wiring().startAgentIfAbsent());
}

void WindowTest::emptyTexts()
{
    ApplicationFixture fixture;
    const Session session(fixture, false);
    auto &pages = session.find<QStackedWidget>("pages");
    QCOMPARE(pages.currentIndex(), 1);
    QVERIFY(session.text("emptyLabel").startsWith(QLatin1String("Nothing has been recorded yet.")));
    fixture.letAgentRun(true);
    session.wiring.agentController().updateState();
    QVERIFY(session.text("emptyLabel").startsWith(QLatin1String("Recording has begun.")));
    session.add(1);
    QCOMPARE(pages.currentIndex(), 0);
    QCOMPARE(session.text("countLabel"), QStringLiteral("1 entry"));
    session.wiring.log().addExternalEntries(eventEachDay(QDate(2024, 4, 10), QDate(2024, 4, 10)));
    session.pick(2);
    QCOMPARE(pages.currentIndex(), 1);
    QCOMPARE(session.text("emptyLabel"), QStringLiteral("Nothing was recorded on these days."));
}

void WindowTest::failures()
{
    ApplicationFixture fixture;
    const Session session(fixture);
    const auto &label = session.find<ZELKElidedLabel>("failureLabel");
    QVERIFY(!label.isVisible());
    zelkGuard([] { ZELKAssertion::fail(QStringLiteral("client/X"), 0, QStringLiteral("X lost\nits way")); });
    QVERIFY(label.isVisible());
    QVERIFY(label.fullText().endsWith(QLatin1String("10:00:00 X lost its way")));
    Q_EMIT session.wiring.store().fetchFinished(false); // there is no agent, which is no failure
    QVERIFY(label.fullText().endsWith(QLatin1String("X lost its way")));
    fixture.letAgentRun(true);
    session.wiring.agentController().updateState();
    Q_EMIT session.wiring.store().fetchFinished(false);
    QVERIFY(label.fullText().endsWith(
        QLatin1String("The recording agent did not answer. What is shown may not be all.")));
    Q_EMIT session.wiring.store().fetchFinished(true);
    QVERIFY(!label.isVisible());
}

void WindowTest::remembers()
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

void WindowTest::everythingHasAKeyAndAName()
{
    const ApplicationFixture fixture;
    const Session session(fixture);
    for (const QAction *action : session.window.findChildren<QAction *>())
        if (!action->isSeparator() && !action->menu() && action->parent() == &session.window)
            QVERIFY2(!action->text().startsWith(QLatin1String("ZELK")) &&
                         (action->text().contains(QLatin1Char('&')) || !action->shortcut().isEmpty()),
                     qPrintable(action->text()));
    for (const char *name :
         {"table", "filterPopUpButton", "backwardButton", "forwardButton", "startStopButton"}) {
        const auto &control = session.find<QWidget>(name);
        QVERIFY2(control.focusPolicy() & Qt::TabFocus, name);
        const auto *button = qobject_cast<const QPushButton *>(&control);
        QVERIFY2(!control.accessibleName().isEmpty() || (button && !button->text().isEmpty()), name);
    }
    for (const QLabel *label : session.window.findChildren<QLabel *>())
        QVERIFY2(!label->text().startsWith(QLatin1String("ZELK")), qPrintable(label->objectName()));
}

} // namespace

QTEST_MAIN(WindowTest)

#include "tst_window.moc"
