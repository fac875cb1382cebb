#include "BackfillFixture.h"
#include "TestClock.h"
#include "ZELKInterruptedSleep.h"

namespace {

ZELKLWAEvent eventAt(QLatin1String name, double date)
{
    return {ZELKDate::fromSecondsSince1970(1700000000.0 + date), name, ZELKMonitorPowerEvents};
}

} // namespace

/// Announced at 1700000000, with the agent dead from then on.
class TestInterruptedSleep : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// What the journal tells, as "EVENT AT", and what is recorded then.
    void tellsHowItEnded_data()
    {
        const Rows<double, double, QString, QString> row; // awake, asleep since the announcement
        row("by the clocks", 10.0, 3600.0, "", "sleeps 0, wakes 3610");
        row("by the clocks, found late", 900.0, 3600.0, "", "sleeps 0, wakes 3600");
        row("not yet asleep", 10.0, 0.0, "", "");
        row("it never slept", 300.0, 0.0, "", "sleeps 0, wakes 300");
        row("by the journal", 900.0, 3600.0, "wakes 3605", "wakes 3605");
        row("refused", 900.0, 0.0, "stays 2", "stays 2, wakes 2");
        row("several, by the journal", 900.0, 7200.0, "wakes 3605, sleeps 4000, wakes 7300",
            "wakes 3605, sleeps 4000, wakes 7300");
        row("its own wake is lost", 900.0, 7200.0, "sleeps 4000, wakes 7300", "sleeps 4000, wakes 7300");
    }
    void tellsHowItEnded()
    {
        const auto [awake, asleep, told, expected] = Rows<double, double, QString, QString>::fetch();
        announce();
        m_clock->pass(awake, asleep);
        ZELKInterruptedSleep next = sleep();
        next.recall();
        std::vector<ZELKLWAEvent> events;
        for (const QString &part : told.split(u", "_s, Qt::SkipEmptyParts))
            events.push_back(eventAt(nameOf(part.section(u' ', 0, 0)), part.section(u' ', 1).toDouble()));
        QCOMPARE(textOf(next.ended(events)), expected);
        next.endWasRecorded();
        ZELKInterruptedSleep third = sleep();
        third.recall();
        m_clock->pass(0.0, expected.isEmpty() ? 3600.0 : 0.0);
        QCOMPARE(textOf(third.ended({})), QString()); // the clocks were looked at in recall()
        QCOMPARE(QFile::exists(path()), expected.isEmpty());
    }

    /// Who watches from then on has the next sleep's file, too.
    void leavesToOthersWhatIsStillToCome()
    {
        announce();
        for (const auto &[awake, comes] : {std::pair(10.0, true), std::pair(300.0, false)}) {
            m_clock->pass(awake, 0.0);
            ZELKInterruptedSleep next = sleep();
            next.recall();
            const auto announced = next.takeComing();
            QCOMPARE(announced.has_value(), comes);
            QCOMPARE(textOf(next.ended({})), comes ? QString() : u"sleeps 0, wakes 310"_s);
            next.note({eventAt(ZELKEventSystemWillSleep, comes ? 0.0 : 400.0)});
            next.endWasRecorded();
            QVERIFY(QFile::exists(path()));
        }
    }

    void isNoMatterOfAnotherBootOrAfterTheWake()
    {
        announce();
        writeFile(m_folder.filePath(u"boot_id"_s), "another\n");
        m_clock->pass(10.0, 3600.0);
        ZELKInterruptedSleep next = sleep();
        next.recall();
        QCOMPARE(textOf(next.ended({})), QString());

        announce();
        sleep().note({eventAt(ZELKEventSystemHasPoweredOn, 5.0)});
        QVERIFY(!QFile::exists(path()));
        for (const char *nonsense : {"", "another 1 2\n", "another x y z\n"}) {
            writeFile(path(), nonsense);
            ZELKInterruptedSleep other = sleep();
            other.recall();
            QCOMPARE(textOf(other.ended({})), QString());
        }
    }

    void init()
    {
        m_clock = std::make_shared<TestClock>();
        m_scope.emplace(environmentWith(m_clock));
        writeFile(m_folder.filePath(u"boot_id"_s), "one\n");
    }
    void cleanup() { m_scope.reset(); }

private:
    QString path() const { return m_folder.filePath(u"events.db-sleep"_s); }
    ZELKInterruptedSleep sleep() const { return {path(), m_clock, m_folder.filePath(u"boot_id"_s)}; }
    void announce() const { sleep().note({eventAt(ZELKEventSystemWillSleep, 0.0)}); }
    static QLatin1String nameOf(const QString &word)
    {
        return word == u"sleeps"  ? ZELKEventSystemWillSleep
               : word == u"wakes" ? ZELKEventSystemHasPoweredOn
                                  : ZELKEventSystemWillNotSleep;
    }
    static QString textOf(const std::vector<ZELKLWAEvent> &events)
    {
        QStringList parts;
        for (const ZELKLWAEvent &told : events)
            for (const QString &word : {u"sleeps"_s, u"wakes"_s, u"stays"_s})
                if (told.event == nameOf(word))
                    parts.append(word + u' ' +
                                 QString::number(told.date.timeIntervalSinceReferenceDate() +
                                                     ZELKDate::secondsFrom1970 - 1700000000.0,
                                                 'f', 0));
        return parts.join(u", "_s);
    }

    QTemporaryDir m_folder;
    std::shared_ptr<TestClock> m_clock;
    std::optional<ZELKEnvironmentScope> m_scope;
};

QTEST_GUILESS_MAIN(TestInterruptedSleep)
#include "tst_interrupted_sleep.moc"
