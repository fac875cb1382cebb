// The save panel with its chooser of formats, and an export that takes its time.
#include "ConsoleLines.h"
#include "ExportFixture.h"
#include "Files.h"
#include "Raised.h"
#include "ZELKExportProgress.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCExportController.h"
#include "ZELKSavePanel.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

struct PanelBed : ExportFixture
{
    QWidget window;
    ZELKLWCEntriesView graph;
    ZELKLWCExportController controller{defaults};
    QSignalSpy alerts{&controller, &ZELKLWCExportController::alertPresented};

    PanelBed()
    {
        qputenv("HOME", folder.path().toLocal8Bit());
        graph.setLog(&log);
        graph.setDateRange(&range);
        graph.awakeFromNib();
        graph.resize(400, 200);
        controller.setLog(&log);
        controller.setEntriesView(&graph);
        controller.setMainWindow(&window);
        window.show();
        addNight();
    }
    ZELKSavePanel &panel() const { return *controller.activeExportPanel(); }
    QComboBox &chooser() { return *controller.exportView()->findChild<QComboBox *>(); }
    void choose(int tag)
    {
        chooser().setCurrentIndex(chooser().findData(tag));
        Q_EMIT chooser().activated(chooser().currentIndex());
    }
    void exportAs(int tag, const QString &name)
    {
        controller.exportLog();
        choose(tag);
        panel().setFileName(name);
        panel().accept();
        QTRY_VERIFY(!controller.isExporting());
    }
};

/// Goes on for ever.
class EndlessSource : public ZELKExportSource
{
public:
    Outcome writeSome(QIODevice &device) override
    {
        return device.write("part\n") > 0 ? Outcome::More : Outcome::Failed;
    }
    double fraction() const override { return 0.5; }
};

} // namespace

class ExportPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// As a sheet, in the home folder, with today's name and the extension of the format last chosen.
    void panelComesUp()
    {
        PanelBed bed;
        ZELKLWCExportController empty(bed.defaults);
        QVERIFY(!empty.validateMenuItem(ZELKLWCExportController::MenuItem::Export));
        QVERIFY(empty.validateMenuItem(ZELKLWCExportController::MenuItem::Other));
        QVERIFY(bed.controller.validateMenuItem(ZELKLWCExportController::MenuItem::Export));
        bed.defaults.setValue(u"exportFormatTag"_s, 2);
        bed.controller.exportLog();
        QVERIFY(bed.panel().isVisible());
        QCOMPARE(bed.panel().windowModality(), Qt::WindowModal);
        QCOMPARE(bed.panel().directory(), QDir(bed.folder.path()));
        QCOMPARE(bed.panel().fileName(), u"2024-03-31-Lullwatch.plist"_s);
        QCOMPARE(bed.chooser().currentData().toInt(), 2);
        QVERIFY(bed.chooser().isVisible());
        QCOMPARE(bed.chooser().count(), 6);
        bed.choose(6);
        QCOMPARE(bed.panel().fileName(), u"2024-03-31-Lullwatch.png"_s);
        QCOMPARE(bed.defaults.integerForKey(u"exportFormatTag"_s), 6);

        bed.chooser().addItem(u"none"_s, 4);
        const ConsoleLines console;
        bed.choose(4);
        QCOMPARE(console.lines(), QStringList(u"Unsuppported export format tag: 4"_s));
        QCOMPARE(bed.panel().requiredFileType(), u"png"_s);
        bed.panel().accept();
        QVERIFY(QDir(bed.folder.path()).entryList({u"*Lullwatch*"_s}).isEmpty());
    }

    /// One panel at a time; one that is cancelled writes nothing.
    void panelIsReplaced()
    {
        PanelBed bed;
        bed.controller.exportLog();
        const QPointer<ZELKSavePanel> first = &bed.panel();
        QSignalSpy ended(first, &QDialog::finished);
        bed.controller.exportLog();
        QCOMPARE(ended.value(0).value(0).toInt(), 0);
        QTRY_VERIFY(!first);
        bed.panel().reject();
        QVERIFY(!bed.controller.activeExportPanel());
        QVERIFY(QDir(bed.folder.path()).entryList({u"*Lullwatch*"_s}).isEmpty());
    }

    void formats()
    {
        PanelBed bed;
        const auto check = [&](int tag, const char *suffix, const QByteArray &start) {
            bed.exportAs(tag, u"out"_s);
            QVERIFY2(readFile(bed.path(u"out."_s + QString::fromLatin1(suffix))).startsWith(start), suffix);
        };
        check(0, "rtf", "{\\rtf1");
        check(1, "txt", "2024-03-05 12:00:00 +0100\tSystem will sleep\t");
        check(2, "plist", "<?xml");
        check(3, "doc", "\xD0\xCF\x11\xE0");
        check(5, "tiff", "II*");
        check(6, "png", "\x89PNG");
        QVERIFY(bed.alerts.isEmpty());
    }

    /// The name as it was typed gets the extension, and it is the whole name that must not be taken.
    void overwritingIsAsked()
    {
        PanelBed bed;
        writeFile(bed.path(u"a.b.txt"_s), "old");
        int questions = 0;
        for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
            QTimer::singleShot(0, &bed.window, [&] {
                const auto *question = bed.panel().findChild<QMessageBox *>();
                questions += question != nullptr ? 1 : 0;
                if (question)
                    question->button(answer)->click();
            });
            bed.exportAs(1, u"a.b"_s);
            QCOMPARE(readFile(bed.path(u"a.b.txt"_s)) == "old", answer == QMessageBox::No);
        }
        QCOMPARE(questions, 2);
    }

    void failureIsTold()
    {
        PanelBed bed;
        bed.controller.exportLog();
        bed.choose(1);
        QVERIFY(QDir().mkpath(bed.path(u"folder"_s)));
        bed.panel().setFileName(u"folder/out"_s);
        bed.panel().setRequiredFileType(u"txt"_s);
        QVERIFY(QFile::link(u"/dev/full"_s, bed.path(u"folder/out.txt"_s)));
        bed.controller.exportPanelDidEnd(bed.panel(), 0);
        QVERIFY(bed.alerts.isEmpty());
        bed.panel().setOption(QFileDialog::DontConfirmOverwrite);
        bed.panel().accept();
        QTRY_COMPARE(bed.alerts.size(), 1);
        QCOMPARE(bed.alerts.at(0).at(0).toString(),
                 u"Cannot save file: '%1': No space left on device"_s.arg(bed.path(u"folder/out.txt"_s)));
    }

    void missingViewIsRaised()
    {
        PanelBed bed;
        ZELKEnvironment environment = exportEnvironment();
        environment.mainBundle = std::make_shared<ZELKBundle>();
        const ZELKEnvironmentScope scope(environment);
        try {
            bed.controller.exportView();
            QFAIL("nothing was raised");
        } catch (const ZELKAssertionFailure &failure) {
            QCOMPARE(failure.message(), u"Unable to load ZELKLWCExportController nib."_s);
            QCOMPARE(failure.file(), u"client/ZELKLWCExportController"_s);
            QCOMPARE(failure.line(), 100);
        }
    }

    /// A sheet after a while, with a button that leaves everything as it was.
    void longExportIsCancelled()
    {
        PanelBed bed;
        writeFile(bed.path(u"old.txt"_s), "old");
        ZELKExportProgress progress(
            std::make_unique<ZELKFileExport>(std::make_unique<EndlessSource>(),
                                             std::make_unique<ZELKExportFile>(bed.path(u"old.txt"_s))),
            bed.window);
        QSignalSpy ended(&progress, &ZELKExportProgress::ended);
        progress.start();
        QVERIFY(!bed.window.findChild<ZELKProgressSheet *>());
        QTRY_VERIFY(bed.window.findChild<ZELKProgressSheet *>());
        const auto *sheet = bed.window.findChild<ZELKProgressSheet *>();
        QTRY_COMPARE(sheet->findChild<QProgressBar *>()->value(), 450);
        QVERIFY(sheet->findChild<QLabel *>()->text().contains(u"old.txt"_s));
        sheet->findChild<QPushButton *>()->click();
        QCOMPARE(ended.size(), 1);
        QCOMPARE(ended.at(0).at(0).toBool(), true);
        QTRY_VERIFY(!bed.window.findChild<ZELKProgressSheet *>());
        QCOMPARE(readFile(bed.path(u"old.txt"_s)), QByteArray("old"));
    }
};

QTEST_MAIN(ExportPanelTest)
#include "tst_export_panel.moc"
