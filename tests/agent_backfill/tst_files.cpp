#include "BackfillFixture.h"
#include "PropertyLists.h"
#include "ZELKAccountingHistory.h"
#include "ZELKSettingsPowerSourceNames.h"
#include "ZELKUPowerFolder.h"
#include "ZELKUserDefaults.h"

#include <random>

namespace {

constexpr auto boot = Accounting::Boot;
constexpr auto shutDown = Accounting::ShutDown;

std::vector<ZELKLWAEvent> readAll(const QString &path)
{
    std::vector<ZELKLWAEvent> events;
    for (const QString &file : ZELKAccountingHistory::files(path)) {
        ZELKAccountingHistory history(file);
        while (history.readSome(events)) {
        }
    }
    return events;
}

/// "SECONDS PERCENT charging|resting SOURCE MINUTES", the seconds since 1795379000.
QString textOf(const std::vector<ZELKUPowerReading> &readings)
{
    QStringList lines;
    for (const ZELKUPowerReading &reading : readings) {
        const ZELKDictionary properties = listIn(reading.event(u"PRB-1"_s).properties.toUtf8());
        QStringList words{QString::number(reading.seconds - 1795379000),
                          properties.string(u"Current Capacity"_s),
                          properties.value(u"Is Charging"_s).toBool() ? u"charging"_s : u"resting"_s,
                          properties.string(u"Power Source State"_s).section(u' ', 0, 0)};
        for (const QString &estimate : {u"Time to Empty"_s, u"Time to Full Charge"_s})
            if (properties.contains(estimate))
                words.append(properties.string(estimate));
        lines.append(words.join(u' '));
    }
    return lines.join(u", "_s);
}

/// Lines given as "197 75.0 discharging", the seconds since 1795379000.
QByteArray historyFile(const QString &lines)
{
    QByteArray bytes;
    for (const QString &line : lines.split(u", "_s, Qt::SkipEmptyParts))
        bytes += "1795379" + line.toLatin1().replace(' ', '\t') + '\n';
    return bytes;
}

} // namespace

class TestFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsRotatedAccounting()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"wtmp"_s);
        QFile::copy(QStringLiteral(ZELK_TEST_DATA "/one-boot.wtmp"), path);
        QList<Record> logins(2500, {Accounting::Login, 1700000500.0});
        writeFile(path + u".1"_s, accounting(QList<Record>{{boot, 1700000400.0}} + logins +
                                             QList<Record>{{shutDown, 1700000600.0}}));
        writePacked(path + u".10.gz"_s, accounting({{boot, 1700000100.0}, {shutDown, 1700000200.0}}));
        writeFile(path + u".2"_s, accounting({{boot, 1700000300.0}}));
        writeFile(path + u"-20231115"_s, accounting({{boot, 1700000700.0}, {boot, 4e9}}) + "tail");
        for (const char *name : {".3.xz", "-20231114.zst", ".old", ".1~", "db", ".1.2.3"})
            writeFile(path + QLatin1String(name), accounting({{boot, 1.6e9}}));

        const ConsoleLines console;
        const std::vector<ZELKLWAEvent> events = readAll(path);
        const QStringList expected{
            u"1700000100.000000 accounting boot"_s,      u"1700000200.000000 accounting shut down"_s,
            u"1700000300.000000 accounting boot"_s,      u"1700000400.000000 accounting boot"_s,
            u"1700000600.000000 accounting shut down"_s, u"1700000700.000000 accounting boot"_s,
            u"1795378830.808650 accounting boot"_s,      u"1795378844.468400 accounting shut down"_s};
        QCOMPARE(linesOf(events), expected);
        QCOMPARE(readAll(path), events);
        QCOMPARE(console.size(), 4);
        QVERIFY(console.lines().at(0).contains(u"wtmp-20231114.zst, wtmp.3.xz"_s));
        QVERIFY(console.lines().at(1).contains(u"1 with an absurd time, 4 stray bytes"_s));

        for (const char *name : {".2", "-20231114.zst", ".3.xz"})
            setModified(path + QLatin1String(name), 1700000300);
        const ZELKDate since = ZELKDate::fromSecondsSince1970(1700000301.0);
        QCOMPARE(ZELKAccountingHistory::files(path, since).size(), qsizetype(4));
        QCOMPARE(ZELKAccountingHistory::files(folder.filePath(u"btmp"_s), since), QStringList());
        QCOMPARE(console.size(), 4);
    }

    /// What stands before the damage is told, and that there is one.
    void readsPackedAccountingToItsDamage()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"wtmp"_s);
        QList<Record> records;
        for (int i = 0; i < 5000; ++i)
            records.append({boot, 1.6e9 + i * 1000.0});
        writePacked(path, accounting(records));
        const QByteArray packed = readFile(path);
        QCOMPARE(readAll(path).size(), std::size_t(5000));
        for (const qsizetype length : {qsizetype(5), packed.size() / 2}) {
            const ConsoleLines console;
            writeFile(path, packed.left(length));
            const std::size_t found = readAll(path).size();
            QVERIFY(length == 5 ? found == 0 : found > 0);
            QVERIFY(console.size() >= 1 && console.size() <= 2);
        }
    }

    void tellsReadings_data()
    {
        const Rows<QString, QString, QString, QString, QString> row;
        row("as they stand", "194 0.000 unknown, 197 74.5 discharging, 198 70.4 discharging", "", "", "",
            "197 75 resting Battery, 198 70 resting Battery");
        row("states",
            "101 9 charging, 102 8 discharging, 103 7 empty, 104 100 fully-charged, 105 6 pending-charge, "
            "106 5 pending-discharge, 107 4 unknown",
            "", "", "",
            "101 9 charging AC, 102 8 resting Battery, 103 7 resting Battery, 104 100 resting AC, "
            "105 6 resting AC, 106 5 resting Battery, 107 4 resting Unknown");
        row("a change of state between", "101 66 discharging", "103 9 charging, 104 9 charging", "", "",
            "101 66 resting Battery, 103 66 charging AC");
        row("and back", "101 66 discharging", "", "105 0.000 discharging", "103 60 charging",
            "101 66 resting Battery, 103 66 charging AC 1, 105 66 resting Battery");
        row("none that is known", "101 66 discharging", "103 0 unknown", "", "", "101 66 resting Battery");
        row("nothing before the first charge", "101 0.000 unknown, 105 66 charging", "103 9 discharging", "",
            "", "105 66 charging AC");
        row("nor after a new run", "101 66 charging, 103 0.000 unknown", "104 9 discharging", "", "",
            "101 66 charging AC");
        row("estimates of that second", "101 66 discharging, 102 65 charging, 103 64 charging", "",
            "101 18000 discharging, 102 18000 discharging", "102 8000 charging, 103 99999999 charging",
            "101 66 resting Battery 300, 102 65 charging AC 133, 103 64 charging "
            "AC");
        row("an empty battery", "101 0.000 discharging", "", "", "", "101 0 resting Battery");
        row("above its capacity", "101 103.7 fully-charged", "", "", "", "101 100 resting AC");
        row("nonsense",
            "101 -1 charging, 102 nan charging, 103 1e9 charging, 104 5 sleeping, 105 5, 6, x 7 charging, "
            "106 5 charging extra, 107 50 charging",
            "", "", "", "107 50 charging AC");
    }
    void tellsReadings()
    {
        const auto [charge, rate, toEmpty, toFull, expected] =
            Rows<QString, QString, QString, QString, QString>::fetch();
        const ZELKUPowerHistory history{historyFile(charge), historyFile(rate), historyFile(toEmpty),
                                        historyFile(toFull)};
        std::size_t garbage = 0;
        QCOMPARE(textOf(history.readings(garbage)), expected);
        QCOMPARE(garbage, charge.contains(u"nan"_s) ? std::size_t(8) : std::size_t(0));
    }

    /// What is left when the oldest lines were dropped is told as it was before.
    void forgetsWithoutInventing()
    {
        std::mt19937 random(11);
        const char *states[] = {"charging", "discharging", "unknown", "fully-charged"};
        QStringList files[4];
        for (int second = 100; second < 900; ++second)
            files[random() % 4].append(QStringLiteral("%1 %2 %3")
                                           .arg(second)
                                           .arg(double(random() % 3) * 10.5)
                                           .arg(QLatin1String(states[random() % 4])));
        const auto told = [&](int from) {
            QByteArray bytes[4];
            for (int i = 0; i < 4; ++i)
                for (const QString &line : files[i])
                    if (line.section(u' ', 0, 0).toInt() >= from)
                        bytes[i] += historyFile(line);
            std::size_t garbage = 0;
            return ZELKUPowerHistory{bytes[0], bytes[1], bytes[2], bytes[3]}.readings(garbage);
        };
        const std::vector<ZELKUPowerReading> all = told(0);
        QVERIFY(all.size() > 200);
        for (int from = 100; from < 900; from += 7)
            for (const ZELKUPowerReading &reading : told(from))
                QVERIFY(std::find(all.begin(), all.end(), reading) != all.end());
    }

    /// Batteries of the folder, what they are called where the kernel shows two of model "LNV 45N1", and what
    /// is left out.
    void namesBatteries()
    {
        const QTemporaryDir folder;
        const auto supply = [&](const char *device, const char *model, const char *serial) {
            const QString place = folder.filePath(u"sys/"_s) + QString::fromLatin1(device);
            writeFile(place + u"/type"_s, "Battery\n");
            writeFile(place + u"/present"_s, "1\n");
            writeFile(place + u"/model_name"_s, model);
            writeFile(place + u"/serial_number"_s, serial);
        };
        supply("BAT0", "LNV 45N1\n", "38109\n");
        supply("BAT1", "LNV 45N1\n", "38110\n");
        for (const char *battery :
             {"LNV_45N1-47-38109", "LNV_45N1-45-38110", "LNV_45N1-47-1", "PRB-1-80-00042", "80-00042",
              "X-Y-50", "Logitech-Mouse", "Logitech-MX-4069-5b-3d-fc-12", "generic_id"})
            for (const char *kind : {"charge", "rate"})
                writeFile(
                    u"%1/history-%2-%3.dat"_s.arg(folder.path(), QLatin1String(kind), QLatin1String(battery)),
                    std::strcmp(kind, "charge") == 0 ? "1795379197\t75.0\tdischarging\n" : "");
        const ZELKUPowerFolder history(folder.path(), folder.filePath(u"sys"_s));
        QStringList names;
        for (const QString &battery : history.batteries())
            names.append(battery + u" = "_s + history.nameOf(battery));
        const QStringList expected{u"80-00042 = 80-00042"_s,      u"LNV_45N1-45-38110 = LNV 45N1 (BAT1)"_s,
                                   u"LNV_45N1-47-1 = LNV_45N1"_s, u"LNV_45N1-47-38109 = LNV 45N1"_s,
                                   u"PRB-1-80-00042 = PRB-1"_s,   u"X-Y-50 = X-Y"_s};
        QCOMPARE(names, expected);

        // As the watchers have named them: they met the other one first.
        ZELKUserDefaults settings(folder.filePath(u"settings.ini"_s));
        ZELKSettingsPowerSourceNames memory(settings);
        memory.remember({{u"BAT1"_s, {u"LNV 45N1"_s, u"LNV 45N1"_s}}});
        const ZELKUPowerFolder same(folder.path(), folder.filePath(u"sys"_s), &memory);
        QCOMPARE(same.nameOf(u"LNV_45N1-45-38110"_s), u"LNV 45N1"_s);
        QCOMPARE(same.nameOf(u"LNV_45N1-47-38109"_s), u"LNV 45N1 (BAT0)"_s);
        QCOMPARE(memory.recall().at(u"BAT0"_s).name, u"LNV 45N1 (BAT0)"_s);
        QCOMPARE(textOf(history.readings(u"PRB-1-80-00042"_s)), u"197 75 resting Battery"_s);
    }
};

BACKFILL_TEST_MAIN(TestFiles)
#include "tst_files.moc"
