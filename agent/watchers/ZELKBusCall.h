#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <optional>

/// Calls of services of the system that never block, never start a service, and never enter our code without
/// a guard.
namespace ZELKBusCall {

/// How long an answer may take unless a call says otherwise.
inline constexpr int timeoutMilliseconds = 5000;

/// Gives the answer, an error message when there is none in time, to `answered`; to nobody when `context` is
/// gone by then.
using Answered = std::function<void(const QDBusMessage &)>;
void send(const QDBusConnection &bus, QDBusMessage call, QObject *context, Answered answered,
          int timeout = timeoutMilliseconds);

/// Whether somebody owns `name`; false when the bus does not say.
void askForOwner(const QDBusConnection &bus, const QString &name, QObject *context,
                 std::function<void(bool)> answered);

/// All properties of an interface.
QDBusMessage getAll(const QString &service, const QString &path, const QString &interface);

/// The one argument of an answer, when it is one of that signature; else one console line, that names the
/// service, for what is no answer or nonsense.
std::optional<QVariant> argument(const QDBusMessage &answer, const char *signature, const QString &service);

} // namespace ZELKBusCall
