#include "Rows.h"
#include "SliceFixture.h"
#include "ZELKLWCDateJumpController.h"
#include "ZELKScriptCommand.h"

#include <QDateEdit>
#include <QDialog>
#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTest>

namespace {

/// The sheet beside the slice.
struct JumpFixture : SliceFixture
{
    JumpFixture()
    {
        jump.emplace(window, *ZELKEnvironment::current().mainBundle,
                     ZELKLWCDateJumpController::Outlets{slice, controller, log});
        record();
    }
    void jumpTo(QDate chosen)
    {
        jump->show();
        window.findChild<QDateEdit *>(u"date"_s)->setDate(chosen);
        window.findChild<QDialog *>()->accept();
    }

    QWidget window;
    std::optional<ZELKLWCDateJumpController> jump;
};

} // namespace

class SliceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyLogHasNothingToSay()
    {
        const SliceFixture fixture;
        QVERIFY(!fixture.slice.summary());
    }

    void numbersKeepWithinLimits()
    {
        const std::tuple<QVariant, float, QString> numbers[] = {{QVariant(), 7.0F, QString()},
                                                                {150, 150.0F, QString()},
                                                                {15000.0, 15000.0F, QString()},
                                                                {149.9, 0.0F, u"Parameter too small"_s},
                                                                {15000.5, 0.0F, u"Parameter too large"_s},
                                                                {qQNaN(), 0.0F, u"Parameter too small"_s}};
        for (const auto &[argument, value, error] : numbers) {
            ZELKScriptCommand command;
            if (argument.isValid())
                command.evaluatedArguments.insert(u"width"_s, argument);
            QCOMPARE(ZELKLWCLogSlice::evaluatedNumericArgumentFrom(command, u"width"_s, 150, 15000, 7),
                     value);
            QCOMPARE(command.scriptErrorString, error);
            QCOMPARE(command.scriptErrorNumber, error.isEmpty() ? 0 : -1702);
        }
    }

    void picturesAreExported_data()
    {
        const Rows<ZELKDictionary, int, QSize> row; // arguments, error, what is written
        row("as the view is", ZELKDictionary(), 0, QSize(400, 200));
        row("of a size", ZELKDictionary{{u"width"_s, 300}, {u"height"_s, 150.0}}, 0, QSize(300, 150));
        row("too small: 0 goes on, and no picture is made of it", ZELKDictionary{{u"width"_s, 20}}, -43,
            QSize(0, 0));
        row("a wrong switch counts as off, the picture is written", ZELKDictionary{{u"title"_s, 2}}, -1702,
            QSize(400, 200));
        for (const QString &path : {u"/no/such/folder/a.png"_s, u"a.png"_s})
            row(qPrintable(path), ZELKDictionary{{u"destinationFile"_s, path}}, -43, QSize(0, 0));
    }
    void picturesAreExported()
    {
        const auto [arguments, error, size] = Rows<ZELKDictionary, int, QSize>::fetch();
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
        QCOMPARE(command.scriptErrorNumber, error);
        QCOMPARE(QImage(path).size(), size);
        QVERIFY(!fixture.graph.isTitled() && fixture.graph.isBordered());
    }

    void jumpsToADay()
    {
        JumpFixture fixture;
        QVERIFY(fixture.jump->validateMenuItem(ZELKLWCDateJumpController::MenuItem::Show));
        const QSignalSpy changes(&fixture.log, &ZELKLWCLog::visibleEntriesDidChange);
        fixture.jumpTo(QDate(2024, 3, 7)); // later than the range, then earlier
        QCOMPARE(fixture.slice.start(), at(2, 0));
        QCOMPARE(fixture.slice.end(), at(3, 0).addingTimeInterval(-1));
        fixture.jumpTo(QDate(2024, 3, 5));
        QCOMPARE(fixture.slice.start(), at(0, 0));
        QCOMPARE(fixture.slice.end(), at(1, 0).addingTimeInterval(-1));
        QCOMPARE(changes.size(), 2); // once for each, all in between would be seen
        fixture.jumpTo(QDate(2024, 3, 8));
        QCOMPARE(fixture.slice.start(), at(3, 0));
        fixture.jump->show();
        const auto *date = fixture.window.findChild<QDateEdit *>(u"date"_s);
        QCOMPARE(date->minimumDate(), QDate(2024, 3, 5));
        QCOMPARE(date->date(), QDate(2024, 3, 8)); // today
        fixture.window.findChild<QDialog *>()->reject();
        QCOMPARE(fixture.slice.start(), at(3, 0));
    }

    void bothEndsAtOnceAreOneAfterTheOther()
    {
        // Also beyond what was recorded, and the wrong way round.
        for (const auto &[start, end] :
             {std::pair(1, 2), std::pair(-9, -8), std::pair(8, 9), std::pair(2, 1)}) {
            SliceFixture steps;
            SliceFixture once;
            steps.record();
            once.record();
            steps.slice.setStart(at(start, 0));
            steps.slice.setEnd(at(end, 0));
            once.slice.setStartAndEnd(at(start, 0), at(end, 0));
            QCOMPARE(once.slice.start(), steps.slice.start());
            QCOMPARE(once.slice.end(), steps.slice.end());
        }
    }

    void jumpsToTheSelection()
    {
        for (const bool isRising : {true, false}) {
            JumpFixture fixture;
            fixture.model().setSortDescriptors({{u"date"_s, isRising}});
            QVERIFY(!fixture.jump->validateMenuItem(ZELKLWCDateJumpController::MenuItem::JumpToSelection));
            fixture.jump->jumpToSelection();
            QCOMPARE(fixture.slice.start(), at(0, 0));
            for (const int row : {2, 5})
                fixture.view.selectionModel()->select(
                    fixture.model().index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
            QVERIFY(fixture.jump->validateMenuItem(ZELKLWCDateJumpController::MenuItem::JumpToSelection));
            fixture.jump->jumpToSelection();
            QCOMPARE(fixture.slice.start(), at(1, 0));
            QCOMPARE(fixture.slice.end(), at(3, 0).addingTimeInterval(-1));
        }
    }
};

QTEST_MAIN(SliceTest)
#include "tst_slice.moc"
