#pragma once

#include "BusConnection.h"
#include "ClockEnvironment.h"
#include "FakeUPower.h"
#include "Logind.h"
#include "TestClock.h"
#include "ZELKLWAAgent.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>

/// 11 March 2025, 17:00 in Berlin.
inline constexpr double usualDay = 1741708800.0;

/// An agent's life.
struct NightAgent
{
    NightAgent(const ZELKLWAOptions &options, const ZELKLWAMachine &machine);

    BusConnection session{u"agent's session"_s};
    BusConnection system{u"agent's system"_s, QDBusConnection::SystemBus};
    ZELKLWAAgent agent;
};

/// A laptop on battery, whose life from 17:00 on the test tells: each thing happens when it is next that time
/// of the day. The agent is in this process, whose executable stands in an agent's bundle; logind and UPower
/// are fakes.
class NightBed
{
public:
    /// `day`, in seconds since 1970, is at 17:00.
    explicit NightBed(double day = usualDay);

    /// What the system keeps of the sleeps.
    void addJournal(const QByteArray &bytes);

    void boot(const char *time);
    /// Without an agent, nobody hears of it.
    void shutDown(const char *time);
    void rotateAccounting() const;
    void startAgent(const char *time);
    /// It tells nobody.
    void killAgent() { m_agent.reset(); }
    void fallAsleep(const char *time);
    void wake(const char *time);
    void batteryIs(const char *time, double percent, bool charging = false);
    /// UPower tells only now what it has read the day before.
    void batteryWas(const char *time, double percent);
    void plugIn(const char *time);

    /// What the program prints once everything has settled. Its home stays from run to run.
    QString list() const;
    QString run(const QStringList &arguments) const;
    QString database() const { return m_options.database; }

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QDateTime local() const { return m_clock->now().toDateTime(QTimeZone("Europe/Berlin")); }
    /// To when it is next that time of the day.
    void moveTo(const char *time, bool asleep = false);
    qint64 seconds() const { return local().toSecsSinceEpoch(); }
    QByteArray account(short type, const char *user) const;
    int records(const QByteArray &condition, const char *table = "events") const;
    bool hasReadPast() const;
    void isRecorded(const std::function<void()> &what) const;

    QTemporaryDir m_folder;
    std::shared_ptr<TestClock> m_clock;
    ZELKEnvironmentScope m_scope{environmentWith(m_clock)};
    Logind m_logind;
    FakeUPower m_upower;
    ZELKLWAOptions m_options;
    ZELKLWAMachine m_machine;
    std::optional<NightAgent> m_agent;
};
