#include "Files.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKInterfaceLoader.h"

#include <QDialog>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class LoaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadsDialogs_data()
    {
        const Rows<QByteArray, QString> row;
        row("dialog", R"(<ui version="4.0"><widget class="QDialog"/></ui>)");
        row("no dialog", R"(<ui version="4.0"><widget class="QWidget"/></ui>)",
            "Sheet window is not connected.");
        row("malformed", "<ui", "Sheet interface file is missing or malformed");
        row("missing", QByteArray(), "Sheet interface file is missing or malformed");
    }
    void loadsDialogs()
    {
        const auto [bytes, message] = Rows<QByteArray, QString>::fetch();
        const QTemporaryDir folder;
        if (!bytes.isEmpty())
            writeFile(folder.filePath(u"Sheet.ui"_s), bytes);
        QWidget window;
        window.show();
        QDialog *dialog = nullptr;
        QCOMPARE(raised([&] {
                     dialog = ZELKInterfaceLoader::loadDialog(ZELKBundle(folder.path()), u"Sheet"_s, window);
                 }),
                 message);
        QCOMPARE(window.findChildren<QWidget *>().size(), dialog ? 1 : 0);
        if (dialog)
            QVERIFY(dialog->parent() == &window && dialog->isWindow() && !dialog->isVisible());
    }
};

QTEST_MAIN(LoaderTest)
#include "tst_loader.moc"
