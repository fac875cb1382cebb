// What the log becomes for other programs.
#include "ConsoleLines.h"
#include "ExportFixture.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKLWCDuration.h"
#include "ZELKLogRepresentation.h"
#include "ZELKPropertyList.h"

#include <QProcess>

using namespace ZELKLogRepresentation;

class ExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The whole log, whichever range is shown, without what was merged.
    void foreignReaders_data()
    {
        const Rows<QString, QString, QString> row; // type, suffix, what is read
        row("tab text", tabularText, "txt",
            "2024-03-05 01:00:00 +0100 | System will sleep | Duplicates:(2024-03-05 01:00:01 +0100)\n"
            "2024-03-05 03:00:00 +0100 | System powering on after 2 hours | Properties:[Duration:2h]\n"
            "2024-03-05 03:00:30 +0100 | 'BAT0' connected | Device:[Name:BAT0, Current Capacity:80%, "
            "Time to Empty:1h 30m]\n"
            "2024-03-05 03:01:00 +0100 | System will not sleep | Processes:(backup <1>, Пример 🔋 שלום)\n");
        row("property list", propertyList, "plist",
            "2024-03-05T00:00:00 | System will sleep | Power Events | "
            "{'Duplicates': [datetime.datetime(2024, 3, 5, 0, 0, 1)]}\n"
            "2024-03-05T02:00:00 | System powering on after 2 hours | Power Events | "
            "{'Properties': {'Duration': '2h'}}\n"
            "2024-03-05T02:00:30 | 'BAT0' connected | Power Events | {'Device': {'Name': 'BAT0', "
            "'Current Capacity': '80%', 'Time to Empty': '1h 30m'}}\n"
            "2024-03-05T02:01:00 | System will not sleep | Power Events | "
            "{'Processes': ['backup <1>', 'Пример 🔋 שלום']}\n");
        constexpr char lines[] = "When this computer slept, woke and changed its power\n"
                                 "2024-03-05 01:00:00 +0100 | System will sleep\n"
                                 "2024-03-05 03:00:00 +0100 | System powering on after 2 hours\n"
                                 "2024-03-05 03:00:30 +0100 | 'BAT0' connected\n"
                                 "2024-03-05 03:01:00 +0100 | System will not sleep\n";
        row("rich text", richText, "rtf", lines);
        row("Word document", wordDocument, "doc", lines);
    }
    void foreignReaders()
    {
        const auto [type, suffix, expected] = Rows<QString, QString, QString>::fetch();
        ExportFixture fixture;
        ZELKEnvironment environment = ZELKEnvironment::current();
        environment.zone = QTimeZone("Europe/Berlin");
        const ZELKEnvironmentScope scope(environment);
        fixture.addNight();
        fixture.show(-2, 1);
        QCOMPARE(fixture.log.countOfVisibleEntries(), 0u);
        const QString file = fixture.path(u"history."_s + suffix);
        writeFile(file, dataRepresentationOfType(fixture.log, type));
        QProcess reader;
        reader.start(u"python3"_s, {QStringLiteral(READ_EXPORT), suffix, file});
        QVERIFY(reader.waitForFinished());
        QCOMPARE(QString::fromUtf8(reader.readAllStandardError()), QString());
        QCOMPARE(QString::fromUtf8(reader.readAllStandardOutput()), expected);
    }

    /// However many pieces it is written in, the list is the one list of all.
    void listIsOneList()
    {
        for (const int count : {0, 1, 256, 257, 1000}) {
            ExportFixture fixture;
            fixture.grow(count);
            QVariantList all;
            for (const ZELKLWCLogEntry *entry : fixture.log.entry())
                all.append(QVariant::fromValue(entry->exportAsDictionary()));
            QCOMPARE(dataRepresentationOfType(fixture.log, u"xml/plist"_s),
                     ZELKPropertyList::writeXml(all).bytes);
        }
    }

    /// What XML cannot carry does not make the list unreadable, nor does a value that no list takes.
    void listStaysReadable()
    {
        ExportFixture fixture;
        fixture.add(0.0, u"a\0b\u001b\uFFFE🔋\t\n&<"_s);
        fixture.add(1.0, u"no value"_s);
        fixture.log.objectAtIndex(1)->setAttributeValue(QVariant::fromValue(QLocale()), u"k"_s);
        fixture.add(2.0, u"last"_s);
        fixture.log.objectAtIndex(2)->setAttributeValue(
            QVariant::fromValue(
                ZELKDictionary{{u"\u0001"_s, QVariantList{u"\u0002"_s, QString(QChar(0xD83D))}}}),
            u"k"_s);
        const ConsoleLines console;
        const QByteArray bytes = dataRepresentationOfType(fixture.log, u"xml/plist"_s);
        const QVariantList list = ZELKPropertyList::read(bytes.toStdString()).value.toList();
        QCOMPARE(list.size(), 2);
        const QString replaced(QChar::ReplacementCharacter);
        QCOMPARE(list.at(0).value<ZELKDictionary>().string(u"Summary"_s), u"a%1b%1%1🔋\t\n&<"_s.arg(replaced));
        QCOMPARE(list.at(1).value<ZELKDictionary>().value(u"Attributes"_s).value<ZELKDictionary>(),
                 (ZELKDictionary{{u"k"_s, QVariant::fromValue(ZELKDictionary{
                                              {replaced, QVariantList{replaced, replaced}}})}}));
        QCOMPARE(console.count("Error: A value of type"), 1);
    }

    /// Tabs and line ends within a summary stay in its paragraph; in tab text they are as they are.
    void troublesomeSummaries()
    {
        ExportFixture fixture;
        fixture.add(0.0, u"a\tb\nc{\\}"_s);
        const QByteArray lines = dataRepresentationOfType(fixture.log, u"text/tab-separated-values"_s);
        QVERIFY2(lines.contains("+0000\ta\tb\nc{\\}\t\n"), lines.constData());
        const QByteArray text = dataRepresentationOfType(fixture.log, u"text/rtf"_s);
        QVERIFY2(text.contains("a\\tab b\\line c\\{\\\\\\}\\par"), text.constData());
    }

    void safeValues()
    {
        const ExportFixture fixture;
        const QVariant hour = QVariant::fromValue(ZELKLWCDuration(3600.0));
        const QVariant nested = QVariant::fromValue(
            ZELKDictionary{{u"b"_s, QVariantList{hour, 5LL}}, {u"a"_s, hour}, {u"c"_s, QByteArray("d")}});
        const auto safe = ZELKLWCLogEntry::propertyListSafeValue(nested).value<ZELKDictionary>();
        QCOMPARE(safe.keys(), QStringList({u"b"_s, u"a"_s, u"c"_s}));
        QCOMPARE(safe,
                 (ZELKDictionary{
                     {u"b"_s, QVariantList{u"1h"_s, 5LL}}, {u"a"_s, u"1h"_s}, {u"c"_s, QByteArray("d")}}));
    }

    void unsupportedTypes()
    {
        ExportFixture fixture;
        fixture.addNight();
        const ConsoleLines console;
        QVERIFY(dataRepresentationOfType(fixture.log, u"image/png"_s).isNull());
        QVERIFY(dataRepresentationOfType(fixture.log, {}).isNull());
        QCOMPARE(console.lines(), QStringList({u"Unsupported ZELKLog::dataRepresentationOfType:image/png"_s,
                                               u"Unsupported ZELKLog::dataRepresentationOfType:(null)"_s}));
    }
};

QTEST_GUILESS_MAIN(ExportTest)
#include "tst_export.moc"
