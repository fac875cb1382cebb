// The reader of property texts has three ways, and all must come to what the property-list reader says.
#include "LogDump.h"
#include "PropertyTexts.h"
#include "ZELKPropertyList.h"
#include "ZELKPropertyTextReader.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

struct Both
{
    ZELKStringPool texts;
    ZELKPackedProperties properties{texts};
    ZELKPropertyTextReader reader{texts, properties};

    QString fault; ///< why they did not

    bool agree(const std::string &text)
    {
        fault = difference(text);
        return fault.isEmpty();
    }

    /// What the reader says that the property-list reader does not; empty when they agree.
    QString difference(const std::string &text)
    {
        const ZELKPropertyTextReader::Result result = reader.read(text);
        // A log meets texts only as valid UTF-8, so that faulty bytes are replaced first.
        const std::string valid = QString::fromStdString(text).toStdString();
        const ZELKPropertyList::Result whole = ZELKPropertyList::read(valid);
        const bool isDictionary =
            whole.error.isEmpty() && whole.value.userType() == qMetaTypeId<ZELKDictionary>();
        const QString expected = isDictionary            ? LogDump::exact(whole.value)
                                 : whole.error.isEmpty() ? u"The properties are not a dictionary."_s
                                                         : whole.error;
        const QString actual =
            result.properties ? LogDump::exact(properties.unpack(*result.properties)) : result.error;
        if (actual == expected && result.properties.has_value() == isDictionary)
            return {};
        return u"read %1\nnot  %2\nin %3"_s.arg(actual, expected, QString::fromStdString(text));
    }
};

const std::string prologue = "<?xml version=\"1.0\"?>";

std::string list(const std::string &body)
{
    return prologue + "<plist version=\"1.0\"><dict>" + body + "</dict></plist>";
}

std::string pair(const std::string &key, const std::string &value)
{
    return "<key>" + key + "</key>" + value;
}

} // namespace

class TestPropertyText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// One text after another through one reader, so that each meets what the earlier ones left behind.
    void readsAsTheWholeReaderDoes_data()
    {
        QTest::addColumn<std::vector<std::string>>("texts");
        const auto row = [](const char *title, const std::vector<std::string> &texts) {
            QTest::newRow(title) << texts;
        };
        const auto text = [](const std::string &value) {
            return list(pair("Name", "<string>" + value + "</string>"));
        };
        const auto number = [](const std::string &value) {
            return list(pair("n", "<integer>" + value + "</integer>"));
        };
        row("an empty text where one was", {text("a"), text("b"), text(""), text("c"), text("")});
        row("an empty text in a fresh template", {text("a"), text("")});
        row("wider numbers", {number("1"), number("2"), number("70000"), number("-3"), number("5000000000")});
        row("too wide numbers", {number("1"), number("2"), number("9223372036854775807"), number("1"),
                                 number("9223372036854775808"), number("99999999999999999999")});
        row("no numbers", {number("1"), number("2"), number(""), number("-"), number("-0"), number("00")});
        row("a byte order mark in a text", {text("a"),
                                            text("\xef\xbb\xbf"
                                                 "a"),
                                            text("\xef\xbb\xbf\xef\xbb\xbf"
                                                 "a")});
        row("the root in a comment of the prologue",
            {prologue + "<!-- <plist version=\"1.0\"> --><plist version=\"1.0\"><dict/></plist>",
             prologue + "<!-- <plist version=\"1.0\"><dict>" + pair("a", "<true/>") + "</dict></plist>"});
        row("the root in a value",
            {prologue + "<plist><dict>" + pair("a", "<string><![CDATA[<plist version=\"1.0\">]]></string>") +
                 "</dict></plist>",
             prologue + "<plist><dict><key>a</key><string><![CDATA[<plist version=\"1.0\"><dict>" +
                 pair("a", "<true/>") + "</dict></plist>"});
        row("keys twice", {list(pair("a", "<true/>") + pair("b", "<true/>")),
                           list(pair("a", "<true/>") + pair("b", "<true/>")),
                           list(pair("a", "<true/>") + pair("a", "<false/>"))});
        row("a NUL", {text("a"), text("a") + std::string(1, '\0'), text("a") + std::string("\0<dict>", 7),
                      text(std::string("a\0b", 3)), prologue + std::string(1, '\0') + text("a")});
        row("cut off",
            {text("a"), text("b"), text("c").substr(0, 60), text("c") + "x", text("c") + "<!-- -->"});
        row("lists before other values", {list(pair("l", "<array/>") + pair("a", "<true/>")),
                                          list(pair("l", "<array></array>") + pair("a", "<true/>")),
                                          list(pair("a", "<true/>") + pair("l", "<array></array>"))});
        row("longest texts", {text(std::string(500, 'x')), text(std::string(501, 'x')),
                              text(std::string(9000, 'x')), text("a"), text(std::string(501, 'y'))});
        row("other lists", {prologue + "<plist version=\"1.0\"><array/></plist>", "", "<plist/>", prologue});
        std::string many;
        for (int i = 0; i < 300; ++i)
            many += pair("k" + std::to_string(i), "<integer>1</integer>");
        row("many keys", {list(many), list(many), list(many + pair("Name", "<string>a</string>"))});
        std::string names;
        for (int i = 0; i < 2000; ++i)
            names += "<string>n" + std::to_string(i) + "</string>";
        row("long lists",
            {list(pair("a", "<array>" + names + "</array>")), list(pair("a", "<array></array>"))});
    }

    void readsAsTheWholeReaderDoes()
    {
        QFETCH(std::vector<std::string>, texts);
        Both both;
        QVERIFY2(both.agree(list("")), qPrintable(both.fault)); // makes the prologue known
        for (const std::string &text : texts)
            QVERIFY2(both.agree(text), qPrintable(both.fault));
    }

    void readsChangedTextsAsTheWholeReaderDoes_data()
    {
        QTest::addColumn<int>("oddness");
        for (const int oddness : {0, 2, 10, 40})
            QTest::addRow("%d of a hundred odd", oddness) << oddness;
    }

    void readsChangedTextsAsTheWholeReaderDoes()
    {
        QFETCH(int, oddness);
        PropertyTexts texts(1234U + unsigned(oddness));
        Both both;
        for (int i = 0; i < 2500; ++i) {
            const std::string text = texts.text(std::size_t(oddness));
            QVERIFY2(both.agree(text), qPrintable(both.fault));
            QVERIFY2(both.agree(texts.mutated(text)), qPrintable(both.fault));
        }
    }

    void wideNumbersOfTexts()
    {
        Both both;
        const auto text = [](int i) {
            return list(pair("Name", "<string>t" + std::to_string(i) + "</string>"));
        };
        QVERIFY2(both.agree(text(-1)), qPrintable(both.fault));
        QVERIFY2(both.agree(text(-2)), qPrintable(both.fault));
        for (int i = 0; i < 70000; ++i) {
            const auto ref = both.reader.read(text(i)).properties;
            QVERIFY(ref);
            QCOMPARE(both.properties.value(*ref, ZELKPackedProperties::Name).toString(), u"t%1"_s.arg(i));
        }
        QVERIFY(both.texts.size() > 0xFFFF);
        for (const int i : {0, 69999, 70000, 5})
            QVERIFY2(both.agree(text(i)), qPrintable(both.fault));
    }

    /// A text of very many keys is refused or read, but not walked over and over.
    void manyKeysTakeNoSquareOfTime()
    {
        std::string body;
        for (int i = 0; i < 60000; ++i)
            body += pair("key " + std::to_string(i), "<true/>");
        Both both;
        QVERIFY2(both.agree(list("")), qPrintable(both.fault));
        QElapsedTimer whole;
        whole.start();
        QVERIFY(ZELKPropertyList::read(list(body)).error.isEmpty());
        const qint64 allowed = 20 * whole.elapsed() + 200;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(both.reader.read(list(body)).properties);
        QVERIFY2(timer.elapsed() < allowed, qPrintable(u"%1 ms"_s.arg(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestPropertyText)
#include "tst_property_text.moc"
