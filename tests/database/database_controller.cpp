#include "DatabaseFixture.h"
#include "ZELKDatabaseTransaction.h"

#include <stdexcept>

using End = ZELKDatabaseResult::End;

/// What the controller does with real files and a device that works.
class DatabaseControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void echoes_data()
    {
        const Rows<QVariant, QString, QVariant> row;
        const QByteArray bytes("\0\xff\x01", 3);
        row("text", u"Dösen ☾"_s, "text", u"Dösen ☾"_s);
        row("text like a number", u"042"_s, "text", u"042"_s);
        row("text with a NUL", u"a\0b"_s, "text", u"a"_s);
        row("empty text", u""_s, "text", u""_s);
        row("blob", bytes, "blob", bytes);
        row("blob without bytes", QByteArray(""), "blob", QVariant());
    }
    void echoes()
    {
        const auto [value, type, back] = Rows<QVariant, QString, QVariant>::fetch();
        const DatabaseFixture fixture;
        const auto rows = fixture.make()->executeStatement(u"Echo"_s, {{u"@v"_s, value}});
        QCOMPARE(rows->size(), 1);
        QCOMPARE(rows->first().string(u"type"_s), type);
        QCOMPARE(rows->first().value(u"v"_s), back);
    }

    void rowsLeaveOutWhatIsNull()
    {
        DatabaseFixture fixture;
        fixture.set("Kinds", u"SELECT 7 AS i, 1.5 AS f, NULL AS n, x'' AS e"_s);
        fixture.set("Unnamed", u"SELECT ? IS NULL AS absent"_s);
        const auto controller = fixture.make();
        QCOMPARE(controller->executeStatement(u"Kinds"_s, {}),
                 ZELKDatabaseController::Rows({{{u"i"_s, u"7"_s}, {u"f"_s, u"1.5"_s}}}));
        QCOMPARE(controller->executeStatement(u"Unnamed"_s, {{u"@v"_s, u"skipped"_s}})->first(),
                 ZELKDictionary({{u"absent"_s, u"1"_s}}));
        controller->executeStatements(u"Table"_s);
        QVERIFY(!controller->executeStatement(u"All"_s, {}));
    }

    void aStatementIsPreparedOnceAndBoundAnew()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        controller->database();
        const int before = fixture.port->count(DatabaseFixture::Call::Prepare);
        fillTable(*controller);
        QCOMPARE(fixture.port->count(DatabaseFixture::Call::Prepare), before + 1);
        QString names;
        const auto result = controller->forEachRow(u"All"_s, {}, [&](const ZELKDatabaseRow &row) {
            using Kind = ZELKDatabaseColumn::Kind;
            names += QString::fromStdString(std::string(row.column(0).bytes));
            return row.name(1) == "b" && row.column(0).kind == Kind::Text &&
                   row.column(1).kind == Kind::Blob && row.column(1).bytes == "x";
        });
        QCOMPARE(names, u"abc"_s);
        QCOMPARE(result, (ZELKDatabaseResult{End::Done, SQLITE_DONE}));
        controller->setPreparedStatement({});
        QCOMPARE(fixture.port->statements(), 0);
    }

    void versionIsThatOfTheCreator()
    {
        DatabaseFixture fixture;
        QCOMPARE(fixture.make()->databaseVersion(), u"1.2"_s);
        fixture.set("CFBundleVersion", u"2.0"_s);
        fixture.port->fail(DatabaseFixture::Call::Step, SQLITE_IOERR);
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"SettingSelect' failed: .* \\(10\\)"_s));
        QVERIFY(fixture.make()->database());
        QCOMPARE(fixture.make()->databaseVersion(), u"1.2"_s);

        DatabaseFixture nameless;
        nameless.info.remove(u"CFBundleVersion"_s);
        QCOMPARE(nameless.make()->databaseVersion(), std::nullopt);
    }

    void settings()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        const QString name = u"lastSync"_s;
        for (const std::optional<QString> &value :
             {std::optional(u"1"_s), std::optional(u"2"_s), std::optional<QString>()}) {
            controller->setString(value, name);
            QCOMPARE(controller->stringForSetting(name), value);
        }
        QCOMPARE(controller->databaseVersion(), u"1.2"_s);
    }

    void sqlComesFromTheResourceFirst()
    {
        DatabaseFixture fixture;
        fixture.set("Both", u"SELECT 'Info.plist' AS a"_s);
        writeList(fixture.path(u"ZELKDatabaseController.plist"_s),
                  {{u"Both"_s, u"SELECT 'resource' AS a"_s}});
        const auto controller = fixture.make();
        QCOMPARE(controller->SQLForKey(u"Both"_s), u"SELECT 'resource' AS a"_s);
        QCOMPARE(controller->SQLForKey(u"Table"_s), fixture.info.string(u"Table"_s));
    }

    void opensAndClosesInOrder()
    {
        const DatabaseFixture fixture;
        QStringList hooks;
        auto controller = fixture.make<HookedController>();
        controller->hooks = &hooks;
        sqlite3 *const first = controller->database();
        QCOMPARE(controller->database(), first);
        controller->setDatabase(first);
        controller->setPreparedStatement({});
        controller->setDatabase(nullptr);
        QVERIFY(!controller->isOpen());
        controller->stringForSetting(u"x"_s);
        controller.reset();
        const QString willOpen = u"willOpen "_s + fixture.path(u"org.zelk.lullwatch.db"_s);
        const QStringList once{willOpen, u"didOpen"_s, u"willClose"_s};
        QCOMPARE(hooks, once + once);
        QCOMPARE(fixture.port->connections(), 0);
        QCOMPARE(fixture.port->statements(), 0);
    }

    void aRunThatEndsEarlyLetsGoOfItsLock()
    {
        DatabaseFixture fixture;
        // A truncating checkpoint reports busy while any connection still reads.
        fixture.set("Checkpoint", u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
        const auto reader = fixture.make();
        const auto writer = fixture.make();
        const auto writerIsHeldUp = [&] {
            fillTable(*writer);
            return writer->executeStatement(u"Checkpoint"_s, {})->first().string(u"busy"_s) != u"0"_s;
        };
        fillTable(*writer);
        const ZELKDatabaseResult stopped{End::Stopped, SQLITE_ROW};
        QCOMPARE(reader->forEachRow(u"All"_s, {}, [](const ZELKDatabaseRow &) { return false; }), stopped);
        QVERIFY(!writerIsHeldUp());
        const auto thrower = [](const ZELKDatabaseRow &) -> bool { throw std::runtime_error("handler"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, reader->forEachRow(u"All"_s, {}, thrower));
        QVERIFY(!writerIsHeldUp());
    }

    void theHandlerMayUseTheDatabase()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        fillTable(*controller);
        QStringList seen;
        controller->forEachRow(u"All"_s, {}, [&](const ZELKDatabaseRow &row) {
            const auto all = controller->executeStatement(u"All"_s, {});
            const QString closing = raised([&] {
                controller->setPreparedStatement({});
                controller->setDatabase(nullptr);
            });
            seen << ZELKFormat("%@ of %d, %d", {row.dictionary().string(u"a"_s), all->size(),
                                                closing.contains(u"close failed"_s)});
            return seen.size() < 10;
        });
        QCOMPARE(seen, QStringList({u"a of 3, 1"_s, u"b of 3, 1"_s, u"c of 3, 1"_s}));
    }

    /// A write under an open read that has become stale can never succeed, and must not spin.
    void aStaleSnapshotEndsTheWrite()
    {
        const DatabaseFixture fixture;
        const auto reader = fixture.make();
        const auto writer = fixture.make();
        fillTable(*writer);
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"'Insert' failed: .* \\(5\\)"_s));
        reader->forEachRow(u"All"_s, {}, [&](const ZELKDatabaseRow &) {
            writer->executeStatement(u"Insert"_s, rowAB("from outside", "x"));
            reader->executeStatement(u"Insert"_s, rowAB("too late", "x"));
            return false;
        });
        QVERIFY(!writer->lastResult().failed());
        QCOMPARE(reader->executeStatement(u"All"_s, {})->size(), 4);
    }

    void transactions()
    {
        DatabaseFixture fixture;
        QString create = fixture.info.string(u"ZELKDatabaseSQLCreate"_s);
        fixture.set("ZELKDatabaseSQLCreate", create.replace(u"2000"_s, u"0"_s));
        const auto controller = fixture.make();
        const auto other = fixture.make();
        controller->executeStatements(u"Table"_s);
        const auto begin = [](ZELKDatabaseController &in) {
            return std::make_unique<ZELKDatabaseTransaction>(
                in, u"ZELKLWCStoreSQLBegin"_s, u"ZELKLWCStoreSQLCommit"_s, u"ZELKLWCStoreSQLRollback"_s);
        };
        auto transaction = begin(*controller);
        controller->executeStatement(u"Insert"_s, rowAB("kept", "x"));
        other->database();
        QCOMPARE(raised([&] { begin(*other); }),
                 u"ZELKDatabaseController SQL 'BEGIN IMMEDIATE' failed: database is locked (5)"_s);
        transaction->commit();

        transaction = begin(*controller);
        controller->executeStatement(u"Insert"_s, rowAB("undone", "x"));
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"'Insert' failed: UNIQUE .* \\(19\\)"_s));
        controller->executeStatement(u"Insert"_s, rowAB("kept", "x"));
        QVERIFY(controller->lastResult().failed());
        transaction.reset();
        QVERIFY(!controller->isInTransaction());
        QCOMPARE(other->executeStatement(u"All"_s, {})->size(), 1);
        controller->executeStatement(u"Insert"_s, rowAB("later", "x"));
        QVERIFY(!controller->lastResult().failed());
    }
};

QTEST_GUILESS_MAIN(DatabaseControllerTest)
#include "database_controller.moc"
