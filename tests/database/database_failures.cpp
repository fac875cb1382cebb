#include "DatabaseFixture.h"
#include "ZELKDate.h"

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
        QTest::addColumn<Action>("action");
        QTest::addColumn<QString>("message");
        const auto add = [](const char *name, const char *message, Action action) {
            QTest::newRow(name) << std::move(action) << QString::fromUtf8(message);
        };
        addOpening(add);
        addStatements(add);
        addParameters(add);
    }
    /// Each failure is raised with its text, and the controller works again once its cause is gone.
    void messages()
    {
        QFETCH(Action, action);
        DatabaseFixture fixture;
        fixture.set("Broken", "SELEC 1");
        fixture.set("Empty", "");
        const auto controller = fixture.make<HookedController>();
        QTEST(raised([&] { action(fixture, *controller); }), "message");
        fixture.port->heal();
        controller->hideSQL = false;
        QCOMPARE(controller->databaseVersion(), key("1.2"));
    }

    void steps_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<End>("end");
        QTest::addColumn<int>("rows");
        for (int code : {SQLITE_BUSY, SQLITE_BUSY_RECOVERY, SQLITE_LOCKED, SQLITE_PROTOCOL, SQLITE_SCHEMA})
            QTest::addRow("step again %d", code) << code << End::Done << 3;
        for (int code : {SQLITE_OK, SQLITE_DONE})
            QTest::addRow("done %d", code) << code << End::Done << 1;
        for (int code = SQLITE_ERROR; code <= SQLITE_WARNING; ++code)
            if (code != SQLITE_BUSY && code != SQLITE_LOCKED && code != SQLITE_PROTOCOL &&
                code != SQLITE_SCHEMA)
                QTest::addRow("failed %d", code) << code << End::Failed << 1;
        QTest::newRow("failed write, extended code") << SQLITE_IOERR_WRITE << End::Failed << 1;
        QTest::newRow("failed, unheard of") << 99 << End::Failed << 1;
    }
    void steps()
    {
        QFETCH(int, code);
        QFETCH(End, end);
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        fillTable(*controller);
        fixture.port->fail(Call::Step, code, 2, 50);
        const QString line = ZELKFormat(" 'All' failed: device failed \\(%d\\)", {code & 0xff});
        if (end == End::Failed)
            QTest::ignoreMessage(QtInfoMsg,
                                 QRegularExpression(key("ZELKDatabaseController statement") + line));
        const auto rows = controller->executeStatement(key("All"), {});
        QTEST(int(rows->size()), "rows");
        QCOMPARE(controller->lastResult().end, end);
        if (end == End::Failed)
            QCOMPARE(controller->lastResult().code, code & 0xff);
    }

    /// SQLite answers the failure of a step again at the next reset.
    void aFailedRunIsRaisedByTheNextUse()
    {
        DatabaseFixture fixture;
        fixture.set("Overflow", "SELECT abs(-9223372036854775808)");
        const auto controller = fixture.make();
        const auto run = [&] { QVERIFY(!controller->executeStatement(key("Overflow"), {})); };
        const auto expectLine = [] {
            QTest::ignoreMessage(QtInfoMsg,
                                 QRegularExpression(key("'Overflow' failed: integer overflow \\(1\\)")));
        };
        expectLine();
        run();
        QCOMPARE(raised(run), key("ZELKDatabaseController reset 'Overflow' failed: integer overflow (1)"));
        expectLine();
        run();
        controller->setPreparedStatement({});
        expectLine();
        QCOMPARE(raised(run), QString());
    }

    void aFailedScriptGivesTheConnectionUp()
    {
        const DatabaseFixture fixture;
        QStringList hooks;
        const auto controller = fixture.make<HookedController>();
        controller->hooks = &hooks;
        fixture.port->fail(Call::Exec, SQLITE_FULL);
        QVERIFY(!raised([&] { controller->database(); }).isEmpty());
        QVERIFY(!controller->isOpen());
        QCOMPARE(fixture.port->freedConnections(), 1);
        QCOMPARE(fixture.port->count(Call::Close), 0);
        QVERIFY(controller->database());
        QCOMPARE(hooks.count(key("didOpen")), 1);
        QCOMPARE(fixture.port->count(Call::Open), 2);
    }

    void aConnectionIsReallyGivenUp()
    {
#if defined(__SANITIZE_ADDRESS__)
        // sqlite3_free releases the connection alone: what hangs on it is lost, and is meant to be.
        const __lsan::ScopedDisabler lostOnPurpose;
#endif
        DatabaseFixture fixture;
        const QString create = fixture.info.string(key("ZELKDatabaseSQLCreate"));
        fixture.set("ZELKDatabaseSQLCreate", qPrintable(create + key("; INSERT INTO barrier VALUES (1)")));
        const auto port = std::make_shared<ZELKSQLitePort>();
        ZELKDatabaseController controller(fixture.bundle(), port, fixture.folder.path());
        for (int i = 0; i < 3; ++i)
            QVERIFY(
                raised([&] { controller.database(); }).endsWith(key("failed: no such table: barrier (1)")));
        controller.setCoreSQLStatements({{key("ZELKDatabaseSQLCreate"), create}});
        QCOMPARE(controller.databaseVersion(), key("1.2"));
    }

    void aFailedOpeningHookClosesAgain()
    {
        const DatabaseFixture fixture;
        QStringList hooks;
        const auto controller = fixture.make<HookedController>();
        controller->hooks = &hooks;
        controller->openScript = key("Missing");
        QVERIFY(!raised([&] { controller->database(); }).isEmpty());
        QVERIFY(!controller->isOpen());
        QCOMPARE(fixture.port->connections(), 0);
        controller->openScript = key("Table");
        QVERIFY(controller->database());
    }

    void configurationFailures()
    {
        DatabaseFixture fixture;
        fixture.write("plain", "x");
        const QString under = fixture.folder.filePath(key("plain/caches"));
        QCOMPARE(raised([&] { fixture.make(under)->database(); }),
                 key("ZELKDatabaseController 'Caches' folder unavailable: Not a directory"));
        QVERIFY(fixture.make(fixture.folder.filePath(key("new/caches")))->database());
        for (const QByteArray &malformed :
             {QByteArray("no list"), ZELKPropertyList::writeXml(key("x")).bytes}) {
            fixture.write("ZELKDatabaseController.plist", malformed);
            QCOMPARE(raised([&] { fixture.make()->database(); }),
                     key("ZELKDatabaseController resource is malformed: file://") +
                         fixture.folder.filePath(key("ZELKDatabaseController.plist")));
        }
        DatabaseFixture nameless;
        nameless.info.remove(key("CFBundleIdentifier"));
        QCOMPARE(raised([&] { nameless.make()->database(); }),
                 key("ZELKDatabaseController Info.plist missing CFBundleIdentifier"));
    }

    void aDestructorLogsWhatItCannotClose()
    {
        const DatabaseFixture fixture;
        auto controller = fixture.make<HookedController>();
        controller->database();
        fixture.port->fail(Call::Close, SQLITE_BUSY, 1, 2);
        for (const char *name : {"Hooked", "ZELKDatabaseController"})
            QTest::ignoreMessage(QtInfoMsg, QRegularExpression(key(name) + key(" close failed: .* \\(5\\)")));
        controller.reset();
        QCOMPARE(fixture.port->statements(), 0);
    }

    /// Whichever call the device fails at, the controller can go on afterwards and leaves nothing open.
    void everyCallMayFail_data()
    {
        QTest::addColumn<int>("code");
        for (int code : {SQLITE_IOERR, SQLITE_FULL, SQLITE_NOMEM, SQLITE_CORRUPT, SQLITE_BUSY})
            QTest::addRow("code %d", code) << code;
    }
    void everyCallMayFail()
    {
        QFETCH(int, code);
        const DatabaseFixture healthy;
        fillTable(*healthy.make());
        const int calls = healthy.port->count(Call::Any);
        QVERIFY(calls > 20);
        for (int nth = 1; nth <= calls; ++nth) {
            const DatabaseFixture fixture;
            fixture.port->fail(Call::Any, code, nth);
            auto controller = fixture.make();
            raised([&] { fillTable(*controller); });
            fixture.port->heal();
            controller->setPreparedStatement({});
            fillTable(*controller);
            QCOMPARE(controller->executeStatement(key("All"), {})->size(), 3);
            controller.reset();
            QCOMPARE(fixture.port->connections(), 0);
            QCOMPARE(fixture.port->statements(), 0);
            QCOMPARE(fixture.make()->databaseVersion(), key("1.2"));
        }
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
            auto controller = std::make_unique<ZELKDatabaseController>(
                fixture.bundle(), std::make_shared<ZELKSQLitePort>(), fixture.folder.path());
            const rlimit small{limit, before.rlim_max};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
            const QString failure = raised([&] { fillTable(*controller, QByteArray(30'000, 'x')); });
            failures += !failure.isEmpty() || controller->lastResult().failed();
            setrlimit(RLIMIT_FSIZE, &before);
            controller->setPreparedStatement({});
            fillTable(*controller);
            QCOMPARE(controller->executeStatement(key("All"), {})->size(), 3);
            controller = std::make_unique<ZELKDatabaseController>(
                fixture.bundle(), std::make_shared<ZELKSQLitePort>(), fixture.folder.path());
            QCOMPARE(controller->databaseVersion(), key("1.2"));
        }
        QVERIFY(failures > 5);
    }

private:
    /// Leaves the table with the rows a, b and c, unless the device fails; may be called again.
    static void fillTable(ZELKDatabaseController &controller, const QByteArray &bytes = "x")
    {
        controller.setCoreSQLStatements({{key("Insert"), key("INSERT OR REPLACE INTO t VALUES (@a, @b)")}});
        controller.executeStatements(key("Table"));
        for (const char *name : {"a", "b", "c"}) {
            controller.executeStatement(key("Insert"), rowAB(name, bytes));
            if (controller.lastResult().failed())
                return;
        }
    }

    template <typename Add>
    static void addOpening(const Add &add)
    {
        add("open", "Hooked open failed: device failed (14)", [](auto &fixture, auto &controller) {
            fixture.port->fail(Call::Open, SQLITE_CANTOPEN);
            controller.database();
        });
        add("close", "Hooked close failed: device failed (5)", [](auto &fixture, auto &controller) {
            controller.database();
            fixture.port->fail(Call::Close, SQLITE_BUSY);
            controller.setDatabase(nullptr);
        });
        add("close with statements",
            "Hooked close failed: unable to close due to unfinalized statements or unfinished backups (5)",
            [](auto &, auto &controller) {
                controller.databaseVersion();
                controller.setDatabase(nullptr);
            });
    }

    template <typename Add>
    static void addStatements(const Add &add)
    {
        const auto run = [](const char *name) {
            return [name](auto &, auto &controller) { controller.executeStatement(key(name), {}); };
        };
        add("no SQL", "Hooked Missing Info.plist property '(null)'", run("Nowhere"));
        add("hidden SQL", "Hooked Info.plist missing All", [](auto &, auto &controller) {
            controller.hideSQL = true;
            controller.executeStatement(key("All"), {});
        });
        add("hidden script", "Hooked Info.plist missing Table", [](auto &, auto &controller) {
            controller.hideSQL = true;
            controller.executeStatements(key("Table"));
        });
        add("bad SQL", "Hooked prepare failed: near \"SELEC\": syntax error (1)", run("Broken"));
        add("empty SQL", "Hooked prepare failed: not an error (0)", run("Empty"));
        add("reset", "Hooked reset 'All' failed: device failed (10)", [](auto &fixture, auto &controller) {
            controller.executeStatements(key("Table"));
            fixture.port->fail(Call::Reset, SQLITE_IOERR);
            controller.executeStatement(key("All"), {});
        });
        add("script", "Hooked SQL 'SELEC 1' failed: near \"SELEC\": syntax error (1)",
            [](auto &, auto &controller) { controller.executeStatements(key("Broken")); });
        add("no statement key", "Invalid parameter not satisfying: anInfoPListKey",
            [](auto &, auto &controller) { controller.executeStatement({}, {}); });
        add("no script key", "Invalid parameter not satisfying: anInfoPListKey",
            [](auto &, auto &controller) { controller.executeStatements({}); });
        add("no setting to write", "Invalid parameter not satisfying: aSetting",
            [](auto &, auto &controller) { controller.setString(key("x"), {}); });
        add("no setting to read", "Invalid parameter not satisfying: aSetting",
            [](auto &, auto &controller) { controller.stringForSetting({}); });
    }

    template <typename Add>
    static void addParameters(const Add &add)
    {
        const auto bind = [](const char *name, const QVariant &value, Call failing = Call::Any) {
            return [=](auto &fixture, auto &controller) {
                controller.database();
                if (failing != Call::Any)
                    fixture.port->fail(failing, SQLITE_TOOBIG);
                controller.executeStatement(key("Echo"), {{key(name), value}});
            };
        };
        add("too few", "Hooked Statement 'Echo' expects 1 parameters, but got 0 in {}.",
            [](auto &, auto &controller) { controller.executeStatement(key("Echo"), {}); });
        add("one too many", "Hooked Statement 'Echo' expects 1 parameters, but got 2 in {@v = 1; @w = 2}.",
            [](auto &, auto &controller) {
                controller.executeStatement(key("Echo"), {{key("@v"), key("1")}, {key("@w"), key("2")}});
            });
        add("another", "Hooked Parameter '@v' is required for statement 'Echo'.", bind("@w", key("1")));
        add("text", "Hooked text bind '@v' failed: 18", bind("@v", key("1"), Call::BindText));
        add("blob", "Hooked blob bind '@v' failed: 18", bind("@v", QByteArray("1"), Call::BindBlob));
        const char *unsupported = "Hooked Parameter '@v' is in an unsupported format for statement 'Echo'.";
        add("number", unsupported, bind("@v", 42));
        add("date", unsupported, bind("@v", QVariant::fromValue(ZELKDate())));
    }
};

QTEST_GUILESS_MAIN(DatabaseFailuresTest)
#include "database_failures.moc"
