#include "ZELKCommandLineOptions.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLineSource.h"
#include "ZELKRawEventLineReader.h"

#include <QTemporaryFile>
#include <QTest>

namespace {

using Outcome = ZELKCommandLineOptions::Outcome;

class LinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesEvents_data();
    void takesEvents();
    void refusesLines_data();
    void refusesLines();
    void splitsLines_data();
    void splitsLines();
    void options_data();
    void options();
};

QByteArray line(const char *date, const char *properties = "\"NULL\"", const char *description = "\"e\"")
{
    return QByteArrayLiteral("{\"date\":") + date + ",\"description\":" + description +
           ",\"monitor\":\"m\",\"properties\":" + properties + "}";
}

void LinesTest::takesEvents_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("description");

    const QString e = QStringLiteral("e");
    QTest::newRow("number") << line("731289600.25") << QStringLiteral("731289600.250000") << e;
    QTest::newRow("whole number") << line("7") << QStringLiteral("7.000000") << e;
    QTest::newRow("exponent") << line("7.5e2") << QStringLiteral("750.000000") << e;
    QTest::newRow("text") << line("\"731289600.1234567\"") << QStringLiteral("731289600.123457") << e;
    QTest::newRow("minus zero") << line("-0") << QStringLiteral("0.000000") << e;
    QTest::newRow("spaces, order, carriage return")
        << QByteArrayLiteral(" { \"properties\" : \"NULL\" , \"monitor\":\"m\",\n\"date\": 1 ,\t"
                             "\"description\":\"e\" } \r")
        << QStringLiteral("1.000000") << e;
    QTest::newRow("escapes") << line("1", "\"NULL\"", R"("\"\\\/\b\f\n\r\t\u00e9\ud83d\ude34")")
                             << QStringLiteral("1.000000") << QString::fromUtf8("\"\\/\b\f\n\r\té😴");
    QTest::newRow("plain UTF-8") << line("1", "\"NULL\"", "\"é😴\"") << QStringLiteral("1.000000")
                                 << QString::fromUtf8("é😴");
    QTest::newRow("properties") << line(
                                       "1",
                                       R"("<plist version=\"1.0\"><dict><key>a</key><true/></dict></plist>")")
                                << QStringLiteral("1.000000") << e;
}

void LinesTest::takesEvents()
{
    QFETCH(QByteArray, bytes);
    ZELKRawEventLineReader reader;
    const auto result = reader.read(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    QCOMPARE(result.reason, QString());
    QVERIFY(result.event);
    QTEST(result.event->string(ZELKEventKeyDate), "date");
    QTEST(result.event->string(ZELKEventKeyDescription), "description");
    QCOMPARE(result.event->string(ZELKEventKeyMonitor), QStringLiteral("m"));
    QCOMPARE(result.event->size(), 4);
}

void LinesTest::refusesLines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");

    const auto row = [](const char *name, const QByteArray &bytes, const char *reason) {
        QTest::newRow(name) << bytes << QString::fromLatin1(reason);
    };
    row("nothing", {}, "not a JSON object");
    row("array", "[1]", "not a JSON object");
    row("empty object", "{}", "missing key \"date\"");
    row("cut off", line("1").chopped(1), "the object is not closed");
    row("cut off in a text", line("1").chopped(2), "a text is not closed");
    row("cut off behind a backslash", "{\"\\", "a text is not closed");
    row("more behind it", line("1") + line("1"), "more than one object");
    row("comma at the end", line("1").chopped(1) + ",}", "no text where one is needed");
    row("key without quotes", "{date:1}", "no text where one is needed");
    row("key without value", "{\"date\"}", "no value for \"date\"");
    row("strange key", "{\"dates\":1}", "unknown key \"dates\"");
    row("key twice", line("1,\"date\":2"), "the key \"date\" stands twice");
    row("text twice", line("1", "\"NULL\",\"monitor\":\"x\""), "the key \"monitor\" stands twice");
    row("no monitor", R"({"date":1,"description":"e","properties":"NULL"})", "missing key \"monitor\"");
    row("number for a text", line("1", "5"), "\"properties\" is no text");
    row("object for a text", line("1", "{}"), "\"properties\" is no text");
    row("null date", line("null"), "\"date\" is no number");
    row("word for a date", line("\"yesterday\""), "\"date\" is no number");
    row("number and more", line("\"12x\""), "\"date\" is no number");
    row("leading zero", line("01"), "\"date\" is no number");
    row("bare point", line("1."), "\"date\" is no number");
    row("not a number", line("NaN"), "\"date\" is no number");
    row("infinite text", line("\"inf\""), "\"date\" is no number");
    row("no exponent", line("1e"), "\"date\" is no number");
    row("beyond doubles", line("1e999"), "\"date\" is out of range");
    row("beyond the calendar", line("1e300"), "\"date\" is out of range");
    row("before the log begins", line("-1"), "\"date\" is out of range");
    row("raw NUL", QByteArrayLiteral("{\0}").replace(1, 1, QByteArray(1, '\0')), "a NUL");
    row("escaped NUL", line("1", "\"NULL\"", R"("a\u0000b")"), "a NUL in a text");
    row("half a pair", line("1", "\"NULL\"", R"("\ud83d")"), "half a surrogate pair in a text");
    row("the other half", line("1", "\"NULL\"", R"("\ude34")"), "half a surrogate pair in a text");
    row("half and a letter", line("1", "\"NULL\"", R"("\ud83d\u0041")"), "half a surrogate pair in a text");
    row("short escape", line("1", "\"NULL\"", R"("\u12")"), "an unknown escape in a text");
    row("unknown escape", line("1", "\"NULL\"", R"("\x")"), "an unknown escape in a text");
    row("line break in a text", line("1", "\"NULL\"", "\"a\tb\""), "a control character in a text");
    row("not UTF-8", line("1", "\"NULL\"", "\"\xff\""), "not UTF-8");
    row("cut UTF-8", QByteArrayLiteral("\"\xf0\x9f"), "not UTF-8");
    row("properties of nothing", line("1", "\"\""), "\"properties\" cannot be read: ");
    row("properties of an array", line("1", "\"<plist version=\\\"1.0\\\"><array/></plist>\""),
        "\"properties\" is no dictionary");
    row("binary properties", line("1", "\"bplist00\""), "\"properties\" is no property-list text");
}

void LinesTest::refusesLines()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    ZELKRawEventLineReader reader;
    const auto result = reader.read(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    QVERIFY(!result.event);
    QVERIFY2(reason.endsWith(QLatin1Char(' ')) ? result.reason.startsWith(reason) : result.reason == reason,
             qPrintable(result.reason));
}

void LinesTest::splitsLines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("lines");

    const auto row = [](const char *name, const QByteArray &bytes, const QString &lines) {
        QTest::newRow(name) << bytes << lines.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    };
    const QString longest(300000, QLatin1Char('x'));
    row("nothing", {}, {});
    row("no break at the end", "a\nb", QStringLiteral("1a 2b"));
    row("breaks", "\n\na\n", QStringLiteral("1 2 3a"));
    row("exactly the limit", longest.toLatin1() + "\ny", QLatin1Char('1') + longest + QStringLiteral(" 2y"));
    row("one more", longest.toLatin1() + "x\ny", QStringLiteral("1<too-long> 2y"));
    row("far too long", "a\n" + QByteArray(2000000, 'x') + "\ny", QStringLiteral("1a 2<too-long> 3y"));
    row("far too long at the end", "a\n" + QByteArray(2000000, 'x'), QStringLiteral("1a 2<too-long>"));
}

void LinesTest::splitsLines()
{
    QFETCH(QByteArray, bytes);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(bytes);
    QVERIFY(file.flush() && file.seek(0));
    ZELKLineSource source(file.handle(), 300000);
    QStringList lines;
    while (const auto next = source.next())
        lines.append(QString::number(next->number) +
                     (next->isTooLong
                          ? QStringLiteral("<too-long>")
                          : QString::fromLatin1(next->text.data(), qsizetype(next->text.size()))));
    QTEST(lines, "lines");
    QCOMPARE(source.error(), QString());
}

void LinesTest::options_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<Outcome>("outcome");
    QTest::addColumn<QString>("complaint");

    const auto wrong = [](const char *words, const char *complaint) {
        QTest::newRow(words) << QString::fromLatin1(words) << Outcome::Wrong
                             << QString::fromLatin1(complaint);
    };
    const auto right = [](const char *words, Outcome outcome = Outcome::Run) {
        QTest::newRow(words) << QString::fromLatin1(words) << outcome << QString();
    };
    right("");
    right("--start-agent");
    right("list --profile a.b_c-D");
    right("--profile x list --database /tmp/x --format json");
    right("list --from 2024-02-29 --to 2024-02-29T23:59:59");
    right("import -");
    right("snapshot --count 5 --picture x.png --start-agent");
    right("--help", Outcome::Help);
    right("list -h", Outcome::Help);
    right("-v", Outcome::Version);
    wrong("export", "There is no command \"export\".");
    wrong("list x", "Unexpected argument \"x\".");
    wrong("import", "import needs a FILE, or - for standard input.");
    wrong("import a b", "Unexpected argument \"b\".");
    wrong("--nonsense", "Unknown option 'nonsense'.");
    wrong("list --range tomorrow", "There is no range \"tomorrow\".");
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
    wrong("--profile ../x", "\"../x\" cannot name a profile: letters, digits, \".\", \"_\" and \"-\" can.");
    wrong("--profile=", "--profile needs a value.");
    wrong("--profile x --start-agent",
          "A profile has no agent: --start-agent and --profile do not go together.");
}

void LinesTest::options()
{
    QFETCH(QString, words);
    const QStringList arguments =
        QStringList{QStringLiteral("lullwatch")} + words.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const auto parsed = ZELKCommandLineOptions::parse(arguments);
    QTEST(parsed.complaint, "complaint");
    QTEST(parsed.outcome, "outcome");
}

} // namespace

Q_DECLARE_METATYPE(Outcome)

QTEST_GUILESS_MAIN(LinesTest)

#include "tst_lines.moc"
