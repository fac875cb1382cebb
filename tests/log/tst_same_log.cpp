// Events taken in as dictionaries and events read in place from their bytes make the same log.
#include "LogFixture.h"
#include "PropertyTexts.h"
#include "ZELKPropertyList.h"

using namespace Qt::StringLiterals;

namespace {

/// Events in order of time; `oddness` of a hundred are unusual in some way.
Events makeEvents(unsigned seed, std::size_t oddness, int count)
{
    PropertyTexts texts(seed);
    const QStringList names =
        u"Power state changed|Power state changed|System will sleep|System has powered on|startup|"
        "Can system sleep|System will not sleep|Starting monitor|Stopping monitor|accounting boot|"
        "accounting shut down|System will restart"_s.split(u'|');
    const QStringList oddTexts = u"|Lüfter aus|🔋|\uFEFFx|a\tb|System will sleep|"_s.split(u'|')
                                 << QString(300, u'é');
    const auto oneOf = [&](const QStringList &list) {
        return list.at(qsizetype(texts.upTo(list.size() - 1)));
    };
    const auto odd = [&] { return texts.upTo(99) < oddness; };
    const auto properties = [&] {
        std::string text = odd() ? texts.mutated(texts.text(oddness)) : texts.text(oddness);
        std::erase(text, '\0');
        return QString::fromStdString(text);
    };
    Events made;
    double now = 1000;
    for (int i = 0; i < count; ++i) {
        now += texts.once(3) ? 2.5 : double(texts.upTo(7200));
        const QString event = oneOf(odd() ? oddTexts : names);
        const bool isReading = event == ZELKEventPowerStateChanged;
        const QString monitor = isReading ? ZELKMonitorPowerSource : ZELKMonitorPowerEvents;
        ZELKRawEvent raw =
            ZELKMakeRawEvent(ZELKDate(odd() ? -now : now), event, odd() ? oneOf(oddTexts) : monitor,
                             isReading || odd() ? properties() : QString(ZELKEventNoProperties));
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

/// The event as the bytes it is kept as, exactly so many, so that a look beyond them is noticed.
std::vector<char> blobOf(const ZELKRawEvent &event)
{
    const QByteArray bytes = ZELKPropertyList::writeBinary(QVariant::fromValue(event)).bytes;
    return {bytes.begin(), bytes.end()};
}

/// How many of them were read in place.
int addInPlace(ZELKLWCLog &log, const Events &events)
{
    int inPlace = 0;
    ZELKRawEventReader reader;
    log.beginExternalEntries();
    for (const ZELKRawEvent &event : events) {
        const std::vector<char> blob = blobOf(event);
        const ZELKRawEventReader::Kind kind = reader.read({blob.data(), blob.size()});
        if (kind == ZELKRawEventReader::Kind::Texts)
            log.addExternalEntry(reader.view());
        else if (kind == ZELKRawEventReader::Kind::Dictionary)
            log.addExternalEntry(reader.dictionary());
        inPlace += kind == ZELKRawEventReader::Kind::Texts;
    }
    log.endExternalEntries();
    return inPlace;
}

/// What a blob of the event holds: the property-list form may not keep everything as it was.
Events throughBytes(const Events &events)
{
    Events read;
    for (const ZELKRawEvent &event : events) {
        const std::vector<char> blob = blobOf(event);
        const QVariant value = ZELKPropertyList::read({blob.data(), blob.size()}).value;
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
        const NamedRows<int, int> row("oddness", "seed");
        for (const int oddness : {0, 1, 10, 40})
            for (int seed = 1; seed <= 3; ++seed)
                row(qPrintable(u"%1 of a hundred odd, %2"_s.arg(oddness).arg(seed)), oddness, seed);
    }

    void bothWaysMakeTheSameLog()
    {
        QFETCH(int, oddness);
        QFETCH(int, seed);
        const Events all = makeEvents(unsigned(seed * 100 + oddness), std::size_t(oddness), 600);
        const Events read = throughBytes(all);
        QStringList seen[2];
        int inPlace = 0;
        for (const bool asDictionaries : {true, false}) {
            const Console console;
            LogFixture fixture(Texts::English);
            for (qsizetype at = 0; at < all.size(); at += 90) {
                if (asDictionaries)
                    fixture.addAll(read.mid(at, 90));
                else
                    inPlace += addInPlace(fixture.log, all.mid(at, 90));
            }
            fixture.show(ZELKDate(oneDay), ZELKDate(8 * oneDay - 1));
            QVERIFY(fixture.log.count() > 100);
            seen[asDictionaries] = LogDump::of(fixture.log) + Console::lines();
        }
        QCOMPARE(seen[0], seen[1]);                    // names the first line that differs
        QVERIFY(inPlace >= (oddness > 10 ? 50 : 400)); // or the comparison says nothing
    }
};

QTEST_GUILESS_MAIN(TestSameLog)
#include "tst_same_log.moc"
