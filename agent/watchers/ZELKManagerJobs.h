#pragma once

#include "ZELKShutdownStates.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>

/// What the service manager (org.freedesktop.systemd1) knows of the end of the system and of sleeping: its
/// jobs. It is told of these units' jobs only, so that the others' wake nobody. That the manager tells of
/// jobs at all is logind's doing, which has it do so.
class ZELKManagerJobs : public QObject
{
    Q_OBJECT

public:
    explicit ZELKManagerJobs(const QDBusConnection &systemBus, QObject *parent = nullptr);

    void start();
    void stop();
    /// Another connection, or the same without its bus.
    void setBus(const QDBusConnection &systemBus);
    bool isThere() const { return m_isThere; }

    /// How long the answer about the jobs may take: a shut-down waits for it.
    static constexpr int timeoutMilliseconds = 500;
    struct Answer
    {
        /// The manager listed its jobs.
        bool isKnown = false;
        std::optional<ZELKShutdownKind> kind;
    };
    void requestShutdownKind(const std::function<void(Answer)> &answered);
    /// The same at once, for when the program's own end is near. Blocks for the time limit at most.
    Answer shutdownKind() const;
    /// A job was heard of whose signal is yet to come, or not.
    bool isAsking() const { return m_questions > 0; }

Q_SIGNALS:
    void presenceChanged(bool isThere);
    /// A job that ends the system: one that stops such a unit does not.
    void shutdownJobDidStart(ZELKShutdownKind kind);
    void sleepJobDidFinish(bool succeeded);

private Q_SLOTS:
    void jobDidStart(uint number, const QDBusObjectPath &job, const QString &unit);
    void jobDidFinish(uint number, const QDBusObjectPath &job, const QString &unit, const QString &result);

private:
    void connectSignals(bool connects);
    void setThere(bool isThere);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_service;
    bool m_running = false;
    bool m_isThere = false;
    /// Of jobs heard of, what kind they are.
    int m_questions = 0;
};
