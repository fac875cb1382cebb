#include "BackfillFixture.h"
#include "ZELKJournalReading.h"

#include <algorithm>
#include <random>
#include <unistd.h>

namespace {

struct Read
{
    QStringList events;
    QStringList console;
    bool complete = false;
};

Read readWith(const QString &program, const QStringList &paths, int limit = 60000,
              std::optional<ZELKDate> since = std::nullopt)
{
    const ConsoleLines console;
    ZELKJournalReading reading(program);
    reading.setLimit(limit);
    Read read;
    bool finished = false;
    QObject::connect(&reading, &ZELKJournalReading::finished, &reading,
                     [&](const auto &marks, bool complete) {
                         read.events = linesOf(ZELKSleepHistory::events(marks));
                         read.complete = complete;
                         finished = true;
                     });
    reading.start(ZELKJournalReading::files(paths), since);
    (void)QTest::qWaitFor([&] { return finished; }, 60000);
    read.console = console.lines();
    return read;
}

Read read(const QStringList &paths, std::optional<ZELKDate> since = std::nullopt)
{
    return readWith(QCoreApplication::applicationFilePath(), paths, 60000, since);
}

const QStringList threeSleeps{
    u"1795378831.985861 System will sleep"_s, u"1795378831.986348 System has powered on"_s,
    u"1795378834.047059 System will not sleep"_s, u"1795378837.338089 System will sleep"_s,
    u"1795378841.349719 System has powered on"_s};
const QStringList longSleep{u"1700003600.000000 System will sleep"_s,
                            u"1700011000.000050 System has powered on"_s};

QByteArray damaged(QByteArray bytes, unsigned seed, int places)
{
    std::mt19937 random(seed);
    const qsizetype used = QByteArrayView(bytes).trimmed().size();
    for (int i = 0; i < places; ++i)
        bytes[qsizetype(random() % std::size_t(used))] = char(random());
    return bytes;
}

} // namespace

class TestJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Marks as "KIND AT", the boot's first second being the 1000th; a letter before the kind is another
    /// boot.
    void tellsEachSleepOnce_data()
    {
        const Rows<QString, QString> row;
        row("a sleep", "start 10, end 12", "10 will sleep, 12 has powered on");
        row("that failed", "start 10, fail 12", "12 will not sleep");
        row("whose end is lost", "start 10, start 50, end 52",
            "10 will sleep, 50 will sleep, 52 has powered on");
        row("whose start is lost", "end 12, start 50, fail 51", "12 has powered on, 51 will not sleep");
        row("the kernel's lines inside", "start 10, entry 11, exit 12, end 13",
            "10 will sleep, 13 has powered on");
        row("around", "entry 19, start 20, end 22, exit 23", "20 will sleep, 22 has powered on");
        row("of a sleep that failed", "start 10, entry 11, exit 12, fail 13", "13 will not sleep");
        row("the kernel's alone", "entry 10, exit 12", "10 will sleep, 12 has powered on");
        row("beside another", "start 10, end 12, entry 50, exit 51",
            "10 will sleep, 12 has powered on, 50 will sleep, 51 has powered on");
        row("for the lost start", "entry 10, exit 11, end 12", "10 will sleep, 12 has powered on");
        row("for the lost end", "start 10, entry 11, exit 40", "10 will sleep, 40 has powered on");
        row("of another boot", "start 10, entry 11, exit 12, end 13, b-entry 11, b-exit 12",
            "10 will sleep, 11 will sleep, 12 has powered on, 13 has powered on");
        row("marks twice", "start 10, end 12, start 10, end 12", "10 will sleep, 12 has powered on");
        row("none", "", "");
    }
    void tellsEachSleepOnce()
    {
        const auto [text, expected] = Rows<QString, QString>::fetch();
        std::vector<ZELKSleepMark> marks;
        for (const QString &part : text.split(u", "_s, Qt::SkipEmptyParts)) {
            const QString at = part.section(u' ', 1);
            const bool other = part.startsWith(u"b-");
            const QByteArray line = part.section(u' ', 0, 0).mid(other ? 2 : 0).toLatin1() + ' ' +
                                    QByteArray(32, other ? 'b' : 'a') + ' ' + at.toLatin1() +
                                    "000000 10000000" + at.toLatin1() + "000000";
            marks.push_back(*ZELKSleepMark::fromLine(line));
            QCOMPARE(marks.back().line(), line + '\n');
        }
        const QStringList told = linesOf(ZELKSleepHistory::events(marks));
        QStringList wanted;
        for (const QString &part : expected.split(u", "_s, Qt::SkipEmptyParts))
            wanted.append(
                u"10000000%1.000000 System %2"_s.arg(part.section(u' ', 0, 0), part.section(u' ', 1)));
        QCOMPARE(told, wanted);
        std::shuffle(marks.begin(), marks.end(), std::mt19937(7));
        QCOMPARE(linesOf(ZELKSleepHistory::events(marks)), told);
    }

    void readsRealJournals()
    {
        const QTemporaryDir folder;
        writeFile(folder.filePath(u"machine/system.journal"_s), journal("three-sleeps-one-failed"));
        writeFile(folder.filePath(u"machine/user-1000.journal"_s), journal("kernel-sleeps"));
        writeFile(folder.filePath(u"machine/notes.txt"_s), "no journal");
        const QString other = folder.filePath(u"elsewhere.bin"_s);
        writeFile(other, journal("sleep-2h"));
        const Read both = read({folder.filePath(u"machine"_s), other});
        QCOMPARE(both.events, longSleep + threeSleeps);
        QVERIFY(both.complete);
        QCOMPARE(both.console, QStringList());
    }

    /// What is before need not be told; a file that was last written before is not read.
    void readsWhatIsNeeded()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.journal"_s);
        const auto since = [&](double seconds) {
            return read({folder.path()}, ZELKDate::fromSecondsSince1970(seconds));
        };
        writeFile(path, journal("three-sleeps-one-failed"));
        setModified(path, 1795378900);
        QCOMPARE(since(1795378000).events, threeSleeps);
        QCOMPARE(since(1795378836).events, threeSleeps.mid(3));
        QCOMPARE(since(1795378890).events, QStringList());
        writeFile(path, ""); // now an empty file, which would be complained of
        setModified(path, 1795378900);
        const Read none = since(1795378901);
        QCOMPARE(none.events + none.console, QStringList());
    }

    /// Others may give the right later.
    void isNotThroughWhileItMayReadNothing()
    {
        const QTemporaryDir folder;
        writeFile(folder.filePath(u"a.journal"_s), journal("sleep-2h"));
        QVERIFY(QFile::setPermissions(folder.filePath(u"a.journal"_s), QFile::WriteOwner));
        QFile::setPermissions(folder.path(),
                              QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
        const uid_t self = ::getuid();
        if (self == 0)
            QCOMPARE(::setresuid(65534, 65534, 0), 0); // root may read everything
        const Read found = read({folder.path()});
        if (self == 0)
            QCOMPARE(::setresuid(0, 0, 0), 0);
        QVERIFY(!found.complete);
        QCOMPARE(found.console.size(), 1);
        QCOMPARE(found.events, QStringList());
    }

    /// The kernel's own sleeps, a line that came in late, and what is none of theirs: a user's lines, other
    /// lines of the kernel's.
    void believesTheKernelAndRoot()
    {
        const QTemporaryDir folder;
        writeFile(folder.filePath(u"some.journal"_s), journal("kernel-sleeps"));
        const QStringList expected{
            u"1710000100.000000 System will sleep"_s,     u"1710003700.250000 System has powered on"_s,
            u"1710004000.000000 System will sleep"_s,     u"1710005000.500000 System will sleep"_s,
            u"1710009000.300000 System has powered on"_s, u"1710009101.000000 System will not sleep"_s};
        QCOMPARE(read({folder.path()}).events, expected);
    }

    /// Each costs a line at the most, and never another file's sleeps.
    void survivesDamage_data()
    {
        const Rows<QByteArray, bool> row;
        const QByteArray sound = journal("three-sleeps-one-failed");
        row("empty", QByteArray(), true);
        row("a text", QByteArray("no journal at all\n").repeated(1000), true);
        row("cut in its header", sound.left(100), true);
        row("cut in the middle", sound.left(sound.size() / 2), true);
        row("a header and noise", sound.left(300) + damaged(QByteArray(1 << 20, 'x'), 1, 1 << 20), true);
        for (const int places : {10, 1000, 100000, 1000000})
            for (const unsigned seed : {1U, 2U, 3U})
                row(qPrintable(u"%1 bytes, %2"_s.arg(places).arg(seed)), damaged(sound, seed, places), false);
    }
    void survivesDamage()
    {
        const auto [bytes, tells] = Rows<QByteArray, bool>::fetch();
        const QTemporaryDir folder;
        writeFile(folder.filePath(u"a.journal"_s), bytes);
        writeFile(folder.filePath(u"b.journal"_s), journal("sleep-2h"));
        const Read found = read({folder.path()});
        QVERIFY(found.complete);
        for (const QString &line : longSleep)
            QVERIFY(found.events.contains(line));
        QVERIFY(found.console.size() <= 1);
        if (tells)
            QVERIFY(found.console.value(0).contains(u"a.journal"_s));
    }

    /// Readers that die, hang, talk nonsense or are not there, as programs of their own.
    void survivesItsReader_data()
    {
        const Rows<QByteArray, QString, QStringList, bool> row;
        const QByteArray start = "echo start " + QByteArray(32, 'a') + " 1000000 1700000000000000\n";
        const QStringList kept{u"1700000000.000000 System will sleep"_s};
        row("dies", start + "kill -ABRT $$\n", "did not survive", kept, true);
        row("hangs", start + "while :; do :; done\n", "takes too long", kept, true);
        row("talks nonsense", "head -c 100000 /dev/urandom\necho\n" + start, "", kept, true);
        row("complains", start + "echo fault No room\n", "No room", kept, true);
        row("is not there", "", "can not be read", QStringList(), false);
    }
    void survivesItsReader()
    {
        const auto [script, line, events, complete] = Rows<QByteArray, QString, QStringList, bool>::fetch();
        const QTemporaryDir folder;
        const QString program = folder.filePath(u"reader"_s);
        if (!script.isEmpty())
            writeFile(program, "#!/bin/sh\n" + script);
        QFile(program).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const Read found = readWith(program, {folder.filePath(u"some.journal"_s)}, 1000);
        QCOMPARE(found.events, events);
        QCOMPARE(found.complete, complete);
        QCOMPARE(found.console.size(), line.isEmpty() ? 0 : 1);
        if (!line.isEmpty())
            QVERIFY2(found.console.constFirst().contains(line), qPrintable(found.console.constFirst()));
    }
};

BACKFILL_TEST_MAIN(TestJournal)
#include "tst_journal.moc"
