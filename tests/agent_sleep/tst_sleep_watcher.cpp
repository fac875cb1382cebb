#include "BusMock.h"
#include "ConsoleLines.h"
#include "FakeDesktop.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKEnvironment.h"
#include "ZELKFileShutdownMemory.h"
#include "ZELKLWASleepWatcher.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace {

const QString seat = u"/org/freedesktop/login1/seat/seat0"_s;

/// A machine whose sleep the test tells.
class TestClock : public ZELKClock, public ZELKSuspendClock
{
public:
    ZELKDate now() const override { return m_now.date; }
    ZELKMoment read(ZELKDate date) const override { return {date, m_now.awake, m_now.suspended}; }
    void pass(double awake, double suspended)
    {
        m_now.date = m_now.date.addingTimeInterval(awake + suspended);
        m_now.awake += awake;
        m_now.suspended += suspended;
    }

private:
    ZELKMoment m_now{ZELKDate::fromSecondsSince1970(1700000000.0), 50.0, 5.0};
};

class Logind : public BusMock
{
public:
    Logind()
        : BusMock(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                  u"org.freedesktop.login1.Manager"_s, {u"--template"_s, u"logind"_s})
    {
    }
    /// Pairs, of one on sleep and one on shut-down; -1 for half a pair.
    int locks() const
    {
        const int count = BusMock::count(call(u"ListInhibitors"_s));
        return count % 2 == 0 ? count / 2 : -1;
    }
    void prepareForSleep(bool begins) const { emitSignal(u"PrepareForSleep"_s, u"b"_s, {begins}); }
    void prepareForShutdown(bool begins) const { emitSignal(u"PrepareForShutdown"_s, u"b"_s, {begins}); }
};

class Manager : public BusMock
{
public:
    /// `jobs` as the mock's Python wants them.
    explicit Manager(const QString &jobs = {})
        : BusMock(u"org.freedesktop.systemd1"_s, u"/org/freedesktop/systemd1"_s,
                  u"org.freedesktop.systemd1.Manager"_s,
                  {u"org.freedesktop.systemd1"_s, u"/org/freedesktop/systemd1"_s,
                   u"org.freedesktop.systemd1.Manager"_s})
    {
        setJobs(jobs);
    }
    void setJobs(const QString &jobs) const
    {
        tell(u"AddMethod"_s, {u"org.freedesktop.systemd1.Manager"_s, u"ListJobs"_s, QString(), u"a(usssoo)"_s,
                              u"ret = dbus.Array([%1], signature='(usssoo)')"_s.arg(jobs)});
    }
    void jobNew(const QString &unit) const { emitSignal(u"JobNew"_s, u"uos"_s, {7u, path(), unit}); }
    void jobRemoved(const QString &unit, const QString &result) const
    {
        emitSignal(u"JobRemoved"_s, u"uoss"_s, {7u, path(), unit, result});
    }

private:
    static QVariant path() { return QVariant::fromValue(QDBusObjectPath(u"/job/7"_s)); }
};

const char *const otherJob = "(1, 'a.service', 'stop', 'waiting', '/j/1', '/u/a')";
const char *const rebootJob = "(1, 'a.service', 'stop', 'waiting', '/j/1', '/u/a'),"
                              "(2, 'reboot.target', 'start', 'waiting', '/j/2', '/u/r')";

} // namespace

class TestSleepWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_logind.emplace();
        m_clock = std::make_shared<TestClock>();
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.clock = m_clock;
        m_scope.emplace(environment);
        m_seen.clear();
        m_properties.clear();
        m_folder.emplace();
        m_shutdowns = std::make_unique<ZELKFileShutdownMemory>(shutdownFile());
        makeWatcher();
    }
    void cleanup()
    {
        m_watcher.reset();
        m_manager.reset();
        m_scope.reset();
        m_logind.reset();
    }

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
        QCOMPARE(m_logind->locks(), 1);
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

    void asksTheManagerForTheKind_data()
    {
        const Rows<bool, QString, QStringList, QString> row;
        const QStringList off{u"System will power off, held"_s}, restart{u"System will restart, held"_s};
        row("no manager", false, "", off);
        row("a job of another way", true, rebootJob, restart);
        row("nonsense", true, "'x'", off);
        row("no job yet", true, otherJob, QStringList{});
        row("logind tells", true, otherJob, restart, "soft-reboot");
        row("logind tells nonsense", false, "", off, "nap");
    }
    void asksTheManagerForTheKind()
    {
        const auto [there, jobs, expected, type] = Rows<bool, QString, QStringList, QString>::fetch();
        if (there)
            m_manager.emplace(jobs);
        begin();
        if (!type.isEmpty())
            m_logind->emitSignal(u"PrepareForShutdownWithMetadata"_s, u"ba{sv}"_s,
                                 {true, QVariantMap{{u"type"_s, type}}});
        m_logind->prepareForShutdown(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        QCOMPARE(m_seen, expected);
        if (!expected.isEmpty())
            return;
        m_clock->pass(2, 0);
        m_manager->jobNew(u"a.service"_s);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        m_manager->jobNew(u"reboot.target"_s);
        QTRY_COMPARE(m_seen, QStringList{u"System will restart"_s});
        QCOMPARE(m_dates.constLast(), m_clock->now().addingTimeInterval(-2));
        m_logind->prepareForShutdown(false);
        QTRY_COMPARE(m_logind->locks(), 1);
        QCOMPARE(m_seen.constLast(), u"System will not power off"_s);
    }

    void aJobThatStopsATargetEndsNothing()
    {
        m_manager.emplace(u"(3, 'poweroff.target', 'stop', 'waiting', '/j/3', '/u/p')"_s);
        begin();
        m_manager->jobNew(u"poweroff.target"_s);
        QTRY_COMPARE(m_manager->calls(u"ListJobs"_s), 1);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        m_manager->jobNew(u"reboot.target"_s);
        QTRY_COMPARE(m_seen, QStringList{u"System will restart, held"_s});
    }

    void keepsAShutdownThatItMayNotLiveToRecord()
    {
        m_manager.emplace(QString::fromLatin1(otherJob));
        begin();
        const ZELKDate announced = m_clock->now();
        m_logind->prepareForShutdown(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        QCOMPARE(m_seen, QStringList{});
        m_clock->pass(100, 0);
        makeWatcher();
        m_watcher->start();
        QCOMPARE(m_seen, QStringList{u"System will power off"_s});
        QCOMPARE(m_dates.constLast(), announced);
        m_watcher->stop();
        m_watcher->start();
        QCOMPARE(m_seen.size(), 1);
    }

    void tellsOfWhatWasKept_data()
    {
        const Rows<QByteArray, QStringList> row;
        row("no kind", "700000000.250000\n", QStringList{u"System will power off"_s});
        row("its record may be there", "700000000.250000 restart\n", QStringList{u"System will restart"_s});
        row("nonsense", "soon\n", QStringList{});
        row("nothing", "", QStringList{});
    }
    void tellsOfWhatWasKept()
    {
        const auto [text, expected] = Rows<QByteArray, QStringList>::fetch();
        writeFile(shutdownFile(), text);
        m_watcher->start();
        QCOMPARE(m_seen, expected);
        QVERIFY(!QFile::exists(shutdownFile()));
    }

    void asksForTheKindAtItsEnd()
    {
        m_manager.emplace();
        begin();
        m_logind->prepareForShutdown(true);
        QTRY_COMPARE(m_logind->locks(), 0);
        m_manager->setJobs(QString::fromLatin1(rebootJob));
        m_watcher->stop();
        QCOMPARE(m_seen, QStringList{u"System will restart"_s});
        QVERIFY(!QFile::exists(shutdownFile()));
    }

    void believesTheDesktop_data()
    {
        const Rows<QString, QVariant, QString> row;
        row("milliseconds", "mutter", 125900ULL, "<integer>125</integer>");
        row("of more kinds", "screen saver", 125900U, "<integer>125</integer>");
        row("seconds", "screen saver", 125U, "<integer>125</integer>");
        row("longer than there was a machine", "mutter", ~0ULL, "<integer>90</integer>");
        row("another form", "mutter", 125900U, "<integer>90</integer>");
        row("not at all: nothing is told of it", "mutter", 300ULL, "NULL");
    }
    void believesTheDesktop()
    {
        const auto [kind, answer, expected] = Rows<QString, QVariant, QString>::fetch();
        const bool isMutter = kind == u"mutter"_s;
        const FakeDesktop desktop(
            isMutter ? u"org.gnome.Mutter.IdleMonitor"_s : u"org.freedesktop.ScreenSaver"_s,
            isMutter ? u"/org/gnome/Mutter/IdleMonitor/Core"_s : u"/org/freedesktop/ScreenSaver"_s,
            isMutter ? u"GetIdletime"_s : u"GetSessionIdleTime"_s, answer);
        m_clock->pass(900, 0);
        begin();
        m_logind->updateProperties({{u"IdleSinceHint"_s, idleSince()}, {u"IdleHint"_s, true}});
        QTRY_COMPARE(m_seen.size(), 1);
        QVERIFY2(m_properties.constFirst().contains(expected), qPrintable(m_properties.constFirst()));
    }

    void tellsOfIdleness_data()
    {
        const Rows<bool> row;
        row("logind tells", false);
        row("idleness is blocked: only the seat tells", true);
    }
    void tellsOfIdleness()
    {
        const auto [isBlocked] = Rows<bool>::fetch();
        if (isBlocked) {
            m_logind->tell(u"AddProperty"_s, {u"org.freedesktop.login1.Manager"_s, u"BlockInhibited"_s,
                                              QVariant::fromValue(QDBusVariant(u"sleep:idle"_s))});
            m_logind->tell(u"AddSeat"_s, {u"seat0"_s});
        }
        begin();
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
        QVERIFY(m_properties.constFirst().contains(u"<integer>90</integer>"_s));
        QVERIFY(m_properties.constLast().contains(u"rsync (123456): Copying files (sleep:idle, block)"_s));
        QVERIFY(!m_properties.constLast().contains(u"Lullwatch"_s));
    }

private:
    QString shutdownFile() const { return m_folder->filePath(u"a folder/shutdown"_s); }
    /// Like another process, when there was one before: that is gone without a word.
    void makeWatcher()
    {
        m_watcher.emplace(
            QDBusConnection::systemBus(), [this](const auto &events) { see(events); }, m_clock, *m_shutdowns,
            QDBusConnection::sessionBus());
    }
    void begin()
    {
        m_watcher->start();
        QTRY_COMPARE(m_logind->locks(), 1);
        QTRY_VERIFY(m_watcher->holdsLocks());
    }
    /// As the login manager tells it: 90 seconds and a half ago.
    qulonglong idleSince() const
    {
        const double now = m_clock->now().timeIntervalSinceReferenceDate() + ZELKDate::secondsFrom1970;
        return qulonglong((now - 90.5) * 1e6);
    }
    /// Whether the lock was held is told of what is about to happen.
    void see(const std::vector<ZELKLWAEvent> &events)
    {
        for (const ZELKLWAEvent &event : events) {
            const bool coming = event.event.contains(u"will"_s) && !event.event.contains(u"not sleep"_s);
            const bool held = coming && m_logind && m_logind->locks() == 1;
            m_seen.append(event.event + (held ? u", held"_s : QString()));
            m_properties.append(event.properties);
            m_dates.append(event.date);
        }
    }

    std::optional<Logind> m_logind;
    std::optional<Manager> m_manager;
    std::shared_ptr<TestClock> m_clock;
    std::optional<QTemporaryDir> m_folder;
    std::unique_ptr<ZELKFileShutdownMemory> m_shutdowns;
    std::optional<ZELKEnvironmentScope> m_scope;
    std::optional<ZELKLWASleepWatcher> m_watcher;
    QStringList m_seen;
    QStringList m_properties;
    QList<ZELKDate> m_dates;
};

QTEST_GUILESS_MAIN(TestSleepWatcher)
#include "tst_sleep_watcher.moc"
