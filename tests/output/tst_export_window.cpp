// The main window's item that exports.
#include "Files.h"
#include "WindowBed.h"
#include "ZELKSavePanel.h"

#include <QMessageBox>

class ExportWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itemExports()
    {
        const ApplicationFixture fixture;
        qputenv("HOME", fixture.folder.path().toLocal8Bit());
        const Session session(fixture, false);
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
        QCOMPARE(readFile(fixture.folder.filePath(u"out.txt"_s)).count('\n'), 3);
        QTRY_VERIFY(session.window.findChild<QMessageBox *>());
        QCOMPARE(session.window.findChild<QMessageBox *>()->text(),
                 u"Cannot save file: '/dev/full': No space left on device"_s);
    }
};

QTEST_MAIN(ExportWindowTest)
#include "tst_export_window.moc"
