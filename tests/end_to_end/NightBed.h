#pragma once

#include "BusMock.h"
#include "ZELKEnvironment.h"
#include "ZELKLWAAgent.h"

#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>

/// A computer's wall clock in Berlin, and those by which its kernel tells sleep from waking.
class NightClock final : public ZELKClock, public ZELKSuspendClock
{
public:
    ZELKDate now() const override { return m_now.date; }
    ZELKMoment read(ZELKDate date) const override { return {date, m_now.awake, m_now.suspended}; }
    QDateTime local() const;
    /// To when it is next that time of the day.
    void moveTo(const char *time, bool asleep = false);
    void boot() { m_now.awake = m_now.suspended = 0.0; }

private:
    ZELKMoment m_now{ZELKDate::fromSecondsSince1970(1741708800.0)}; // 11 March 2025, 17:00
};

/// An agent's life, with connections that end with it as a process's do.
class NightAgent
{
public:
    NightAgent(const ZELKLWAOptions &options, const ZELKLWAMachine &machine);
    ~NightAgent();
    ZELKLWAAgent *operator->() { return &*m_agent; }

private:
    std::optional<ZELKLWAAgent> m_agent;
};

/// A laptop on battery, whose life from 17:00 on the test tells: each thing happens when it is next that time
/// of the day. The agent is in this process, whose executable stands in an agent's bundle; logind and UPower
/// are mocks.
class NightBed
{
public:
    NightBed();

    void boot(const char *time);
    /// Without an agent, nobody hears of it.
    void shutDown(const char *time);
    void startAgent(const char *time);
    /// It tells nobody.
    void killAgent() { m_agent.reset(); }
    void fallAsleep(const char *time);
    void wake(const char *time);
    void batteryIs(const char *time, double percent, bool charging = false);
    /// UPower tells only now what it has read the day before.
    void batteryWas(const char *time, double percent);
    void plugIn(const char *time);

    /// What the program, run for the first time, prints once everything has settled.
    QString list() const;

private:
    ZELKEnvironment environment() const;
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    qint64 seconds() const { return m_clock->local().toSecsSinceEpoch(); }
    QByteArray account(short type, const char *user) const;
    void addDevices() const;
    void setDevice(const char *name, const QVariantMap &properties) const;
    int locks() const { return BusMock::count(m_logind.call(u"ListInhibitors"_s)); }
    int records(const char *condition) const;
    void isRecorded(const std::function<void()> &what) const;

    QTemporaryDir m_folder;
    std::shared_ptr<NightClock> m_clock = std::make_shared<NightClock>();
    ZELKEnvironmentScope m_scope{environment()};
    BusMock m_logind{u"org.freedesktop.login1"_s,
                     u"/org/freedesktop/login1"_s,
                     u"org.freedesktop.login1.Manager"_s,
                     {u"--template"_s, u"logind"_s}};
    BusMock m_upower{u"org.freedesktop.UPower"_s,
                     u"/org/freedesktop/UPower"_s,
                     u"org.freedesktop.UPower"_s,
                     {u"--template"_s, u"upower"_s}};
    ZELKLWAOptions m_options;
    ZELKLWAMachine m_machine;
    std::optional<NightAgent> m_agent;
};
