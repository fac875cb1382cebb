#include "ConsoleLines.h"
#include "DatabaseFixture.h"

#include <QScopeGuard>

#include <sqlite3.h>

#include <csignal>
#include <functional>
#include <sys/resource.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

using Call = DatabaseFixture::Call;
using End = ZELKDatabaseResult::End;
using Action = std::function<void(DatabaseFixture &, HookedController &)>;

/// What the controller says and does when the configuration, the caller or the device fails.
class DatabaseFailuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messages_data()
    {
        const Rows<Action, QString> row;
        const auto open = [](HookedController &controller) { controller.database(); };
        const auto close = [](HookedController &controller) { controller.setDatabase(nullptr); };
        row("open", act(open, Call::Open), "Hooked open failed: device failed (18)");
        row("close", act(close, Call::Close), "Hooked close failed: device failed (18)");
        row("close with statements", act([](auto &controller) {
                controller.databaseVersion();
                controller.setDatabase(nullptr);
            }),
            "Hooked close failed: unable to close due to unfinalized statements or unfinished backups (5)");
        row("reset", run("All", {}, Call::Reset), "Hooked reset 'All' failed: device failed (18)");
        row("no SQL", run("Nowhere"), "Hooked Missing Info.plist property '(null)'");
        row("bad SQL", run("Broken"), "Hooked prepare failed: near \"SELEC\": syntax error (1)");
        row("empty SQL", run("Empty"), "Hooked prepare failed: not an error (0)");
        row("hidden SQL", act([](auto &controller) {
                controller.hideSQL = true;
                controller.executeStatement(u"All"_s, {});
            }),
            "Hooked Info.plist missing All");
        row("script", act([](auto &controller) { controller.executeStatements(u"Broken"_s); }),
            "Hooked SQL 'SELEC 1' failed: near \"SELEC\": syntax error (1)");
        row("no script key", act([](auto &controller) { controller.executeStatements({}); }),
            "Invalid parameter not satisfying: anInfoPListKey");
        row("no setting", act([](auto &controller) { controller.setString(u"x"_s, {}); }),
            "Invalid parameter not satisfying: aSetting");
        row("too few", run("Echo"), "Hooked Statement 'Echo' expects 1 parameters, but got 0 in {}.");
        row("one too many", run("Echo", {{u"@v"_s, u"1"_s}, {u"@w"_s, u"2"_s}}),
            "Hooked Statement 'Echo' expects 1 parameters, but got 2 in {@v = 1; @w = 2}.");
        row("another", run("Echo", {{u"@w"_s, u"1"_s}}),
            "Hooked Parameter '@v' is required for statement 'Echo'.");
        row("text", run("Echo", {{u"@v"_s, u"1"_s}}, Call::BindText), "Hooked text bind '@v' failed: 18");
        row("blob", run("Echo", {{u"@v"_s, QByteArray("1")}}, Call::BindBlob),
            "Hooked blob bind '@v' failed: 18");
        row("number", run("Echo", {{u"@v"_s, 42}}),
            "Hooked Parameter '@v' is in an unsupported format for statement 'Echo'.");
    }
    /// Each failure is raised with its text, and the controller works again once its cause is gone.
    void messages()
    {
        const auto [action, message] = Rows<Action, QString>::fetch();
        DatabaseFixture fixture;
        fixture.set("Broken", u"SELEC 1"_s);
        fixture.set("Empty", u""_s);
        const auto controller = fixture.make<HookedController>();
        QCOMPARE(raised([&, &does = action] { does(fixture, *controller); }), message);
        fixture.port->heal();
        controller->hideSQL = false;
        QCOMPARE(controller->databaseVersion(), u"1.2"_s);
    }

    /// Which codes of a step are tried again, end the rows, or are failures.
    void steps()
    {
        QList<int> codes{SQLITE_BUSY_RECOVERY, SQLITE_IOERR_WRITE, 99, SQLITE_DONE};
        for (int code = SQLITE_OK; code <= SQLITE_WARNING; ++code)
            codes.append(code);
        for (const int code : codes) {
            const int kind = code & 0xff;
            const bool triesAgain = kind == SQLITE_BUSY || kind == SQLITE_LOCKED || kind == SQLITE_PROTOCOL ||
                                    kind == SQLITE_SCHEMA;
            const bool fails = !triesAgain && kind != SQLITE_OK && kind != SQLITE_DONE;
            const DatabaseFixture fixture;
            const auto controller = fixture.make();
            fillTable(*controller);
            fixture.port->fail(Call::Step, code, 2, 50);
            const ConsoleLines console;
            const auto rows = controller->executeStatement(u"All"_s, {});
            const QString line = ZELKFormat("statement 'All' failed: device failed (%d)", {kind});
            QCOMPARE(rows->size(), triesAgain ? 3 : 1);
            QCOMPARE(console.count(qPrintable(line)), int(fails));
            QCOMPARE(controller->lastResult().end, fails ? End::Failed : End::Done);
            QVERIFY(!fails || controller->lastResult().code == kind);
        }
    }

    /// SQLite answers the failure of a step again at the next reset.
    void aFailedRunIsRaisedByTheNextUse()
    {
        DatabaseFixture fixture;
        fixture.set("Overflow", u"SELECT abs(-9223372036854775808)"_s);
        const auto controller = fixture.make();
        const ConsoleLines console;
        const auto runOverflow = [&] {
            return raised([&] { QVERIFY(!controller->executeStatement(u"Overflow"_s, {})); });
        };
        QCOMPARE(runOverflow(), QString());
        QCOMPARE(runOverflow(), u"ZELKDatabaseController reset 'Overflow' failed: integer overflow (1)"_s);
        QCOMPARE(runOverflow(), QString());
        controller->setPreparedStatement({});
        QCOMPARE(runOverflow(), QString());
        QCOMPARE(console.count("'Overflow' failed: integer overflow (1)"), 3);
    }

    void aFailedScriptGivesTheConnectionUp()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        fixture.port->fail(Call::Exec, SQLITE_FULL);
        QVERIFY(!raised([&] { controller->database(); }).isEmpty());
        QCOMPARE(fixture.port->freedConnections(), 1);
        QCOMPARE(fixture.port->count(Call::Close), 0);
        QVERIFY(controller->database());
    }

    void aConnectionIsReallyGivenUp()
    {
#if defined(__SANITIZE_ADDRESS__)
        // sqlite3_free releases the connection alone: what hangs on it is lost, and is meant to be.
        const __lsan::ScopedDisabler lostOnPurpose;
#endif
        DatabaseFixture fixture;
        const QString create = fixture.info.string(u"ZELKDatabaseSQLCreate"_s);
        fixture.set("ZELKDatabaseSQLCreate", create + u"; INSERT INTO barrier VALUES (1)"_s);
        const auto port = std::make_shared<ZELKSQLitePort>();
        ZELKDatabaseController controller(fixture.bundle(), port, fixture.folder.path());
        for (int i = 0; i < 3; ++i)
            QVERIFY(raised([&] { controller.database(); }).endsWith(u"failed: no such table: barrier (1)"_s));
        controller.setCoreSQLStatements({{u"ZELKDatabaseSQLCreate"_s, create}});
        QCOMPARE(controller.databaseVersion(), u"1.2"_s);
    }

    void aFailedOpeningHookClosesAgain()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make<HookedController>();
        controller->openScript = u"Missing"_s;
        QVERIFY(!raised([&] { controller->database(); }).isEmpty());
        QVERIFY(!controller->isOpen());
        QCOMPARE(fixture.port->connections(), 0);
        controller->openScript = u"Table"_s;
        QVERIFY(controller->database());
    }

    void configurationFailures()
    {
        DatabaseFixture fixture;
        writeFile(fixture.path(u"plain"_s), "x");
        const QString under = fixture.path(u"plain/caches"_s);
        QCOMPARE(raised([&] { fixture.make(under)->database(); }),
                 u"ZELKDatabaseController 'Caches' folder unavailable: Not a directory"_s);
        QVERIFY(fixture.make(fixture.path(u"new/caches"_s))->database());
        const QString resource = fixture.path(u"ZELKDatabaseController.plist"_s);
        for (const QByteArray &malformed :
             {QByteArray("no list"), ZELKPropertyList::writeXml(u"x"_s).bytes}) {
            writeFile(resource, malformed);
            QCOMPARE(raised([&] { fixture.make()->database(); }),
                     u"ZELKDatabaseController resource is malformed: file://"_s + resource);
        }
        DatabaseFixture nameless;
        nameless.info.remove(u"CFBundleIdentifier"_s);
        QCOMPARE(raised([&] { nameless.make()->database(); }),
                 u"ZELKDatabaseController Info.plist missing CFBundleIdentifier"_s);
    }

    void aDestructorLogsWhatItCannotClose()
    {
        const DatabaseFixture fixture;
        auto controller = fixture.make<HookedController>();
        controller->database();
        fixture.port->fail(Call::Close, SQLITE_BUSY, 1, 2);
        const ConsoleLines console;
        controller.reset();
        QCOMPARE(console.count("Hooked close failed: "), 1);
        QCOMPARE(console.count("ZELKDatabaseController close failed: "), 1);
        QCOMPARE(fixture.port->statements(), 0);
    }

    /// A device of `limit` bytes, by the kernel: every file of the database ends there.
    void aRealDeviceFillsUp()
    {
        rlimit before;
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
        const auto restore = qScopeGuard([&] {
            setrlimit(RLIMIT_FSIZE, &before);
            std::signal(SIGXFSZ, signalBefore);
        });
        int failures = 0;
        for (rlim_t limit = 0; limit <= 200'000; limit += 8192) {
#if defined(__SANITIZE_ADDRESS__)
            // A creation script that fails gives its connection up for good.
            const __lsan::ScopedDisabler lostOnPurpose;
#endif
            const DatabaseFixture fixture;
            ZELKDatabaseController controller(fixture.bundle(), std::make_shared<ZELKSQLitePort>(),
                                              fixture.folder.path());
            const rlimit small{limit, before.rlim_max};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
            const QString failure = raised([&] { fillTable(controller, QByteArray(30'000, 'x')); });
            failures += !failure.isEmpty() || controller.lastResult().failed();
            setrlimit(RLIMIT_FSIZE, &before);
            controller.setPreparedStatement({});
            fillTable(controller);
            QCOMPARE(controller.executeStatement(u"All"_s, {})->size(), 3);
        }
        QVERIFY(failures > 5);
    }

private:
    /// Does something with an open database, or with none when it is the opening that fails.
    template <typename Body>
    static Action act(const Body &body, Call failing = Call::Any)
    {
        return [=](DatabaseFixture &fixture, HookedController &controller) {
            if (failing != Call::Open)
                controller.executeStatements(u"Table"_s);
            if (failing != Call::Any)
                fixture.port->fail(failing, SQLITE_TOOBIG);
            body(controller);
        };
    }
    static Action run(const char *statement, const ZELKDictionary &parameters = {}, Call failing = Call::Any)
    {
        return act(
            [=](HookedController &controller) {
                controller.executeStatement(QString::fromLatin1(statement), parameters);
            },
            failing);
    }
};

QTEST_GUILESS_MAIN(DatabaseFailuresTest)
#include "database_failures.moc"
