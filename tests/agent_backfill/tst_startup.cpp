#include "BackfillFixture.h"
#include "ZELKLWAStartupWatcher.h"
#include "ZELKSettingsStartupMemory.h"
#include "ZELKUserDefaults.h"

namespace {

constexpr auto boot = Accounting::Boot;
constexpr auto shutDown = Accounting::ShutDown;
constexpr double first = 1700000000.0;
constexpr double second = 1700100000.0;

/// A computer's accounting and its kernel, and the agent's settings there.
struct Computer
{
    QTemporaryDir folder;
    ZELKLWAStartupWatcher::Places places{folder.filePath(u"boot_id"_s), folder.filePath(u"stat"_s),
                                         folder.filePath(u"utmp"_s), folder.filePath(u"wtmp"_s)};

    void boots(const char *identifier, double kernelBoot) const
    {
        writeFile(places.bootID, identifier);
        writeFile(places.statistics,
                  "cpu 1 2 3\nctxt 4\nbtime " + QByteArray::number(kernelBoot, 'f', 0) + "\n");
    }
    std::vector<ZELKLWAEvent> told(const QString &settings = u"settings"_s) const
    {
        ZELKUserDefaults defaults(folder.filePath(settings));
        ZELKSettingsStartupMemory memory(defaults);
        std::vector<ZELKLWAEvent> seen;
        ZELKLWAStartupWatcher watcher(places, memory, [&](const std::vector<ZELKLWAEvent> &events) {
            seen.insert(seen.end(), events.begin(), events.end());
        });
        watcher.start();
        return seen;
    }
};

constexpr char identifier[] = "0b6f7d5c-9f4e-4d7a-8b53-0c9f1f7a2d11\n";

} // namespace

/// One startup for each boot, dated so that the log takes it for its own boot and for no other: right after
/// the boot's own record, and never before an end that is recorded.
class TestStartup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void meetsItsOwnBoot_data()
    {
        const Rows<QList<Record>, QList<Record>, double, QString> row;
        const QList<Record> none, before{{boot, first}}, own{{boot, second}}, crash = before + own;
        const QList<Record> orderly = before + QList<Record>{{shutDown, second - 100.0}} + own;
        const char *after = "1700100000.000000 accounting boot, 1700100000.000001 startup";
        const char *alone = "1700100000.000000 startup";
        row("after an orderly end", orderly, own, second - 3.0, after);
        row("after no end at all", crash, own, second - 3.0, after);
        row("the clock was put forward since", crash, own, second + 9000.0, after);
        row("the clock was put back since", crash, own, first - 9000.0, after);
        row("the file was rotated", before, own, second, after);
        row("no utmp", crash, none, second - 3.0, after);
        row("no utmp, clock put right a little", crash, none, second + 20.0, after);
        row("no record of this boot, none of an end before", before, none, second,
            "1700099999.999999 accounting boot, 1700100000.000000 startup");
        row("no record of this boot, an end before", before + QList<Record>{{shutDown, second - 9.0}}, none,
            second, alone);
        row("an end that seems later", before + QList<Record>{{shutDown, second + 9.0}}, none, second,
            "1700100009.000001 startup");
        row("no accounting", none, none, second, alone);
        row("logins only", QList<Record>{{Accounting::Login, second}}, none, second, alone);
    }
    void meetsItsOwnBoot()
    {
        const auto [wtmp, utmp, kernelBoot, startup] =
            Rows<QList<Record>, QList<Record>, double, QString>::fetch();
        const Computer computer;
        writeFile(computer.places.wtmp, accounting(wtmp));
        writeFile(computer.places.utmp, accounting(utmp));
        computer.boots(identifier, kernelBoot);
        const std::vector<ZELKLWAEvent> told = computer.told();
        QCOMPARE(linesOf(told).join(u", "_s), startup);

        computer.boots(identifier, kernelBoot + 86400.0); // the clock is set, the agent starts again
        QCOMPARE(computer.told(), told);
        if (!utmp.isEmpty())
            QCOMPARE(computer.told(u"of another agent"_s), told);
    }

    void saysWhatIsMissing()
    {
        const QByteArray time = "btime 1700000000\n";
        using Texts = std::pair<QByteArray, QByteArray>;
        for (const auto &[bootID, statistics] :
             {Texts("", time), Texts("boot 7\n", time), Texts(identifier, "cpu 1\n"),
              Texts(identifier, "btime soon\n")}) {
            const Computer computer;
            writeFile(computer.places.bootID, bootID);
            writeFile(computer.places.statistics, statistics);
            const ConsoleLines console;
            QVERIFY(computer.told().empty());
            QCOMPARE(console.size(), 1);
        }
    }
};

BACKFILL_TEST_MAIN(TestStartup)
#include "tst_startup.moc"
