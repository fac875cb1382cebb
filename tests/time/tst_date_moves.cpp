#include "DateRangeBed.h"

namespace {

using Controller = ZELKLWCDateRangeController;
using Action = Controller::Action;

} // namespace

class TestDateMoves : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moves_data()
    {
        for (const char *name : {"start", "end", "range"})
            QTest::addColumn<QString>(name);
        QTest::addColumn<int>("days");
        QTest::addColumn<int>("months");
        const auto move = [](const char *name, const char *start, const char *end, int days, int months,
                             const char *range) {
            row(name, {start, end, range}) << days << months;
        };
        move("a day on", "2024-02-28", "2024-02-28", 1, 0, "2024-02-29 to 2024-02-29");
        move("a day back", "2024-01-01", "2024-01-03", -1, 0, "2023-12-31 to 2024-01-02");
        move("March back by a month", "2023-03-01", "2023-03-31", 0, -1, "2023-02-01 to 2023-03-03");
        move("a month on, to its last day", "2024-01-31", "2024-01-31", 0, 1, "2024-02-29 to 2024-02-29");
        move("a month back, leap year", "2024-03-31", "2024-03-31", 0, -1, "2024-02-29 to 2024-02-29");
        move("onto 23 hours, its seconds kept", "2024-03-30", "2024-03-30", 1, 0, "2024-03-31 to 2024-04-01");
        move("onto 25 hours", "2024-10-26", "2024-10-26", 1, 0, "2024-10-27 to 2024-10-27");
        move("off 25 hours, its seconds kept", "2024-10-27", "2024-10-27", 1, 0, "2024-10-28 to 2024-10-29");
    }

    void moves()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(int, days);
        QFETCH(int, months);
        DateRangeBed bed(QStringLiteral("2023-03-15 12:00:00"));
        bed.awake(QStringLiteral("2020-01-01"), QStringLiteral("2026-01-01"));
        bed.set(start, end);
        bed.controller.shiftDurationHours(0, days, months);
        QTEST(bed.range(), "range");
        QCOMPARE(bed.controller.selectionTag(), 9);
    }

    void zooms_data()
    {
        for (const char *name : {"start", "end", "closer", "wider"})
            QTest::addColumn<QString>(name);
        row("a day", {"2024-02-10", "2024-02-10", "2024-02-10 to 2024-02-10", "2024-02-09 to 2024-02-11"});
        row("two days",
            {"2024-02-10", "2024-02-11", "2024-02-11 to 2024-02-12 00:00:00", "2024-02-09 to 2024-02-12"});
        row("three days",
            {"2024-02-10", "2024-02-12", "2024-02-11 to 2024-02-11", "2024-02-09 to 2024-02-13"});
        row("over a clock change",
            {"2024-03-30", "2024-04-01", "2024-03-31 to 2024-04-01 00:00:00", "2024-03-29 to 2024-04-02"});
        row("1067 days and some",
            {"2021-01-29", "2023-12-31", "2021-01-30 to 2023-12-30", "2021-01-28 to 2024-01-01"});
        row("1069 days",
            {"2021-01-28", "2024-01-01", "2021-01-29 to 2023-12-31", "2021-01-28 to 2024-01-01"});
    }

    void zooms()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        DateRangeBed bed(QStringLiteral("2025-03-15 12:00:00"));
        bed.awake(QStringLiteral("2020-01-01"), QStringLiteral("2026-01-01"));
        bed.set(start, end);
        bed.controller.zoomIn();
        QTEST(bed.range(), "closer");
        bed.set(start, end);
        bed.controller.zoomOut();
        QTEST(bed.range(), "wider");
    }

    void validatesActions_data()
    {
        for (const char *name : {"start", "end"})
            QTest::addColumn<QString>(name);
        for (const char *name : {"in", "out", "forward", "backward"})
            QTest::addColumn<bool>(name);
        row("a day", {"2023-05-01", "2023-05-01"}) << false << true << true << true;
        row("the first days", {"2020-01-01", "2020-01-02"}) << true << true << true << false;
        row("the last days", {"2025-12-30", "2026-01-01"}) << true << true << false << true;
        row("1069 days", {"2021-01-28", "2024-01-01"}) << true << false << true << true;
    }

    void validatesActions()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        DateRangeBed bed(QStringLiteral("2025-03-15 12:00:00"));
        for (const Action action : {Action::ZoomIn, Action::ZoomOut, Action::DayForward, Action::DayBackward})
            QVERIFY(!bed.controller.validateAction(action));
        bed.awake(QStringLiteral("2020-01-01"), QStringLiteral("2026-01-01"));
        bed.set(start, end);
        const Controller &controller = bed.controller;
        QTEST(controller.validateAction(Action::ZoomIn), "in");
        QTEST(controller.validateAction(Action::ZoomOut), "out");
        QTEST(controller.validateAction(Action::DayForward), "forward");
        QTEST(controller.validateMenuItem(Action::MonthForward, 0), "forward");
        QTEST(controller.validateAction(Action::DayBackward), "backward");
        QTEST(controller.validateToolbarItem(Action::MonthBackward), "backward");
        QVERIFY(controller.validateAction(Action::Other));
    }

    void jumpsToDays()
    {
        DateRangeBed bed(QStringLiteral("2024-03-05 12:00:00"));
        const ZELKDate day = LocalTime::date(QStringLiteral("2024-02-10 15:00:00"));
        bed.awake(QStringLiteral("2024-01-01"), QStringLiteral("2024-03-20"));
        bed.controller.setStartingDay(day);
        QCOMPARE(bed.range(), QStringLiteral("2024-02-10 to 2024-02-10"));
        bed.controller.setEndingDay(LocalTime::date(QStringLiteral("2024-03-01 15:00:00")));
        QCOMPARE(bed.range(), QStringLiteral("2024-02-10 to 2024-03-01"));
        bed.set(QStringLiteral("2024-01-02"), QStringLiteral("2024-01-02"));
        bed.controller.setStartingDay(day);
        bed.controller.setEndingDay(day);
        QCOMPARE(bed.range(), QStringLiteral("2024-02-10 to 2024-02-10"));
    }
};

QTEST_GUILESS_MAIN(TestDateMoves)
#include "tst_date_moves.moc"
