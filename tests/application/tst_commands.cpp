#include "ApplicationFixture.h"
#include "ZELKCommandLine.h"
#include "ZELKTextOutput.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QTest>

#include <unistd.h>

namespace {

struct Outcome
{
    int status = -1;
    QString output;
    QString complaints;
    /// What was complained of, without the console's own lines.
    QStringList complaintLines() const
    {
        return complaints.split(QLatin1Char('\n')).filter(QStringLiteral("lullwatch: "));
    }
};

/// Runs the built program with a home of its own, in Berlin, without display and buses.
class Program
{
public:
    Outcome run(const QStringList &arguments, const QByteArray &input = {}) const
    {
        return runProgram(QStringLiteral(LULLWATCH), arguments, input);
    }
    Outcome runShell(const QString &script) const
    {
        return runProgram(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), script}, {});
    }
    QString path(const char *name) const { return m_home.filePath(QString::fromLatin1(name)); }

private:
    Outcome runProgram(const QString &program, const QStringList &arguments, const QByteArray &input) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *unset : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(unset));
        for (const char *folder : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
            environment.insert(QString::fromLatin1(folder), m_home.path());
        for (const char *bus : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
            environment.insert(QString::fromLatin1(bus), QStringLiteral("unix:path=/nowhere/at/all"));
        environment.insert(QStringLiteral("TZ"), QStringLiteral("Europe/Berlin"));
        environment.insert(QStringLiteral("LULLWATCH"), QStringLiteral(LULLWATCH));
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(100000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    QTemporaryDir m_home;
};

QStringList words(const char *line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QByteArray line(double date, const char *description,
                const char *monitor = "org.zelk.monitor.watcher.powerevents", const char *properties = "NULL")
{
    return QByteArrayLiteral("{\"date\":") + QByteArray::number(date, 'f', 6) + ",\"description\":\"" +
           description + "\",\"monitor\":\"" + monitor + "\",\"properties\":\"" + properties + "\"}\n";
}

// 2024-03-05 12:00:00 in Berlin
constexpr double noon = 731329200.0;

/// A sleep, and a line that stands for trouble in every format.
QByteArray sleepAndTrouble()
{
    return line(noon + 60.25, "System has powered on") + line(noon, "System will sleep") +
           line(noon + 1.0, "System will sleep") +
           line(noon + 120.0, R"(a\tb\nc\u001b[31m\u202e)", "org.example",
                "<plist version=\\\"1.0\\\"><dict><key>Processes</key><array><string>a\\tb</string></array>"
                "</dict></plist>");
}

class CommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statuses_data();
    void statuses();
    void importTellsOfEachLine();
    void importSurvivesGarbage();
    void importTwice();
    void importOfManyLines();
    void formats_data();
    void formats();
    void json();
    void periods_data();
    void periods();
    void presets_data();
    void presets();
    void picture();
    void profilesAreWorldsOfTheirOwn();
    void readersMayGo();
};

void CommandsTest::statuses_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("complaint");

    const auto row = [](const char *script, int status, const char *complaint = "") {
        QTest::newRow(script) << QString::fromLatin1(script) << status << QString::fromLatin1(complaint);
    };
    row("$LULLWATCH --version", 0);
    row("$LULLWATCH --help", 0);
    row("$LULLWATCH list", 0);
    row("$LULLWATCH list --database $HOME/none", 0, "is not there; nothing has been kept in it yet.");
    row("$LULLWATCH list --database $HOME/none 2>&-; test -e $HOME/none", 1);
    row("$LULLWATCH --wrong", 2, "Unknown option 'wrong'.");
    row("$LULLWATCH", 1, "There is no display to open the window on.");
    row("DISPLAY=:98765 $LULLWATCH", 1, "There is no display to open the window on.");
    row("$LULLWATCH import $HOME/none", 1, "none cannot be read: No such file or directory");
    row("$LULLWATCH import $HOME", 1, "cannot be read: Is a directory");
    row("$LULLWATCH import - </dev/null", 0);
    row("echo nonsense | $LULLWATCH import -", 1, "line 1: not a JSON object");
    row("echo '{\"date\":1,\"description\":\"e\",\"monitor\":\"m\",\"properties\":\"NULL\"}' | "
        "$LULLWATCH import - --database /dev/null/x",
        1, "The events cannot be kept");
    row("echo 'not a database, but long enough to be taken for one' >$HOME/damaged; "
        "$LULLWATCH list --database $HOME/damaged",
        0);
    row("$LULLWATCH list >/dev/full", 1, "The output cannot be written: No space left on device");
    row("$LULLWATCH snapshot --picture /dev/null/x", 1, "The picture cannot be written");
    row("ZELK_MAIN_BUNDLE=/nowhere $LULLWATCH list", 1, "is missing or damaged.");
    row("$LULLWATCH snapshot --start-agent", 1, "The recording agent was started, but does not answer.");
}

void CommandsTest::statuses()
{
    QFETCH(QString, script);
    QFETCH(QString, complaint);
    const Outcome outcome = Program().runShell(script);
    QTEST(outcome.status, "status");
    QVERIFY2(outcome.complaints.contains(complaint), qPrintable(outcome.complaints));
}

void CommandsTest::importTellsOfEachLine()
{
    const Program program;
    const QByteArray input = "\xEF\xBB\xBF" + line(noon, "one") + "\n  \r\n{\"date\":1}\n" +
                             line(noon + 1, "two") + "\xff\n" + QByteArray(17 << 20, ' ') + "\n" +
                             line(noon + 2, "three").trimmed();
    const Outcome outcome = program.run(words("import -"), input);
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.output, QStringLiteral("imported 3 events, skipped 3 lines\n"));
    const QStringList expected{QStringLiteral("lullwatch: line 4: missing key \"description\""),
                               QStringLiteral("lullwatch: line 6: not UTF-8"),
                               QStringLiteral("lullwatch: line 7: longer than 16 MiB")};
    QCOMPARE(outcome.complaintLines(), expected);
    QCOMPARE(program.run(words("list")).output.count(QLatin1Char('\n')), 5);
}

void CommandsTest::importSurvivesGarbage()
{
    const Program program;
    QRandomGenerator random(5);
    QByteArray garbage;
    const QByteArray seed = sleepAndTrouble();
    for (int i = 0; i < 300; ++i) {
        QByteArray piece = seed;
        for (int change = 0; change < 3; ++change)
            piece[random.bounded(piece.size())] = char(random.bounded(256));
        garbage += piece;
    }
    const Outcome outcome = program.run(words("import -"), garbage);
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.output.startsWith(QLatin1String("imported ")));
    QCOMPARE(program.run(words("list --format json")).status, 0);
}

void CommandsTest::importTwice()
{
    const Program program;
    for (int i = 0; i < 2; ++i)
        QCOMPARE(program.run(words("import -"), sleepAndTrouble()).output,
                 QStringLiteral("imported 4 events, skipped 0 lines\n"));
    QVERIFY(program.run(words("list")).output.endsWith(QLatin1String("\n3 entries\n")));
}

void CommandsTest::importOfManyLines()
{
    const Program program;
    QByteArray input;
    for (int i = 0; i < 25000; ++i)
        input += line(noon + 25000 - i, "Can device power off");
    QCOMPARE(program.run(words("import -"), input).output,
             QStringLiteral("imported 25000 events, skipped 0 lines\n"));
    const QString listed = program.run(words("list --format tsv")).output;
    QCOMPARE(listed.count(QLatin1Char('\n')), 25000);
    QVERIFY(listed.startsWith(QLatin1String("2024-03-05 12:00:01 +0100\t")));
}

void CommandsTest::formats_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("output");

    QTest::newRow("table") << QStringLiteral("table")
                           << QStringLiteral("Date                       Summary\n"
                                             "2024-03-05 12:00:00 +0100  System will sleep\n"
                                             "2024-03-05 12:01:00 +0100  System powering on after 1 minute\n"
                                             "2024-03-05 12:02:00 +0100  a\\tb\\nc\\u001b[31m\\u202e\n"
                                             "3 entries\n");
    QTest::newRow("tsv") << QStringLiteral("tsv")
                         << QStringLiteral("2024-03-05 12:00:00 +0100\tSystem will sleep\tDuplicates:("
                                           "2024-03-05 12:00:01 +0100)\n"
                                           "2024-03-05 12:01:00 +0100\tSystem powering on after 1 minute\t"
                                           "Properties:[Duration:1m]\n"
                                           "2024-03-05 12:02:00 +0100\ta\\tb\\nc\\u001b[31m\\u202e\t"
                                           "Processes:(a\\tb)\n");
}

void CommandsTest::formats()
{
    QFETCH(QString, format);
    const Program program;
    QCOMPARE(program.run(words("import -"), sleepAndTrouble()).status, 0);
    const Outcome outcome = program.run({QStringLiteral("list"), QStringLiteral("--format"), format});
    QTEST(outcome.output, "output");
}

void CommandsTest::json()
{
    const Program program;
    QCOMPARE(program.run(words("list --format json")).output, QStringLiteral("[]\n"));
    program.run(words("import -"), sleepAndTrouble());
    const QString output = program.run(words("list --format json")).output;
    QCOMPARE(output.section(QLatin1Char('\n'), 2, 2),
             QStringLiteral("{\"index\": 1, \"date\": 731329260.25, \"finalDate\": 731329260.25, "
                            "\"event\": \"System has powered on\", \"monitor\": \"Power Events\", "
                            "\"group\": \"Power State\", \"summary\": \"System powering on after 1 minute\", "
                            "\"pair\": 0, \"pairRepresents\": \"Awake\", \"duplicates\": [], "
                            "\"attributes\": {\"Properties\": {\"Duration\": \"1m\"}}},"));
    const QJsonArray entries = QJsonDocument::fromJson(output.toUtf8()).array();
    QCOMPARE(entries.size(), 3);
    QCOMPARE(entries.at(0).toObject().value(QLatin1String("duplicates")), QJsonValue(QJsonArray{noon + 1.0}));
    QCOMPARE(entries.at(0).toObject().value(QLatin1String("finalDate")), QJsonValue(noon + 1.0));
    QCOMPARE(entries.at(0).toObject().value(QLatin1String("pair")), QJsonValue());
    QCOMPARE(entries.at(2).toObject().value(QLatin1String("event")).toString(),
             QStringLiteral("a\tb\nc\x1b[31m\u202e"));
    QVERIFY(!output.contains(QLatin1Char('\x1b')));
}

void CommandsTest::periods_data()
{
    QTest::addColumn<QString>("period");
    QTest::addColumn<QString>("expected");

    // An event each half hour of UTC; Berlin leaves summer time on 27 October 2024 at 01:00 UTC.
    QTest::newRow("a day of 25 hours")
        << QStringLiteral("--from 2024-10-27 --to 2024-10-27")
        << QStringLiteral("50: 2024-10-27 00:00:00 +0200 to 2024-10-27 23:30:00 +0100");
    QTest::newRow("a usual day") << QStringLiteral("--from 2024-10-26 --to 2024-10-26")
                                 << QStringLiteral(
                                        "48: 2024-10-26 00:00:00 +0200 to 2024-10-26 23:30:00 +0200");
    QTest::newRow("from a moment") << QStringLiteral("--from 2024-10-28T10:30 --to 2024-10-28")
                                   << QStringLiteral(
                                          "27: 2024-10-28 10:30:00 +0100 to 2024-10-28 23:30:00 +0100");
    QTest::newRow("to a moment, included")
        << QStringLiteral("--from 2024-10-28 --to 2024-10-28T00:30:00")
        << QStringLiteral("2: 2024-10-28 00:00:00 +0100 to 2024-10-28 00:30:00 +0100");
    QTest::newRow("open ends") << QStringLiteral("--to 2024-10-25T02:00")
                               << QStringLiteral("1: 2024-10-25 02:00:00 +0200 to 2024-10-25 02:00:00 +0200");
}

void CommandsTest::periods()
{
    QFETCH(QString, period);
    const Program program;
    QByteArray input;
    const ZELKDate first =
        ZELKDate::fromDateTime(QDateTime(QDate(2024, 10, 25), QTime(0, 0), QTimeZone::utc()));
    for (int i = 0; i < 48 * 5; ++i)
        input +=
            line(first.addingTimeInterval(i * 1800.0).timeIntervalSinceReferenceDate(), "x", "org.example");
    program.run(words("import -"), input);
    const QStringList lines = program.run(words("list --format tsv") + period.split(QLatin1Char(' ')))
                                  .output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY(!lines.isEmpty());
    QTEST(QStringLiteral("%1: %2 to %3")
              .arg(QString::number(lines.size()), lines.constFirst().section(QLatin1Char('\t'), 0, 0),
                   lines.constLast().section(QLatin1Char('\t'), 0, 0)),
          "expected");
}

void CommandsTest::presets_data()
{
    QTest::addColumn<QString>("range");
    QTest::addColumn<int>("count");
    const auto row = [](const char *range, int count) {
        QTest::newRow(range) << QString::fromLatin1(range) << count;
    };
    row("today", 1);
    row("yesterday", 1);
    row("last-seven-days", 7);
    row("this-month", 31);
    row("last-month", 29);
    row("this-week", 7);
    row("last-week", 7);
    row("everything", 77);
}

void CommandsTest::presets()
{
    QFETCH(QString, range);
    ApplicationFixture fixture;
    const ZELKApplicationSettings settings = fixture.settings();
    {
        ZELKApplicationWiring wiring(settings, ZELKApplicationWiring::World::withoutAgent());
        QVERIFY(wiring.store().cacheEvents(eventEachDay(QDate(2024, 1, 15), QDate(2024, 3, 31))));
    }
    QTemporaryFile file;
    QVERIFY(file.open());
    ZELKTextOutput output(file.handle());
    ZELKTextOutput complaints(STDERR_FILENO);
    const auto parsed = ZELKCommandLineOptions::parse(words("lullwatch list --format tsv --range") << range);
    QCOMPARE(ZELKCommandLine(settings, parsed.options, output, complaints).run(), 0);
    QVERIFY(file.seek(0));
    QTEST(int(file.readAll().count('\n')), "count");
    QVERIFY(!QFile::exists(settings.defaultsFile()));
}

void CommandsTest::picture()
{
    const Program program;
    program.run(words("import -"), sleepAndTrouble());
    const Outcome outcome =
        program.run({QStringLiteral("snapshot"), QStringLiteral("--count"), QStringLiteral("2"),
                     QStringLiteral("--picture"), program.path("window.png")});
    QCOMPARE(outcome.status, 0);
    QVERIFY2(outcome.output.contains(QLatin1String("\n2 of 3 entries\n")), qPrintable(outcome.output));
    QVERIFY(outcome.output.contains(program.path("window.png")));
    QFile picture(program.path("window.png"));
    QVERIFY(picture.open(QIODevice::ReadOnly));
    QVERIFY(picture.read(8) == QByteArrayLiteral("\x89PNG\r\n\x1a\n"));
}

void CommandsTest::profilesAreWorldsOfTheirOwn()
{
    const Program program;
    program.run(words("--profile one import -"), sleepAndTrouble());
    QVERIFY(program.run(words("list --profile one")).output.contains(QLatin1String("3 entries")));
    QVERIFY(program.run(words("--profile two list")).output.contains(QLatin1String("0 entries")));
    QVERIFY(program.run(words("list")).output.contains(QLatin1String("0 entries")));
    QVERIFY(QFile::exists(program.path("org.zelk.lullwatch/profiles/one/Lullwatch.lullwatch-events")));
}

void CommandsTest::readersMayGo()
{
    const Program program;
    QByteArray input;
    for (int i = 0; i < 20000; ++i)
        input += line(noon + i, "Can device power off");
    program.run(words("import -"), input);
    const Outcome outcome =
        program.runShell(QStringLiteral("$LULLWATCH list | head -n 1; exit ${PIPESTATUS[0]}"));
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.complaintLines(), QStringList());
}

} // namespace

QTEST_GUILESS_MAIN(CommandsTest)

#include "tst_commands.moc"
