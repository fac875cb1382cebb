// What the log becomes for other programs.
#include "ConsoleLines.h"
#include "ExportFixture.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKLWCDuration.h"
#include "ZELKListSource.h"
#include "ZELKLogRepresentation.h"
#include "ZELKPropertyList.h"

#include <QProcess>

namespace {

using ZELKLogRepresentation::dataRepresentationOfType;

QVariant listOf(const QByteArray &bytes)
{
    return ZELKPropertyList::read(std::string_view(bytes.constData(), std::size_t(bytes.size()))).value;
}

} // namespace

class ExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rangeDoesNotMatter()
    {
        constexpr double later = 3 * 86400.0;
        ExportFixture fixture;
        fixture.addNight();
        fixture.add(later, u"later"_s);
        fixture.range.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(exportStart.addingTimeInterval(later), 60.0));
        QCOMPARE(fixture.log.countOfVisibleEntries(), 1u);
        QCOMPARE(dataRepresentationOfType(fixture.log, u"text/tab-separated-values"_s).count('\n'), 5);
    }

    /// The whole log, without what was merged.
    void foreignReaders_data()
    {
        const Rows<QString, QString, QString> row; // type, suffix, what is read
        row("tab text", ZELKLogRepresentation::tabularText, "txt",
            "2024-03-05 12:00:00 +0100 | System will sleep | Duplicates:(2024-03-05 12:00:01 +0100)\n"
            "2024-03-05 14:00:00 +0100 | System powering on after 2 hours | Properties:[Duration:2h]\n"
            "2024-03-05 14:00:30 +0100 | 'BAT0' connected | Device:[Name:BAT0, Current Capacity:80%, "
            "Time to Empty:1h 30m]\n"
            "2024-03-05 14:01:00 +0100 | System will not sleep | Processes:(backup <1>, Пример 🔋 שלום)\n");
        row("property list", ZELKLogRepresentation::propertyList, "plist",
            "2024-03-05T11:00:00 | System will sleep | Power Events | "
            "{'Duplicates': [datetime.datetime(2024, 3, 5, 11, 0, 1)]}\n"
            "2024-03-05T13:00:00 | System powering on after 2 hours | Power Events | "
            "{'Properties': {'Duration': '2h'}}\n"
            "2024-03-05T13:00:30 | 'BAT0' connected | Power Events | {'Device': {'Name': 'BAT0', "
            "'Current Capacity': '80%', 'Time to Empty': '1h 30m'}}\n"
            "2024-03-05T13:01:00 | System will not sleep | Power Events | "
            "{'Processes': ['backup <1>', 'Пример 🔋 שלום']}\n");
        constexpr char lines[] = "When this computer slept, woke and changed its power\n"
                                 "2024-03-05 12:00:00 +0100 | System will sleep\n"
                                 "2024-03-05 14:00:00 +0100 | System powering on after 2 hours\n"
                                 "2024-03-05 14:00:30 +0100 | 'BAT0' connected\n"
                                 "2024-03-05 14:01:00 +0100 | System will not sleep\n";
        row("rich text", ZELKLogRepresentation::richText, "rtf", lines);
        row("Word document", ZELKLogRepresentation::wordDocument, "doc", lines);
    }
    void foreignReaders()
    {
        const auto [type, suffix, expected] = Rows<QString, QString, QString>::fetch();
        ExportFixture fixture;
        fixture.addNight();
        const QString file = fixture.path(u"history."_s + suffix);
        writeFile(file, dataRepresentationOfType(fixture.log, type));
        QProcess reader;
        reader.start(u"python3"_s, {QStringLiteral(READ_EXPORT), suffix, file});
        QVERIFY(reader.waitForFinished());
        QCOMPARE(QString::fromUtf8(reader.readAllStandardError()), QString());
        QCOMPARE(QString::fromUtf8(reader.readAllStandardOutput()), expected);
    }

    /// However many pieces it is written in, the list is the one list of all.
    void listIsOneList_data()
    {
        const Rows<int> row;
        for (const int count : {0, 1, 255, 256, 257, 1000})
            row(QByteArray::number(count).constData(), count);
    }
    void listIsOneList()
    {
        const auto [count] = Rows<int>::fetch();
        ExportFixture fixture;
        fixture.addMany(count);
        QVariantList all;
        for (const ZELKLWCLogEntry *entry : fixture.log.entry())
            all.append(QVariant::fromValue(entry->exportAsDictionary()));
        QCOMPARE(dataRepresentationOfType(fixture.log, u"xml/plist"_s),
                 ZELKPropertyList::writeXml(all).bytes);
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
            QVariant::fromValue(ZELKDictionary{{u"\u0001"_s, QVariantList{u"\u0002"_s}}}), u"k"_s);
        const ConsoleLines console;
        const QVariantList list = listOf(dataRepresentationOfType(fixture.log, u"xml/plist"_s)).toList();
        QCOMPARE(list.size(), 2);
        const QString replaced(QChar::ReplacementCharacter);
        QCOMPARE(list.at(0).value<ZELKDictionary>().string(u"Summary"_s), u"a%1b%1%1🔋\t\n&<"_s.arg(replaced));
        QCOMPARE(list.at(1).value<ZELKDictionary>().value(u"Attributes"_s).value<ZELKDictionary>(),
                 (ZELKDictionary{
                     {u"k"_s, QVariant::fromValue(ZELKDictionary{{replaced, QVariantList{replaced}}})}}));
        QCOMPARE(console.count("Error: A value of type"), 1);
        QCOMPARE(ZELKListSource::carriedByXml(u"🔋"_s + QChar(0xD83D)), QVariant(u"🔋"_s + replaced));
    }

    /// Tabs and line ends within a summary stay in its paragraph; in tab text they are as they are.
    void troublesomeSummaries_data()
    {
        const Rows<QString, QString, QString> row; // type, summary, what has to be in the bytes
        row("tab text", ZELKLogRepresentation::tabularText, "a\tb\nc", "+0100\ta\tb\nc\t\n");
        row("tab text, astral", ZELKLogRepresentation::tabularText, "🔋שלום", "+0100\t🔋שלום\t\n");
        row("rich text", ZELKLogRepresentation::richText, "a\tb\nc{\\}", "a\\tab b\\line c\\{\\\\\\}\\par");
        row("rich text, astral", ZELKLogRepresentation::richText, "🔋", "\\u-10179");
    }
    void troublesomeSummaries()
    {
        const auto [type, summary, part] = Rows<QString, QString, QString>::fetch();
        ExportFixture fixture;
        fixture.add(0.0, summary);
        const QByteArray bytes = dataRepresentationOfType(fixture.log, type);
        QVERIFY2(bytes.contains(part.toUtf8()), bytes.constData());
    }

    void safeValues()
    {
        const ExportFixture fixture;
        const QVariant hour = QVariant::fromValue(ZELKLWCDuration(3600.0));
        const QVariant nested = QVariant::fromValue(
            ZELKDictionary{{u"b"_s, QVariantList{hour, 5LL}}, {u"a"_s, hour}, {u"c"_s, QByteArray("d")}});
        const auto safe = ZELKLWCLogEntry::propertyListSafeValue(nested).value<ZELKDictionary>();
        QCOMPARE(safe.keys(), QStringList({u"b"_s, u"a"_s, u"c"_s}));
        QCOMPARE(safe.value(u"b"_s).toList(), QVariantList({u"1h"_s, 5LL}));
        QCOMPARE(safe.value(u"a"_s), QVariant(u"1h"_s));
        QCOMPARE(safe.value(u"c"_s), QVariant(QByteArray("d")));
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
