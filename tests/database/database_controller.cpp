#include "DatabaseFixture.h"
#include "ZELKDatabaseTransaction.h"

#include <sqlite3.h>

#include <stdexcept>

using End = ZELKDatabaseResult::End;

/// What the controller does with real files and a device that works.
class DatabaseControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void echoes_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QVariant>("back");
        const QByteArray bytes("\0\xff\x01", 3);
        QTest::newRow("text") << QVariant(QStringLiteral("Dösen ☾")) << "text"
                              << QVariant(QStringLiteral("Dösen ☾"));
        QTest::newRow("text like a number") << QVariant(key("042")) << "text" << QVariant(key("042"));
        QTest::newRow("text with a NUL")
            << QVariant(QString::fromLatin1("a\0b", 3)) << "text" << QVariant(key("a"));
        QTest::newRow("empty text") << QVariant(key("")) << "text" << QVariant(key(""));
        QTest::newRow("blob") << QVariant(bytes) << "blob" << QVariant(bytes);
        QTest::newRow("blob without bytes") << QVariant(QByteArray("")) << "blob" << QVariant();
    }
    void echoes()
    {
        QFETCH(QVariant, value);
        const DatabaseFixture fixture;
        const auto rows = fixture.make()->executeStatement(key("Echo"), {{key("@v"), value}});
        QCOMPARE(rows->size(), 1);
        QTEST(rows->first().string(key("type")), "type");
        QTEST(rows->first().value(key("v")), "back");
    }

    void rowsLeaveOutWhatIsNull()
    {
        DatabaseFixture fixture;
        fixture.set("Kinds", "SELECT 7 AS i, 1.5 AS f, NULL AS n, x'' AS e");
        fixture.set("Unnamed", "SELECT ? IS NULL AS absent");
        const auto controller = fixture.make();
        QCOMPARE(controller->executeStatement(key("Kinds"), {}),
                 ZELKDatabaseController::Rows({{{key("i"), key("7")}, {key("f"), key("1.5")}}}));
        QCOMPARE(controller->executeStatement(key("Unnamed"), {{key("@v"), key("skipped")}})->first(),
                 ZELKDictionary({{key("absent"), key("1")}}));
        controller->executeStatements(key("Table"));
        QVERIFY(!controller->executeStatement(key("All"), {}));
    }

    void aStatementIsPreparedOnceAndBoundAnew()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        controller->executeStatements(key("Table"));
        const int before = fixture.port->count(DatabaseFixture::Call::Prepare);
        for (const char *name : {"c", "a", "b"})
            controller->executeStatement(key("Insert"), rowAB(name, name));
        QCOMPARE(fixture.port->count(DatabaseFixture::Call::Prepare), before + 1);
        QString names;
        const auto result = controller->forEachRow(key("All"), {}, [&](const ZELKDatabaseRow &row) {
            using Kind = ZELKDatabaseColumn::Kind;
            const std::string_view text = row.column(0).bytes;
            names += QString::fromUtf8(text.data(), qsizetype(text.size()));
            return row.name(1) == "b" && row.column(0).kind == Kind::Text &&
                   row.column(1).kind == Kind::Blob && row.column(1).bytes == text;
        });
        QCOMPARE(names, key("abc"));
        QCOMPARE(result, (ZELKDatabaseResult{End::Done, SQLITE_DONE}));

        controller->setPreparedStatement(controller->preparedStatement());
        QVERIFY(fixture.port->statements() > 0);
        controller->setPreparedStatement({});
        QCOMPARE(fixture.port->statements(), 0);
    }

    void versionIsThatOfTheCreator()
    {
        DatabaseFixture fixture;
        QCOMPARE(fixture.make()->databaseVersion(), key("1.2"));
        QVERIFY(QFile::exists(fixture.folder.filePath(key("org.zelk.lullwatch.db"))));
        fixture.set("CFBundleVersion", "2.0");
        fixture.port->fail(DatabaseFixture::Call::Step, SQLITE_IOERR);
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(key("SettingSelect' failed: .* \\(10\\)")));
        QVERIFY(fixture.make()->database());
        QCOMPARE(fixture.make()->databaseVersion(), key("1.2"));

        DatabaseFixture nameless;
        nameless.info.remove(key("CFBundleVersion"));
        QCOMPARE(nameless.make()->databaseVersion(), std::nullopt);
    }

    void settings()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        const QString name = key("lastSync");
        QCOMPARE(controller->stringForSetting(name), std::nullopt);
        controller->setString(std::nullopt, name);
        QVERIFY(!controller->preparedStatement().contains(key("ZELKDatabaseSQLSettingDelete")));
        controller->setString(key("1"), name);
        controller->setString(key("2"), name);
        QCOMPARE(controller->stringForSetting(name), key("2"));
        controller->setString(std::nullopt, name);
        QCOMPARE(controller->stringForSetting(name), std::nullopt);
        QCOMPARE(controller->databaseVersion(), key("1.2"));
    }

    void sqlComesFromTheResourceFirst()
    {
        DatabaseFixture fixture;
        fixture.set("Both", "SELECT 'Info.plist' AS a");
        const ZELKDictionary resource{{key("Both"), key("SELECT 'resource' AS a")}};
        fixture.write("ZELKDatabaseController.plist",
                      ZELKPropertyList::writeXml(QVariant::fromValue(resource)).bytes);
        const auto controller = fixture.make();
        QCOMPARE(controller->SQLForKey(key("Both")), key("SELECT 'resource' AS a"));
        QCOMPARE(controller->SQLForKey(key("Table")), fixture.info.string(key("Table")));
        controller->setCoreSQLStatements({});
        QCOMPARE(controller->SQLForKey(key("Both")), key("SELECT 'Info.plist' AS a"));
    }

    void opensAndClosesInOrder()
    {
        const DatabaseFixture fixture;
        QStringList hooks;
        auto controller = fixture.make<HookedController>();
        controller->hooks = &hooks;
        QVERIFY(!controller->isOpen());
        sqlite3 *const first = controller->database();
        QCOMPARE(controller->database(), first);
        controller->setDatabase(first);
        controller->setPreparedStatement({});
        controller->setDatabase(nullptr);
        QVERIFY(!controller->isOpen());
        controller->stringForSetting(key("x"));
        controller.reset();
        const QString willOpen = key("willOpen ") + fixture.folder.filePath(key("org.zelk.lullwatch.db"));
        const QStringList once{willOpen, key("didOpen"), key("willClose")};
        QCOMPARE(hooks, once + once);
        QCOMPARE(fixture.port->connections(), 0);
        QCOMPARE(fixture.port->statements(), 0);
    }

    void aRunThatEndsEarlyLetsGoOfItsLock()
    {
        const DatabaseFixture fixture;
        const auto reader = fixture.make();
        const auto writer = fixture.make();
        fill(*writer);
        const ZELKDatabaseResult stopped{End::Stopped, SQLITE_ROW};
        QCOMPARE(reader->forEachRow(key("All"), {}, [](const ZELKDatabaseRow &) { return false; }), stopped);
        QVERIFY(!writerIsHeldUp(*writer));
        const auto thrower = [](const ZELKDatabaseRow &) -> bool { throw std::runtime_error("handler"); };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, reader->forEachRow(key("All"), {}, thrower));
        QVERIFY(!writerIsHeldUp(*writer));
    }

    void theHandlerMayUseTheDatabase()
    {
        const DatabaseFixture fixture;
        const auto controller = fixture.make();
        fill(*controller);
        QStringList seen;
        controller->forEachRow(key("All"), {}, [&](const ZELKDatabaseRow &row) {
            const auto all = controller->executeStatement(key("All"), {});
            const QString closing = raised([&] {
                controller->setPreparedStatement({});
                controller->setDatabase(nullptr);
            });
            const bool refused = closing.contains(key("close failed"));
            seen << ZELKFormat("%@ of %d, %d", {row.dictionary().string(key("a")), all->size(), refused});
            return seen.size() < 10;
        });
        QCOMPARE(seen, QStringList({key("a of 3, 1"), key("b of 3, 1"), key("c of 3, 1")}));
        QCOMPARE(controller->executeStatement(key("All"), {})->size(), 3);
    }

    /// A write under an open read that has become stale can never succeed, and must not spin.
    void aStaleSnapshotEndsTheWrite()
    {
        const DatabaseFixture fixture;
        const auto reader = fixture.make();
        const auto writer = fixture.make();
        fill(*writer);
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(key("'Insert' failed: .* \\(5\\)")));
        reader->forEachRow(key("All"), {}, [&](const ZELKDatabaseRow &) {
            writer->executeStatement(key("Insert"), rowAB("from outside", "x"));
            reader->executeStatement(key("Insert"), rowAB("too late", "x"));
            return false;
        });
        QVERIFY(!writer->lastResult().failed());
        QCOMPARE(reader->executeStatement(key("All"), {})->size(), 4);
    }

    void transactions()
    {
        DatabaseFixture fixture;
        const QString create = fixture.info.string(key("ZELKDatabaseSQLCreate"));
        fixture.set("ZELKDatabaseSQLCreate", qPrintable(QString(create).replace(key("2000"), key("0"))));
        const auto controller = fixture.make();
        const auto other = fixture.make();
        controller->executeStatements(key("Table"));
        const auto begin = [](ZELKDatabaseController &in) {
            return std::make_unique<ZELKDatabaseTransaction>(in, key("ZELKLWCStoreSQLBegin"),
                                                             key("ZELKLWCStoreSQLCommit"),
                                                             key("ZELKLWCStoreSQLRollback"));
        };
        auto transaction = begin(*controller);
        controller->executeStatement(key("Insert"), rowAB("kept", "x"));
        other->database();
        QCOMPARE(raised([&] { begin(*other); }),
                 key("ZELKDatabaseController SQL 'BEGIN IMMEDIATE' failed: database is locked (5)"));
        transaction->commit();
        QVERIFY(!controller->isInTransaction());

        transaction = begin(*controller);
        controller->executeStatement(key("Insert"), rowAB("undone", "x"));
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(key("'Insert' failed: UNIQUE .* \\(19\\)")));
        controller->executeStatement(key("Insert"), rowAB("kept", "x"));
        QVERIFY(controller->lastResult().failed());
        transaction.reset();
        QVERIFY(!controller->isInTransaction());
        QCOMPARE(other->executeStatement(key("All"), {})->size(), 1);
        controller->executeStatement(key("Insert"), rowAB("later", "x"));
        QVERIFY(!controller->lastResult().failed());
    }

private:
    static void fill(ZELKDatabaseController &controller)
    {
        controller.executeStatements(key("Table"));
        for (const char *name : {"a", "b", "c"})
            controller.executeStatement(key("Insert"), rowAB(name, name));
    }
    /// A truncating checkpoint reports busy while any connection still reads.
    static bool writerIsHeldUp(ZELKDatabaseController &writer)
    {
        writer.executeStatement(key("Insert"), rowAB(qPrintable(QString::number(++writes)), "x"));
        ZELKDictionary statements{{key("Checkpoint"), key("PRAGMA wal_checkpoint(TRUNCATE)")}};
        writer.setCoreSQLStatements(statements);
        return writer.executeStatement(key("Checkpoint"), {})->first().string(key("busy")) != key("0");
    }
    static inline int writes = 0;
};

QTEST_GUILESS_MAIN(DatabaseControllerTest)
#include "database_controller.moc"
