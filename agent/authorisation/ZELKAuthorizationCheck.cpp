#include "ZELKAuthorizationCheck.h"

#include "ZELKAssertion.h"
#include "ZELKPolkit.h"
#include "ZELKProcessTable.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QTimer>
#include <QVariantMap>

#include <algorithm>

namespace {

constexpr int millisecondsToAsk = 300'000;

QDBusMessage credentialsOf(const QString &caller)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionCredentials"));
    call << caller;
    return call;
}

/// Calls `done` with the reply, in a guard, unless `context` is gone by then.
void ask(const QDBusConnection &bus, const QDBusMessage &question, int timeout, QObject *context,
         const std::function<void(const QDBusMessage &)> &done)
{
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(question, timeout), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, done] {
        watcher->deleteLater();
        zelkGuard([&] { done(watcher->reply()); });
    });
}

} // namespace

struct ZELKAuthorizationCheck::Request
{
    ZELKAuthorizationForm form;
    QString action;
    bool mayAsk;
    Handler done;
    QDeadlineTimer deadline;
};

ZELKAuthorizationCheck::ZELKAuthorizationCheck(const QDBusConnection &bus, const Surroundings &surroundings,
                                               QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_surroundings(surroundings)
{
}

void ZELKAuthorizationCheck::check(const QByteArray &form, const QString &caller, const QString &action,
                                   bool mayAsk, const Handler &done)
{
    const auto decoded = ZELKAuthorizationForm::decode(form);
    QString problem;
    if (!decoded)
        problem = QStringLiteral("not the form of an authorization");
    else if (m_usedNonces.contains(decoded->nonce))
        problem = QStringLiteral("the form was used before");
    else if (m_underWay == mostAtOnce)
        problem = QStringLiteral("too many ask at once");
    if (!problem.isEmpty()) {
        QTimer::singleShot(0, this, [done, problem] { zelkGuard([&] { done(problem); }); });
        return;
    }
    ++m_underWay;
    const auto doneWithIt = [this, done](const QString &found) {
        --m_underWay;
        done(found);
    };
    const Request request{*decoded, action, mayAsk, doneWithIt,
                          QDeadlineTimer(m_surroundings.timeoutMilliseconds)};
    ask(m_bus, credentialsOf(caller), m_surroundings.timeoutMilliseconds, this,
        [this, request](const QDBusMessage &message) {
            const QDBusReply<QVariantMap> reply = message;
            if (reply.isValid())
                compare(request, reply.value());
            else
                request.done(QStringLiteral("the bus does not know the caller: ") + reply.error().message());
        });
}

/// The number of a process that has ended is given to another one some day; with its start it is the same
/// process for certain.
void ZELKAuthorizationCheck::compare(const Request &request, const QVariantMap &credentials)
{
    const QVariant process = credentials.value(QStringLiteral("ProcessID"));
    const QVariant user = credentials.value(QStringLiteral("UnixUserID"));
    const auto running = ZELKProcessTable(m_surroundings.procFolder).process(request.form.processIdentifier);
    const bool isCaller = process.isValid() && process.toUInt() == request.form.processIdentifier &&
                          user.isValid() && user.toUInt() == request.form.userIdentifier && running &&
                          running->startTime == request.form.startTime &&
                          running->userIdentifier == request.form.userIdentifier;
    if (!isCaller)
        request.done(QStringLiteral("the form is not the caller's"));
    else if (user.toUInt() == m_surroundings.administrator)
        accept(request);
    else
        askPolkit(request);
}

void ZELKAuthorizationCheck::askPolkit(const Request &request)
{
    const QDBusMessage question = ZELKPolkit::question(request.form, request.action, request.mayAsk);
    const int timeout =
        request.mayAsk ? millisecondsToAsk : std::max(1, int(request.deadline.remainingTime()));
    ask(m_bus, question, timeout, this, [this, request](const QDBusMessage &reply) {
        const auto answer = ZELKPolkit::answer(reply);
        if (!answer)
            request.done(QStringLiteral("polkit does not answer: ") + reply.errorMessage());
        else if (!answer->isAuthorized)
            request.done(QStringLiteral("polkit refuses %1").arg(request.action));
        else
            accept(request);
    });
}

void ZELKAuthorizationCheck::accept(const Request &request)
{
    // Two requests with one form may have been under way together.
    const bool isFirst = !m_usedNonces.contains(request.form.nonce);
    m_usedNonces.insert(request.form.nonce);
    request.done(isFirst ? QString() : QStringLiteral("the form was used before"));
}
