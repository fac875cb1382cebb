#include "FakeAgent.h"

#include <QDeadlineTimer>
#include <QProcess>

/// A program that is killed while it writes.
class StoreKilledTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeTransactionsRemain()
    {
        constexpr int total = 20'000;
        constexpr int piece = 100;
        const QList<ZELKRawEvent> events = history(total);
        const QList<QByteArray> all = serialised(events);
        StoreFixture fixture(StoreFixture::sessionBus());
        fixture.store->applicationWillTerminate();
        QRandomGenerator random(17);
        qsizetype kept = 0;
        for (int kills = 0; kills < 25 && kept < total / 2; ++kills) {
            QProcess writer;
            writer.start(QStringLiteral(EVENT_WRITER), {fixture.folder.path(), fixture.file(),
                                                        QString::number(total), QString::number(piece)});
            int lines = random.bounded(1, 6);
            while (lines > 0 && writer.waitForReadyRead())
                while (writer.canReadLine() && lines > 0)
                    lines -= writer.readLine() == "kept\n";
            const QDeadlineTimer moment(std::chrono::microseconds(random.bounded(4000)));
            while (!moment.hasExpired()) {
            }
            writer.kill();
            QVERIFY(writer.waitForFinished());
            QCOMPARE(writer.exitStatus(), QProcess::CrashExit);

            OtherConnection other(fixture.file());
            const QList<QByteArray> found = other.cached();
            QCOMPARE(found.size() % piece, 0);
            QVERIFY(found.size() > kept);
            kept = found.size();
            QVERIFY(found == all.first(kept));
            QCOMPARE(other.run("PRAGMA integrity_check"), QList<QByteArray>{"ok"});
            QCOMPARE(other.lastSync(), QByteArray());
        }

        FakeAgent agent;
        agent.events = events;
        fixture.renewStore();
        fixture.store->syncWithLocalCache();
        QVERIFY(fixture.log.count() > 0);
        QVERIFY(fixture.fetch());
        QVERIFY(fixture.other().cached() == all);
        QVERIFY(fixture.filesAside().isEmpty());
    }
};

QTEST_GUILESS_MAIN(StoreKilledTest)
#include "tst_killed.moc"
