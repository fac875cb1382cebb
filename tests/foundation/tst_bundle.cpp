#include "Files.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKPropertyList.h"
#include "ZELKStringTables.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class TestBundle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsInfo()
    {
        const QTemporaryDir folder;
        const ZELKDictionary info{{u"CFBundleIdentifier"_s, u"org.example.thing"_s},
                                  {u"CFBundleExecutable"_s, u"../../bin/thing"_s},
                                  {u"Count"_s, 3LL}};
        writeFile(folder.filePath(u"Info.plist"_s),
                  ZELKPropertyList::writeXml(QVariant::fromValue(info)).bytes);
        writeFile(folder.filePath(u"agent.plist"_s), "x");

        const ZELKBundle bundle(folder.path() + u"/./"_s);
        QVERIFY(bundle.isValid());
        QCOMPARE(bundle.path(), folder.path());
        QCOMPARE(bundle.infoDictionary(), info);
        QCOMPARE(bundle.bundleIdentifier(), u"org.example.thing"_s);
        QVERIFY(!bundle.objectForInfoDictionaryKey(u"Missing"_s).isValid());
        QCOMPARE(bundle.executablePath(), QDir::cleanPath(folder.path() + u"/../../bin/thing"_s));
        QCOMPARE(bundle.pathForResource(u"agent"_s, u"plist"_s), folder.filePath(u"agent.plist"_s));
        QCOMPARE(bundle.pathForResource(u"agent.plist"_s, {}), folder.filePath(u"agent.plist"_s));
        QCOMPARE(bundle.pathForResource(u"agent"_s, u"rtf"_s), QString());
        QCOMPARE(bundle.pathForResource({}, {}), QString());
    }

    void isInvalidWithoutAGoodInfo()
    {
        const QTemporaryDir folder;
        QVERIFY(!ZELKBundle(folder.path()).isValid());
        for (const char *bytes : {"", "<plist><dict><key>a</key>", "<plist><array/></plist>"}) {
            writeFile(folder.filePath(u"Info.plist"_s), bytes);
            const ZELKBundle bundle(folder.path());
            QVERIFY(!bundle.isValid());
            QVERIFY(bundle.infoDictionary().isEmpty());
            QVERIFY(bundle.executablePath().isEmpty());
        }
    }

    void findsTexts_data()
    {
        const Rows<QString, QString, QString, QString> row;
        const QString power = u"org.example.power"_s;
        row("language", "de", "Monitor", power, "Strom");
        row("country falls back", "de_AT", "Monitor", power, "Strom");
        row("key falls back to English", "de", "Monitor", "org.example.lid", "Lid");
        row("table is the context", "en", "General", power, "Something else");
        row("unknown table", "en", "Nowhere", power, QString());
    }
    void findsTexts()
    {
        const auto [language, table, key, text] = Rows<QString, QString, QString, QString>::fetch();
        const ZELKStringTables tables(QStringLiteral(ZELK_TEST_TABLES), language);
        QCOMPARE(tables.lookUp(table, key), text);
        QCOMPARE(tables.lookUp(table, key).isNull(), text.isNull());
    }

    void mainBundleCanBeChosen()
    {
        qputenv("ZELK_MAIN_BUNDLE", "/somewhere/else");
        QCOMPARE(ZELKBundle::mainBundlePath(u"/usr/bin"_s), u"/somewhere/else"_s);
        qunsetenv("ZELK_MAIN_BUNDLE");
        QCOMPARE(ZELKBundle::mainBundlePath(u"/usr/bin"_s), u"/usr/share/lullwatch"_s);
    }
};

QTEST_GUILESS_MAIN(TestBundle)
#include "tst_bundle.moc"
