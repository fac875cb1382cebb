#include "Raised.h"
#include "Rows.h"
#include "ZELKDate.h"
#include "ZELKUserDefaults.h"

#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class TestDefaults : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_path;

private Q_SLOTS:
    void init() { m_path = m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction())); }

    void userValueStandsOverRegistered()
    {
        ZELKUserDefaults defaults(m_path);
        QVERIFY(!defaults.value(u"a.b"_s).isValid());
        defaults.registerDefaults({{u"a.b"_s, 1}, {u"c"_s, u"x"_s}});
        defaults.registerDefaults({{u"d"_s, true}});
        QCOMPARE(defaults.integerForKey(u"a.b"_s), 1);
        defaults.setValue(u"a.b"_s, 2);
        QCOMPARE(defaults.integerForKey(u"a.b"_s), 2);
        defaults.setValue(u"a.b"_s, QVariant());
        QCOMPARE(defaults.integerForKey(u"a.b"_s), 1);
        QCOMPARE(defaults.stringForKey(u"c"_s), u"x"_s);
        QCOMPARE(defaults.boolForKey(u"d"_s), true);
    }

    void survivesTheFile_data()
    {
        const Rows<QVariant, double, bool> row;
        row("true", true, 1.0, true);
        row("real", 0.1, 0.1, true);
        row("text", u"a, \"b\"; é = %1\n"_s, 0.0, false);
        row("bytes", QByteArray("\x00\xff@\n", 4), 0.0, false);
        row("list", QVariantList{1, u"two"_s}, 0.0, false);
    }
    void survivesTheFile()
    {
        const auto [value, number, boolean] = Rows<QVariant, double, bool>::fetch();
        const QString key = u"ZELKThing.duration."_s + QString::fromLatin1(QTest::currentDataTag());
        ZELKUserDefaults(m_path).setValue(key, value);
        const ZELKUserDefaults again(m_path);
        QCOMPARE(again.doubleForKey(key), number);
        QCOMPARE(again.boolForKey(key), boolean);
        if (value.metaType() == QMetaType::fromType<QString>() || value.typeId() >= QMetaType::QVariantList)
            QCOMPARE(again.value(key), value);
    }

    void tellsOfEffectiveChanges()
    {
        const QString key = u"k"_s;
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
        defaults.setValue(u"other"_s, QVariant());
        QCOMPARE(spy.size(), 1);
        defaults.registerDefaults({{u"new"_s, 5}});
        QCOMPARE(spy.size(), 2);
        defaults.setValue(u"new"_s, 6.0);
        QCOMPARE(spy.size(), 3);
        defaults.setValue(u"new"_s, 6);
        QCOMPARE(spy.size(), 3);
    }

    void refusesWhatAFileCannotKeep()
    {
        ZELKUserDefaults defaults(m_path);
        QVERIFY(!raised([&] { defaults.setValue(u"k"_s, QVariant::fromValue(ZELKDate())); }).isEmpty());
        QVERIFY(!defaults.value(u"k"_s).isValid());
    }
};

QTEST_GUILESS_MAIN(TestDefaults)
#include "tst_defaults.moc"
