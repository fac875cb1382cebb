#include "ZELKPropertyList.h"

#include <QtTest>

#include <clocale>

/// A program of its own, as it can only run where a locale with a decimal comma is installed.
class TestLocale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void propertyListsHaveDecimalPoints()
    {
        if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
            QSKIP("The locale de_DE.UTF-8 is not installed.");
        const QByteArray xml = ZELKPropertyList::writeXml(1.5).bytes;
        QVERIFY(xml.contains("<real>1.5</real>"));
        QCOMPARE(ZELKPropertyList::read({xml.constData(), std::size_t(xml.size())}).value, QVariant(1.5));
    }
};

QTEST_GUILESS_MAIN(TestLocale)
#include "tst_locale.moc"
