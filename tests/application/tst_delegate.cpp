#include "Files.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKDictionary.h"
#include "ZELKLWClientAppDelegate.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

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

class DelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registersDefaults_data()
    {
        const Rows<QByteArray, QString, QStringList> row;
        row("with initial values",
            "<dict><key>dateRange</key><integer>8</integer><key>initialValues</key><array>"
            "<string>dateRange</string></array></dict>",
            "8", QStringList{u"dateRange"_s});
        row("without", "<dict><key>dateRange</key><integer>3</integer></dict>", "3");
        row("unreadable", "<dict", "");
        row("no dictionary", "<array/>", "");
    }
    void registersDefaults()
    {
        const auto [bytes, range, initialKeys] = Rows<QByteArray, QString, QStringList>::fetch();
        DefaultsBed bed;
        bed.write(bytes);
        ZELKLWClientAppDelegate::initialize(ZELKBundle(bed.folder.path()), bed.defaults);
        QCOMPARE(bed.defaults.stringForKey(u"dateRange"_s), range);
        QCOMPARE(bed.defaults.initialValues().keys(), initialKeys);
        QVERIFY(!QFile::exists(bed.folder.filePath(u"defaults.ini"_s)));
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
};

} // namespace

QTEST_GUILESS_MAIN(DelegateTest)

#include "tst_delegate.moc"
