// Entries as rich text: the two templates, what is put into them, and what is said of faulty ones.
#include "ConsoleLines.h"
#include "Files.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKLWCPresentationAssistant.h"
#include "ZELKRtfError.h"
#include "ZELKSystemFonts.h"
#include "ZELKTextDocument.h"

#include <QGuiApplication>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using Formatter = ZELKLWCLogEntryFormatter;

namespace {

const QString name = u"ZELKLWCLogEntryFormatter"_s;

ZELKEnvironment environmentWith(const QString &bundle)
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.locale = QLocale::c();
    environment.mainBundle = std::make_shared<ZELKBundle>(bundle);
    return environment;
}

/// A bundle with templates of these bodies, and an entry.
struct Bed
{
    explicit Bed(const QByteArray &compact = "[primary]",
                 const QByteArray &withDetail = "[primary] [supplimentary]")
        : scope(environmentWith(folder.path()))
    {
        write(name, "{\\rtf1 " + compact + '}');
        write(name + u"WithDetail"_s, "{\\rtf1 " + withDetail + '}');
        entry->setSummary(u"Summary"_s);
    }
    void write(const QString &resource, const QByteArray &bytes) const
    {
        writeFile(folder.filePath(resource + u".rtf"_s), bytes);
    }
    QVariant object() const { return QVariant::fromValue(entry); }

    QTemporaryDir folder;
    ZELKEnvironmentScope scope;
    ZELKLWCLog log;
    ZELKLWCLogEntry *entry = log.entryWithDate(ZELKDate(0), u"startup"_s, u"m"_s, {});
};

} // namespace

class TestEntryFormatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillsIn_data()
    {
        const Rows<QByteArray, QString, QString, QString> row; // template, summary, attribute, what is shown
        row("both", "[primary]: [supplimentary].", "S", "A", "S: A.");
        row("in any order", "[supplimentary][primary]", "S", "A", "AS");
        row("without attributes", "[primary]|[supplimentary]|", "S", QString(), "S||");
        row("only the first", "[primary] [primary] [supplimentary]", "S", "A", "S [primary] A");
        row("none", "constant", "S", "A", "constant");
        row("not quite", "[Primary] [ primary]", "S", "A", "[Primary] [ primary]");
        row("a value brings a placeholder", "[primary] [supplimentary]", "[supplimentary]", "A",
            "A [supplimentary]");
        row("a value brings its own", "[primary]", "a[primary]", "A", "a[primary]");
        row("an empty summary", "<[primary]>", "", QString(), "<>");
    }
    void fillsIn()
    {
        const auto [body, summary, attribute, text] = Rows<QByteArray, QString, QString, QString>::fetch();
        const Bed bed({}, body);
        bed.entry->setSummary(summary);
        if (!attribute.isNull())
            bed.entry->setAttributeValue(1, attribute);
        Formatter formatter;
        formatter.setShowDetail(true);
        QCOMPARE(formatter.stringForObjectValue(bed.object()), text);
    }

    void valuesTakeTheLookOfThePlaceholder()
    {
        const Bed bed("{\\b [pri\\i mary]}{\\ul !}");
        const ZELKAttributedString text = Formatter().attributedStringForObjectValue(bed.object());
        QCOMPARE(text.runs().size(), 2u);
        QCOMPARE(text.runs().front().length, 7);
        QVERIFY(text.runs().front().attributes.bold && !text.runs().front().attributes.italic);
    }

    void knowsEntriesAndAttributedTexts()
    {
        const Bed bed;
        Formatter formatter;
        ZELKTextAttributes bold;
        bold.bold = true;
        const ZELKAttributedString ready(u"[primary]"_s, bold);
        QVERIFY(formatter.attributedStringForObjectValue(QVariant::fromValue(ready)) == ready);
        for (const QVariant &other :
             {QVariant(), QVariant(u"text"_s), QVariant(7), QVariant::fromValue<ZELKLWCLogEntry *>(nullptr)})
            QVERIFY(formatter.attributedStringForObjectValue(other, bold) == formatter.templateEntry());
        QVariant object;
        QString error;
        QVERIFY(!formatter.getObjectValue(object, u"Summary"_s, &error));
        QCOMPARE(error, u"Unsupported conversion from string to entry."_s);
        QVERIFY(!formatter.getObjectValue(object, u"Summary"_s, nullptr));
    }

    void aValueThatCannotBeHadStays()
    {
        const Bed bed("[colour] [primary]");
        const Formatter formatter({{u"[colour]"_s, u"colour"_s}, {u"[primary]"_s, u"summary"_s}});
        const ConsoleLines console;
        QCOMPARE(formatter.stringForObjectValue(bed.object()), u"[colour] Summary"_s);
        QCOMPARE(console.lines(),
                 QStringList{u"ZELKLWCLogEntryFormatter Class ZELKLWCLogEntryPowerState does not respond to "
                             "keyPath colour."_s});
    }

    void complainsOfTemplates()
    {
        Bed bed;
        const Formatter formatter;
        const auto reading = [&formatter](const QString &resource) {
            return raised([&] { (void)formatter.attributedStringFromRTF(resource); });
        };
        QCOMPARE(reading({}), u"Invalid parameter not satisfying: anRTFFilename"_s);
        QCOMPARE(reading(u"Other"_s), u"ZELKLWCLogEntryFormatter Required resource Other.rtf is missing."_s);
        bed.write(u"Other"_s, "text");
        QCOMPARE(reading(u"Other"_s), u"ZELKLWCLogEntryFormatter Resource is malformed file://%1/Other.rtf: "
                                      "This is not rich text (at byte 0)."_s.arg(bed.folder.path()));
        bed.write(u"Other"_s, "{\\rtf1 some of it");
        QVERIFY_EXCEPTION_THROWN((void)formatter.attributedStringFromRTF(u"Other"_s), ZELKRtfError);
        QVERIFY(QFile::remove(bed.folder.filePath(name + u"WithDetail.rtf"_s)));
        QCOMPARE(
            raised([] { const Formatter another; }),
            u"ZELKLWCLogEntryFormatter Required resource ZELKLWCLogEntryFormatterWithDetail.rtf is missing."_s);
    }

    void shipsTemplatesForLightAndDark()
    {
        const ZELKEnvironmentScope scope(environmentWith(qEnvironmentVariable("ZELK_MAIN_BUNDLE")));
        Formatter formatter;
        QCOMPARE(formatter.templateEntry().string(), u"[primary]"_s);
        const ZELKAttributedString detailed = formatter.templateEntryWithDetail();
        QCOMPARE(detailed.string(), u"[primary]\n[supplimentary]"_s);
        const ZELKTextAttributes primary = formatter.templateEntry().attributesAt(0);
        const ZELKTextAttributes detail = detailed.attributesAt(detailed.length() - 1);
        QCOMPARE(primary.pointSize, detailed.attributesAt(0).pointSize);
        QCOMPARE(primary.colour, ZELKTextColour());
        QCOMPARE(detailed.attributesAt(0).colour, ZELKTextColour());
        QCOMPARE(detail.colour, ZELKTextColour::of(ZELKTextColour::Role::DisabledControlText));
        QVERIFY(detail.pointSize < primary.pointSize);
        QVERIFY(primary.family.isEmpty() && detail.family.isEmpty()); // the platform's
    }

    void rowsAreAsHighAsTheTemplate()
    {
        const Bed bed("[primary]", "[primary]\\par[supplimentary]");
        Formatter formatter;
        const double compact = formatter.rowHeight();
        QCOMPARE(compact, ZELKTextDocument::height(formatter.templateEntry()) * 1.1);
        formatter.setShowDetail(true);
        QCOMPARE(formatter.rowHeight(), formatter.rowHeightWithDetail(true));
        QVERIFY(formatter.rowHeight() > 1.8 * compact);
        QFont font;
        font.setPointSizeF(24.0);
        formatter.setFontScale(formatter.scaleForFont(font));
        QCOMPARE(formatter.fontScale(), 2.0);
        QCOMPARE(formatter.attributedStringForObjectValue(bed.object()).attributesAt(0).pointSize, 24.0);
        QVERIFY(formatter.rowHeightWithDetail(false) > 1.8 * compact);
    }

    void rowsShowOneLineOfAValue()
    {
        const Bed bed;
        bed.entry->setSummary(u"a\r\nb\u2028\u0001c"_s + QString(100000, u'd'));
        const Formatter formatter;
        const QString shown = formatter.attributedStringForRow(*bed.entry).string();
        QVERIFY(shown.startsWith(u"a  b  cd"_s) && shown.size() == 1000);
        QCOMPARE(formatter.stringForObjectValue(bed.object()), bed.entry->summary());
    }

    void theAssistantHasTwoLooks()
    {
        using Assistant = ZELKLWCPresentationAssistant;
        const double size = ZELKSystemFonts::systemFontSize();
        const ZELKAttributedString text = Assistant::attributedStringWithPrimary(u"1 h"_s, u" (5 %)"_s);
        QCOMPARE(text.string(), u"1 h (5 %)"_s);
        QCOMPARE(text.runs().size(), 2u);
        const ZELKTextAttributes primary = text.attributesAt(0);
        const ZELKTextAttributes secondary = text.attributesAt(3);
        QCOMPARE(primary.pointSize, size);
        QCOMPARE(primary.colour, ZELKTextColour());
        QCOMPARE(float(secondary.pointSize), float(ZELKSystemFonts::labelFontSize()));
        QCOMPARE(secondary.colour, ZELKTextColour::of(ZELKTextColour::Role::DisabledControlText));
        QCOMPARE(Assistant::attributedStringWithPrimary(u"1 h"_s, {}).string(), u"1 h"_s);

        ZELKTextAttributes large = primary;
        large.pointSize = 2 * size;
        large.bold = true;
        const ZELKTextAttributes beside = Assistant::secondaryAttributesFromPrimaryAttributes(large);
        QCOMPARE(beside.pointSize, 2 * secondary.pointSize);
        QVERIFY(!beside.bold);
        QVERIFY(Assistant::secondaryAttributesFromPrimaryAttributes({}) == secondary);
    }
};

QTEST_MAIN(TestEntryFormatter)
#include "tst_entry_formatter.moc"
