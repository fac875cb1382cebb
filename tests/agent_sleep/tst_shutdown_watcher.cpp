#include "Files.h"
#include "SleepBed.h"

#include <QDBusConnectionInterface>

class TestShutdownWatcher : public SleepBed
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void asksTheManagerForTheKind_data()
    {
        const Rows<bool, QString, QStringList, QString> row;
        const QStringList off{u"System will power off, held"_s}, restart{u"System will restart, held"_s};
        row("no manager", false, "", off);
        row("a job of another way", true, rebootJob, restart);
        row("nonsense", true, "'x'", off);
        row("no job yet", true, otherJob, QStringList{});
        row("logind tells", true, otherJob, restart, "soft-reboot");
        row("logind tells nonsense", false, "", off, "nap");
    }
    void asksTheManagerForTheKind()
    {
        const auto [there, jobs, expected, type] = Rows<bool, QString, QStringList, QString>::fetch();
        if (there)
            m_manager.emplace(jobs);
        begin();
        if (!type.isEmpty())
            m_logind->emitSignal(u"PrepareForShutdownWithMetadata"_s, u"ba{sv}"_s,
                                 {true, QVariantMap{{u"type"_s, type}}});
        m_logind->prepareForShutdown(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        QCOMPARE(m_seen, expected);
        if (!expected.isEmpty())
            return;
        m_clock->pass(2, 0);
        m_manager->jobNew(u"a.service"_s);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        m_manager->jobNew(u"reboot.target"_s);
        QTRY_COMPARE(m_seen, QStringList{u"System will restart"_s});
        QCOMPARE(m_dates.constLast(), m_clock->now().addingTimeInterval(-2));
        m_logind->prepareForShutdown(false);
        QTRY_COMPARE(m_logind->locks(), 1);
        QCOMPARE(m_seen.constLast(), u"System will not power off"_s);
    }

    void aJobThatStopsATargetEndsNothing()
    {
        m_manager.emplace(u"(3, 'poweroff.target', 'stop', 'waiting', '/j/3', '/u/p')"_s);
        begin();
        m_manager->jobNew(u"poweroff.target"_s);
        QTRY_COMPARE(m_manager->calls(u"ListJobs"_s), 1);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        m_manager->jobNew(u"reboot.target"_s);
        QTRY_COMPARE(m_seen, QStringList{u"System will restart, held"_s});
    }

    void tellsOfWhatWasKept_data()
    {
        const Rows<QByteArray, QStringList> row;
        row("no kind", "700000000.250000\n", QStringList{u"System will power off"_s});
        row("its record may be there", "700000000.250000 restart\n", QStringList{u"System will restart"_s});
        row("recorded before the end", "700000000.250000 10.000000 0.000000 recorded\n", QStringList{});
        row("nonsense", "soon\n", QStringList{});
        row("nothing", "", QStringList{});
    }
    void tellsOfWhatWasKept()
    {
        const auto [text, expected] = Rows<QByteArray, QStringList>::fetch();
        writeFile(shutdownFile(), text);
        m_watcher->start();
        QCOMPARE(m_seen, expected);
        QVERIFY(m_dates.isEmpty() || m_dates.constFirst() == ZELKDate(700000000.25));
        QVERIFY(!QFile::exists(shutdownFile()));
    }

    void asksForTheKindAtItsEnd()
    {
        m_manager.emplace();
        begin();
        m_logind->prepareForShutdown(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        m_watcher->stop();
        QCOMPARE(m_seen, QStringList{u"System will restart"_s});
    }

    /// The first of them ends before the system does, without a word.
    void tellsOnceWhateverAgentsHearOfIt_data()
    {
        const Rows<QString, QString> row;
        row("it was recorded", rebootJob);
        row("logind told its kind", otherJob, "reboot");
        row("its kind was not known yet", otherJob);
    }
    void tellsOnceWhateverAgentsHearOfIt()
    {
        const auto [jobs, type] = Rows<QString, QString>::fetch();
        m_manager.emplace(jobs);
        begin();
        const ZELKDate announced = m_clock->now();
        if (!type.isEmpty())
            m_logind->emitSignal(u"PrepareForShutdownWithMetadata"_s, u"ba{sv}"_s,
                                 {true, QVariantMap{{u"type"_s, type}}});
        m_logind->prepareForShutdown(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        for (int agents = 2; agents <= 3; ++agents) {
            m_clock->pass(5, 0);
            makeWatcher();
            m_watcher->start();
            QTRY_COMPARE(m_seen.size(), 1);
            // It listens: the bus has answered what came after.
            QVERIFY(QDBusConnection::systemBus().interface()->isServiceRegistered(u"a.b"_s).isValid());
            m_logind->prepareForShutdown(true);
            const int asked = m_manager->calls(u"ListJobs"_s);
            m_manager->jobNew(u"reboot.target"_s);
            QTRY_COMPARE(m_manager->calls(u"ListJobs"_s), asked + 1);
        }
        QVERIFY(m_seen.constFirst().startsWith(u"System will restart"_s));
        QCOMPARE(m_dates.constFirst(), announced);
        m_logind->prepareForShutdown(false);
        QTRY_COMPARE(m_seen.size(), 2);
        QVERIFY(m_seen.constLast().startsWith(u"System will not power off"_s));
        QVERIFY(!QFile::exists(shutdownFile()));
    }
};

QTEST_GUILESS_MAIN(TestShutdownWatcher)
#include "tst_shutdown_watcher.moc"
