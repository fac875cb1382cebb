#include "ZELKPolkit.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QMap>
#include <QVariantMap>

namespace {

/// (sa{sv}): what kind of thing asks, and which one.
struct Subject
{
    QString kind;
    QVariantMap details;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Subject &subject)
{
    argument.beginStructure();
    argument << subject.kind << subject.details;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Subject &subject)
{
    argument.beginStructure();
    argument >> subject.kind >> subject.details;
    argument.endStructure();
    return argument;
}

using Details = QMap<QString, QString>;

} // namespace

Q_DECLARE_METATYPE(Subject)

QDBusMessage ZELKPolkit::question(const ZELKAuthorizationForm &process, const QString &action, bool mayAsk)
{
    qDBusRegisterMetaType<Subject>();
    qDBusRegisterMetaType<Details>();
    const Subject subject{QStringLiteral("unix-process"),
                          {{QStringLiteral("pid"), process.processIdentifier},
                           {QStringLiteral("start-time"), qulonglong(process.startTime)},
                           {QStringLiteral("uid"), int(process.userIdentifier)}}};
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.PolicyKit1"), QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
        QStringLiteral("org.freedesktop.PolicyKit1.Authority"), QStringLiteral("CheckAuthorization"));
    const uint flags = mayAsk ? 1 : 0;
    message << QVariant::fromValue(subject) << action << QVariant::fromValue(Details()) << flags << QString();
    return message;
}

std::optional<ZELKPolkit::Answer> ZELKPolkit::answer(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("(bba{ss})"))
        return std::nullopt;
    const auto argument = reply.arguments().constFirst().value<QDBusArgument>();
    Answer answer;
    argument.beginStructure();
    Details details;
    argument >> answer.isAuthorized >> answer.wouldAsk >> details;
    answer.wasDismissed = details.contains(QStringLiteral("polkit.dismissed"));
    argument.endStructure();
    return answer;
}

/// There is no name of its own for that error.
bool ZELKPolkit::isUnknownAction(const QDBusMessage &reply)
{
    return reply.type() == QDBusMessage::ErrorMessage &&
           reply.errorName().startsWith(QLatin1String("org.freedesktop.PolicyKit1.Error.")) &&
           reply.errorMessage().contains(QLatin1String("is not registered"));
}
