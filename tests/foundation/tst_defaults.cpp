#include "ZELKAssertion.h"
#include "ZELKDate.h"
#include "ZELKUserDefaults.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

class TestDefaults : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_path;

private Q_SLOTS:
    void init() { m_path = m_folder.filePath(s(QTest::currentTestFunction())); }

    void userValueStandsOverRegistered()
    {
        ZELKUserDefaults defaults(m_path);
        QVERIFY(!defaults.value(s("a.b")).isValid());
        defaults.registerDefaults({{s("a.b"), 1}, {s("c"), s("x")}});
        defaults.registerDefaults({{s("d"), true}});
        QCOMPARE(defaults.integerForKey(s("a.b")), 1);
        defaults.setValue(s("a.b"), 2);
        QCOMPARE(defaults.integerForKey(s("a.b")), 2);
        defaults.setValue(s("a.b"), QVariant());
        QCOMPARE(defaults.integerForKey(s("a.b")), 1);
        QCOMPARE(defaults.stringForKey(s("c")), s("x"));
        QCOMPARE(defaults.boolForKey(s("d")), true);
    }

    void survivesTheFile_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<double>("number");
        QTest::addColumn<bool>("boolean");
        QTest::newRow("true") << QVariant(true) << 1.0 << true;
        QTest::newRow("false") << QVariant(false) << 0.0 << false;
        QTest::newRow("real") << QVariant(0.1) << 0.1 << true;
        QTest::newRow("date's seconds") << QVariant(731340131.25) << 731340131.25 << true;
        QTest::newRow("negative") << QVariant(-7) << -7.0 << true;
        QTest::newRow("text") << QVariant(s("a, \"b\"; é = %1\n")) << 0.0 << false;
        QTest::newRow("bytes") << QVariant(QByteArray("\x00\xff@\n", 4)) << 0.0 << false;
        QTest::newRow("list") << QVariant(QVariantList{1, s("two")}) << 0.0 << false;
    }

    void survivesTheFile()
    {
        QFETCH(QVariant, value);
        const QString key = s("ZELKThing.duration.") + s(QTest::currentDataTag());
        ZELKUserDefaults(m_path).setValue(key, value);
        const ZELKUserDefaults again(m_path);
        QTEST(again.doubleForKey(key), "number");
        QTEST(again.boolForKey(key), "boolean");
        if (value.metaType() == QMetaType::fromType<QString>() || value.typeId() >= QMetaType::QVariantList)
            QCOMPARE(again.value(key), value);
    }

    void tellsOfEffectiveChanges()
    {
        const QString key = s("k");
        ZELKUserDefaults(m_path).setValue(key, true);
        ZELKUserDefaults defaults(m_path);
        QSignalSpy spy(&defaults, &ZELKUserDefaults::valueChanged);
        defaults.setValue(key, true); // a text in the file
        defaults.registerDefaults({{key, false}});
        QCOMPARE(spy.size(), 0);
        defaults.setValue(key, QVariant());
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.last().at(1).toBool(), false);
        defaults.setValue(key, false);
        QCOMPARE(spy.size(), 1);
        defaults.setValue(key, QVariant());
        defaults.setValue(s("other"), QVariant());
        QCOMPARE(spy.size(), 1);
        defaults.registerDefaults({{s("new"), 5}});
        QCOMPARE(spy.size(), 2);
        defaults.setValue(s("new"), 6.0);
        QCOMPARE(spy.size(), 3);
        defaults.setValue(s("new"), 6);
        QCOMPARE(spy.size(), 3);
    }

    void refusesWhatAFileCannotKeep()
    {
        ZELKUserDefaults defaults(m_path);
        QVERIFY_EXCEPTION_THROWN(defaults.setValue(s("k"), QVariant::fromValue(ZELKDate())),
                                 ZELKAssertionFailure);
        QVERIFY(!defaults.value(s("k")).isValid());
    }
};

QTEST_GUILESS_MAIN(TestDefaults)
#include "tst_defaults.moc"
