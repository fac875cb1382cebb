#include "ZELKStringPool.h"

#include <QtTest>

#include <string>
#include <vector>

using namespace Qt::StringLiterals;

using namespace std::literals;

class TestStringPool : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsOneNumberForOneText()
    {
        ZELKStringPool pool;
        QCOMPARE(pool.find("a"), ZELKStringPool::nil);
        QCOMPARE(pool.intern("a"sv), 1U);
        QCOMPARE(pool.intern(u"ä"_s), 2U);
        QCOMPARE(pool.intern("a"sv), 1U);
        QCOMPARE(pool.find("\xc3\xa4"), 2U);
        QCOMPARE(pool.string(2), u"ä"_s);
        QCOMPARE(pool.size(), 2U);

        const auto empty = pool.intern(std::string_view());
        QVERIFY(empty != ZELKStringPool::nil);
        QCOMPARE(pool.intern(QString()), empty);
        QVERIFY(pool.string(ZELKStringPool::nil).isNull());
        QVERIFY(pool.string(empty).isEmpty() && !pool.string(empty).isNull());
        QVERIFY(pool.view(ZELKStringPool::nil).empty());

        const std::string zero(1, '\0');
        const std::string zeros(9, '\0');
        QVERIFY(pool.intern(""sv) != pool.intern(zero));
        QVERIFY(pool.intern(zero) != pool.intern(zeros));
        QCOMPARE(pool.view(pool.find(zeros)), std::string_view(zeros));
    }

    void textsStayInPlaceWhileThePoolGrows()
    {
        ZELKStringPool pool;
        constexpr ZELKStringPool::Id count = 200000;
        std::vector<const char *> places;
        const auto text = [](ZELKStringPool::Id i) {
            // Some that are longer than a share of a block, and one that is longer than a block.
            return std::to_string(i) + std::string(i % 5000 == 0 ? 10000 + i : 0, 'x');
        };
        for (ZELKStringPool::Id i = 1; i <= count; ++i) {
            QCOMPARE(pool.intern(text(i)), i);
            places.push_back(pool.view(i).data());
        }
        for (ZELKStringPool::Id i = 1; i <= count; ++i) {
            const std::string expected = text(i);
            QCOMPARE(pool.find(expected), i);
            QVERIFY(pool.view(i) == expected);
            QVERIFY(pool.view(i).data() == places[i - 1]);
        }
        QCOMPARE(pool.size(), std::size_t(count));
    }
};

QTEST_GUILESS_MAIN(TestStringPool)
#include "tst_string_pool.moc"
