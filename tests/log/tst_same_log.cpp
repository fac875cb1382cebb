// Events taken in as dictionaries and events read in place from their bytes make the same log.
#include "LogDump.h"
#include "LogFixture.h"
#include "PropertyTexts.h"
#include "ZELKPropertyList.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

QString monitorFor(const QString &event)
{
    return event == ZELKEventPowerStateChanged ? QString(ZELKMonitorPowerSource)
                                               : QString(ZELKMonitorPowerEvents);
}

/// Events in order of time; `oddness` of a hundred are unusual in some way.
QList<ZELKRawEvent> events(unsigned seed, std::size_t oddness, int count)
{
    PropertyTexts texts(seed);
    const std::vector<QString> names{ZELKEventPowerStateChanged,  ZELKEventPowerStateChanged,
                                     ZELKEventPowerStateChanged,  ZELKEventSystemWillSleep,
                                     ZELKEventSystemHasPoweredOn, ZELKEventCanSystemSleep,
                                     ZELKEventSystemWillNotSleep, ZELKEventStartingMonitor,
                                     ZELKEventStoppingMonitor,    ZELKEventStartup,
                                     ZELKEventAccountingBoot,     ZELKEventAccountingShutDown,
                                     ZELKEventSystemWillRestart};
    const std::vector<QString> oddTexts{u""_s,
                                        u"Lüfter aus"_s,
                                        u"🔋"_s,
                                        u"\uFEFFx"_s,
                                        u"a\tb"_s,
                                        QString(300, u'é'),
                                        ZELKEventSystemWillSleep};
    QList<ZELKRawEvent> made;
    double now = 1000;
    for (int i = 0; i < count; ++i) {
        now += texts.once(3) ? 2.5 : double(texts.upTo(7200));
        const auto odd = [&] { return texts.upTo(99) < oddness; };
        const QString event = odd() ? texts.oneOf(oddTexts) : texts.oneOf(names);
        const QString monitor = odd() ? texts.oneOf(oddTexts) : monitorFor(event);
        QString properties = ZELKEventNoProperties;
        if (event == ZELKEventPowerStateChanged || odd()) {
            std::string text = texts.text(oddness);
            if (odd())
                text = texts.mutated(text);
            text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
            properties = QString::fromStdString(text);
        }
        ZELKRawEvent raw = ZELKMakeRawEvent(ZELKDate(odd() ? -now : now), event, monitor, properties);
        if (odd())
            raw.insert(ZELKEventKeyDate, texts.oneOf<QVariant>({u"rubbish"_s, u""_s, 5LL, 7.5, u"12"_s}));
        if (odd() && texts.once(4))
            raw.remove(raw.keys().at(qsizetype(texts.upTo(3))));
        if (odd() && texts.once(4))
            raw.insert(u"more"_s, QVariantList{1LL});
        made.append(raw);
    }
    return made;
}

void addInPlace(ZELKLWCLog &log, const QList<ZELKRawEvent> &events, int *inPlace)
{
    ZELKRawEventReader reader;
    log.beginExternalEntries();
    for (const ZELKRawEvent &event : events) {
        const QByteArray bytes = ZELKPropertyList::writeBinary(QVariant::fromValue(event)).bytes;
        // A copy of exactly the bytes, so that a look beyond them is noticed.
        const std::vector<char> blob(bytes.begin(), bytes.end());
        switch (reader.read({blob.data(), blob.size()})) {
        case ZELKRawEventReader::Kind::Texts:
            ++*inPlace;
            log.addExternalEntry(reader.view());
            break;
        case ZELKRawEventReader::Kind::Dictionary:
            log.addExternalEntry(reader.dictionary());
            break;
        case ZELKRawEventReader::Kind::Faulty:
            break;
        }
    }
    log.endExternalEntries();
}

/// What a blob of the event holds: the property-list form may not keep everything as it was.
QList<ZELKRawEvent> throughBytes(const QList<ZELKRawEvent> &events)
{
    QList<ZELKRawEvent> read;
    for (const ZELKRawEvent &event : events) {
        const QByteArray bytes = ZELKPropertyList::writeBinary(QVariant::fromValue(event)).bytes;
        const auto value = ZELKPropertyList::read({bytes.constData(), std::size_t(bytes.size())}).value;
        if (value.isValid())
            read.append(value.value<ZELKRawEvent>());
    }
    return read;
}

} // namespace

class TestSameLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothWaysMakeTheSameLog_data()
    {
        QTest::addColumn<int>("oddness");
        QTest::addColumn<int>("seed");
        for (const int oddness : {0, 1, 10, 40})
            for (int seed = 1; seed <= 3; ++seed)
                QTest::addRow("%d of a hundred odd, %d", oddness, seed) << oddness << seed;
    }

    void bothWaysMakeTheSameLog()
    {
        QFETCH(int, oddness);
        QFETCH(int, seed);
        const auto all = events(unsigned(seed * 100 + oddness), std::size_t(oddness), 600);
        const auto read = throughBytes(all);
        QStringList dumps;
        QStringList consoles;
        int inPlace = 0;
        for (const bool asDictionaries : {true, false}) {
            const Console console;
            LogFixture fixture(Texts::English);
            for (qsizetype at = 0; at < all.size(); at += 90) {
                if (asDictionaries)
                    fixture.log.addExternalEntries(read.mid(at, 90));
                else
                    addInPlace(fixture.log, all.mid(at, 90), &inPlace);
            }
            fixture.show(ZELKDate(oneDay), ZELKDate(8 * oneDay - 1));
            QVERIFY(fixture.log.count() > 100);
            consoles.append(Console::lines().join(u'\n'));
            dumps.append(LogDump::of(fixture.log).join(u'\n'));
        }
        const QStringList first = dumps.at(0).split(u'\n');
        const QStringList second = dumps.at(1).split(u'\n');
        for (qsizetype i = 0; i < qMin(first.size(), second.size()); ++i)
            QCOMPARE(second.at(i), first.at(i));
        QCOMPARE(second.size(), first.size());
        QCOMPARE(consoles.at(1), consoles.at(0));
        QVERIFY(inPlace >= (oddness > 10 ? 50 : 400)); // or the comparison says nothing
    }
};

QTEST_GUILESS_MAIN(TestSameLog)
#include "tst_same_log.moc"
