#pragma once

#include "ZELKServiceNames.h"

#include <QDBusConnection>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

/// One manager of services: the system's or the user's. Every call blocks, and none starts the manager.
class ZELKSystemdManager
{
public:
    /// How long a service may take to start or to end.
    static constexpr int millisecondsToSettle = 20'000;

    explicit ZELKSystemdManager(const QDBusConnection &bus,
                                int timeoutMilliseconds = ZELKServiceNames::callTimeoutMilliseconds);

    bool isThere() const;
    /// A unit's properties, after loading it; empty without an answer. That succeeds for any name: the
    /// properties tell whether there is such a unit.
    QVariantMap unitProperties(const QString &unit) const;

    /// Where it looks for units, the first place first; empty without an answer.
    QStringList unitFolders() const;

    // What went wrong, else nothing.
    std::optional<QString> reload() const;
    std::optional<QString> enable(const QString &unit) const;
    std::optional<QString> disable(const QString &unit) const;
    /// Waits until it has started, or has failed to.
    std::optional<QString> start(const QString &unit) const;
    /// Waits until it has ended. A unit that is not loaded has.
    std::optional<QString> stop(const QString &unit) const;

private:
    std::optional<QString> change(const QString &method, const QVariantList &arguments) const;
    std::optional<QString> runJob(const QString &method, const QString &unit) const;
    bool waitForJob(const QString &job) const;

    QDBusConnection m_bus;
    int m_timeout;
};
