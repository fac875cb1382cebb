// The program as a whole, and the window with what other programs do to it.
#include "ApplicationFixture.h"
#include "Files.h"
#include "Program.h"
#include "Rows.h"
#include "ZELKWindowSession.h"

#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

namespace {

constexpr char oneEvent[] = R"({"date":1000000,"description":"e","monitor":"m","properties":"NULL"})";
constexpr char diary[] = "Dear diary, nobody shall take this for a database.\n";

class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
            const QByteArray script = QByteArray(words) + " --database $HOME/folder/file";
            const Outcome outcome = program.run(script.constData(), oneEvent);
            QCOMPARE(outcome.status, 1);
            QVERIFY2(outcome.complaints.contains(QLatin1String(complaint)), qPrintable(outcome.complaints));
            QCOMPARE(readFile(program.path(u"folder/file"_s)), bytes);
            QCOMPARE(QDir(program.path(u"folder"_s)).entryList(QDir::Files), QStringList{u"file"_s});
        }
        // Who writes goes on with a new file.
        QCOMPARE(program.run("import - --database $HOME/folder/file", oneEvent).status, 0);
        QCOMPARE(QDir(program.path(u"folder"_s)).entryList(QDir::Files).size(), 2);
    }

    void writesNumbersPlainly()
    {
        const Program program;
        program.run("import -", oneEvent);
        QVERIFY(program.run("list --from 2024-01-01").output.endsWith("\n0 of 1 entry\n"_L1));
        QVERIFY(program.run("list --format json").output.contains("\"date\": 1000000, "_L1));
    }

    void tellsOnlyWhatCanBeWritten()
    {
        const Program program;
        for (const QString &script : {u"$LULLWATCH --help >/dev/full"_s, u"$LULLWATCH --version >/dev/full"_s,
                                      u"ZELK_MAIN_BUNDLE=/nowhere $LULLWATCH --version"_s}) {
            const Outcome outcome = program.runScript(script);
            QCOMPARE(outcome.status, 1);
            QCOMPARE(outcome.complaintLines().size(), 1);
        }
        QVERIFY(program.run("--help").output.contains("\nUsage: lullwatch "_L1));
    }

    void givesWayToASnapshot()
    {
        const Program program;
        program.run("import -", oneEvent);
        for (const QString &before : {QString(), u"DISPLAY=:98765 "_s, u"QT_QPA_PLATFORM=offscreen "_s}) {
            const Outcome outcome =
                program.runScript(before + u"$LULLWATCH --count 2 --or-picture $HOME/window.png"_s);
            QCOMPARE(outcome.status, 0);
            QVERIFY(outcome.output.contains("\n1 entry\n"_L1));
            QVERIFY(QFile::remove(program.path(u"window.png"_s)));
        }
    }

    void signalsEndTheWindowInOrder_data()
    {
        const Rows<int> row;
        row("SIGTERM", SIGTERM);
        row("SIGINT", SIGINT);
    }
    void signalsEndTheWindowInOrder()
    {
        const auto [number] = Rows<int>::fetch();
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
                 u"The recorded entries cannot be read."_s);
        const auto &failure = *window.findChild<QLineEdit *>(u"failureLine"_s);
        QVERIFY(failure.isVisible() && failure.focusPolicy() & Qt::TabFocus);
        QVERIFY2(failure.text().contains("is no database."_L1), qPrintable(failure.text()));
        // When it can be read at last, it is taken up.
        QVERIFY(QFile::remove(fixture.settings().databaseFile));
        session.wiring().store().updateLogEvents();
        QVERIFY(window.findChild<QLabel *>(u"emptyLabel"_s)->text().startsWith("Nothing has been"_L1));
    }
};

} // namespace

QTEST_MAIN(ProgramTest)

#include "tst_program.moc"
