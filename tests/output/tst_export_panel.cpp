// The save panel with its chooser of formats, and an export that takes its time.
#include "ConsoleLines.h"
#include "ExportFixture.h"
#include "Files.h"
#include "Raised.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCExportController.h"
#include "ZELKProgressSheet.h"
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

#include <sys/stat.h>

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
    ZELKProgressSheet *sheet() const { return window.findChild<ZELKProgressSheet *>(); }
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
        QCOMPARE(bed.panel().fileName(), u"2024-04-24-Lullwatch.plist"_s);
        QCOMPARE(bed.chooser().currentData().toInt(), 2);
        QVERIFY(bed.chooser().isVisible());
        bed.choose(6);
        QCOMPARE(bed.panel().fileName(), u"2024-04-24-Lullwatch.png"_s);
        QCOMPARE(bed.defaults.integerForKey(u"exportFormatTag"_s), 6);

        bed.chooser().addItem(u"none"_s, 4);
        const ConsoleLines console;
        bed.choose(4);
        QCOMPARE(console.lines(), QStringList(u"Unsuppported export format tag: 4"_s));
        QCOMPARE(bed.panel().requiredFileType(), u"png"_s);
        bed.panel().accept();
        QCOMPARE(console.lines().last(), u"Unsupported ZELKLog::dataRepresentationOfType:(null)"_s);
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
        check(1, "txt", "2024-03-05 00:00:00 +0000\tSystem will sleep\t");
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

    void missingViewIsRaised()
    {
        PanelBed bed;
        ZELKEnvironment environment = ZELKEnvironment::current();
        environment.mainBundle = std::make_shared<ZELKBundle>();
        const ZELKEnvironmentScope scope(environment);
        QCOMPARE(raisedAt([&] { bed.controller.exportView(); }),
                 u"client/ZELKLWCExportController:100 Unable to load ZELKLWCExportController nib."_s);
    }

    /// Nobody reads the pipe that is exported to: a sheet after a while, which can cancel that.
    void longExportIsCancelled()
    {
        PanelBed bed;
        QCOMPARE(::mkfifo(QFile::encodeName(bed.path(u"pipe.txt"_s)).constData(), 0600), 0);
        bed.controller.exportLog();
        bed.choose(1);
        bed.panel().setFileName(u"pipe"_s);
        bed.panel().setOption(QFileDialog::DontConfirmOverwrite);
        bed.panel().accept();
        QVERIFY(!bed.sheet());
        QVERIFY(!bed.controller.validateMenuItem(ZELKLWCExportController::MenuItem::Export));
        QTRY_VERIFY(bed.sheet());
        QCOMPARE(bed.sheet()->findChild<QProgressBar *>()->value(), 900);
        QVERIFY(bed.sheet()->findChild<QLabel *>()->text().contains(u"pipe.txt"_s));
        bed.sheet()->setCancellable(false);
        bed.sheet()->reject();
        QVERIFY(bed.sheet()->isVisible());
        QTRY_VERIFY(bed.sheet()->findChild<QPushButton *>()->isEnabled()); // a pipe can be given up
        bed.sheet()->findChild<QPushButton *>()->click();
        QVERIFY(!bed.controller.isExporting() && bed.alerts.isEmpty());
        QTRY_VERIFY(!bed.sheet());
    }
};

QTEST_MAIN(ExportPanelTest)
#include "tst_export_panel.moc"
