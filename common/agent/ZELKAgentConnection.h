#pragma once

#include "ZELKDictionary.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QObject;

/// A line to the control service of a running agent. Every call has answered within
/// ZELKServiceNames::callTimeoutMilliseconds or has failed.
class ZELKAgentConnection
{
public:
    using VersionHandler = std::function<void(const std::optional<QString> &version)>;

    virtual ~ZELKAgentConnection() = default;

    /// Blocks. Nothing when the call failed, ran out of time, or was answered with something else than a
    /// text.
    virtual std::optional<QString> version() = 0;
    /// The same without blocking. `answered` is called once, later, unless `context` was destroyed by then;
    /// the connection itself need not live that long.
    virtual void requestVersion(QObject *context, const VersionHandler &answered) = 0;
    /// Blocks. Has a privileged agent delete what its installation put on the disk; `authorization` is the
    /// external form of one for the right to modify. Nothing, with the reason, when the call failed.
    virtual std::optional<bool> removeAgentFiles(const QByteArray & /*authorization*/, QString * /*reason*/)
    {
        return std::nullopt;
    }
    /// One-way. What went wrong, else nothing.
    virtual std::optional<QString> setDefaultsWithDictionary(const ZELKDictionary &defaults) = 0;
};

/// Finds control services.
class ZELKAgentLookup
{
public:
    virtual ~ZELKAgentLookup() = default;

    /// Null when no service of that name is registered. Never starts one.
    virtual std::unique_ptr<ZELKAgentConnection> connectionWithServiceName(const QString &serviceName) = 0;
};
