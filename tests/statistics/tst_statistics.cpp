// Statistics over entries: batteries, states, sleeps, and how they are shown.
#include "Rows.h"
#include "StatisticsFixture.h"
#include "TrueLife.h"
#include "ZELKAttributedString.h"
#include "ZELKBatterySamples.h"
#include "ZELKLWCDuration.h"
#include "ZELKLWCPresentationAssistant.h"
#include "ZELKLWCStateTracker.h"

#include <QTest>

namespace {

using Tracker = ZELKLWCStateTracker;
using Delta = ZELKChargeDelta;
using Numbers = QList<double>;

constexpr Tracker::State a = 1;
constexpr Tracker::State b = 2;

QString inWords(const Delta &delta)
{
    return u"%1/%2"_s.arg(delta.delta()).arg(delta.timeInterval());
}

QString plain(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<ZELKAttributedString>())
        return u'<' + ZELKValue::description(value) + u'>';
    return value.value<ZELKAttributedString>().string();
}

/// "key: text; key: text" of an attribute.
QString shown(const Selection &selection, const QString &key)
{
    QStringList words;
    for (const auto &[name, value] : selection.attributeForKey(key).value<ZELKDictionary>())
        words.append(name + u": "_s + plain(value));
    return words.join(u"; ");
}

} // namespace

class StatisticsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void batteries_data()
    {
        // readings as percentage, seconds, …; extremes and mean; charge, discharge and both; "% Delta"
        const Rows<Numbers, QString, QString, QVariant> row;
        row("none", Numbers{}, "-1.0:0.0:101.0", "0/0 0/0 0/0");
        row("one", Numbers{80, 7}, "80.0:80.0:80.0", "0/0 0/0 0/0");
        row("still", Numbers{80, 0, 80, 3600, 80, 7200}, "80.0:80.0:80.0", "0/0 0/0 0/7200");
        row("fall", Numbers{100, 0, 90, 600}, "100.0:95.0:90.0", "0/0 10/600 10/600", 60.0);
        row("rise and fall", Numbers{50, 0, 60, 600, 50, 1200}, "60.0:53.3:50.0", "10/600 10/600 20/1200",
            60.0);
        row("an older reading", Numbers{50, 600, 49, 0, 49, 900}, "50.0:49.3:49.0", "0/0 1/-600 1/300",
            300.0);
    }
    void batteries()
    {
        const auto [readings, extremes, deltas, perPoint] =
            Rows<Numbers, QString, QString, QVariant>::fetch();
        ZELKLWCBattery battery = ZELKLWCBattery::batteryWithName(u"BAT0"_s);
        for (qsizetype i = 0; i < readings.size(); i += 2) {
            QCOMPARE(battery.firstCapacity(), i == 0);
            battery.addCapacity(int(readings.at(i)), ZELKDate(readings.at(i + 1)));
        }
        QCOMPARE(battery.description(), extremes);
        QCOMPARE(inWords(battery.chargeDelta()) + u' ' + inWords(battery.dischargeDelta()) + u' ' +
                     inWords(battery.delta()),
                 deltas);
        const ZELKDictionary info = battery.infoDictionary();
        QCOMPARE(info.contains(u"% Delta"_s), perPoint.isValid());
        QCOMPARE(info.value(u"% Delta"_s).value<ZELKLWCDuration>().duration(), perPoint.toDouble());
    }

    void states_data()
    {
        // begins with a at 0; states and dates; the end
        using Intervals = std::vector<Tracker::Interval>;
        const Rows<Numbers, double, Intervals> row;
        row("only closed", Numbers{}, 50.0, Intervals{{a, 50.0}});
        row("no time", Numbers{}, 0.0, Intervals{});
        row("repeated", Numbers{a, 100, b, 200}, 300.0, Intervals{{a, 200.0}, {b, 100.0}});
        row("none between", Numbers{b, 100, 0, 150}, 200.0, Intervals{{a, 100.0}, {b, 100.0}});
        row("seen again", Numbers{b, 100, a, 150}, 250.0, Intervals{{a, 200.0}, {b, 50.0}});
        row("of no length", Numbers{b, 100, a, 100}, 250.0, Intervals{{a, 250.0}});
        row("back in time", Numbers{b, 100, a, 40}, 50.0, Intervals{{a, 110.0}, {b, -60.0}});
    }
    void states()
    {
        const auto [states, end, intervals] = Rows<Numbers, double, std::vector<Tracker::Interval>>::fetch();
        auto tracker = Tracker::stateTrackerWithState(a, ZELKDate(0.0));
        for (qsizetype i = 0; i < states.size(); i += 2)
            tracker.addState(Tracker::State(states.at(i)), ZELKDate(states.at(i + 1)));
        tracker.currentStateEndsOnDate(ZELKDate(end));
        QVERIFY(tracker.stateIntervals() == intervals);
    }

    void totals_data()
    {
        // log; positions that are selected (none: all); period in minutes (none: derived); now; usage;
        // sources
        const Rows<QString, QList<int>, Numbers, double, QString, QString> row;
        const double ever = StatisticsFixture::farFuture;
        const QList<int> all;
        row("a day", "b0:80 s10 w40 a50:70 p60", all, Numbers{}, ever, "Awake=30 Asleep=30",
            "Battery Power=50 AC Power=10");
        row("backwards", "s0 w20 p30", QList<int>{2, 1, 0}, Numbers{}, ever, "Asleep=20 Awake=10",
            "Unknown=30");
        row("a period before and behind", "s10 w20", all, Numbers{0, 50}, ever, "Awake=40 Asleep=10",
            "Unknown=50");
        row("a period that begins later", "s0 w20 p60", all, Numbers{30, 60}, ever, "Asleep=20 Awake=40",
            "Unknown=60");
        row("a period into the future", "s10 w20", all, Numbers{0, 50}, 30 * 60.0, "Awake=20 Asleep=10",
            "Unknown=30");
        row("states in force at the start", "a0:50 s5 p10 p20", QList<int>{2, 3}, Numbers{}, ever,
            "Asleep=10", "AC Power=10");
        row("starts and shutdowns", "u0 o10 u30 p35", all, Numbers{}, ever, "On=15 Off=20", "Unknown=35");
        row("daemons are no states", "m0 n1 s2 m3 w4 m5 n6", all, Numbers{}, ever, "Awake=4 Asleep=2",
            "Unknown=6");
        row("but may be found in force", "m0 n1 m2 p3 p4", QList<int>{3, 4}, Numbers{}, ever, "Monitored=1",
            "Unknown=1");
        row("nothing known before", "m0 n10 p20", QList<int>{1, 2}, Numbers{5, 20}, ever, "Awake=15",
            "Unknown=15");
        row("all at once", "s10 p10", all, Numbers{}, ever, "", "");
        row("ended before its last entry", "b10:80 p20", all, Numbers{10, 15}, ever, "Awake=5",
            "Battery Power=5");
        row("a last daemon ends them too", "s10 w20 m30", all, Numbers{10, 25}, ever, "Asleep=10 Awake=5",
            "Unknown=15");
    }
    void totals()
    {
        const auto [script, positions, period, now, usage, sources] =
            Rows<QString, QList<int>, Numbers, double, QString, QString>::fetch();
        const StatisticsFixture fixture(script, now);
        Selection::Period duration;
        if (!period.isEmpty())
            duration = ZELKLWCAbsoluteDuration::absoluteDurationFromDate(ZELKDate(period.at(0) * 60),
                                                                         ZELKDate(period.at(1) * 60));
        const Selection selection(fixture.entries(positions), duration);
        QCOMPARE(minutes(selection.summary()), usage);
        QCOMPARE(minutes(selection.powerSources()), sources);
        QVERIFY(selection.duration()->duration() >= 0.0);
    }

    void sleeps_data()
    {
        const Rows<QString, QList<int>, QString> row;
        const QList<int> all;
        row("one night", "b0:80 s5 w485 b486:72", all, "8 BAT0:8/480|0/6");
        row("awake apart", "b0:80 b6:79 s10 w490 b491:72 b501:70 a502:70 b503:70", all, "7 BAT0:7/480|3/21");
        row("readings at its very ends", "b0:80 s0 b60:70 w60", all, "10 BAT0:10/60|0/0");
        row("without loss, by a duplicate", "b0:80 s5 w65 b66:80 b76:79", all, "0 BAT0:0/60|1/16");
        row("two batteries", "b0:80 x0:50 s5 w65 b66:78 x67:45", all, "2+UPS5 BAT0:2/60|0/6 UPS:5/60|0/7");
        row("one of two", "b0:80 x0:50 s5 w65 x67:45", all, "UPS5 BAT0:0/0|0/0 UPS:5/60|0/7");
        row("on mains before", "a0:80 s5 w65 b66:72", all, "c BAT0:0/0|0/0");
        row("on mains behind", "b0:80 s5 w65 a66:72", all, "c BAT0:0/0|0/0");
        row("charging in between", "b0:80 s5 c20:80 b40:82 w65 b66:79", all, "c BAT0:0/0|0/0");
        row("more than before", "b0:80 s5 w65 b66:81", all, "c BAT0:0/0|0/0");
        row("more than in between", "b0:80 s5 b30:70 w65 b66:75", all, "c BAT0:0/0|0/0");
        row("less in between", "b0:80 s5 b5.05:79 w65 b66:75", all, "5 BAT0:5/60|0/6");
        row("removed in between", "b0:80 s5 r20:80 b40:80 w65 b66:70", all, "r BAT0:0/0|0/0");
        row("the recorder stopped", "b0:80 n4 s5 w65 b66:72", all, "g BAT0:0/0|0/0");
        row("the recorder came anew", "b0:80 s5 w65 m65 b66:72", all, "g BAT0:0/0|0/0");
        row("it came anew before", "b0:80 m1 b2:80 s5 w65 b66:72", all, "8 BAT0:8/60|0/4");
        row("no wake but a start", "b0:80 s5 u65 b66:72", all, "g BAT0:0/0|0/0");
        row("started before", "b0:80 u1 s5 w65 b66:72", all, "g BAT0:0/0|0/0");
        row("a second sleep without a wake", "b0:80 s5 s20 w65 b66:72", all, "g BAT0:0/0|0/0");
        row("a wake from no sleep", "b0:80 w3 s5 w65 b66:72", all, "g BAT0:0/0|0/0");
        row("not read for long before", "b0:80 s60.1 w65 b66:72", all, "r BAT0:0/0|0/0");
        row("not read for long behind", "b0:80 s5 w65 b125.1:79", all, "r BAT0:0/0|0/0");
        // what is told only later was lost awake; but many points at once were not watched
        row("nothing told soon behind", "b0:80 s5 w65 b100:79", all, "0 BAT0:0/60|1/40");
        row("told just soon enough", "b0:80 s5 w65 b67:72", all, "8 BAT0:8/60|0/7");
        row("too much told too late", "b0:80 s5 w65 b67.1:78", all, "r BAT0:0/0|0/0");
        row("a steady drain", "b0:80 s25 w30 b35:79 s55 w60 b65:78 s85 w90 b95:77 b125:76", all,
            "0 0 0 BAT0:0/15|4/110");
        row("several without loss", "b0:80 s5 w20 s30 w45 b60:79", all, "0 0 BAT0:0/30|1/30");
        row("told asleep, nothing soon behind", "b0:80 s5 b30:78 w65 b80:77", all, "2 BAT0:2/60|1/20");
        row("points at once behind a silence", "b0:80 b1:79 b100:70 b110:69", all, "BAT0:0/0|2/11");
        row("charged beside it", "b0:80 i0:50 s5 w65 b66:79 i66:60", all, "c BAT0:0/0|0/6 BAT1:0/0|0/0");
        row("mains beside it long before", "b0:80 j0:50 s5 w65 b66:79 i67:49", all,
            "c BAT0:0/0|0/6 BAT1:0/0|0/0");
        row("mains beside it much later", "b0:80 i0:50 s5 w65 b66:79 j80:50", all,
            "1 BAT0:1/60|0/6 BAT1:0/0|0/0");
        row("mains beside it, but behind a reading", "b0:80 i0:50 s5 w65 b66:72 j66:50", all,
            "8 BAT0:8/60|0/6 BAT1:0/0|0/0");
        row("charged outside", "b0:80 x0:50 s5 w65 b66:79 x66:60", all, "1 BAT0:1/60|0/6 UPS:0/0|0/0");
        // entries that arrived late have their places in time
        row("a late stop", "b0:80 s5 w65 b66:72 n4", all, "g BAT0:0/0|0/0");
        row("a late sleep", "b0:80 b66:72 s5 w65", all, "8 BAT0:8/60|0/6");
        row("of no length", "b0:80 s5 w5 b6:77", all, "3 BAT0:3/0|0/6");
        row("read just in time", "b0:80 s60 w65 b125:79", all, "0 BAT0:0/5|1/120");
        row("several together", "b0:80 s5 w65 s66 w126 b127:70", all, "s s BAT0:10/120|0/7");
        row("several too far apart", "b0:80 s5 w65 s125.1 w126 b127:70", all, "r r BAT0:0/0|0/0");
        row("never read", "b0:80 b1:79 s5 w65", all, "r BAT0:0/0|1/1");
        row("no battery", "s5 w65", all, "r");
        row("an idle one", "b0:80 b30:80 b60:80 b61:79", all, "BAT0:0/0|1/61");
        // what was selected does not hide what happened, and each sleep counts where it ended
        row("sleep and wake alone", "b0:80 s5 w65 b66:72 b67:70", QList<int>{1, 2}, "8 BAT0:8/60|0/0");
        row("the wake and what follows", "b0:80 s5 w65 b66:72 b67:70", QList<int>{2, 3, 4},
            "8 BAT0:8/60|2/2");
        row("what went before", "b0:80 b1:79 s5 w65 b66:72", QList<int>{0, 1, 2}, "BAT0:0/0|1/1");
        row("with the charger left out", "b0:80 s5 c20:80 w65 b66:72", QList<int>{0, 1, 3, 4},
            "c BAT0:0/0|0/0");
        row("one of several", "b0:80 s1 w5 s6 w66 b67:70", QList<int>{4, 5}, "s BAT0:0/0|0/1");
    }
    void sleeps()
    {
        const auto [script, positions, expected] = Rows<QString, QList<int>, QString>::fetch();
        const StatisticsFixture fixture(script);
        QCOMPARE(inWords(Selection(fixture.entries(positions)).sleepCosts()), expected);
    }

    /// What is said of a sleep is what happened, to a point; where all could be seen it is said; and awake
    /// and asleep are not taken for one another in the long run.
    void againstTruth()
    {
        double lost = 0.0;
        double found = 0.0;
        ZELKSleepCosts::Drain awake;
        std::size_t known = 0;
        for (unsigned seed = 1; seed <= 40; ++seed) {
            const TrueLife life(seed, 60);
            StatisticsFixture fixture(QString{});
            fixture.addAll(life.events());
            const ZELKSleepCosts costs = Selection(fixture.log.entry()).sleepCosts();
            QCOMPARE(costs.sleeps().size(), life.sleeps().size());
            for (std::size_t i = 0; i < costs.sleeps().size(); ++i) {
                const TrueLife::Sleep &truth = life.sleeps()[i];
                const QByteArray place = QByteArray::number(seed) + ' ' + QByteArray::number(int(i));
                QVERIFY2(!costs.costsOfSleep(i).empty() || !truth.isPlain, place);
                if (costs.costsOfSleep(i).empty())
                    continue;
                const double points = costs.costsOfSleep(i).front().points;
                QVERIFY2(!truth.hadPower && std::abs(points - truth.lost) < 1.25, place);
                lost += truth.lost;
                found += points;
                ++known;
            }
            awake.points += costs.batteries().front().awake.points;
            awake.seconds += costs.batteries().front().awake.seconds;
        }
        const double awakePerHour = awake.percentPerHour().value_or(0.0);
        const QByteArray figures =
            u"%1 known, %2 for %3, %4 an hour"_s.arg(known).arg(found).arg(lost).arg(awakePerHour).toUtf8();
        QVERIFY2(known > 1000 && std::abs(found / lost - 1.0) < 0.04, figures);
        QVERIFY2(std::abs(awakePerHour / TrueLife::awakePerHour - 1.0) < 0.04, figures);
    }

    /// Many lives; in whatever order they are selected.
    void inAnyOrder()
    {
        std::mt19937 random(20261123);
        for (int round = 0; round < 300; ++round) {
            const QString script = StatisticsFixture::randomScript(random);
            const StatisticsFixture fixture(script);
            Selection::Entries entries = fixture.log.entry();
            const Selection whole(entries);
            const auto found = [&](const QString &words) { return script + u" -> "_s + words; };
            entries.removeIf([&](const ZELKLWCLogEntry *) { return round % 2 && random() % 3 == 0; });
            const Selection picked(entries, whole.duration());
            ZELKBatterySamples samples(fixture.log.objectAtIndex(0)->arena().texts());
            for (const ZELKLWCLogEntry *entry : entries)
                if (entry->kind() == ZELKEntryKind::PowerStatus)
                    Selection::addPowerStatusEvent(static_cast<const ZELKLWCLogEntryPowerStatus &>(*entry),
                                                   samples);
            QVERIFY2(picked.batteries() == samples.batteries(), qPrintable(script));
            for (const bool isShuffled : {false, true}) {
                std::reverse(entries.begin(), entries.end());
                if (isShuffled)
                    std::shuffle(entries.begin(), entries.end(), random);
                const Selection other(entries, whole.duration());
                QCOMPARE(found(minutes(other.summary())), found(minutes(picked.summary())));
                QCOMPARE(found(minutes(other.powerSources())), found(minutes(picked.powerSources())));
                QVERIFY2(other.batteries() == picked.batteries(), qPrintable(script));
                QCOMPARE(found(inWords(other.sleepCosts())), found(inWords(picked.sleepCosts())));
            }
        }
    }

    void attributes()
    {
        const StatisticsFixture fixture(u"b0:80 s10 x20:50 w40 b40:70 p100"_s);
        Selection selection(fixture.log.entry());
        QCOMPARE(selection.selectionCount(), 6);
        QCOMPARE(selection.attributes(),
                 QStringList({u"Usage"_s, u"Power Source"_s, u"BAT0"_s, u"UPS"_s, u"Sleeps"_s}));
        QCOMPARE(shown(selection, u"Usage"_s), u"Awake: 70.0%  1h 10m; Asleep: 30.0%  30m"_s);
        QCOMPARE(shown(selection, u"Power Source"_s), u"Battery Power: 100.0%  1h 40m"_s);
        QCOMPARE(shown(selection, u"BAT0"_s),
                 u"Minimum: 70.0%; Average: 75.0%; Maximum: 80.0%; % Delta: <4m>"_s);
        QCOMPARE(shown(selection, u"UPS"_s), u"Minimum: 50.0%; Average: 50.0%; Maximum: 50.0%"_s);
        QCOMPARE(shown(selection, u"Sleeps"_s),
                 u"BAT0 asleep: 20.0% an hour  10.0% in 30m; BAT0 awake: 0.0% an hour  0.0% in 10m; "
                 "1 Jan 2001 00:10:00 - 00:40:00: BAT0 10%  20.0% an hour, 30m  "_s);
        selection.setAttributeValue(1, u"Usage"_s);
        QCOMPARE(selection.attributes().indexOf(u"Usage"_s), 0);
        QCOMPARE(selection.attributeForKey(u"Usage"_s), QVariant(1));
    }

    void sleepsShown_data()
    {
        const Rows<QString, QList<int>, QString> row;
        row("the sleep and its wake alone", "b0:80 s5 w65 b66:72", QList<int>{1, 2},
            "BAT0 asleep: 8.0% an hour  8.0% in 1h; 1 Jan 2001 00:05:00 - 01:05:00: 8%  8.0% an hour, 1h  ");
        row("no reading near", "b0:80 s200 w260 p400 b500:70", QList<int>{1, 2},
            "Unknown: 1 of 1 sleeps; 1 Jan 2001 03:20:00 - 04:20:00: Unknown  no charge was read shortly "
            "before and after, 1h");
        row("never a battery", "s5 w65", QList<int>{0, 1}, "");
        row("over midnight", "b1430:80 s1435 w1445 b1446:79", QList<int>{},
            "BAT0 asleep: 6.0% an hour  1.0% in 10m; BAT0 awake: 0.0% an hour  0.0% in 6m; "
            "1 Jan 2001 23:55:00 - 2 Jan 2001 00:05:00: 1%  6.0% an hour, 10m  ");
        row("of no length", "b0:80 s5 w5 b6:77", QList<int>{},
            "BAT0 awake: 0.0% an hour  0.0% in 6m; 1 Jan 2001 00:05:00 - 00:05:00: 3%  0s  ");
    }
    void sleepsShown()
    {
        const auto [script, positions, expected] = Rows<QString, QList<int>, QString>::fetch();
        const StatisticsFixture fixture(script);
        const Selection selection(fixture.entries(positions));
        QCOMPARE(selection.showsSleeps(), !expected.isEmpty());
        QCOMPARE(shown(selection, u"Sleeps"_s), expected);
    }

    /// A reading that was repeated counts twice, at its own and at its last date.
    void repeatedReadings()
    {
        const StatisticsFixture fixture(u"b0:80 b10:80 b20:80 b30:79 r31:79"_s);
        const Selection selection(fixture.log.entry());
        QCOMPARE(selection.batteries().size(), std::size_t(1));
        const ZELKLWCBattery &battery = selection.batteries().front();
        QCOMPARE(battery.count(), 4);
        QCOMPARE(inWords(battery.delta()), u"1/1860"_s);
    }

    void oneEntry()
    {
        const StatisticsFixture fixture(u"b0:80 s10 w40"_s);
        ZELKLWCLogEntry *wake = fixture.log.objectAtIndex(2);
        Selection single({wake});
        QCOMPARE(single.attributes(), wake->attributes());
        QVERIFY(!single.attributes().isEmpty() && single.summary().isEmpty() && !single.duration());
        single.setAttributeValue(7, u"Mine"_s);
        QCOMPARE(wake->attributeForKey(u"Mine"_s), QVariant(7));
        single.setAttributes({u"Mine"_s});
        single.setAttributeValue(8, u"Mine"_s);
        QCOMPARE(wake->attributeForKey(u"Mine"_s), QVariant(8));
        QVERIFY(wake->attributes().size() > 1);
        const Selection withPeriod({wake}, ZELKLWCAbsoluteDuration(ZELKDate(0.0), 3600.0));
        QCOMPARE(minutes(withPeriod.summary()), u"Asleep=40 Awake=20"_s);
    }

    void looks()
    {
        const StatisticsFixture fixture(u"p0"_s);
        const ZELKDictionary values{{u"n"_s, 90.0}, {u"other"_s, ZELKLWCDuration(90.0).toVariant()}};
        const QVariant part = Selection::presentIntervals(values, 360.0).value(u"n"_s);
        QCOMPARE(plain(part), u"25.0%  1m 30s"_s);
        const auto runs = part.value<ZELKAttributedString>().runs();
        QCOMPARE(runs.size(), std::size_t(3));
        QVERIFY(runs[1].attributes.colour == ZELKTextColour::of(ZELKTextColour::Role::ControlText));
        QVERIFY(runs[2].attributes == ZELKLWCPresentationAssistant::miniSecondaryAttributes());
        QVERIFY(runs[0].attributes == ZELKLWCPresentationAssistant::miniPrimaryAttributes());
        const ZELKDictionary figures = Selection::presentPowerSource(values);
        QCOMPARE(plain(figures.value(u"n"_s)), u"90.0%"_s);
        QCOMPARE(plain(figures.value(u"other"_s)), u"<1m 30s>"_s);
    }

    /// A panel has a row for each of the latest sleeps alone.
    void manySleeps()
    {
        QString script = u"b0:100"_s;
        for (int i = 0; i < 40; ++i)
            script += u" s%1 w%2 b%2.5:%3"_s.arg(i * 10 + 1).arg(i * 10 + 9).arg(99 - i);
        const StatisticsFixture fixture(script);
        const Selection selection(fixture.log.entry());
        const auto info = selection.attributeForKey(u"Sleeps"_s).value<ZELKDictionary>();
        QCOMPARE(info.size(), qsizetype(ZELKSleepCosts::mostSleepsInPanel) + 3);
        QCOMPARE(plain(info.value(u"Earlier"_s)), u"15 more sleeps"_s);
        QCOMPARE(selection.sleepCosts().infoDictionary(1000).size(), 40 + 2);
    }
};

QTEST_MAIN(StatisticsTest)

#include "tst_statistics.moc"
