#include "Rows.h"
#include "TableWindow.h"
#include "ZELKCapsule.h"

#include <QAccessible>
#include <QClipboard>
#include <QDrag>
#include <QMimeData>
#include <QSignalSpy>

namespace {

/// How far from the left edge of an area anything is drawn on its background.
int firstInk(const QImage &picture, const QRect &area)
{
    for (int x = area.left() + 1; x <= area.right(); ++x)
        for (int y = area.top() + 4; y < area.bottom() - 4; ++y)
            if (std::abs(qGray(picture.pixel(x, y)) - qGray(picture.pixel(area.left(), y))) > 90)
                return x - area.left();
    return -1;
}

} // namespace

class ViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keys_data()
    {
        const Rows<Qt::Key, Qt::KeyboardModifier, int, int> row; // how often it opens, and the top row then
        row("Home", Qt::Key_Home, Qt::NoModifier, 0, 0);
        row("Shift Home", Qt::Key_Home, Qt::ShiftModifier, 0, 0);
        row("End", Qt::Key_End, Qt::NoModifier, 0, -1);
        row("Return", Qt::Key_Return, Qt::NoModifier, 1, 100);
        row("Enter", Qt::Key_Enter, Qt::KeypadModifier, 1, 100);
        row("a letter", Qt::Key_E, Qt::NoModifier, 0, 100);
    }
    void keys()
    {
        const auto [key, modifier, opens, top] = Rows<Qt::Key, Qt::KeyboardModifier, int, int>::fetch();
        Table table;
        table.select(103, 104);
        table.view.verticalScrollBar()->setValue(100);
        const QSignalSpy opened(&table.controller, &ZELKLWCLogTableController::showInformationPanel);
        QTest::keyClick(&table.view, key, modifier);
        QCOMPARE(opened.count(), opens);
        QCOMPARE(table.topRow(), top < 0 ? table.view.verticalScrollBar()->maximum() : top);
        QCOMPARE(table.selected(), QList({103, 104}));
    }

    void keysBesides()
    {
        Table table;
        const QSignalSpy opened(&table.controller, &ZELKLWCLogTableController::showInformationPanel);
        QKeyEvent lineFeed(QEvent::KeyPress, 0, Qt::NoModifier, u"\n"_s);
        QCoreApplication::sendEvent(&table.view, &lineFeed);
        QCOMPARE(opened.count(), 1);
        QTest::mouseClick(table.view.viewport(), Qt::LeftButton, {}, table.centreOf(2));
        QTest::mouseDClick(table.view.viewport(), Qt::LeftButton, {}, table.centreOf(2));
        QCOMPARE(opened.count(), 2);
        table.view.setCurrentIndex(table.model().index(3, 0));
        QTest::keyClick(&table.view, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(&table.view, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(table.selected(), QList({3, 4, 5}));
        const int page = table.view.verticalScrollBar()->pageStep();
        QTest::keyClick(&table.view, Qt::Key_PageDown);
        QCOMPARE(table.selected(), QList({5 + page}));
        QVERIFY(table.view.viewport()->rect().contains(table.centreOf(5 + page)));
    }

    void copyingIsTheMenus()
    {
        Table table;
        QGuiApplication::clipboard()->setText(u"before"_s);
        table.select(0, 1);
        table.view.copy();
        QTest::keySequence(&table.view, QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"before"_s);
    }

    void drags_data()
    {
        const Rows<QPoint, int, int> row; // the way, drags, rows that are selected
        row("along the row", QPoint(60, 4), 1, 1);
        row("across rows", QPoint(4, 60), 0, 4);
    }
    void drags()
    {
        const auto [way, drags, selected] = Rows<QPoint, int, int>::fetch();
        Table table;
        table.view.setUniformRowHeight(20);
        int count = 0;
        table.view.setDragRunner([&](const QDrag &drag, Qt::DropActions actions) {
            ++count;
            QCOMPARE(actions, Qt::CopyAction);
            QVERIFY(drag.mimeData()->text().endsWith(table.summaryAt(2)));
        });
        QWidget *viewport = table.view.viewport();
        const QPoint from = table.centreOf(2);
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 4; ++step) {
            const QPoint place = from + way * step / 4;
            QMouseEvent move(QEvent::MouseMove, place, viewport->mapToGlobal(place), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(viewport, &move);
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, from + way);
        QCOMPARE(count, drags);
        QCOMPARE(table.selected().size(), selected);
    }

    void showsAnyTextOnOneRow()
    {
        Table table(0);
        table.defaults.setValue(u"eventDetail"_s, true);
        QList<ZELKRawEvent> events;
        for (const QString &name :
             {u"one"_s, QString(), u"two\nlines\r\nor\u2028three"_s, QString(100'000, u'w'),
              QString(100'000, u'\n'), u"\u202Eturned\u2066"_s, u"\u05D0\u05D1\u05D2 12"_s,
              QString(QChar(u'\0')) + u"\a\t\x1b[31m"_s, QString(QChar(0xD800))})
            events.append(ZELKMakeRawEvent(ZELKDate(table.next += day), name, u"m"_s));
        events.append(ZELKMakeRawEvent(ZELKDate(1e300), u"late"_s, u"m2"_s));
        table.log.addExternalEntries(events);
        QVERIFY(table.model().rowCount() >= 9);
        table.view.resize(600, 800);
        table.view.grab();
        for (int row = 0; row < table.model().rowCount(); ++row) {
            const QModelIndex cell = table.model().index(row, Model::SummaryColumn);
            QCOMPARE(table.view.visualRect(cell).height(), table.view.uniformRowHeight());
            const auto text = cell.data(Model::attributedTextRole).value<ZELKAttributedString>();
            QCOMPARE(text.string().count(u'\n'),
                     table.summaries.templateEntryWithDetail().string().count(u'\n'));
            QVERIFY(text.length() < 10'000);
        }
    }

    void damagedArchives()
    {
        const QByteArray bytes = ZELKArchive::archivedColour(QColor(255, 230, 100, 128));
        QCOMPARE(ZELKArchive::unarchivedColour(bytes), std::optional(QColor(255, 230, 100, 128)));
        QVERIFY(!ZELKArchive::unarchivedColour({}));
        QVERIFY(!ZELKArchive::unarchivedColour(bytes + 'x'));
        QVERIFY(!ZELKArchive::unarchivedSortDescriptors(bytes));
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            QByteArray damaged = bytes;
            damaged[i] = char(damaged[i] ^ 0x40);
            QVERIFY(!ZELKArchive::unarchivedColour(damaged));
            QVERIFY(!ZELKArchive::unarchivedColour(bytes.first(i)));
        }
    }

    void capsule()
    {
        const QRectF frame(10, 20, 100, 21);
        const ZELKCapsule capsule = ZELKCapsule::inFrame(frame);
        QCOMPARE(capsule.radius, 10.5F);
        QCOMPARE(ZELKCapsule::textFrame(frame), QRectF(15, 20, 95, 21));
        for (const QPointF inside : {QPointF(10.3, 30.5), {109.7, 30.5}, {60.0, 20.2}})
            QVERIFY(capsule.path().contains(inside));
        for (const QPointF outside : {QPointF(9.9, 30.5), {11.5, 21.5}, {108.5, 39.5}}) // beyond, corners
            QVERIFY(!capsule.path().contains(outside));
    }

    void isReadAloud()
    {
        Table table(3);
        const QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&table.view);
        QVERIFY(accessible && const_cast<QAccessibleInterface *>(accessible)->tableInterface());
        QAccessibleTableInterface &rows = *const_cast<QAccessibleInterface *>(accessible)->tableInterface();
        QCOMPARE(rows.rowCount(), 3);
        const QAccessibleInterface *cell = rows.cellAt(1, 0);
        QCOMPARE(cell->text(QAccessible::Name), u"05/03/2024, 06:00, "_s + table.summaryAt(1));
        QVERIFY(cell->rect().isValid());
        QCOMPARE(rows.columnDescription(1), u"Summary"_s);
    }

    void headingsStandOverTheirTexts()
    {
        Table table;
        QHeaderView &header = *table.view.horizontalHeader();
        const QImage headings = header.viewport()->grab().toImage();
        const QImage rows = table.view.viewport()->grab().toImage();
        for (const int column : {Model::DateColumn, Model::SummaryColumn}) {
            const QRect heading(header.sectionViewportPosition(column), 0, header.sectionSize(column),
                                header.height());
            const int textsInk = firstInk(rows, table.view.visualRect(table.model().index(1, column)));
            QVERIFY(textsInk > 3);
            QVERIFY(std::abs(firstInk(headings, heading) - textsInk) <= 1); // letters begin a little apart
        }
    }

    /// A table of a million rows keeps nothing for each, nor does it walk them.
    void rowsCostNothing()
    {
        Table table;
        QCOMPARE(table.view.verticalHeader()->count(), 0);
        const QWidget *corner = table.view.childAt(table.view.frameWidth() + 2, table.view.frameWidth() + 2);
        QCOMPARE(corner, table.view.horizontalHeader()->viewport());
        QCOMPARE(table.view.indexAt({1, 1}).row(), 0);
        table.view.scrollToBottom();
        QCOMPARE(table.view.indexAt(table.centreOf(399)).row(), 399);
        table.view.selectAll();
        QCOMPARE(table.controller.selectedRows(), ZELKRowRanges({{0, 399}}));
        QCOMPARE(table.controller.lastSelectedEntry(), table.log.objectAtIndex(399));
    }
};

QTEST_MAIN(ViewTest)
#include "tst_view.moc"
