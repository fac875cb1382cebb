#include "PropertyLists.h"
#include "Rows.h"
#include "ZELKIdleStates.h"
#include "ZELKShutdownStates.h"
#include "ZELKSleepStates.h"

#include <QMap>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QMap<QString, QString> shortNames{
    {ZELKEventSystemWillSleep, u"sleep"_s},      {ZELKEventSystemHasPoweredOn, u"wake"_s},
    {ZELKEventSystemWillNotSleep, u"refused"_s}, {ZELKEventSystemWillPowerOff, u"off"_s},
    {ZELKEventSystemWillRestart, u"restart"_s},  {ZELKEventSystemWillNotPowerOff, u"stays"_s}};

/// Plays a script on a machine that starts at second 0. Words: "+5" five seconds awake, "z60" a minute
/// suspended, "c-9" the wall clock set back by nine, "heir" another agent in this one's place; the rest names
/// what is heard. Answers "sleep 0, wake 60", in tenths where they are not whole.
class Machine
{
public:
    QString play(const QString &script)
    {
        for (const QString &word : script.split(u' '))
            step(word);
        return m_seen.join(u", "_s);
    }

private:
    void step(const QString &word)
    {
        const double seconds = word.mid(1).toDouble();
        const bool steps = word.startsWith(u'c') && word != u"cancel"_s;
        if (word.startsWith(u'+'))
            m_now.awake += seconds;
        else if (word.startsWith(u'z'))
            m_now.suspended += seconds;
        if (word.startsWith(u'+') || word.startsWith(u'z') || steps)
            m_now.date = m_now.date.addingTimeInterval(seconds);
        else
            tell(heard(word));
    }
    std::vector<ZELKLWAEvent> heard(const QString &word)
    {
        if (word == u"true"_s && !m_sleep.isSleeping())
            m_announced = m_now;
        if (word == u"true"_s || word == u"false"_s)
            return m_sleep.prepareForSleep(word == u"true"_s, m_now);
        if (word == u"done"_s || word == u"failed"_s)
            return m_sleep.sleepJobDidFinish(word == u"done"_s, m_now);
        if (word == u"announce"_s)
            m_shutdown.announce(m_now);
        if (word == u"unknown"_s)
            return m_shutdown.decide(std::nullopt);
        if (word == u"reboot"_s)
            return m_shutdown.jobDidStart(ZELKShutdownKind::Restart, m_now);
        if (word == u"poweroff"_s)
            return m_shutdown.jobDidStart(ZELKShutdownKind::PowerOff, m_now);
        if (word == u"cancel"_s)
            return m_shutdown.cancel(m_now);
        if (word == u"heir"_s)
            m_shutdown.resume(std::exchange(m_shutdown, {}).announced(), m_now);
        if (word == u"heir"_s && m_sleep.isSleeping())
            m_sleep = ZELKSleepStates::announcedAt(m_announced);
        if (word == u"boot"_s)
            m_now.awake = m_now.suspended = 0.0;
        if (word == u"jobs"_s)
            m_sleep.setHearsJobs(true);
        return m_sleep.observe(m_now);
    }
    void tell(const std::vector<ZELKLWAEvent> &events)
    {
        for (std::size_t i = 0; i < events.size(); ++i) {
            QVERIFY(i == 0 || events[i - 1].date < events[i].date);
            const double seconds =
                std::round(events[i].date.timeIntervalSinceReferenceDate() * 10.0) / 10.0 + 0.0;
            m_seen.append(shortNames.value(events[i].event) + u' ' + QString::number(seconds));
        }
    }

    ZELKMoment m_now{ZELKDate(0.0), 1000.0, 7.25};
    ZELKMoment m_announced;
    ZELKSleepStates m_sleep{m_now};
    ZELKShutdownStates m_shutdown;
    QStringList m_seen;
};

} // namespace

class TestSleepStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sleeps_data()
    {
        const Rows<QString, QString> row;
        row("a night", "true +2 z28500 +1 false", "sleep 0, wake 28503");
        row("two nights", "true z60 false +900 true z60 false", "sleep 0, wake 60, sleep 960, wake 1020");
        row("doubled", "true true +2 z600 false false look", "sleep 0, wake 602");
        row("doubled, each a little later", "true +4 true +1 z600 +1 false +2 false", "sleep 0, wake 606");
        row("another agent before it", "true +4 heir +1 z600 +1 false", "sleep 0, wake 606");
        row("another agent, clocks that run on", "true +4 heir +20 false", "sleep 0, wake 24");
        row("clocks that run on while asleep", "true +20 false", "sleep 0, wake 20");

        row("no end, noticed at once", "true +1 z600 look +5 look", "sleep 0, wake 601");
        row("no end, noticed late: the length is kept", "true +1 z600 +3000 look", "sleep 0, wake 600");
        row("no end and no growth", "true +59 look +2 look +9 false", "sleep 0, wake 61");
        row("no end before the next", "true z600 +3600 true z60 false",
            "sleep 0, wake 600, sleep 4200, wake 4260");
        row("no end and no growth before the next", "true +3600 true", "sleep 0, wake 3600, sleep 3600");
        row("an end that comes after it was noticed", "true z600 look +1 false +1 true",
            "sleep 0, wake 600, sleep 602");

        row("unannounced", "+100 z600 look look", "sleep 100, wake 700");
        row("unannounced, twice", "z60 look +1 z60 look", "sleep 0, wake 60, sleep 61, wake 121");
        row("only the end", "+100 z600 false", "sleep 100, wake 700");
        row("an end of nothing", "+100 false", "");
        row("noise", "z0.4 look z0.9 look z0.999 false", "");
        row("a second is none", "+10 z1 look", "sleep 10, wake 11");

        row("late", "z600 true false +60 look", "sleep 0, wake 600");
        row("late, with the job, after the clocks told", "z600 look +1 true done true +1 false false",
            "sleep 0, wake 600");
        row("asleep again while the first was late", "z600 look +1 true +1 z60 false",
            "sleep 0, wake 600, sleep 602, wake 662");
        row("announced a while after an unannounced one", "z600 look +6 true",
            "sleep 0, wake 600, sleep 606");
        row("late, without growth", "jobs true done false", "sleep 0, wake 0");
    }
    void sleeps() { plays(); }

    void failedSleeps_data()
    {
        const Rows<QString, QString> row;
        row("failed", "jobs true +1 failed +1 false", "sleep 0, refused 1, wake 1");
        row("failed, doubled", "jobs true true failed failed false false", "sleep 0, refused 0, wake 0");
        row("failed after it slept", "jobs true z600 failed false", "sleep 0, wake 600");
        row("failed, unannounced", "+5 failed failed +60 look", "refused 5");
        row("failed, then another", "jobs true failed false +30 true z60 done false",
            "sleep 0, refused 0, wake 0, sleep 30, wake 90");
        row("refused before there was a job", "jobs true +1 false", "sleep 0, refused 1, wake 1");
        row("no job, but it slept", "jobs true z60 false", "sleep 0, wake 60");
        row("a job that is not this one's", "jobs true done z60 false +9 true false",
            "sleep 0, wake 60, sleep 69, refused 69, wake 69");
    }
    void failedSleeps() { plays(); }

    void clockSteps_data()
    {
        const Rows<QString, QString> row;
        row("clock set back while asleep", "true z600 c-60 false", "sleep 0, wake 540");
        row("clock set back before the sleep", "true z600 c-7200 false +9 look", "sleep 0, wake 0");
        row("clock set ahead while awake", "c7200 look +1 true z60 false", "sleep 7201, wake 7261");
        row("clock set ahead, noticed late", "true z600 +100 c7200 look", "sleep 0, wake 7800");
        row("clock set back, unannounced", "+9000 z600 c-3600 look", "sleep 5400, wake 6000");
        row("counters set back", "true z60 false z-60 look z60 +9 look",
            "sleep 0, wake 60, sleep 9, wake 69");
    }
    void clockSteps() { plays(); }

    void shutDowns_data()
    {
        const Rows<QString, QString> row;
        row("restart", "announce announce reboot reboot announce", "restart 0");
        row("power off", "announce +1 poweroff", "off 0");
        row("nobody knows", "announce +9 unknown unknown reboot", "off 0");
        row("unannounced shut-down", "+5 reboot +1 announce unknown", "restart 5");
        row("cancelled", "announce reboot +3 cancel cancel +1 announce poweroff",
            "restart 0, stays 3, off 4");
        row("cancelled before it was known", "announce cancel unknown", "off 0, stays 0");
        row("cancelled, never announced", "cancel", "");
        row("another, after one that came to nothing", "announce unknown +61 announce reboot",
            "off 0, restart 61");
        row("recorded, then another agent", "announce reboot +9 heir announce reboot cancel",
            "restart 0, stays 9");
        row("not recorded, then another agent", "announce +9 heir announce +1 reboot", "restart 0");
        row("another agent, too late", "announce reboot +61 heir announce reboot", "restart 0, restart 61");
        row("in the next boot", "announce reboot +9 boot +20 heir announce unknown", "restart 0, off 29");
        row("in the next boot, that was longer", "+9 boot +5 announce reboot boot +20 heir announce unknown",
            "restart 14, off 34");
    }
    void shutDowns() { plays(); }

    void tellsOfHolders_data()
    {
        const Rows<QString, QString, QString> row;
        row("blocked", "sleep:idle", "block", "rsync (7): Copying (100%1) (sleep:idle, block)");
        row("blocked, weakly", "idle", "block-weak", "rsync (7): Copying (100%1) (idle, block-weak)");
        row("delayed", "sleep", "delay", "");
        row("another lock", "shutdown:handle-lid-switch", "block", "");
    }
    void tellsOfHolders()
    {
        const auto [what, mode, expected] = Rows<QString, QString, QString>::fetch();
        ZELKIdleStates states;
        QCOMPARE(states.idles({ZELKDate(10.2), ZELKDate(20.1)}).size(), 1u);
        const ZELKInhibitor inhibitor{what, u"rsync\x1b\x7f"_s, u" Copying\n(100%1)\xd800"_s, mode, 7};
        const ZELKInhibitor own{u"sleep"_s, u"Own"_s, u"Own"_s, u"block"_s, 8};
        const auto events = states.inhibitors({inhibitor, own}, 8);
        QCOMPARE(events.empty(), expected.isEmpty());
        if (expected.isEmpty())
            return;
        const ZELKDictionary properties = listIn(events.front().properties.toUtf8());
        QCOMPARE(properties.value(ZELKPropertyIdleSeconds), QVariant(9));
        QCOMPARE(properties.value(ZELKPropertyProcesses), QVariant(QVariantList{expected}));
    }

    void tellsOnceOfAnIdleSession()
    {
        ZELKIdleStates states;
        QVERIFY(!states.change(false));
        QVERIFY(states.change(true));
        QVERIFY(!states.change(true));
        QVERIFY(!states.change(false));
        QVERIFY(states.change(true));
        const auto events = states.idles({ZELKDate(50.0), ZELKDate(20.0)});
        QCOMPARE(events.front().properties, QString(ZELKEventNoProperties));
        const std::vector<ZELKInhibitor> holders{{u"idle"_s, u"a"_s, u"b"_s, u"block"_s, 1}};
        QCOMPARE(states.inhibitors(holders, 2).size(), 1u);
        QCOMPARE(states.inhibitors(holders, 2).size(), 0u);
    }

private:
    static void plays()
    {
        const auto [script, expected] = Rows<QString, QString>::fetch();
        QCOMPARE(Machine().play(script), expected);
    }
};

QTEST_APPLESS_MAIN(TestSleepStates)
#include "tst_sleep_states.moc"
