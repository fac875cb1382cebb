#include "NamedRows.h"
#include "SliceFixture.h"
#include "ZELKLWCDateJumpController.h"
#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKLWCRelativeDateFormatter.h"
#include "ZELKNotificationQueue.h"
#include "ZELKScriptCommand.h"

#include <QDateEdit>
#include <QDialog>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QTest>

namespace {

/// A table and the sheet beside the slice.
struct JumpFixture : SliceFixture
{
    JumpFixture()
    {
        table.awakeFromNib();
        jump.emplace(window, *ZELKEnvironment::current().mainBundle,
                     ZELKLWCDateJumpController::Outlets{slice, table, log});
        record();
    }
    void jumpTo(QDate day)
    {
        jump->show();
        window.findChild<QDateEdit *>(u"date"_s)->setDate(day);
        window.findChild<QDialog *>()->accept();
    }

    QWidget window;
    ZELKLWCLogTableView view{&window};
    QLineEdit field;
    ZELKLWCRelativeDateFormatter dates{defaults};
    ZELKLWCLogEntryFormatter summaries;
    ZELKNotificationQueue queue;
    ZELKLWCLogTableController table{{log, view, field, dates, summaries, defaults, queue}};
    std::optional<ZELKLWCDateJumpController> jump;
};

} // namespace

class SliceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatTheRangeHolds();
    void numbersKeepWithinLimits_data();
    void numbersKeepWithinLimits();
    void picturesAreExported_data();
    void picturesAreExported();
    void jumpsToADay();
    void jumpsToTheSelection();
};

void SliceTest::saysWhatTheRangeHolds()
{
    SliceFixture fixture;
    QVERIFY(!fixture.slice.summary());
    QCOMPARE(fixture.slice.awake(), 0.0);
    fixture.record();
    QCOMPARE(fixture.slice.events().size(), 8);
    QCOMPARE(fixture.slice.asleep(), 24 * hour);
    QCOMPARE(fixture.slice.off(), 0.0);
    fixture.slice.setStart(at(1, 5));
    fixture.slice.setEnd(at(2, 5));
    QCOMPARE(fixture.slice.start(), at(1, 0));
    QCOMPARE(fixture.slice.end(), at(3, 0).addingTimeInterval(-1));
    QCOMPARE(fixture.slice.duration(), 48 * hour - 1);
    QCOMPARE(fixture.slice.title(), fixture.range.absoluteDuration()->periodDescription());
    QCOMPARE(fixture.slice.asleep(), 12 * hour);
    QVERIFY(fixture.slice.awake() > 30 * hour);
}

void SliceTest::numbersKeepWithinLimits_data()
{
    QTest::addColumn<QVariant>("argument");
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("error");
    QTest::newRow("absent") << QVariant() << 7.0F << QString();
    QTest::newRow("least") << QVariant(150) << 150.0F << QString();
    QTest::newRow("most") << QVariant(15000.0) << 15000.0F << QString();
    QTest::newRow("below") << QVariant(149.9) << 0.0F << u"Parameter too small"_s;
    QTest::newRow("above") << QVariant(15000.5) << 0.0F << u"Parameter too large"_s;
    QTest::newRow("not a number") << QVariant(qQNaN()) << 0.0F << u"Parameter too small"_s;
}

void SliceTest::numbersKeepWithinLimits()
{
    QFETCH(QVariant, argument);
    QFETCH(QString, error);
    ZELKScriptCommand command;
    if (argument.isValid())
        command.evaluatedArguments.insert(u"width"_s, argument);
    QTEST(ZELKLWCLogSlice::evaluatedNumericArgumentFrom(command, u"width"_s, 150, 15000, 7), "value");
    QCOMPARE(command.scriptErrorString, error);
    QCOMPARE(command.scriptErrorNumber, error.isEmpty() ? 0 : -1702);
}

void SliceTest::picturesAreExported_data()
{
    QTest::addColumn<ZELKDictionary>("arguments");
    QTest::addColumn<int>("error");
    QTest::addColumn<QSize>("size");
    const QSize none(0, 0);
    QTest::newRow("as the view is") << ZELKDictionary() << 0 << QSize(400, 200);
    QTest::newRow("of a size") << ZELKDictionary{{u"width"_s, 300}, {u"height"_s, 150.0}} << 0
                               << QSize(300, 150);
    QTest::newRow("too small: 0 goes on, and no picture is made of it")
        << ZELKDictionary{{u"width"_s, 20}} << -43 << none;
    QTest::newRow("a wrong switch counts as off, the picture is written")
        << ZELKDictionary{{u"title"_s, 2}} << -1702 << QSize(400, 200);
    QTest::newRow("nowhere") << ZELKDictionary{{u"destinationFile"_s, u"/no/such/folder/a.png"_s}} << -43
                             << none;
    QTest::newRow("relative") << ZELKDictionary{{u"destinationFile"_s, u"a.png"_s}} << -43 << none;
}

void SliceTest::picturesAreExported()
{
    QFETCH(ZELKDictionary, arguments);
    QFETCH(QSize, size);
    SliceFixture fixture;
    fixture.record();
    fixture.graph.setTitled(false);
    fixture.graph.setBordered(true);
    const QString path = fixture.folder.filePath(u"a b.png"_s);
    ZELKScriptCommand command{
        {{u"destinationFile"_s, QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)}}};
    for (const auto &[key, value] : arguments)
        command.evaluatedArguments.insert(key, value);
    fixture.slice.scriptExport(command);
    QTEST(command.scriptErrorNumber, "error");
    QCOMPARE(QImage(path).size(), size);
    QVERIFY(!fixture.graph.isTitled() && fixture.graph.isBordered());
}

void SliceTest::jumpsToADay()
{
    JumpFixture fixture;
    QVERIFY(fixture.jump->validateMenuItem(ZELKLWCDateJumpController::MenuItem::Show));
    fixture.jumpTo(QDate(2024, 3, 7)); // later than the range, then earlier
    QCOMPARE(fixture.slice.start(), at(2, 0));
    QCOMPARE(fixture.slice.end(), at(3, 0).addingTimeInterval(-1));
    fixture.jumpTo(QDate(2024, 3, 5));
    QCOMPARE(fixture.slice.start(), at(0, 0));
    QCOMPARE(fixture.slice.end(), at(1, 0).addingTimeInterval(-1));
    fixture.jumpTo(QDate(2024, 3, 8));
    QCOMPARE(fixture.slice.start(), at(3, 0));
    fixture.jump->show();
    const auto *date = fixture.window.findChild<QDateEdit *>(u"date"_s);
    QCOMPARE(date->minimumDate(), QDate(2024, 3, 5));
    QCOMPARE(date->date(), QDate(2024, 3, 8)); // today
    fixture.window.findChild<QDialog *>()->reject();
    QCOMPARE(fixture.slice.start(), at(3, 0));
}

void SliceTest::jumpsToTheSelection()
{
    for (const bool isRising : {true, false}) {
        JumpFixture fixture;
        fixture.table.model().setSortDescriptors({{u"date"_s, isRising}});
        QVERIFY(!fixture.jump->validateMenuItem(ZELKLWCDateJumpController::MenuItem::JumpToSelection));
        fixture.jump->jumpToSelection();
        QCOMPARE(fixture.slice.start(), at(0, 0));
        for (const int row : {2, 5})
            fixture.view.selectionModel()->select(fixture.view.model()->index(row, 0),
                                                  QItemSelectionModel::Select | QItemSelectionModel::Rows);
        QVERIFY(fixture.jump->validateMenuItem(ZELKLWCDateJumpController::MenuItem::JumpToSelection));
        fixture.jump->jumpToSelection();
        QCOMPARE(fixture.slice.start(), at(1, 0));
        QCOMPARE(fixture.slice.end(), at(3, 0).addingTimeInterval(-1));
    }
}

QTEST_MAIN(SliceTest)
#include "tst_slice.moc"
