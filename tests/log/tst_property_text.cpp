// The reader of property texts has three ways, and all must come to what the property-list reader says.
#include "LogDump.h"
#include "NamedRows.h"
#include "PropertyTexts.h"
#include "ZELKPropertyList.h"
#include "ZELKPropertyTextReader.h"

using namespace Qt::StringLiterals;

namespace {

const std::string prologue = "<?xml version=\"1.0\"?>";

std::string list(const std::string &body)
{
    return prologue + "<plist version=\"1.0\"><dict>" + body + "</dict></plist>";
}

std::string pair(const std::string &key, const std::string &value)
{
    return "<key>" + key + "</key>" + value;
}

std::string yes(const std::string &key)
{
    return pair(key, "<true/>");
}

std::string text(const std::string &value)
{
    return list(pair("Name", "<string>" + value + "</string>"));
}

std::string number(const std::string &value)
{
    return list(pair("n", "<integer>" + value + "</integer>"));
}

} // namespace

class TestPropertyText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_reader = std::make_unique<Reader>();
        agree(list("")); // makes the prologue known
    }

    /// One text after another through one reader, so that each meets what the earlier ones left behind.
    void readsAsTheWholeReaderDoes_data()
    {
        const NamedRows<std::vector<std::string>> row("texts");
        row("an empty text where one was", {text("a"), text("b"), text(""), text("c"), text("")});
        row("an empty text in a fresh template", {text("a"), text("")});
        row("wider numbers", {number("1"), number("2"), number("70000"), number("-3"), number("5000000000")});
        row("too wide numbers", {number("1"), number("2"), number("9223372036854775807"), number("1"),
                                 number("9223372036854775808"), number("99999999999999999999")});
        row("no numbers", {number("1"), number("2"), number(""), number("-"), number("-0"), number("00")});
        row("a byte order mark in a text",
            {text("a"), text("\xef\xbb\xbfx"), text("\xef\xbb\xbf\xef\xbb\xbf")});
        row("the root in a comment of the prologue",
            {prologue + "<!-- <plist version=\"1.0\"> --><plist version=\"1.0\"><dict/></plist>",
             prologue + "<!-- <plist version=\"1.0\"><dict>" + yes("a") + "</dict></plist>"});
        row("the root in a value",
            {prologue + "<plist><dict><key>a</key><string><![CDATA[<plist version=\"1.0\"><dict>" + yes("a") +
             "</dict></plist>"});
        row("keys twice", {list(yes("a") + yes("b")), list(yes("a") + yes("b")), list(yes("a") + yes("a"))});
        row("a NUL", {text("a"), text("a") + std::string(1, '\0'), text("a") + std::string("\0<dict>", 7),
                      text(std::string("a\0b", 3)), prologue + std::string(1, '\0') + text("a")});
        row("cut off",
            {text("a"), text("b"), text("c").substr(0, 60), text("c") + "x", text("c") + "<!-- -->"});
        row("lists before other values",
            {list(pair("l", "<array/>") + yes("a")), list(pair("l", "<array></array>") + yes("a")),
             list(yes("a") + pair("l", "<array></array>"))});
        row("longest texts", {text(std::string(500, 'x')), text(std::string(501, 'x')),
                              text(std::string(9000, 'x')), text("a"), text(std::string(501, 'y'))});
        row("no dictionaries",
            {prologue + "<plist version=\"1.0\"><array/></plist>", "", "<plist/>", prologue});
        std::string many;
        std::string names;
        for (int i = 0; i < 2000; ++i) {
            many += i < 300 ? pair("k" + std::to_string(i), "<integer>1</integer>") : "";
            names += "<string>n" + std::to_string(i) + "</string>";
        }
        row("many keys", {list(many), list(many), list(many + pair("Name", "<string>a</string>"))});
        row("long lists",
            {list(pair("a", "<array>" + names + "</array>")), list(pair("a", "<array></array>"))});
    }

    void readsAsTheWholeReaderDoes()
    {
        QFETCH(std::vector<std::string>, texts);
        for (const std::string &text : texts)
            agree(text);
    }

    void readsChangedTextsAsTheWholeReaderDoes_data()
    {
        const NamedRows<int> row("oddness");
        for (const int oddness : {0, 2, 10, 40})
            row(qPrintable(u"%1 of a hundred odd"_s.arg(oddness)), oddness);
    }

    void readsChangedTextsAsTheWholeReaderDoes()
    {
        QFETCH(int, oddness);
        PropertyTexts texts(1234U + unsigned(oddness));
        for (int i = 0; i < 2500 && !QTest::currentTestFailed(); ++i) {
            const std::string text = texts.text(std::size_t(oddness));
            agree(text);
            agree(texts.mutated(text));
        }
    }

    void wideNumbersOfTexts()
    {
        for (int i = -2; i < 70001; ++i) {
            const std::string one = text("t" + std::to_string(i));
            if (i < 0 || i == 5 || i >= 69999)
                agree(one);
            const auto ref = m_reader->reader.read(one).properties;
            QVERIFY(ref);
            QCOMPARE(m_reader->properties.value(*ref, ZELKPackedProperties::Name).toString(),
                     u"t%1"_s.arg(i));
        }
        QVERIFY(m_reader->texts.size() > 0xFFFF);
        agree(text("t0"));
    }

    /// A text of very many keys is refused or read, but not walked over and over.
    void manyKeysTakeNoSquareOfTime()
    {
        std::string body;
        for (int i = 0; i < 60000; ++i)
            body += yes("key " + std::to_string(i));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(ZELKPropertyList::read(list(body)).error.isEmpty());
        const qint64 allowed = 20 * timer.restart() + 200;
        QVERIFY(m_reader->reader.read(list(body)).properties);
        QVERIFY2(timer.elapsed() < allowed, qPrintable(u"%1 ms"_s.arg(timer.elapsed())));
    }

private:
    struct Reader
    {
        ZELKStringPool texts;
        ZELKPackedProperties properties{texts};
        ZELKPropertyTextReader reader{texts, properties};
    };

    /// Both readers must say the same of the text.
    void agree(const std::string &text)
    {
        const ZELKPropertyTextReader::Result result = m_reader->reader.read(text);
        // A log meets texts only as valid UTF-8, so that faulty bytes are replaced first.
        const ZELKPropertyList::Result whole =
            ZELKPropertyList::read(QString::fromStdString(text).toStdString());
        QString expected = whole.error;
        if (expected.isEmpty())
            expected = whole.value.userType() == qMetaTypeId<ZELKDictionary>()
                           ? LogDump::exact(whole.value)
                           : u"The properties are not a dictionary."_s;
        const QString actual = result.properties
                                   ? LogDump::exact(m_reader->properties.unpack(*result.properties))
                                   : result.error;
        QVERIFY2(actual == expected, qPrintable(u"read %1\nnot  %2\nin %3"_s.arg(
                                         actual, expected, QString::fromStdString(text))));
    }

    std::unique_ptr<Reader> m_reader;
};

QTEST_GUILESS_MAIN(TestPropertyText)
#include "tst_property_text.moc"
