#pragma once

#include "ZELKDelayLock.h"
#include "ZELKIdleStates.h"
#include "ZELKShutdownStates.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>
#include <vector>

/// The login manager (org.freedesktop.login1) as the agent needs it: told before the system sleeps or ends,
/// it holds locks meanwhile that delay both until what there was to say is on disk.
class ZELKLogind : public QObject
{
    Q_OBJECT

public:
    explicit ZELKLogind(const QDBusConnection &systemBus, QObject *parent = nullptr);

    /// Announces arrived() when the service is there or, later, each time it comes.
    void start();
    void stop();
    /// Another connection, or the same without its bus. The locks are kept until there are new ones.
    void setBus(const QDBusConnection &systemBus);

    /// Both locks, that on sleep and that on shut-down; see ZELKDelayLock.
    void takeLocks();
    void releaseLocks();
    /// All that logind gives us.
    bool holdsLocks() const;

    /// Neither is answered when logind does not answer sensibly; one console line tells so.
    using IdleAnswer = std::function<void(bool isIdle, std::optional<ZELKDate> since)>;
    void requestIdleHint(const IdleAnswer &answered);
    void requestInhibitors(const std::function<void(const std::vector<ZELKInhibitor> &)> &answered);

Q_SIGNALS:
    void arrived();
    void preparesForSleep(bool begins);
    /// `kind` where this logind tells.
    void preparesForShutdown(bool begins, std::optional<ZELKShutdownKind> kind);
    /// Ask anew: the hint, or since when, is another.
    void idleHintChanged();
    /// Something of no interest but as a sign of life.
    void somethingChanged();

private Q_SLOTS:
    void didPrepareForSleep(bool begins);
    void didPrepareForShutdown(bool begins);
    void didPrepareForShutdownWithMetadata(bool begins, const QVariantMap &metadata);
    void propertiesDidChange(const QString &interface, const QVariantMap &changed,
                             const QStringList &invalidated);

private:
    void connectSignals(bool connects);
    void setThere(bool isThere);
    void requestSeatIdleHint(const IdleAnswer &answered);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_service;
    ZELKDelayLock m_sleepLock;
    ZELKDelayLock m_shutdownLock;
    /// Told ahead of the plain signal, by newer logind.
    std::optional<ZELKShutdownKind> m_shutdownKind;
    bool m_running = false;
    bool m_isThere = false;
};
