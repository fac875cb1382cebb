#include "AccountingRecord.h"
#include "AgentFixture.h"
#include "ClockEnvironment.h"
#include "ZELKAccountingRecords.h"
#include "ZELKLWASystemAccountingWatcher.h"

namespace {

constexpr ZELKDate now = ZELKDate::fromSecondsSince1970(1795400000.0);
constexpr qint64 then = 1795378000;

ZELKAccountingRecords read(const QByteArray &bytes)
{
    return ZELKAccountingRecords::read({bytes.constData(), std::size_t(bytes.size())}, now);
}

} // namespace

class TestAccounting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesOver_data()
    {
        const Rows<QByteArray, int, QString> row;
        const QByteArray boot = accountingRecord(BOOT_TIME, "reboot", then);
        row("logins and run levels",
            accountingRecord(USER_PROCESS, "me", then, "tty1") + boot +
                accountingRecord(RUN_LVL, "runlevel", then),
            1);
        row("unknown type", accountingRecord(77, "reboot", then) + accountingRecord(-1, "", then) + boot, 1,
            "2 of unknown type, 0 w");
        row("a boot on no system line", accountingRecord(BOOT_TIME, "reboot", then, "tty1"), 0,
            "1 of unknown type, 0 w");
        row("before 1990", accountingRecord(BOOT_TIME, "reboot", 0) + boot, 1, "0 of unknown type, 1 w");
        row("tomorrow is a clock's error", accountingRecord(BOOT_TIME, "reboot", 1795486000), 1);
        row("the day after is none", accountingRecord(BOOT_TIME, "reboot", 1795487000), 0,
            "0 of unknown type, 1 w");
        row("stray tail", boot + boot.left(17), 1,
            "0 of unknown type, 0 with an absurd time, 17 stray bytes");
        row("text", QByteArray(1000, 'x'), 0, "2 of unknown type, 0 w");
        row("records of another length", (boot + QByteArray(16, '\0')).repeated(3), 1);
    }
    void passesOver()
    {
        const auto [bytes, records, skipped] = Rows<QByteArray, int, QString>::fetch();
        const ZELKAccountingRecords found = read(bytes);
        QCOMPARE(int(found.records.size()), records);
        if (!skipped.isEmpty())
            QVERIFY2(found.skippedText().startsWith(skipped), qPrintable(found.skippedText()));
        QCOMPARE(found.consumed + found.strayBytes, std::size_t(bytes.size()));
    }

    void followsTheFile()
    {
        const ZELKEnvironmentScope scope(environmentWith(std::make_shared<ZELKFixedClock>(now)));
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"wtmp"_s);
        std::vector<ZELKLWAEvent> seen;
        ZELKLWASystemAccountingWatcher watcher(path, [&](const std::vector<ZELKLWAEvent> &events) {
            seen.insert(seen.end(), events.begin(), events.end());
        });
        const ConsoleLines console;
        watcher.start();
        QCOMPARE(console.size(), 1);

        writeFile(path, readFile(realAccounting()));
        QTRY_COMPARE(seen.size(), std::size_t(2));
        const ZELKLWAEvent boot{ZELKDate::fromSecondsSince1970(1795378830.808650), u"accounting boot"_s,
                                u"org.zelk.monitor.watcher.last"_s, u"NULL"_s};
        QVERIFY(seen.front() == boot);
        QCOMPARE(seen.back().event, u"accounting shut down"_s);
        QCOMPARE(seen.back().date, ZELKDate::fromSecondsSince1970(1795378844.468400));

        const QByteArray next = accountingRecord(BOOT_TIME, "reboot", 1795379000);
        writeFile(path, next.left(100), QIODevice::Append);
        QTRY_COMPARE(console.size(), 2);
        writeFile(path, next.mid(100), QIODevice::Append);
        QTRY_COMPARE(seen.size(), std::size_t(3));

        QVERIFY(QFile::rename(path, path + u".1"_s));
        writeFile(path, accountingRecord(BOOT_TIME, "reboot", 1795380000));
        QTRY_COMPARE(seen.size(), std::size_t(4));
        QCOMPARE(seen.back().date, ZELKDate::fromSecondsSince1970(1795380000.0));

        watcher.stop();
        watcher.start();
        QCOMPARE(seen.size(), std::size_t(5)); // the whole file again: the store knows it
    }
};

QTEST_GUILESS_MAIN(TestAccounting)
#include "tst_accounting.moc"
