#pragma once

#include "ClockEnvironment.h"
#include "Logind.h"
#include "Rows.h"
#include "TestClock.h"
#include "ZELKFileShutdownMemory.h"
#include "ZELKLWASleepWatcher.h"

#include <QDBusObjectPath>
#include <QTemporaryDir>

#include <memory>
#include <optional>

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

inline constexpr const char *otherJob = "(1, 'a.service', 'stop', 'waiting', '/j/1', '/u/a')";
inline constexpr const char *rebootJob = "(1, 'a.service', 'stop', 'waiting', '/j/1', '/u/a'),"
                                         "(2, 'reboot.target', 'start', 'waiting', '/j/2', '/u/r')";

/// A watcher beside logind, on a machine whose clock the test tells, and what it has told.
class SleepBed : public QObject
{
    Q_OBJECT

protected:
    void setUp()
    {
        m_logind.emplace();
        m_clock = std::make_shared<TestClock>();
        m_scope.emplace(environmentWith(m_clock));
        m_seen.clear();
        m_properties.clear();
        m_dates.clear();
        m_folder.emplace();
        m_shutdowns = std::make_unique<ZELKFileShutdownMemory>(shutdownFile());
        makeWatcher();
    }
    void tearDown()
    {
        m_watcher.reset();
        m_manager.reset();
        m_scope.reset();
        m_logind.reset();
    }
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
