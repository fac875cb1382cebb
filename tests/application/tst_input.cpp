// What the application reads: defaults, lines of events, options.
#include "Files.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKCommandLineOptions.h"
#include "ZELKDictionary.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWClientAppDelegate.h"
#include "ZELKLineSource.h"
#include "ZELKRawEventLineReader.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

namespace {

/// A bundle's folder and user defaults beside it.
struct DefaultsBed
{
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};

    void write(const QByteArray &dictionary) const
    {
        writeFile(folder.filePath(u"Defaults.plist"_s), "<plist version=\"1.0\">" + dictionary + "</plist>");
    }
};

using Outcome = ZELKCommandLineOptions::Outcome;

constexpr char propertiesOfOne[] = "\"<plist version=\\\"1.0\\\"><dict><key>a</key><true/></dict></plist>\"";

QByteArray line(const char *date, const char *properties = "\"NULL\"", const char *description = "\"e\"")
{
    return QByteArrayLiteral("{\"date\":") + date + ",\"description\":" + description +
           ",\"monitor\":\"m\",\"properties\":" + properties + "}";
}

QByteArray lineOf(const char *description)
{
    return line("1", "\"NULL\"", description);
}

/// As a further line: what came before must not matter.
ZELKRawEventLineReader::Result read(const QByteArray &bytes)
{
    ZELKRawEventLineReader reader;
    for (const QByteArray &before : {line("1"), line("1", propertiesOfOne)})
        reader.read(before.toStdString());
    return reader.read(std::string_view(bytes.constData(), std::size_t(bytes.size())));
}

} // namespace

class InputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registersDefaults()
    {
        const std::tuple<QByteArray, QString, QStringList> cases[] = {
            {"<dict><key>dateRange</key><integer>8</integer><key>initialValues</key><array>"
             "<string>dateRange</string></array></dict>",
             u"8"_s,
             {u"dateRange"_s}},
            {"<dict><key>dateRange</key><integer>3</integer></dict>", u"3"_s, {}},
            {"<dict", QString(), {}},
            {"<array/>", QString(), {}}};
        for (const auto &[bytes, range, initialKeys] : cases) {
            DefaultsBed bed;
            bed.write(bytes);
            ZELKLWClientAppDelegate::initialize(ZELKBundle(bed.folder.path()), bed.defaults);
            QCOMPARE(bed.defaults.stringForKey(u"dateRange"_s), range);
            QCOMPARE(bed.defaults.initialValues().keys(), initialKeys);
            QVERIFY(!QFile::exists(bed.folder.filePath(u"defaults.ini"_s)));
        }
    }

    void missingDefaults()
    {
        DefaultsBed bed;
        const auto action = [&] {
            ZELKLWClientAppDelegate::registerDefaults(ZELKBundle(bed.folder.path()), bed.defaults);
        };
        QCOMPARE(raised(action), u"ZELKLWClientAppDelegate Missing 'Defaults.plist'."_s);

        bed.write("<dict><key>a</key><string>new</string><key>initialValues</key><array>"
                  "<string>a</string></array></dict>");
        bed.defaults.setInitialValues({{u"a"_s, u"old"_s}, {u"b"_s, u"kept"_s}});
        bed.defaults.setValue(u"a"_s, u"the user's"_s);
        ZELKLWClientAppDelegate::registerDefaults(ZELKBundle(bed.folder.path()), bed.defaults);
        QCOMPARE(bed.defaults.initialValues().string(u"a"_s), u"new"_s);
        QCOMPARE(bed.defaults.initialValues().string(u"b"_s), u"kept"_s);
        QCOMPARE(bed.defaults.stringForKey(u"a"_s), u"the user's"_s);
    }

    void takesEvents_data()
    {
        const Rows<QByteArray, QString, QString> row;
        row("number", line("731289600.25"), "731289600.250000", "e");
        row("exponent", line("7.5e2"), "750.000000", "e");
        row("text", line("\"731289600.1234567\""), "731289600.123457", "e");
        row("minus zero", line("-0"), "0.000000", "e");
        row("spaces, order, carriage return",
            " { \"properties\" : \"NULL\" , \"monitor\":\"m\",\n\"date\": 1 ,\t\"description\":\"e\" } \r",
            "1.000000", "e");
        row("escapes", lineOf("\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u00e9\\ud83d\\ude34\""), "1.000000",
            "\"\\/\b\f\n\r\té😴");
        row("plain UTF-8", lineOf("\"é😴\""), "1.000000", "é😴");
        row("properties", line("1", propertiesOfOne), "1.000000", "e");
    }
    void takesEvents()
    {
        const auto [bytes, date, description] = Rows<QByteArray, QString, QString>::fetch();
        const auto result = read(bytes);
        QCOMPARE(result.reason, QString());
        QVERIFY(result.event);
        QCOMPARE(result.event->string(ZELKEventKeyDate), date);
        QCOMPARE(result.event->string(ZELKEventKeyDescription), description);
        QCOMPARE(result.event->string(ZELKEventKeyMonitor), u"m"_s);
        QCOMPARE(result.event->size(), 4);
    }

    void refusesLines_data()
    {
        const Rows<QByteArray, QString> row;
        row("nothing", QByteArray(), "not a JSON object");
        row("array", "[1]", "not a JSON object");
        row("empty object", "{}", "missing key \"date\"");
        row("cut off", line("1").chopped(1), "the object is not closed");
        row("cut off in a text", line("1").chopped(2), "a text is not closed");
        row("cut off behind a backslash", "{\"\\", "a text is not closed");
        row("more behind it", line("1") + line("1"), "more than one object");
        row("comma at the end", line("1").chopped(1) + ",}", "no text where one is needed");
        row("key without value", "{\"date\"}", "no value for \"date\"");
        row("strange key", "{\"dates\":1}", "unknown key \"dates\"");
        row("key twice", line("1,\"date\":2"), "the key \"date\" stands twice");
        row("object for a text", line("1", "{}"), "\"properties\" is no text");
        row("null date", line("null"), "\"date\" is no number");
        row("number and more", line("\"12x\""), "\"date\" is no number");
        row("leading zero", line("01"), "\"date\" is no number");
        row("bare point", line("1."), "\"date\" is no number");
        row("infinite text", line("\"inf\""), "\"date\" is no number");
        row("no exponent", line("1e"), "\"date\" is no number");
        row("beyond doubles", line("1e999"), "\"date\" is out of range");
        row("beyond the calendar", line("1e300"), "\"date\" is out of range");
        row("before the log begins", line("-1"), "\"date\" is out of range");
        row("raw NUL", QByteArray("{\0}", 3), "a NUL");
        row("escaped NUL", lineOf("\"a\\u0000b\""), "a NUL in a text");
        row("half a pair", lineOf("\"\\ud83d\""), "half a surrogate pair in a text");
        row("the other half", lineOf("\"\\ude34\""), "half a surrogate pair in a text");
        row("half and a letter", lineOf("\"\\ud83d\\u0041\""), "half a surrogate pair in a text");
        row("short escape", lineOf("\"\\u12\""), "an unknown escape in a text");
        row("unknown escape", lineOf("\"\\x\""), "an unknown escape in a text");
        row("tabulator in a text", lineOf("\"a\tb\""), "a control character in a text");
        row("cut UTF-8", "\"\xf0\x9f", "not UTF-8");
        row("properties of nothing", line("1", "\"\""), "\"properties\" cannot be read: ");
        row("properties of an array", line("1", "\"<plist version=\\\"1.0\\\"><array/></plist>\""),
            "\"properties\" is no dictionary");
        row("binary properties", line("1", "\"bplist00\""), "\"properties\" is no property-list text");
    }
    void refusesLines()
    {
        const auto [bytes, reason] = Rows<QByteArray, QString>::fetch();
        const auto result = read(bytes);
        QVERIFY(!result.event);
        QVERIFY2(reason.endsWith(u' ') ? result.reason.startsWith(reason) : result.reason == reason,
                 qPrintable(result.reason));
    }

    void splitsLines_data()
    {
        const Rows<QByteArray, QString> row;
        const QByteArray longest(300000, 'x');
        row("nothing", QByteArray(), "");
        row("breaks, none at the end", "\n\na\nb", " 1 2 3a 4b");
        row("exactly the limit", longest + "\ny", " 1" + longest + " 2y");
        row("one more", longest + "x\ny", " 1<too-long> 2y");
        row("far too long at the end", "a\n" + QByteArray(2000000, 'x'), " 1a 2<too-long>");
    }
    void splitsLines()
    {
        const auto [bytes, expected] = Rows<QByteArray, QString>::fetch();
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(bytes) == bytes.size() && file.flush() && file.seek(0));
        ZELKLineSource source(file.handle(), 300000);
        QString lines;
        while (const auto next = source.next())
            lines += u' ' + QString::number(next->number) +
                     (next->isTooLong ? u"<too-long>"_s
                                      : QString::fromLatin1(next->text.data(), qsizetype(next->text.size())));
        QVERIFY(lines == expected);
        QCOMPARE(source.error(), QString());
    }

    void options_data()
    {
        const Rows<QString, Outcome> row;
        const auto wrong = [&](const char *words, const char *complaint) {
            row(complaint, words, Outcome::Wrong);
        };
        for (const char *words : {"", "--start-agent", "--profile x list --database /tmp/x --format json",
                                  "import -", "list --from 2024-02-29 --to 2024-02-29T23:59:59", "stats",
                                  "stats this-week --format json", "stats --from 2024-02-29 --format text",
                                  "list --profile a.b_c-D", "export --output -  --format txt",
                                  "export --output x.TIFF --width 150 --height 15000 this-week",
                                  "snapshot --count 5 --picture x.png --start-agent"})
            row(words, words, Outcome::Run);
        row("help", "list -h", Outcome::Help);
        row("version", "-v", Outcome::Version);
        wrong("dance", "There is no command \"dance\".");
        wrong("export", "export needs --output FILE, or --output - for standard output.");
        wrong("export --output x", "export needs --format txt, rtf, plist, doc, tiff or png.");
        wrong("export --output x.png --format jpeg", "There is no format \"jpeg\".");
        wrong("export --output x.png --width 149", "--width needs a number from 150 to 15000, not \"149\".");
        wrong("export --output x.txt --range today",
              "--width, --height and a range are for pictures; of the log, all is exported.");
        wrong("list --width 200", "--width belongs to the command export.");
        wrong("import", "import needs a FILE, or - for standard input.");
        wrong("import a b", "Unexpected argument \"b\".");
        wrong("--nonsense", "Unknown option 'nonsense'.");
        wrong("list --range tomorrow", "There is no range \"tomorrow\".");
        wrong("stats tomorrow", "There is no range \"tomorrow\".");
        wrong("stats today --range yesterday", "Unexpected argument \"yesterday\".");
        wrong("stats --format table", "There is no format \"table\".");
        wrong("list --range today --from 2024-01-01", "--range does not go together with --from and --to.");
        wrong("list --from 2024-01-02 --to 2024-01-01", "--from lies after --to.");
        wrong("list --from 2023-02-29", "\"2023-02-29\" is no date: YYYY-MM-DD, YYYY-MM-DDTHH:MM or "
                                        "YYYY-MM-DDTHH:MM:SS is.");
        wrong("list --to 2024-01-01T24:00",
              "\"2024-01-01T24:00\" is no date: YYYY-MM-DD, YYYY-MM-DDTHH:MM or YYYY-MM-DDTHH:MM:SS is.");
        wrong("list --format xml", "There is no format \"xml\".");
        wrong("import x --format json", "--format belongs to the command list.");
        wrong("--count 3", "--count belongs to the command snapshot.");
        wrong("snapshot --count 0", "--count needs a number from 1 to 1000000, not \"0\".");
        wrong("--profile ../x",
              "\"../x\" cannot name a profile: letters, digits, \".\", \"_\" and \"-\" can.");
        wrong("--profile=", "--profile needs a value.");
        wrong("--profile x --start-agent",
              "A profile has no agent: --start-agent and --profile do not go together.");
    }
    /// A wrong row is called by what is complained of.
    void options()
    {
        const auto [words, outcome] = Rows<QString, Outcome>::fetch();
        const auto parsed =
            ZELKCommandLineOptions::parse(u"lullwatch "_s.append(words).split(u' ', Qt::SkipEmptyParts));
        const QString tag = QString::fromUtf8(QTest::currentDataTag());
        QCOMPARE(parsed.complaint, outcome == Outcome::Wrong ? tag : QString());
        QCOMPARE(parsed.outcome, outcome);
    }

    void rangesArePresets()
    {
        const QStringList ranges{u"today"_s,      u"yesterday"_s, u"last-seven-days"_s, u"this-month"_s,
                                 u"last-month"_s, u"this-week"_s, u"last-week"_s,       u"everything"_s};
        for (const QString &range : ranges) {
            const auto parsed =
                ZELKCommandLineOptions::parse({u"lullwatch"_s, u"list"_s, u"--range"_s, range});
            QCOMPARE(parsed.options.rangeTag, int(ranges.indexOf(range)) + 1);
        }
    }
};

QTEST_GUILESS_MAIN(InputTest)
#include "tst_input.moc"
