#include "ZELKAssertion.h"
#include "ZELKBundle.h"
#include "ZELKDictionary.h"
#include "ZELKLWClientAppDelegate.h"
#include "ZELKUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

class DelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registersDefaults_data();
    void registersDefaults();
    void missingDefaults();
    void keepsOtherInitialValues();
    void answersScripts();
};

QByteArray plist(const char *body)
{
    return QByteArrayLiteral("<plist version=\"1.0\">") + body + "</plist>";
}

void write(const QTemporaryDir &folder, const QByteArray &bytes)
{
    QFile file(folder.filePath(QStringLiteral("Defaults.plist")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

void DelegateTest::registersDefaults_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("range");
    QTest::addColumn<QStringList>("initialKeys");

    QTest::newRow("with initial values")
        << plist("<dict><key>dateRange</key><integer>8</integer><key>initialValues</key><array>"
                 "<string>dateRange</string></array></dict>")
        << QStringLiteral("8") << QStringList{QStringLiteral("dateRange")};
    QTest::newRow("without") << plist("<dict><key>dateRange</key><integer>3</integer></dict>")
                             << QStringLiteral("3") << QStringList{};
    QTest::newRow("with none named")
        << plist("<dict><key>dateRange</key><integer>3</integer><key>initialValues</key><array/></dict>")
        << QStringLiteral("3") << QStringList{};
    QTest::newRow("unreadable") << QByteArrayLiteral("<plist") << QString() << QStringList{};
    QTest::newRow("no dictionary") << plist("<array/>") << QString() << QStringList{};
}

void DelegateTest::registersDefaults()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    write(folder, bytes);
    ZELKUserDefaults defaults(folder.filePath(QStringLiteral("defaults.ini")));
    ZELKLWClientAppDelegate::initialize(ZELKBundle(folder.path()), defaults);
    QTEST(defaults.stringForKey(QStringLiteral("dateRange")), "range");
    QTEST(defaults.initialValues().keys(), "initialKeys");
    QVERIFY(!QFile::exists(folder.filePath(QStringLiteral("defaults.ini"))));
}

void DelegateTest::missingDefaults()
{
    const QTemporaryDir folder;
    ZELKUserDefaults defaults(folder.filePath(QStringLiteral("defaults.ini")));
    try {
        ZELKLWClientAppDelegate::registerDefaults(ZELKBundle(folder.path()), defaults);
        QFAIL("nothing was raised");
    } catch (const ZELKAssertionFailure &failure) {
        QCOMPARE(failure.message(), QStringLiteral("ZELKLWClientAppDelegate Missing 'Defaults.plist'."));
        QCOMPARE(failure.file(), QStringLiteral("client/ZELKLWClientAppDelegate"));
        QCOMPARE(failure.line(), 33);
    }
}

void DelegateTest::keepsOtherInitialValues()
{
    const QTemporaryDir folder;
    write(folder, plist("<dict><key>a</key><string>new</string><key>initialValues</key><array>"
                        "<string>a</string></array></dict>"));
    ZELKUserDefaults defaults(folder.filePath(QStringLiteral("defaults.ini")));
    defaults.setInitialValues(
        {{QStringLiteral("a"), QStringLiteral("old")}, {QStringLiteral("b"), QStringLiteral("kept")}});
    defaults.setValue(QStringLiteral("a"), QStringLiteral("the user's"));
    ZELKLWClientAppDelegate::registerDefaults(ZELKBundle(folder.path()), defaults);
    QCOMPARE(defaults.initialValues().string(QStringLiteral("a")), QStringLiteral("new"));
    QCOMPARE(defaults.initialValues().string(QStringLiteral("b")), QStringLiteral("kept"));
    QCOMPARE(defaults.stringForKey(QStringLiteral("a")), QStringLiteral("the user's"));
}

void DelegateTest::answersScripts()
{
    const ZELKLWClientAppDelegate delegate;
    QVERIFY(delegate.applicationDelegateHandlesKey(QStringLiteral("database")));
    QVERIFY(!delegate.applicationDelegateHandlesKey(QStringLiteral("Database")));
    QVERIFY(!delegate.applicationDelegateHandlesKey({}));
    QVERIFY(delegate.applicationShouldTerminateAfterLastWindowClosed());
    QVERIFY(!delegate.canOpenUserGuide());
}

} // namespace

QTEST_GUILESS_MAIN(DelegateTest)

#include "tst_delegate.moc"
