// What "lullwatch export" writes, in a spreadsheet and a word processor.
#include "Files.h"
#include "Program.h"
#include "Rows.h"

#include <QStandardPaths>

class ExportOfficeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(u"soffice"_s).isEmpty())
            QSKIP("LibreOffice is not installed");
    }

    void isReadBack_data()
    {
        const Rows<QString, QString> row; // how it is asked to convert, and the name of what comes out
        const QString tabs = u"Text - txt - csv (StarCalc):9,34,76"_s;
        row("txt", u"--infilter='%1' --convert-to 'csv:%1'"_s.arg(tabs), u"csv"_s);
        row("rtf", u"--convert-to 'txt:Text (encoded):UTF8'"_s, u"txt"_s);
        row("doc", u"--convert-to 'txt:Text (encoded):UTF8'"_s, u"txt"_s);
    }
    void isReadBack()
    {
        const auto [conversion, extension] = Rows<QString, QString>::fetch();
        const QString format = QString::fromUtf8(QTest::currentDataTag());
        const Program program;
        const QByteArray event =
            "{\"date\":731329200,\"monitor\":\"m\",\"properties\":\"NULL\",\"description\":\"";
        const QString strange = u"Łódź 日本 🔋 שלום"_s;
        QCOMPARE(program.run("import -", event + strange.toUtf8() + "\"}\n").status, 0);
        const Outcome outcome = program.runScript(
            u"cd $HOME && $LULLWATCH export --output log.%1 && soffice "
            "-env:UserInstallation=file://$HOME/office --headless %2 --outdir out log.%1"_s.arg(format,
                                                                                                conversion));
        QVERIFY2(outcome.status == 0, qPrintable(outcome.complaints));
        const QString read = QString::fromUtf8(readFile(program.path(u"out/log."_s + extension)));
        const QString line = u"2024-03-05 12:00:00 +0100\t"_s + strange;
        QVERIFY2(read.endsWith(line) || read.endsWith(line + u'\n'), qPrintable(read));
    }
};

QTEST_GUILESS_MAIN(ExportOfficeTest)
#include "tst_export_office.moc"
