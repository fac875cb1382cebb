#include "NightBed.h"

#include "BackfillFixture.h"

#include <QTest>

namespace {

/// Line by line, so that the first one that differs is told.
void compare(const QString &printed, const char *expected)
{
    const QStringList lines = printed.split(u'\n');
    const QStringList wanted = QString::fromLatin1(expected).split(u'\n');
    for (qsizetype i = 0; i < std::max(lines.size(), wanted.size()); ++i)
        QCOMPARE(lines.value(i), wanted.value(i));
}

} // namespace

/// What a person finds in the morning: everything between the buses and the printed line.
class TestNight : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void likeAnyOther()
    {
        NightBed laptop;
        laptop.boot("18:00");
        laptop.startAgent("18:01");
        laptop.batteryIs("20:30", 71);
        laptop.batteryIs("23:05", 62);
        laptop.fallAsleep("23:10");
        laptop.wake("07:05");
        laptop.batteryWas("23:09", 61); // not believed after the wake
        laptop.batteryIs("07:05", 57);
        laptop.plugIn("07:20");
        laptop.batteryIs("07:20", 57, true);
        laptop.batteryIs("08:10", 88, true);
        laptop.shutDown("08:30");
        laptop.rotateAccounting(); // nobody looks
        laptop.boot("12:00");
        laptop.startAgent("12:01");
        compare(laptop.list(), R"(Date                       Summary
2025-03-11 18:00:00 +0100  Boot
2025-03-11 18:01:00 +0100  Starting monitor
2025-03-11 18:01:00 +0100  'PRB-1' connected
2025-03-11 20:30:00 +0100  'PRB-1' down to 71% capacity
2025-03-11 23:05:00 +0100  'PRB-1' down to 62% capacity
2025-03-11 23:10:00 +0100  System sleeping after 5 hours, 10 minutes
2025-03-12 07:05:00 +0100  System powering on after 7 hours, 55 minutes
2025-03-12 07:05:00 +0100  'PRB-1' down to 57% capacity
2025-03-12 07:20:00 +0100  Switched to 'AC Power'
2025-03-12 07:20:00 +0100  Started charging 'PRB-1' from 'AC Power'
2025-03-12 08:10:00 +0100  'PRB-1' up to 88% capacity
2025-03-12 08:30:00 +0100  System will power off
2025-03-12 08:30:00 +0100  Stopping monitor
2025-03-12 08:30:00 +0100  Shutting down after 1 hour, 25 minutes
2025-03-12 12:00:00 +0100  Starting up after 3 hours, 30 minutes
2025-03-12 12:01:00 +0100  Starting monitor
16 entries
)");
    }

    /// Nobody hears of the wake; the clocks of the kernel prove it.
    void agentIsKilledAsleep()
    {
        NightBed laptop;
        laptop.boot("18:00");
        laptop.startAgent("18:01");
        laptop.fallAsleep("23:10");
        laptop.killAgent();
        laptop.wake("07:05");
        laptop.startAgent("07:20");
        laptop.killAgent(); // the next one has nothing to add
        laptop.startAgent("07:30");
        compare(laptop.list(), R"(Date                       Summary
2025-03-11 18:00:00 +0100  Boot
2025-03-11 18:01:00 +0100  Starting monitor
2025-03-11 18:01:00 +0100  'PRB-1' connected
2025-03-11 23:10:00 +0100  System sleeping after 5 hours, 10 minutes
2025-03-11 23:10:00 +0100  Stopping monitor
2025-03-12 07:05:00 +0100  System powering on after 7 hours, 55 minutes
2025-03-12 07:20:00 +0100  Starting monitor
2025-03-12 07:20:00 +0100  Stopping monitor
2025-03-12 07:30:00 +0100  Starting monitor
9 entries
)");
    }

    /// And the sleep is given up after all.
    void agentIsReplacedBeforeTheSleep()
    {
        NightBed laptop;
        laptop.boot("18:00");
        laptop.startAgent("18:01");
        laptop.fallAsleep("23:10");
        laptop.killAgent();
        laptop.startAgent("23:10");
        laptop.wake("23:10");
        compare(laptop.list(), R"(Date                       Summary
2025-03-11 18:00:00 +0100  Boot
2025-03-11 18:01:00 +0100  Starting monitor
2025-03-11 18:01:00 +0100  'PRB-1' connected
2025-03-11 23:10:00 +0100  System sleeping after 5 hours, 10 minutes
2025-03-11 23:10:00 +0100  Stopping monitor
2025-03-11 23:10:00 +0100  Starting monitor
2025-03-11 23:10:00 +0100  System powering on after 0 seconds
7 entries
)");
    }

    /// It knows the time better, and of what no agent heard at all; what one heard stands there once.
    void journalFillsTheGap_data()
    {
        const Rows<bool> row;
        row("killed before the sleep", false);
        row("killed asleep", true);
    }
    void journalFillsTheGap()
    {
        const auto [heard] = Rows<bool>::fetch();
        NightBed laptop(1699977600.0); // 14 November 2023
        laptop.addJournal(journal("sleep-2h"));
        laptop.boot("18:00");
        laptop.startAgent("18:01");
        if (heard)
            laptop.fallAsleep("00:13");
        laptop.killAgent();
        laptop.wake("02:17");
        laptop.startAgent("07:20");
        laptop.killAgent();
        laptop.startAgent("07:30");
        const auto [asleep, awake] =
            heard ? std::pair("2023-11-15 00:13:00 +0100  System sleeping after 6 hours, 13 minutes",
                              "2023-11-15 00:13:00 +0100  Stopping monitor")
                  : std::pair(
                        "2023-11-14 18:01:00 +0100  Stopping monitor",
                        "2023-11-15 00:13:20 +0100  System sleeping after 6 hours, 13 minutes, 20 seconds");
        const QString expected =
            QStringLiteral(R"(Date                       Summary
2023-11-14 18:00:00 +0100  Boot
2023-11-14 18:01:00 +0100  Starting monitor
2023-11-14 18:01:00 +0100  'PRB-1' connected
%1
%2
2023-11-15 02:16:40 +0100  System powering on after 2 hours, 3 minutes, %3 seconds
2023-11-15 07:20:00 +0100  Starting monitor
2023-11-15 07:20:00 +0100  Stopping monitor
2023-11-15 07:30:00 +0100  Starting monitor
9 entries
)")
                .arg(QLatin1String(asleep), QLatin1String(awake), heard ? u"40"_s : u"20"_s);
        compare(laptop.list(), expected.toLatin1().constData());
    }

    /// The agent's own file, for one: no cache's tables are made there.
    void otherDatabasesStayAsTheyAre()
    {
        NightBed laptop;
        laptop.startAgent("18:01");
        laptop.killAgent();
        const QByteArray before = readFile(laptop.database());
        QCOMPARE(laptop.run({u"list"_s, u"--database"_s, laptop.database()}), QString());
        QCOMPARE(readFile(laptop.database()), before);
    }

    /// Nothing is left to tell of the end.
    void batteryRunsOutAsleep()
    {
        NightBed laptop;
        laptop.boot("18:00");
        laptop.startAgent("18:01");
        laptop.fallAsleep("23:10");
        laptop.killAgent();
        laptop.boot("07:05");
        laptop.startAgent("07:06");
        compare(laptop.list(), R"(Date                       Summary
2025-03-11 18:00:00 +0100  Boot
2025-03-11 18:01:00 +0100  Starting monitor
2025-03-11 18:01:00 +0100  'PRB-1' connected
2025-03-11 23:10:00 +0100  System sleeping after 5 hours, 10 minutes
2025-03-11 23:10:00 +0100  Stopping monitor
2025-03-12 07:05:00 +0100  Starting up after 7 hours, 55 minutes
2025-03-12 07:06:00 +0100  Starting monitor
7 entries
)");
    }
};

/// The program reads journals for the agent in it.
int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], ZELKJournalReader::option) == 0)
        return readJournal(argc, argv);
    const QCoreApplication application(argc, argv);
    TestNight test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_night.moc"
