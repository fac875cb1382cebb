// The file menu's items for printing and exporting, and the dialogs that they open.
#include "Files.h"
#include "WindowBed.h"
#include "ZELKPrintActions.h"
#include "ZELKProgressSheet.h"
#include "ZELKSavePanel.h"

#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QSignalSpy>

#include <sys/stat.h>

namespace {

struct OutputBed : ApplicationFixture
{
    Session session;
    QSignalSpy printed{&controller(), &ZELKLWCPrintController::printed};

    explicit OutputBed(bool isFilled = true)
        : session(*this, isFilled)
    {
        controller().printInfo().setOutputFileName(file());
    }
    QString file() const { return folder.filePath(u"report.pdf"_s); }
    ZELKLWCPrintController &controller()
    {
        return session.window.findChild<ZELKPrintActions *>()->controller();
    }
    template <typename Dialog>
    Dialog *opened(const char *action)
    {
        session.find<QAction>(action).trigger();
        const QList<Dialog *> dialogs = session.window.findChildren<Dialog *>();
        Dialog *dialog = dialogs.isEmpty() ? nullptr : dialogs.last(); // others may be on their way out
        if (dialog && (!dialog->isVisible() || dialog->windowModality() != Qt::WindowModal))
            qFatal("not as a sheet");
        return dialog;
    }
};

} // namespace

class TestOutputWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyRowsCanBePrinted()
    {
        OutputBed bed(false);
        const auto &print = bed.session.find<QAction>("actionPrint");
        const auto &preview = bed.session.find<QAction>("actionPrintPreview");
        QVERIFY(!print.isEnabled() && !preview.isEnabled());
        QVERIFY(bed.session.find<QAction>("actionPageSetup").isEnabled());
        QVERIFY(!bed.controller().validateMenuItem(ZELKLWCPrintController::MenuItem::Print));
        bed.session.add(2);
        QVERIFY(print.isEnabled() && preview.isEnabled());
        bed.session.table().setFilterString(u"nothing"_s);
        bed.session.table().filter();
        QVERIFY(!print.isEnabled() && !preview.isEnabled());
    }

    void whoAcceptsTheDialogGetsTheReport()
    {
        OutputBed bed;
        auto *dialog = bed.opened<QPrintDialog>("actionPrint");
        QCOMPARE(dialog->maxPage(), int(bed.controller().makeReport(*dialog->printer())->pages()));
        dialog->reject();
        QVERIFY(!QFile::exists(bed.file()));
        dialog = bed.opened<QPrintDialog>("actionPrint");
        QCOMPARE(dialog->printer()->toPage(), dialog->maxPage());
        dialog->accept();
        QTRY_COMPARE(bed.printed.count(), 1);
        QVERIFY(bed.printed.first().first().toString().isNull());
        QVERIFY(QFileInfo(bed.file()).size() > 0);
    }

    void aFailureIsTold()
    {
        OutputBed bed;
        auto *dialog = bed.opened<QPrintDialog>("actionPrint");
        QDir(bed.folder.path()).mkdir(u"report.pdf"_s);
        Q_EMIT dialog->accepted(dialog->printer());
        QTRY_COMPARE(bed.printed.count(), 1);
        QCOMPARE(bed.session.window.findChild<QMessageBox *>()->text(),
                 u"The report could not be printed."_s);
    }

    void aPreviewShowsThePagesAndPrintsThem()
    {
        OutputBed bed;
        auto *dialog = bed.opened<QPrintPreviewDialog>("actionPrintPreview");
        auto *widget = dialog->findChild<QPrintPreviewWidget *>();
        QTRY_COMPARE(widget->pageCount(), int(bed.controller().makeReport(*dialog->printer())->pages()));
        QVERIFY(!QFile::exists(bed.file()));
        dialog->printer()->setOutputFileName(bed.file());
        widget->print(); // as the dialog's button, after it asked
        dialog->accept();
        QTRY_COMPARE(bed.printed.count(), 1);
        QVERIFY(QFileInfo(bed.file()).size() > 0);
        QVERIFY(!bed.controller().printInfo().fullPage());
        bed.opened<QPrintPreviewDialog>("actionPrintPreview")->reject();
        QCOMPARE(bed.printed.count(), 1);
        QVERIFY(bed.opened<QPrintDialog>("actionPrint")); // which waits for what is being printed
    }

    void thePaperIsRemembered()
    {
        OutputBed bed;
        const qint64 before = bed.controller().makeReport(bed.controller().printInfo())->pages();
        QTimer::singleShot(0, &bed.session.window, [&bed] {
            auto *dialog = bed.session.window.findChild<QPageSetupDialog *>();
            QCOMPARE(dialog->windowModality(), Qt::WindowModal);
            for (auto *choice : dialog->findChildren<QComboBox *>())
                choice->setCurrentIndex(std::max(choice->findText(u"A6"_s), choice->currentIndex()));
            dialog->accept();
        });
        bed.session.find<QAction>("actionPageSetup").trigger();
        QVERIFY(bed.controller().makeReport(bed.controller().printInfo())->pages() > before);
    }

    /// Nobody reads the pipe that is printed to.
    void aLongReportCanBeCancelled()
    {
        OutputBed bed;
        QCOMPARE(::mkfifo(QFile::encodeName(bed.file()).constData(), 0600), 0);
        auto *dialog = bed.opened<QPrintDialog>("actionPrint");
        Q_EMIT dialog->accepted(dialog->printer());
        dialog->reject();
        const auto sheet = [&] { return bed.session.window.findChild<ZELKProgressSheet *>(); };
        QTRY_VERIFY(sheet());
        QTest::keyClick(sheet(), Qt::Key_Escape);
        QCOMPARE(bed.printed.count(), 1);
        QVERIFY(bed.printed.first().first().toString().isNull());
    }

    void itemExports()
    {
        const OutputBed bed(false);
        const Session &session = bed.session;
        qputenv("HOME", bed.folder.path().toLocal8Bit());
        auto &item = session.find<QAction>("actionExport");
        QVERIFY(!item.isEnabled());
        session.add(3);
        QVERIFY(item.isEnabled());
        session.wiring.defaults().setValue(u"exportFormatTag"_s, 1);
        for (const char *name : {"out", "/dev/full"}) {
            item.trigger();
            auto &panel = *session.window.findChild<ZELKSavePanel *>();
            panel.setFileName(QString::fromLatin1(name));
            if (*name == '/') { // which a name with an extension is not
                panel.setRequiredFileType({});
                panel.setOption(QFileDialog::DontConfirmOverwrite);
                panel.setFileName(QString::fromLatin1(name));
            }
            panel.accept();
            QTRY_VERIFY(!session.window.findChild<ZELKSavePanel *>());
        }
        QCOMPARE(readFile(bed.folder.filePath(u"out.txt"_s)).count('\n'), 3);
        QTRY_VERIFY(session.window.findChild<QMessageBox *>());
        QCOMPARE(session.window.findChild<QMessageBox *>()->text(),
                 u"Cannot save file: '/dev/full': No space left on device"_s);
    }
};

QTEST_MAIN(TestOutputWindow)
#include "tst_output_window.moc"
