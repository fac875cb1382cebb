// The program as a whole: its commands, and the window with what other programs do to it.
#include "ApplicationFixture.h"
#include "Files.h"
#include "Program.h"
#include "Rows.h"
#include "ZELKWindowSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

namespace {

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

constexpr char oneEvent[] = R"({"date":1000000,"description":"e","monitor":"m","properties":"NULL"})";
constexpr char diary[] = "Dear diary, nobody shall take this for a database.\n";

} // namespace

class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statuses_data()
    {
        const Rows<int, QString> row; // called by the script
        row("$LULLWATCH --version", 0);
        row("$LULLWATCH --help | grep -q '^Usage: lullwatch '", 0);
        row("$LULLWATCH --help >/dev/full", 1, "No space left on device");
        row("$LULLWATCH --version >/dev/full", 1, "No space left on device");
        row("ZELK_MAIN_BUNDLE=/nowhere $LULLWATCH --version", 1, "is missing or damaged.");
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
        row("$LULLWATCH list >/dev/full", 1, "The output cannot be written: No space left on device");
        row("$LULLWATCH snapshot --picture /dev/null/x", 1, "The picture cannot be written");
        row("ZELK_MAIN_BUNDLE=/nowhere $LULLWATCH list", 1, "is missing or damaged.");
        row("$LULLWATCH snapshot --start-agent", 1, "The recording agent was started, but does not answer.");
    }
    void statuses()
    {
        const auto [status, complaint] = Rows<int, QString>::fetch();
        const Outcome outcome = Program().runScript(QString::fromUtf8(QTest::currentDataTag()));
        QCOMPARE(outcome.status, status);
        QVERIFY2(outcome.complaints.contains(complaint), qPrintable(outcome.complaints));
    }

    void importTellsOfEachLine()
    {
        const Program program;
        const QByteArray input = "\xEF\xBB\xBF" + line(noon, "one") + "\n  \r\n{\"date\":1}\n" +
                                 line(noon + 1, "two") + "\xff\n" + QByteArray(17 << 20, ' ') + "\n" +
                                 line(noon + 2, "three").trimmed();
        for (int i = 0; i < 2; ++i) { // the second time nothing is new
            const Outcome outcome = program.run("import -", input);
            QCOMPARE(outcome.status, 0);
            QCOMPARE(outcome.output,
                     u"imported 3 events, %1 of them new, skipped 3 lines\n"_s.arg(i == 0 ? 3 : 0));
            QCOMPARE(
                outcome.complaintLines(),
                QStringList({u"lullwatch: line 4: missing key \"description\""_s,
                             u"lullwatch: line 6: not UTF-8"_s, u"lullwatch: line 7: longer than 16 MiB"_s}));
            QVERIFY(program.run("list").output.endsWith("\n3 entries\n"_L1));
        }
        QVERIFY(QFile::exists(program.path(u"Documents/Lullwatch.lullwatch-events"_s)));
    }

    /// Many lines, and a reader that goes away.
    void manyLines()
    {
        const Program program;
        QByteArray input;
        for (int i = 0; i < 25000; ++i)
            input += line(noon + 25000 - i, "Can device power off");
        QCOMPARE(program.run("import -", input).output,
                 u"imported 25000 events, 25000 of them new, skipped 0 lines\n"_s);
        const QString listed = program.run("list --format tsv").output;
        QCOMPARE(listed.count(u'\n'), 25000);
        QVERIFY(listed.startsWith("2024-03-05 12:00:01 +0100\t"_L1));
        const Outcome outcome = program.run("list | head -n 1; exit ${PIPESTATUS[0]}");
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.complaintLines(), QStringList());
    }

    void formats()
    {
        const Program program;
        QCOMPARE(program.run("list --format json").output, u"[]\n"_s);
        QCOMPARE(program.run("import -", sleepAndTrouble()).status, 0);
        QCOMPARE(program.run("list --format table").output,
                 u"Date                       Summary\n"
                 "2024-03-05 12:00:00 +0100  System will sleep\n"
                 "2024-03-05 12:01:00 +0100  System powering on after 1 minute\n"
                 "2024-03-05 12:02:00 +0100  a\\tb\\nc\\u001b[31m\\u202e\n"
                 "3 entries\n"_s);
        QCOMPARE(program.run("list --format tsv").output,
                 u"2024-03-05 12:00:00 +0100\tSystem will sleep\tDuplicates:(2024-03-05 12:00:01 +0100)\n"
                 "2024-03-05 12:01:00 +0100\tSystem powering on after 1 minute\tProperties:[Duration:1m]\n"
                 "2024-03-05 12:02:00 +0100\ta\\tb\\nc\\u001b[31m\\u202e\tProcesses:(a\\tb)\n"_s);

        QVERIFY(program.run("snapshot --count 2").output.contains("\n2 of 3 entries\n"_L1));
        const QString output = program.run("list --format json").output;
        QCOMPARE(output.section(u'\n', 2, 2),
                 u"{\"index\": 1, \"date\": 731329260.25, \"finalDate\": 731329260.25, "
                 "\"event\": \"System has powered on\", \"monitor\": \"Power Events\", "
                 "\"group\": \"Power State\", \"summary\": \"System powering on after 1 minute\", "
                 "\"pair\": 0, \"pairRepresents\": \"Awake\", \"duplicates\": [], "
                 "\"attributes\": {\"Properties\": {\"Duration\": \"1m\"}}},"_s);
        const QJsonArray entries = QJsonDocument::fromJson(output.toUtf8()).array();
        QCOMPARE(entries.size(), 3);
        const QJsonObject first = entries.at(0).toObject();
        QCOMPARE(first.value("duplicates"_L1), QJsonValue(QJsonArray{noon + 1.0}));
        QCOMPARE(first.value("finalDate"_L1), QJsonValue(noon + 1.0));
        QCOMPARE(first.value("pair"_L1), QJsonValue());
        QCOMPARE(entries.at(2).toObject().value("event"_L1).toString(), u"a\tb\nc\u001b[31m\u202e"_s);
        QVERIFY(!output.contains(u'\x1b'));
    }

    void periods()
    {
        // An event each half hour of UTC; Berlin leaves summer time on 27 October 2024 at 01:00 UTC.
        const Program program;
        QByteArray input;
        for (int i = 0; i < 48 * 5; ++i)
            input += line(751507200.0 + i * 1800.0, "x", "org.example"); // from 25 October
        program.run("import -", input);
        const std::pair<const char *, QString> expectations[] = {
            {"--from 2024-10-27 --to 2024-10-27",
             u"50: 2024-10-27 00:00:00 +0200 to 2024-10-27 23:30:00 +0100"_s},
            {"--from 2024-10-26 --to 2024-10-26",
             u"48: 2024-10-26 00:00:00 +0200 to 2024-10-26 23:30:00 +0200"_s},
            {"--from 2024-10-28T10:30 --to 2024-10-28T11:00:00",
             u"2: 2024-10-28 10:30:00 +0100 to 2024-10-28 11:00:00 +0100"_s},
            {"--to 2024-10-25T02:00", u"1: 2024-10-25 02:00:00 +0200 to 2024-10-25 02:00:00 +0200"_s}};
        for (const auto &[period, expected] : expectations) {
            const QStringList lines = program.run(("list --format tsv " + QByteArray(period)).constData())
                                          .output.split(u'\n', Qt::SkipEmptyParts);
            QVERIFY(!lines.isEmpty());
            QCOMPARE(u"%1: %2 to %3"_s.arg(QString::number(lines.size()), lines.first().section(u'\t', 0, 0),
                                           lines.last().section(u'\t', 0, 0)),
                     expected);
        }
        QVERIFY(program.run("list --range yesterday").output.endsWith("\n0 of 240 entries\n"_L1));
        QVERIFY(!QFile::exists(program.path(u"org.zelk.lullwatch/defaults.ini"_s))); // no window's range
    }

    void statistics()
    {
        const Program program;
        const QJsonObject none =
            QJsonDocument::fromJson(program.run("stats --format json").output.toUtf8()).object();
        QCOMPARE(none.value("count"_L1).toInt(-1), 0);
        QVERIFY(none.value("usage"_L1).toObject().isEmpty() && none.value("sleeps"_L1).isObject());
        const auto reading = [](double date, int percentage) {
            return line(date, "Power state changed", "org.zelk.monitor.watcher.powersource",
                        QByteArray("<plist version=\\\"1.0\\\"><dict><key>Name</key><string>B</string>"
                                   "<key>Power Source State</key><string>Battery Power</string>"
                                   "<key>Max Capacity</key><integer>100</integer>"
                                   "<key>Current Capacity</key><integer>") +
                            QByteArray::number(percentage) + "</integer></dict></plist>");
        };
        QCOMPARE(program
                     .run("import -", reading(noon, 80) + line(noon + 60, "System will sleep") +
                                          line(noon + 7260, "System has powered on") +
                                          reading(noon + 7261, 70))
                     .status,
                 0);
        const QByteArray json = program.run("stats everything --format json").output.toUtf8();
        QCOMPARE(
            QString::fromUtf8(json),
            QString::fromUtf8(
                R"({"from": 731286000, "to": 731372399, "count": 4, "usage": {"Awake": 79199, "Asleep": 7200}, )"
                R"("powerSource": {"Battery Power": 86399}, "batteries": {"B": {"minimum": 70, "average": 75, )"
                R"("maximum": 80, "secondsPerPercent": 726.1}}, "sleeps": {"count": 1, "unknown": 0, )"
                R"("batteries": {"B": {"asleep": {"lost": 10, "seconds": 7200, "percentPerHour": 5}, )"
                R"("awake": {"lost": 0, "seconds": 61, "percentPerHour": 0}}}, )"
                R"("each": [{"from": 731329260, "to": 731336460, "unknown": null, )"
                R"("costs": {"B": {"lost": 10, "percentPerHour": 5}}}]}})"
                "\n"));
        const QString text = program.run("stats --from 2024-03-05 --to 2024-03-05").output;
        QVERIFY2(
            text.startsWith("Tuesday, 5 March 2024\n4 entries\n\nUsage\n  Awake   91.7%  21h 59m 59s"_L1),
            qPrintable(text));
        QVERIFY2(text.contains("\nSleeps\n  B asleep  "_L1), qPrintable(text));
        // several days, hours, and days beyond all that is recorded
        const std::pair<const char *, const char *> titles[] = {
            {"--from 2024-03-05 --to 2024-03-06", "Tuesday 5 - Wednesday 6, March 2024\n4 entries"},
            {"--from 2024-03-05T12:00 --to 2024-03-05T13:00", "5 Mar 2024 12:00:00 - 13:00:00\n2 entries"},
            {"--from 2030-01-01", "Tuesday, 1 January 2030\n0 entries"},
            {"--to 2020-01-01", "Wednesday, 1 January 2020\n0 entries"}};
        for (const auto &[range, title] : titles) {
            const QString named = program.run(("stats " + QByteArray(range)).constData()).output;
            QVERIFY2(named.startsWith(QLatin1String(title)), qPrintable(named));
        }
    }

    void profilesAreWorldsOfTheirOwn()
    {
        const Program program;
        program.run("--profile one import -", sleepAndTrouble());
        QVERIFY(program.run("list --profile one").output.contains("3 entries"_L1));
        QVERIFY(program.run("--profile two list").output.contains("0 entries"_L1));
        program.run("--profile two import -", oneEvent);
        QVERIFY(program.run("--profile two list --from 2024-01-01").output.endsWith("\n0 of 1 entry\n"_L1));
        QVERIFY(program.run("--profile two list --format json").output.contains("\"date\": 1000000, "_L1));
        QVERIFY(program.run("list").output.contains("0 entries"_L1));
        QVERIFY(QFile::exists(program.path(u"org.zelk.lullwatch/profiles/one/Lullwatch.lullwatch-events"_s)));
    }

    void otherPeoplesFilesStayAsTheyAre()
    {
        const Program program;
        const QByteArray damaged = QByteArray("SQLite format 3\0", 16) + QByteArray(5000, 'U');
        const std::tuple<const char *, QByteArray, const char *> cases[] = {
            {"list", diary, "is no database."},
            {"snapshot", diary, "is no database."},
            {"import -", diary, "is no database."},
            {"list", damaged, "is damaged."}, // it only reads
        };
        for (const auto &[words, bytes, complaint] : cases) {
            writeFile(program.path(u"folder/file"_s), bytes);
            const QByteArray command = QByteArray(words) + " --database $HOME/folder/file";
            const Outcome outcome = program.run(command.constData(), oneEvent);
            QCOMPARE(outcome.status, 1);
            QVERIFY2(outcome.complaints.contains(QLatin1String(complaint)), qPrintable(outcome.complaints));
            QCOMPARE(readFile(program.path(u"folder/file"_s)), bytes);
            QCOMPARE(QDir(program.path(u"folder"_s)).entryList(QDir::Files), QStringList{u"file"_s});
        }
        // Who writes goes on with a new file.
        QCOMPARE(program.run("import - --database $HOME/folder/file", oneEvent).status, 0);
        QCOMPARE(QDir(program.path(u"folder"_s)).entryList(QDir::Files).size(), 2);
    }

    void givesWayToASnapshot()
    {
        const Program program;
        program.run("import -", oneEvent);
        const Outcome picture = program.run("snapshot --count 2 --picture $HOME/window.png");
        QVERIFY2(picture.output.contains(program.path(u"window.png"_s)), qPrintable(picture.output));
        QVERIFY(readFile(program.path(u"window.png"_s)).startsWith("\x89PNG\r\n\x1a\n"));
        for (const QString &before : {QString(), u"DISPLAY=:98765 "_s, u"QT_QPA_PLATFORM=offscreen "_s}) {
            const Outcome outcome =
                program.runScript(before + u"$LULLWATCH --count 2 --or-picture $HOME/window.png"_s);
            QCOMPARE(outcome.status, 0);
            QVERIFY(outcome.output.contains("\n1 entry\n"_L1));
            QVERIFY(QFile::remove(program.path(u"window.png"_s)));
        }
    }

    void signalsEndTheWindowInOrder()
    {
        for (const int number : {SIGTERM, SIGINT}) {
            const Program program;
            program.run("--profile x import -", oneEvent);
            QProcess window;
            QProcessEnvironment environment = program.environment();
            environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
            window.setProcessEnvironment(environment);
            window.setChildProcessModifier([] { std::signal(SIGINT, SIG_DFL); });
            window.start(QStringLiteral(LULLWATCH), {u"--profile"_s, u"x"_s});
            window.setReadChannel(QProcess::StandardError);
            QByteArray told;
            while (!told.contains("cache provided") && window.waitForReadyRead(20000))
                told += window.readAllStandardError();
            ::kill(pid_t(window.processId()), number);
            QVERIFY(window.waitForFinished(20000));
            QCOMPARE(window.exitStatus(), QProcess::NormalExit);
            QCOMPARE(window.exitCode(), 0);
            const QString profile = program.path(u"org.zelk.lullwatch/profiles/x/"_s);
            const QSettings settings(profile + u"defaults.ini"_s, QSettings::IniFormat);
            QCOMPARE(settings.value(u"ZELKLWCDateRangeController.duration.interval"_s).toDouble(), 86399.0);
            QVERIFY(settings.contains(u"ZELKLWCMainWindowController.geometry"_s));
        }
    }

    /// Also where there is no agent, and no bus to hear of it.
    void importReachesTheOpenWindow()
    {
        const ApplicationFixture fixture;
        ZELKWindowSession session(fixture.profile(), ZELKApplicationWiring::World::withoutAgent());
        session.start(false);
        QCoreApplication::processEvents();
        for (const int count : {1, 2}) {
            ZELKApplicationWiring other(fixture.profile(), ZELKApplicationWiring::World::withoutAgent());
            QVERIFY(other.store().cacheEvents(eventEachDay(QDate(2024, 3, count), QDate(2024, 3, count))));
            QTRY_COMPARE(session.wiring().log().count(), count);
        }
    }

    void cacheThatCannotBeRead()
    {
        ApplicationFixture fixture;
        writeFile(fixture.settings().databaseFile, diary);
        ZELKWindowSession session(fixture.settings(), fixture.world);
        QSignalSpy asked(&session.wiring().store(), &ZELKLWCStore::fetchFinished);
        session.start(false);
        QCoreApplication::processEvents();
        QCOMPARE(asked.size(), 1);
        const QMainWindow &window = *session.mainWindow().window();
        QCOMPARE(window.findChild<QLabel *>(u"emptyLabel"_s)->text(),
                 u"The recorded entries cannot be read"_s);
        const auto &failure = *window.findChild<QLineEdit *>(u"failureLine"_s);
        QVERIFY(failure.isVisible() && failure.focusPolicy() & Qt::TabFocus);
        QVERIFY2(failure.text().contains("is no database."_L1), qPrintable(failure.text()));
        // When it can be read at last, it is taken up.
        QVERIFY(QFile::remove(fixture.settings().databaseFile));
        session.wiring().store().updateLogEvents();
        QVERIFY(window.findChild<QLabel *>(u"emptyLabel"_s)->text().startsWith("Nothing has been"_L1));
    }
};

QTEST_MAIN(ProgramTest)
#include "tst_program.moc"
