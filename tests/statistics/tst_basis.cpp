// Whether statistics still hold when entries have arrived.
#include "StatisticsFixture.h"

#include <QTest>

class BasisTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// What claims to hold, whatever has arrived, is what would be computed.
    void holdsWhileNothingBearsOnIt()
    {
        std::mt19937 random(1120);
        int held = 0;
        int ended = 0;
        for (int round = 0; round < 150; ++round) {
            const QString script = StatisticsFixture::randomScript(random);
            QStringList words = script.split(u' ');
            const qsizetype half = words.size() / 2;
            StatisticsFixture fixture(words.first(half).join(u' '));
            Selection::Entries entries = fixture.log.entry();
            entries.removeIf([&](const ZELKLWCLogEntry *) { return random() % 3 == 0; });
            if (entries.size() < 2)
                continue;
            if (round % 3 == 0) // some are late
                std::shuffle(words.begin() + half, words.end(), random);
            const Selection selection(entries);
            for (qsizetype i = half; i < words.size(); ++i) {
                fixture.addAll({StatisticsFixture::event(words.at(i))});
                ++(selection.isCurrent() ? held : ended);
                if (!selection.isCurrent())
                    continue;
                const Selection anew(entries);
                QVERIFY2(anew.attributes() == selection.attributes() &&
                             anew.attributeValues() == selection.attributeValues(),
                         qPrintable(script));
            }
        }
        QVERIFY2(held > 150 && ended > 150, qPrintable(u"%1 %2"_s.arg(held).arg(ended)));
        StatisticsFixture goesOn(u"s10 w40"_s, 600.0);
        QVERIFY(!Selection(goesOn.log.entry()).isCurrent());
        StatisticsFixture hasNoBattery(u"s10 w40"_s);
        const Selection withoutSleeps(hasNoBattery.log.entry());
        hasNoBattery.addAll({StatisticsFixture::event(u"p500"_s)});
        QVERIFY(withoutSleeps.isCurrent());
        hasNoBattery.addAll({StatisticsFixture::event(u"b600:80"_s)});
        QVERIFY(!withoutSleeps.isCurrent());
    }
};

QTEST_MAIN(BasisTest)

#include "tst_basis.moc"
