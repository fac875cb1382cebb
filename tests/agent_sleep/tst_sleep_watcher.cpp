#include "BusPeer.h"
#include "ConsoleLines.h"
#include "SleepBed.h"

namespace {

const QString seat = u"/org/freedesktop/login1/seat/seat0"_s;

} // namespace

class TestSleepWatcher : public SleepBed
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void recordsBeforeItLetsGo()
    {
        int wakes = 0;
        connect(&*m_watcher, &ZELKLWASleepWatcher::didWake, this, [&] { ++wakes; });
        begin();
        m_logind->prepareForSleep(true);
        m_logind->prepareForSleep(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        QCOMPARE(m_seen, QStringList{u"System will sleep, held"_s});
        m_clock->pass(1, 3600);
        m_logind->prepareForSleep(false);
        QTRY_COMPARE(m_logind->locks(), 1);
        QCOMPARE(m_seen.constLast(), u"System has powered on"_s);
        QCOMPARE(wakes, 1);

        m_clock->pass(10, 3600);
        m_watcher->checkClocks();
        QCOMPARE(m_seen.size(), 4);
        QTRY_COMPARE(m_logind->locks(), 1); // taken anew, then the one before is let go
        m_watcher->stop();
        QTRY_COMPARE(m_logind->locks(), 0);
        m_logind->prepareForSleep(true);
        m_watcher->start();
        QTRY_COMPARE(m_logind->locks(), 1);
        QCOMPARE(m_seen.size(), 4);
    }

    void followsLogind()
    {
        m_logind.reset();
        m_watcher->start();
        m_logind.emplace();
        QTRY_COMPARE(m_logind->locks(), 1);
        m_logind.reset();
        m_logind.emplace();
        QTRY_COMPARE(m_logind->locks(), 1);
        m_logind->prepareForSleep(true);
        QTRY_COMPARE(m_seen, QStringList{u"System will sleep, held"_s});
        // Its end is lost; anything else that is heard shows that the machine is awake.
        m_clock->pass(5, 600);
        m_logind->updateProperties({{u"PreparingForSleep"_s, false}});
        QTRY_COMPARE(m_seen.size(), 2);
        QTRY_COMPARE(m_logind->locks(), 1);
    }

    void asksAgainForADeniedLock()
    {
        const auto deny = [this](const QString &error) {
            m_logind->tell(u"AddMethod"_s,
                           {u"org.freedesktop.login1.Manager"_s, u"Inhibit"_s, u"ssss"_s, u"h"_s,
                            u"raise dbus.exceptions.DBusException('no', name='%1')"_s.arg(error)});
        };
        const ConsoleLines console;
        deny(u"org.freedesktop.login1.OperationInProgress"_s);
        m_watcher->start();
        const auto asked = [&] {
            m_watcher->checkClocks();
            return m_logind->calls(u"Inhibit"_s);
        };
        QTRY_VERIFY(asked() >= 3);
        QCOMPARE(console.size(), 0);
        deny(u"org.freedesktop.DBus.Error.AccessDenied"_s);
        const auto denied = [&] {
            m_watcher->checkClocks();
            return console.size();
        };
        QTRY_COMPARE(denied(), 2);
        const int before = m_logind->calls(u"Inhibit"_s);
        m_watcher->checkClocks();
        QCOMPARE(m_logind->calls(u"Inhibit"_s), before);
    }

    void tellsOfAFailedSleep()
    {
        m_manager.emplace();
        begin();
        m_logind->prepareForSleep(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        m_manager->jobRemoved(u"other.service"_s, u"failed"_s);
        m_manager->jobRemoved(u"systemd-suspend.service"_s, u"failed"_s);
        m_logind->prepareForSleep(false);
        QTRY_COMPARE(m_logind->locks(), 1);
        QCOMPARE(m_seen, QStringList({u"System will sleep, held"_s, u"System will not sleep"_s,
                                      u"System has powered on"_s}));
    }

    void believesTheDesktop_data()
    {
        const Rows<QString, QVariant, QString> row;
        const QString mutter = u"/org/gnome/Mutter/IdleMonitor/Core GetIdletime"_s;
        const QString screenSaver = u"/org/freedesktop/ScreenSaver GetSessionIdleTime"_s;
        row("milliseconds", mutter, 125900ULL, "<integer>125</integer>");
        row("of more kinds", screenSaver, 125900U, "<integer>125</integer>");
        row("seconds", screenSaver, 125U, "<integer>125</integer>");
        row("longer than there was a machine", mutter, ~0ULL, "<integer>90</integer>");
        row("another form", mutter, 125900U, "<integer>90</integer>");
        row("not at all: nothing is told of it", mutter, 300ULL, "NULL");
    }
    void believesTheDesktop()
    {
        const auto [question, answer, expected] = Rows<QString, QVariant, QString>::fetch();
        const BusPeer desktop(QDBusConnection::SessionBus,
                              question.contains("Mutter"_L1) ? u"org.gnome.Mutter.IdleMonitor"_s
                                                             : u"org.freedesktop.ScreenSaver"_s,
                              [asked = question, told = answer](const QDBusMessage &call) {
                                  return call.path() + u' ' + call.member() == asked
                                             ? call.createReply(told)
                                             : call.createErrorReply(QDBusError::UnknownMethod, {});
                              });
        m_clock->pass(900, 0);
        begin();
        m_logind->updateProperties({{u"IdleSinceHint"_s, idleSince()}, {u"IdleHint"_s, true}});
        QTRY_COMPARE(m_seen.size(), 1);
        QVERIFY2(m_properties.constFirst().contains(expected), qPrintable(m_properties.constFirst()));
    }

    void tellsOfIdleness_data()
    {
        const Rows<bool, double, QString> row;
        row("logind tells", false, 900.0, "<integer>90</integer>");
        row("idleness is blocked: only the seat tells", true, 900.0, "<integer>90</integer>");
        row("since before there was a machine", false, 9.0, "NULL");
    }
    void tellsOfIdleness()
    {
        const auto [isBlocked, awake, expected] = Rows<bool, double, QString>::fetch();
        m_clock->pass(awake, 0);
        if (isBlocked) {
            m_logind->tell(u"AddProperty"_s, {u"org.freedesktop.login1.Manager"_s, u"BlockInhibited"_s,
                                              QVariant::fromValue(QDBusVariant(u"sleep:idle"_s))});
            m_logind->tell(u"AddSeat"_s, {u"seat0"_s});
        }
        begin();
        QTRY_VERIFY(!isBlocked || m_logind->wasAskedFor(seat)); // what it is told first is no news
        const QDBusMessage holder =
            m_logind->call(u"Inhibit"_s, {u"sleep:idle"_s, u"rsync"_s, u"Copying files"_s, u"block"_s});
        QVariantMap idle{{u"IdleSinceHint"_s, idleSince()}, {u"IdleHint"_s, true}};
        if (isBlocked) {
            m_logind->tell(u"UpdateProperties"_s, {u"org.freedesktop.login1.Seat"_s, idle}, seat);
            idle = {{u"IdleHint"_s, false}};
        }
        m_logind->updateProperties(idle);
        m_logind->updateProperties(idle);
        QTRY_COMPARE(m_seen.size(), 2);
        QVERIFY(m_properties.constFirst().contains(expected));
        QVERIFY(m_properties.constLast().contains(u"rsync (123456): Copying files (sleep:idle, block)"_s));
        QVERIFY(!m_properties.constLast().contains(u"Lullwatch"_s));
    }
};

QTEST_GUILESS_MAIN(TestSleepWatcher)
#include "tst_sleep_watcher.moc"
