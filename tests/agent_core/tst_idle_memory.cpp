#include "ZELKIdleMemory.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

class TestIdleMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksOnceAndNeverWhileBusy()
    {
        bool isQuiet = false;
        ZELKIdleMemory memory([&] { return isQuiet; });
        const QSignalSpy gaveBack(&memory, &ZELKIdleMemory::gaveBack);
        memory.workDidEnd();
        QCoreApplication::processEvents();
        QCOMPARE(gaveBack.size(), 0);
        isQuiet = true;
        QCoreApplication::processEvents();
        QCOMPARE(gaveBack.size(), 0); // nobody said that something ended
        for (int i = 0; i < 3; ++i)
            memory.workDidEnd();
        QTRY_COMPARE(gaveBack.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(gaveBack.size(), 1);
    }

    /// Code, constants, relocated tables, data that changed, and the heap are all as they were.
    void losesNothing()
    {
        static int counter = 7;
        counter += 35;
        const std::vector<std::unique_ptr<QByteArray>> kept = [] {
            std::vector<std::unique_ptr<QByteArray>> arrays;
            for (int i = 0; i < 1000; ++i)
                arrays.push_back(std::make_unique<QByteArray>(1000, char('a' + i % 26)));
            return arrays;
        }();
        for (int i = 0; i < 3; ++i)
            ZELKIdleMemory::giveBack();
        QCOMPARE(counter, 42);
        for (std::size_t i = 0; i < kept.size(); ++i)
            QCOMPARE(kept[i]->count(char('a' + i % 26)), 1000);
        QVERIFY(QRegularExpression(u"^\\p{Lu}\\w+$"_s).match(u"Überall"_s).isValid());
        QCOMPARE(QString::number(std::strtod("2.5", nullptr)), u"2.5"_s);
    }
};

QTEST_GUILESS_MAIN(TestIdleMemory)
#include "tst_idle_memory.moc"
