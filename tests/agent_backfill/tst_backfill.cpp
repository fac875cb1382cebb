#include "BackfillFixture.h"
#include "ZELKLWABackfill.h"

#include <algorithm>

namespace {

constexpr auto boot = Accounting::Boot;

/// The past of a computer, in folders under `root`.
struct Past
{
    QTemporaryDir root;

    Past()
    {
        const QString machine = u"/0123456789abcdef0123456789abcdef"_s;
        write("/etc/machine-id", machine.toLatin1().mid(1) + '\n');
        write("/var/log/journal" + machine.toLatin1() + "/system.journal",
              journal("three-sleeps-one-failed"));
        write("/var/log/journal/of-a-container/system.journal", journal("sleep-2h"));
        QList<Record> boots;
        for (int i = 0; i < 3000; ++i)
            boots.append({boot, 1.7e9 + i * 1000.0});
        write("/var/log/wtmp.1", accounting(boots));
        write("/var/log/wtmp", readFile(QStringLiteral(ZELK_TEST_DATA "/one-boot.wtmp")));
        write(
            "/var/lib/upower/history-charge-PRB-1-80-00042.dat",
            "1795379194\t0.000\tunknown\n1795379197\t75.000\tdischarging\n1795379199\t66.000\tdischarging\n");
        write("/var/lib/upower/history-time-full-PRB-1-80-00042.dat", "1795379200\t8000.000\tcharging\n");
    }
    void write(const QByteArray &path, const QByteArray &bytes) const
    {
        writeFile(root.path() + QString::fromUtf8(path), bytes);
    }
    ZELKLWABackfillPlaces places() const { return ZELKLWABackfillPlaces::ofSystem(root.path()); }
};

struct Told
{
    std::vector<ZELKLWAEvent> events;
    std::size_t largest = 0;
    int finished = 0;
    bool complete = false;
};

Told tell(const ZELKLWABackfillPlaces &places, double until)
{
    Told told;
    ZELKLWABackfill backfill(places, ZELKDate::fromSecondsSince1970(until),
                             [&](const std::vector<ZELKLWAEvent> &events) {
                                 told.largest = std::max(told.largest, events.size());
                                 told.events.insert(told.events.end(), events.begin(), events.end());
                             });
    QObject::connect(&backfill, &ZELKLWABackfill::finished, &backfill, [&](bool complete) {
        ++told.finished;
        told.complete = complete;
    });
    backfill.start();
    (void)QTest::qWaitFor([&] { return told.finished > 0; }, 30000);
    return told;
}

} // namespace

class TestBackfill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsAllOfThePastOnce()
    {
        const Past past;
        const ConsoleLines console;
        const Told told = tell(past.places(), now);
        QVERIFY(told.complete);
        QCOMPARE(told.finished, 1);
        QCOMPARE(told.largest, ZELKLWABackfill::eventsABatch);
        QCOMPARE(console.lines(), QStringList());
        QStringList lines = linesOf(told.events);
        QCOMPARE(lines.size(), 3000 + 2 + 5 + 3);
        QCOMPARE(lines.removeDuplicates(), 0);
        lines.sort();
        QCOMPARE(
            lines.mid(3000),
            (QStringList{
                u"1795378830.808650 accounting boot"_s, u"1795378831.985861 System will sleep"_s,
                u"1795378831.986348 System has powered on"_s, u"1795378834.047059 System will not sleep"_s,
                u"1795378837.338089 System will sleep"_s, u"1795378841.349719 System has powered on"_s,
                u"1795378844.468400 accounting shut down"_s, u"1795379197.000000 Power state changed"_s,
                u"1795379199.000000 Power state changed"_s, u"1795379200.000000 Power state changed"_s}));

        const Told again = tell(past.places(), now);
        QVERIFY(std::is_permutation(again.events.begin(), again.events.end(), told.events.begin(),
                                    told.events.end()));
    }

    /// Sleeps and charges from then on are the watchers'; nothing lies after the present.
    void endsWhereTheAgentBegan()
    {
        const Past past;
        past.write("/var/log/wtmp.2", accounting({{boot, now + 3600.0}}));
        QCOMPARE(int(tell(past.places(), 1.6e9).events.size()), 0);
        QCOMPARE(int(tell(past.places(), 1795378834.0).events.size()), 3000 + 3);
        QCOMPARE(int(tell(past.places(), now + 86400.0).events.size()), 3000 + 10);
    }

    void finishesWithoutAPast()
    {
        const ConsoleLines console;
        QVERIFY(tell(ZELKLWABackfillPlaces::ofSystem(u"/nonexistent"_s), now).complete);
        QCOMPARE(console.size(), 0);
        const QStringList gone{u"/nonexistent/place"_s};
        QVERIFY(tell({gone, gone, gone, {}}, now).complete);
        QCOMPARE(console.size(), 3);
    }

    void stopsAtOnce()
    {
        const Past past;
        int batches = 0;
        ZELKLWABackfill *running = nullptr;
        ZELKLWABackfill backfill(past.places(), ZELKDate::fromSecondsSince1970(now), [&](const auto &) {
            ++batches;
            running->stop();
        });
        running = &backfill;
        connect(&backfill, &ZELKLWABackfill::finished, &backfill, [&] { batches += 100; });
        backfill.start();
        QTRY_COMPARE(batches, 1);
        QTest::qWait(50);
        QCOMPARE(batches, 1);
    }
};

BACKFILL_TEST_MAIN(TestBackfill)
#include "tst_backfill.moc"
