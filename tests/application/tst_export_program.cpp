// "lullwatch export" as its users call it.
#include "Files.h"
#include "Program.h"
#include "Rows.h"

#include <QDir>
#include <QImage>

#include <csignal>

namespace {

/// As many events, each an entry.
QByteArray events(int count)
{
    QByteArray lines;
    for (int i = 0; i < count; ++i)
        lines += "{\"date\":" + QByteArray::number(731329200 + i) +
                 ",\"description\":\"event\",\"monitor\":\"m\",\"properties\":\"NULL\"}\n";
    return lines;
}

/// Whether a process has a file open that has no name.
bool hasNamelessFile(qint64 process)
{
    const QDir files(u"/proc/%1/fd"_s.arg(process));
    for (const QString &name : files.entryList(QDir::Files | QDir::System))
        if (QFile::symLinkTarget(files.filePath(name)).endsWith("(deleted)"_L1))
            return true;
    return false;
}

} // namespace

class ExportProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statuses_data()
    {
        const Rows<int, QString> row; // called by the script
        row("export --output $HOME/x.txt && wc -l <$HOME/x.txt", 0, "2\n");
        row("export --output - --format plist | plistutil -i - -f xml | grep -c '<key>Date'", 0, "2\n");
        row("export --output - --format doc | head -c 4 | od -An -tx1", 0, " d0 cf 11 e0\n");
        row("export --output $HOME/x.tiff --width 200 --height 150 && tiffinfo $HOME/x.tiff | "
            "grep -o 'Image Width.*\\|Scheme: .*'",
            0, "Image Width: 200 Image Length: 150\nScheme: LZW\n");
        row("export --output /dev/full --format rtf", 1,
            "Cannot save file: '/dev/full': No space left on device");
        row("export --output $HOME/none/x.txt", 1, "No such file or directory");
        row("export --output $HOME/Documents/Lullwatch.lullwatch-events --format txt", 1,
            "is the file that the events are kept in.");
        row("export --output $HOME/x.png --from 2024-03-05 --to 2024-03-05", 0, "");
        row("export --output $HOME/x.png last-month", 1, "Nothing was recorded in that range.");
        row("export --output $HOME/x.txt --from 2024-03-05", 2, "of the log, all is exported.");
        row("export --output $HOME/x.png --profile empty", 1, "There is nothing to export yet.");
    }
    void statuses()
    {
        const auto [status, words] = Rows<int, QString>::fetch();
        const Program program;
        QCOMPARE(program.run("import -", events(2)).status, 0);
        const Outcome outcome =
            program.runScript(u"set -o pipefail; $LULLWATCH "_s + QString::fromUtf8(QTest::currentDataTag()));
        QCOMPARE(outcome.status, status);
        if (status == 0)
            QCOMPARE(outcome.output, words);
        else
            QVERIFY2(outcome.complaintLines().join(u'\n').contains(words), qPrintable(outcome.complaints));
    }

    void picturesHaveTheirRange()
    {
        const Program program;
        program.run("import -", events(2) + "{\"date\":731429200,\"description\":\"later\",\"monitor\":\"m\","
                                            "\"properties\":\"NULL\"}\n");
        for (const QString &range : {QString(), u" --to 2024-03-05"_s})
            QCOMPARE(
                program
                    .runScript(u"$LULLWATCH export --output $HOME/x%1.png%2"_s.arg(range.size()).arg(range))
                    .status,
                0);
        const QImage everything(program.path(u"x0.png"_s));
        QCOMPARE(everything.size(), QSize(1200, 300));
        QVERIFY(everything != QImage(program.path(u"x16.png"_s)));
    }

    /// Ctrl+C leaves the older file as it was, and nothing else.
    void interrupted()
    {
        const Program program;
        QCOMPARE(program.run("import -", events(60000)).status, 0);
        writeFile(program.path(u"old.plist"_s), "old");
        const QStringList before = QDir(program.path({})).entryList();
        QProcess process;
        process.setProcessEnvironment(program.environment());
        process.start(QStringLiteral(LULLWATCH), {u"export"_s, u"--output"_s, program.path(u"old.plist"_s)});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(hasNamelessFile(process.processId()), 30000);
        ::kill(pid_t(process.processId()), SIGINT);
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(process.readAllStandardError().contains("lullwatch: Cancelled; nothing was written to "));
        QCOMPARE(readFile(program.path(u"old.plist"_s)), QByteArray("old"));
        QCOMPARE(QDir(program.path({})).entryList(), before);
    }
};

QTEST_GUILESS_MAIN(ExportProgramTest)
#include "tst_export_program.moc"
