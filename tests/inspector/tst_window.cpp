#include "WindowBed.h"
#include "ZELKLWCInspectorController.h"
#include "ZELKLWCInspectorWindow.h"

#include <QClipboard>
#include <QTextEdit>
#include <QToolButton>

namespace {

class WindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isShownAndHidden()
    {
        Session session;
        auto &table = session.find<ZELKLWCLogTableView>("table");
        const auto &action = session.find<QAction>("actionInspector");
        const auto panel = [&] { return session.window.findChild<ZELKLWCInspectorWindow *>(); };
        const auto isVisible = [&] { return panel() && panel()->isVisible(); };
        table.setFocus();
        QVERIFY(!panel());
        session.press(Qt::Key_I, Qt::ControlModifier);
        QVERIFY(isVisible());
        QCOMPARE(action.text(), u"Hide &Inspector"_s);
        QCOMPARE(session.find<QToolButton>("actionInspectorButton").accessibleName(), u"Hide Inspector"_s);
        QCOMPARE(session.window.focusWidget(), &table);
        session.press(Qt::Key_I, Qt::ControlModifier);
        QVERIFY(!isVisible());
        QCOMPARE(action.text(), u"Show &Inspector"_s);
        const QPoint first = table.visualRect(table.indexAt({200, 5})).center();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, first);
        QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, first);
        QVERIFY(isVisible());
        session.table().setFilterString(u"noon"_s);
        session.table().filter();
        session.press(Qt::Key_Escape); // gives up the search first
        QVERIFY(isVisible() && session.table().filterString().isEmpty());
        session.press(Qt::Key_Escape);
        QVERIFY(!isVisible());
        session.press(Qt::Key_Return);
        QVERIFY(isVisible());
        session.press(Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_COMPARE(QApplication::activeWindow(), panel());
        const auto *text = qobject_cast<QTextEdit *>(QApplication::focusWidget());
        QVERIFY(text && panel()->isAncestorOf(text));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier); // not the table's
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(session.table().selectedObjects().size(), 1);
        QCOMPARE(QGuiApplication::clipboard()->text(), text->toPlainText());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_I, Qt::ControlModifier); // from there as well
        QVERIFY(!isVisible());
        QTRY_COMPARE(QApplication::focusWidget(), &table);
    }

    void comesBackWithTheProgram()
    {
        const ApplicationFixture fixture;
        const QString key = ZELKLWCInspectorController::visibleKey;
        for (const bool isFirst : {true, false}) {
            const Session session(fixture, isFirst);
            const auto panel = [&] { return session.window.findChild<ZELKLWCInspectorWindow *>(); };
            if (isFirst)
                session.find<QAction>("actionInspector").trigger();
            QTRY_VERIFY(panel() && panel()->isVisible());
            session.window.close();
            session.window.hide();
            if (!isFirst) { // all windows are closed then
                QEvent quit(QEvent::Quit);
                QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
            }
            QVERIFY(session.wiring.defaults().boolForKey(key));
            QVERIFY(!session.wiring.defaults().stringForKey(u"ZELK Window Frame Inspector"_s).isEmpty());
        }
    }
};

} // namespace

QTEST_MAIN(WindowTest)
#include "tst_window.moc"
