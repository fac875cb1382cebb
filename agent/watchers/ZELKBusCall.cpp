#include "ZELKBusCall.h"

#include "ZELKAssertion.h"
#include "ZELKConsole.h"
#include "ZELKFormat.h"

#include <QDBusPendingCallWatcher>

#include <utility>

void ZELKBusCall::send(const QDBusConnection &bus, QDBusMessage call, QObject *context, Answered answered,
                       int timeout)
{
    call.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, timeout), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         zelkGuard([&] { answered(watcher->reply()); });
                     });
}

void ZELKBusCall::askForOwner(const QDBusConnection &bus, const QString &name, QObject *context,
                              std::function<void(bool)> answered)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    question << name;
    send(bus, question, context, [answered = std::move(answered)](const QDBusMessage &answer) {
        answered(answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("b") &&
                 answer.arguments().constFirst().toBool());
    });
}

QDBusMessage ZELKBusCall::getAll(const QString &service, const QString &path, const QString &interface)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    call << interface;
    return call;
}

std::optional<QVariant> ZELKBusCall::argument(const QDBusMessage &answer, const char *signature,
                                              const QString &service)
{
    const bool fits =
        answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String(signature);
    if (fits)
        return answer.arguments().constFirst();
    const QString reason = answer.type() == QDBusMessage::ReplyMessage
                               ? ZELKFormat("an answer of the form '%@'", {answer.signature()})
                               : answer.errorMessage();
    ZELKConsole::log(ZELKFormat("%@ could not be asked: %@", {service, reason}));
    return std::nullopt;
}
