#include "ZELKBundle.h"
#include "ZELKPropertyList.h"
#include "ZELKStringTables.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class TestBundle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsInfo()
    {
        const QTemporaryDir folder;
        const ZELKDictionary info{{s("CFBundleIdentifier"), s("org.example.thing")},
                                  {s("CFBundleExecutable"), s("../../bin/thing")},
                                  {s("Count"), 3LL}};
        writeFile(folder.filePath(s("Info.plist")),
                  ZELKPropertyList::writeXml(QVariant::fromValue(info)).bytes);
        writeFile(folder.filePath(s("agent.plist")), "x");

        const ZELKBundle bundle(folder.path() + s("/./"));
        QVERIFY(bundle.isValid());
        QCOMPARE(bundle.path(), folder.path());
        QCOMPARE(bundle.infoDictionary(), info);
        QCOMPARE(bundle.bundleIdentifier(), s("org.example.thing"));
        QVERIFY(!bundle.objectForInfoDictionaryKey(s("Missing")).isValid());
        QCOMPARE(bundle.executablePath(), QDir::cleanPath(folder.path() + s("/../../bin/thing")));
        QCOMPARE(bundle.pathForResource(s("agent"), s("plist")), folder.filePath(s("agent.plist")));
        QCOMPARE(bundle.pathForResource(s("agent.plist"), {}), folder.filePath(s("agent.plist")));
        QCOMPARE(bundle.pathForResource(s("agent"), s("rtf")), QString());
        QCOMPARE(bundle.pathForResource({}, {}), QString());
    }

    void isInvalidWithoutAGoodInfo_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("damaged") << QByteArray("<plist><dict><key>a</key>");
        QTest::newRow("not a dictionary") << QByteArray("<plist><array/></plist>");
    }

    void isInvalidWithoutAGoodInfo()
    {
        QFETCH(QByteArray, bytes);
        const QTemporaryDir folder;
        QVERIFY(!ZELKBundle(folder.path()).isValid());
        writeFile(folder.filePath(s("Info.plist")), bytes);
        const ZELKBundle bundle(folder.path());
        QVERIFY(!bundle.isValid());
        QVERIFY(bundle.infoDictionary().isEmpty());
        QVERIFY(bundle.executablePath().isEmpty());
    }

    void emptyBundleAnswersTheKey()
    {
        const ZELKBundle bundle;
        QVERIFY(!bundle.isValid());
        QCOMPARE(bundle.localizedStringForKey(s("key"), {}, s("General")), s("key"));
        QCOMPARE(bundle.localizedStringForKey(s("key"), s("value"), s("General")), s("value"));
        QCOMPARE(bundle.pathForResource(s("etc"), {}), QString());
    }

    void findsTexts_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        const QString power = s("org.example.power");
        QTest::newRow("language") << s("de") << s("Monitor") << power << s("Strom");
        QTest::newRow("country falls back") << s("de_AT") << s("Monitor") << power << s("Strom");
        QTest::newRow("key falls back to English")
            << s("de") << s("Monitor") << s("org.example.lid") << s("Lid");
        QTest::newRow("unknown language") << s("C") << s("Monitor") << power << s("Power");
        QTest::newRow("table is the context") << s("en") << s("General") << power << s("Something else");
        QTest::newRow("unknown table") << s("en") << s("Nowhere") << power << QString();
        QTest::newRow("unknown key") << s("de") << s("Monitor") << s("org.example.none") << QString();
        QTest::newRow("empty key") << s("de") << s("Monitor") << QString() << QString();
    }

    void findsTexts()
    {
        QFETCH(QString, language);
        QFETCH(QString, table);
        QFETCH(QString, key);
        QFETCH(QString, text);
        const ZELKStringTables tables(s(ZELK_TEST_TABLES), language);
        QCOMPARE(tables.lookUp(table, key), text);
        QCOMPARE(tables.lookUp(table, key).isNull(), text.isNull());
    }

    void bundleReadsItsTables()
    {
        const ZELKBundle bundle(QFileInfo(s(ZELK_TEST_TABLES)).path(), s("de"));
        QCOMPARE(bundle.localizedStringForKey(s("org.example.power"), s("other"), s("Monitor")), s("Strom"));
    }

    void mainBundleCanBeChosen()
    {
        qputenv("ZELK_MAIN_BUNDLE", "/somewhere/else");
        QCOMPARE(ZELKBundle::mainBundlePath(s("/usr/bin")), s("/somewhere/else"));
        qunsetenv("ZELK_MAIN_BUNDLE");
        QCOMPARE(ZELKBundle::mainBundlePath(s("/usr/bin")), s("/usr/share/lullwatch"));
    }
};

QTEST_GUILESS_MAIN(TestBundle)
#include "tst_bundle.moc"
