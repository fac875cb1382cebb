#include "Rows.h"
#include "TableWindow.h"
#include "ZELKRtfReader.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QFontInfo>
#include <QMimeData>
#include <QSignalSpy>

namespace {

using MenuItem = ZELKLWCLogTableController::MenuItem;

/// Whoever chooses a date.
class Chooser : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant selection MEMBER m_selection)

public:
    explicit Chooser(const QVariant &selection = {})
        : m_selection(selection)
    {
    }
    QVariant m_selection;
};

/// Counts the times that a view is painted.
class Paintings : public QObject
{
public:
    explicit Paintings(QAbstractItemView &view)
    {
        settle();
        view.viewport()->installEventFilter(this);
    }
    int take()
    {
        settle();
        return std::exchange(m_count, 0);
    }

private:
    static void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == QEvent::Paint;
        return false;
    }
    int m_count = 0;
};

} // namespace

class ControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filters()
    {
        Table table(0);
        QList<ZELKRawEvent> events;
        for (const char *name : {"Power on", "power off", "Mains Power", "sleep"})
            events.append(ZELKMakeRawEvent(ZELKDate(table.next += day), QString::fromLatin1(name), u"m"_s));
        table.log.addExternalEntries(events);
        QVERIFY(!table.controller.validateMenuItem(MenuItem::CancelFilter));
        QTest::keyClicks(&table.field, u"Power"_s);
        QCOMPARE(table.model().rowCount(), 2);
        QCOMPARE(table.summaryAt(1), u"Mains Power"_s);
        QCOMPARE(table.controller.filterString(), u"Power"_s);
        QVERIFY(table.controller.validateMenuItem(MenuItem::CancelFilter));
        QTest::keyClick(&table.view, Qt::Key_Escape);
        QCOMPARE(table.field.text(), QString());
        QCOMPARE(table.model().rowCount(), 4);
    }

    void sortsByHeader()
    {
        Table table(12);
        QAbstractItemModelTester tester(&table.model(),
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
        QVERIFY(table.controller.sortDescriptors().isEmpty());
        table.clickHeader(Model::DateColumn);
        QCOMPARE(table.rowOf(11), 0);
        table.clickHeader(Model::SummaryColumn);
        const ZELKSortDescriptors expected{{u"summary"_s, true}, {u"date"_s, false}};
        QCOMPARE(table.controller.sortDescriptors(), expected);
        QCOMPARE(table.view.horizontalHeader()->sortIndicatorSection(), int(Model::SummaryColumn));
        table.grow(1);
        QCOMPARE(table.model().rowCount(), 13);

        ZELKLWCLogTableView view;
        QLineEdit field;
        ZELKLWCLogTableController other(
            {table.log, view, field, table.dates, table.summaries, table.defaults, table.queue});
        other.awakeFromNib();
        other.restoreSortDescriptors();
        QCOMPARE(other.sortDescriptors(), expected);
        table.defaults.setValue(u"columnSortDescriptors"_s, QByteArray("damaged"));
        other.setSortDescriptors({});
        table.defaults.setValue(u"columnSortDescriptors"_s, QByteArray("damaged"));
        other.restoreSortDescriptors();
        QVERIFY(other.sortDescriptors().isEmpty());
    }

    void selectionStaysWithEntries()
    {
        Table table;
        const auto selectedEntries = [&] {
            QList<ZELKLWCLogEntry *> entries = table.controller.selectedObjects();
            std::sort(entries.begin(), entries.end(),
                      [](const auto *a, const auto *b) { return a->date() < b->date(); });
            return entries;
        };
        table.select(10, 29);
        const QList<ZELKLWCLogEntry *> before = selectedEntries();
        table.view.selectionModel()->setCurrentIndex(table.model().index(12, 0),
                                                     QItemSelectionModel::NoUpdate);
        table.controller.setSortDescriptors({{u"date"_s, false}});
        QCOMPARE(selectedEntries(), before);
        QCOMPARE(table.view.currentIndex().row(), table.rowOf(12));
        QVERIFY(table.view.viewport()->rect().intersects(table.view.visualRect(table.view.currentIndex())));
        table.grow(5);
        QCOMPARE(selectedEntries(), before);
        table.field.setText(before.at(7)->summary());
        QCOMPARE(selectedEntries(), QList{before.at(7)});
        table.field.clear();
        QCOMPARE(selectedEntries(), QList{before.at(7)});
        // The newest entries stay in view, wherever they go.
        table.view.clearSelection();
        table.view.setCurrentIndex({});
        table.view.scrollToTop();
        table.controller.setSortDescriptors({});
        QCOMPARE(table.view.verticalScrollBar()->value(), table.view.verticalScrollBar()->maximum());
        // Where the current row is listed no more, the keys go on from what is seen.
        const QString some = u"1e+08"_s;
        int row = table.model().rowCount() - 1;
        while (table.summaryAt(row).contains(some))
            --row;
        table.view.setCurrentIndex(table.model().index(row, 0));
        table.field.setText(some);
        for (const int fromEnd : {1, 2}) {
            QTest::keyClick(&table.view, Qt::Key_Up);
            QCOMPARE(table.selected(), QList{table.model().rowCount() - fromEnd});
        }
    }

    void highlightsThePartner()
    {
        Table table;
        table.pair(9, 4);
        Paintings paintings(table.view);
        const auto settled = [&] {
            paintings.take();
            return table.controller.highlightEntries();
        };
        for (const int row : {2, 5, 9}) // a burst
            table.select(row, row);
        QVERIFY(table.controller.highlightEntries().isEmpty());
        QCOMPARE(settled(), QList{4});
        QCOMPARE(table.controller.tableViewWillDisplayCell(Model::SummaryColumn, 4),
                 std::optional<QColor>(Qt::red));
        QVERIFY(!table.controller.tableViewWillDisplayCell(Model::DateColumn, 4));
        QVERIFY(!table.controller.tableViewWillDisplayCell(Model::SummaryColumn, 9));
        const QRect cell = table.view.visualRect(table.model().index(4, 1));
        const QImage picture = table.view.viewport()->grab().toImage();
        QCOMPARE(picture.pixelColor(cell.center().x() + 100, cell.top() + 2), QColor(Qt::red));
        QVERIFY(picture.pixelColor(cell.left(), cell.top() + 1) != QColor(Qt::red)); // round

        table.grow(1);
        QCOMPARE(settled(), QList{4});
        table.select(9, 10);
        QVERIFY(settled().isEmpty());
        table.select(9, 9);
        table.field.setText(table.summaryAt(9));
        QVERIFY(settled().isEmpty()); // its partner is not listed
        table.field.clear();
        QCOMPARE(settled(), QList{4});
        table.defaults.setValue(u"highlight"_s, false);
        settled();
        QVERIFY(!table.controller.tableViewWillDisplayCell(Model::SummaryColumn, 4));
    }

    void redisplaysWhatChanged()
    {
        Table table;
        table.pair(9, 4);
        Paintings paintings(table.view);
        const auto setColour = [&](const QColor &colour) {
            table.defaults.setValue(u"highlightColour"_s, ZELKArchive::archivedColour(colour));
        };
        setColour(Qt::green);
        QCOMPARE(paintings.take(), 0);
        QCOMPARE(table.controller.highlightColour(), QColor(Qt::green));
        table.select(9, 9);
        paintings.take();
        setColour(Qt::blue);
        QVERIFY(paintings.take() > 0);
        table.defaults.setValue(u"highlightColour"_s, QByteArray("damaged"));
        QCOMPARE(table.controller.highlightColour(), QColor(Qt::blue));
        table.defaults.setValue(u"relativeDates"_s, true);
        QVERIFY(paintings.take() > 0);
        const int height = table.view.uniformRowHeight();
        table.defaults.setValue(u"eventDetail"_s, true);
        QVERIFY(paintings.take() > 0);
        QVERIFY(table.summaries.showDetail());
        QVERIFY(table.view.uniformRowHeight() > height);
        QCOMPARE(table.view.visualRect(table.model().index(3, 0)).top(), 3 * table.view.uniformRowHeight());
        const auto showDetail = [&](bool shows) { table.defaults.setValue(u"eventDetail"_s, shows); };
        showDetail(false);
        table.view.setCurrentIndex(table.model().index(table.view.verticalScrollBar()->pageStep() - 1, 0));
        showDetail(true);
        QVERIFY(table.view.viewport()->rect().contains(table.centreOf(table.view.currentIndex().row())));
        showDetail(false);
        table.view.scrollToBottom();
        showDetail(true);
        QCOMPARE(table.view.verticalScrollBar()->value(), table.view.verticalScrollBar()->maximum());
        const int detailHeight = table.view.uniformRowHeight();
        QFont large = table.view.font();
        large.setPointSizeF(2.0 * large.pointSizeF());
        table.view.setFont(large);
        QVERIFY(table.view.uniformRowHeight() > detailHeight * 3 / 2);
    }

    void partners_data()
    {
        // the rows that are selected, whether others are hidden; whether there is a pair, it, and all between
        const Rows<int, int, bool, bool, QList<int>, QList<int>> row;
        row("partner above", 7, 7, false, true, QList{3}, QList{3, 4, 5, 6, 7});
        row("partner below", 2, 2, false, true, QList{6}, QList{2, 3, 4, 5, 6});
        row("of the first of several", 7, 9, false, false, QList{3}, QList{3, 4, 5, 6, 7, 8, 9});
        row("none", 5, 5, false, false, QList{5}, QList{5});
        row("not listed", 0, 0, true, false, QList{0}, QList{0});
    }
    void partners()
    {
        const auto [first, last, isFiltered, isValid, pair, extended] =
            Rows<int, int, bool, bool, QList<int>, QList<int>>::fetch();
        Table table(20);
        table.pair(7, 3);
        table.pair(2, 6);
        table.field.setText(isFiltered ? table.summaryAt(7) : QString());
        table.select(first, last);
        QCOMPARE(table.controller.validateMenuItem(MenuItem::SelectPair), isValid);
        QCOMPARE(table.controller.validateMenuItem(MenuItem::ExtendSelectionToPair), isValid);
        table.controller.extendSelectionToPair();
        QCOMPARE(table.selected(), extended);
        table.select(first, last);
        table.controller.selectPair();
        QCOMPARE(table.selected(), pair);
    }

    void nearestEntry()
    {
        const std::pair<double, int> nearest[] = {
            {-100.0, 0},        {1000.0, 9},        // before all, after all
            {6.0 * 3 + 2.0, 3}, {6.0 * 3 + 4.0, 4}, // nearer to one of two
            {6.0 * 3 + 3.0, 4}, {6.0 * 5, 5},       // midway, at an entry
            {0.0, 0},           {6.0 * 9, -1}};     // at the first, and at the last, which none is after
        Table table(10);
        for (const ZELKSortDescriptors &order :
             {ZELKSortDescriptors(), {{u"date"_s, false}}, {{u"summary"_s, false}}}) {
            table.controller.setSortDescriptors(order);
            for (const auto &[hours, index] : nearest) {
                const std::optional<int> row =
                    table.controller.nearestVisibleEntryToDate(ZELKDate(logStart + hours * 3600.0));
                QCOMPARE(row.value_or(-1), index < 0 ? -1 : table.rowOf(index));
            }
        }
        table.field.setText(u"nothing has this"_s);
        QVERIFY(!table.controller.nearestVisibleEntryToDate(ZELKDate(logStart)));
    }

    void selectsByDate()
    {
        Table table;
        const auto at = [](int entry) {
            return QVariant::fromValue(ZELKDate(logStart + entry * day / 4 + 1.0));
        };
        const QSignalSpy changes(table.view.selectionModel(), &QItemSelectionModel::selectionChanged);
        Chooser early(at(5));
        Chooser late(at(300));
        table.controller.selectEntryByDate(&early);
        table.controller.selectEntryByDate(&late);
        QVERIFY(table.selected().isEmpty());
        late.m_selection = at(301);
        QTRY_COMPARE(table.selected(), QList{301});
        QCOMPARE(changes.count(), 1);
        QVERIFY(table.view.viewport()->rect().contains(table.centreOf(301)));
        QObject nobody;
        Chooser none(u"no date"_s);
        auto gone = std::make_unique<Chooser>(at(9));
        for (QObject *sender : {&nobody, static_cast<QObject *>(&none), static_cast<QObject *>(gone.get())})
            table.controller.selectEntryByDate(sender);
        gone.reset();
        Paintings(table.view).take();
        QCOMPARE(table.selected(), QList{301});
    }

    void carriesRowsElsewhere()
    {
        Table table(3);
        table.controller.setSortDescriptors({{u"date"_s, false}});
        table.select(0, 1);
        QMimeData pasteboard;
        QVERIFY(!table.controller.tableViewWriteRowsToPasteboard({}, pasteboard));
        QVERIFY(pasteboard.formats().isEmpty());
        QVERIFY(table.controller.copySelection());
        const QMimeData &copied = *QGuiApplication::clipboard()->mimeData();
        const QString expected =
            u"05/03/2024, 12:00\t%1\n05/03/2024, 06:00\t%2"_s.arg(table.summaryAt(0), table.summaryAt(1));
        QCOMPARE(copied.text(), expected);
        QCOMPARE(QString::fromUtf8(copied.data(u"text/tab-separated-values"_s)), expected);
        QCOMPARE(copied.data(u"text/rtf"_s), copied.data(u"application/rtf"_s));
        const ZELKRtfReader::Result rich = ZELKRtfReader::read(copied.data(u"text/rtf"_s));
        QVERIFY(rich.text && !rich.error);
        QCOMPARE(rich.text->string(), expected);
        for (const ZELKAttributedString::Run &run : rich.text->runs())
            QCOMPARE(run.attributes.family, QFontInfo(table.view.font()).family());
        QVERIFY(table.controller.tableViewWriteRowsToPasteboard({{2, 2}, {0, 0}}, pasteboard));
        QVERIFY(pasteboard.text().endsWith(table.summaryAt(0)));
        QVERIFY(pasteboard.text().startsWith(u"05/03/2024, 00:00\t"_s));
    }

    void listsTheWholeLog()
    {
        Table table(10);
        table.field.setText(table.summaryAt(3));
        QCOMPARE(table.controller.numberOfRowsInTableView(), 10);
        ZELKLWCLogEntry *entry = table.log.objectAtIndex(7);
        QCOMPARE(table.controller.tableViewObjectValueForTableColumn(Model::DateColumn, 7),
                 QVariant::fromValue(entry->date()));
        QCOMPARE(table.controller.tableViewObjectValueForTableColumn(Model::SummaryColumn, 7),
                 QVariant::fromValue(entry));
    }
};

QTEST_MAIN(ControllerTest)
#include "tst_controller.moc"
