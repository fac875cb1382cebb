#include "ZELKScriptingTree.h"

#include "ZELKAssertion.h"

#include <QDBusError>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace {

using Object = ZELKScriptObject;

const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QDBusMessage refuse(const QDBusMessage &message, QDBusError::ErrorType type, const QString &text)
{
    return message.createErrorReply(type, text);
}

QDBusMessage failed(const QDBusMessage &message, const Object::Error &error)
{
    QDBusMessage reply = message.createErrorReply(error.name, error.text);
    if (error.number != 0)
        reply << error.number;
    return reply;
}

QDBusMessage get(const Object &object, const QDBusMessage &message, const QString &name)
{
    if (!object.property(name))
        return refuse(message, QDBusError::UnknownProperty,
                      QStringLiteral("There is no property %1").arg(name));
    const QVariant value = object.value(name);
    if (!value.isValid())
        return refuse(message, QDBusError::LimitsExceeded,
                      QStringLiteral("%1 is too long for one answer").arg(name));
    return message.createReply(QVariant::fromValue(QDBusVariant(value)));
}

QDBusMessage getAll(const Object &object, const QDBusMessage &message)
{
    QVariantMap values;
    for (const Object::Property &property : object.properties())
        if (!property.isExplicit)
            values.insert(property.name, object.value(property.name));
    return message.createReply(QVariant(values));
}

QDBusMessage set(Object &object, const QDBusMessage &message, const QString &name)
{
    const auto property = object.property(name);
    if (!property)
        return refuse(message, QDBusError::UnknownProperty,
                      QStringLiteral("There is no property %1").arg(name));
    if (!property->isWritable)
        return refuse(message, QDBusError::PropertyReadOnly, QStringLiteral("%1 cannot be set").arg(name));
    const QVariant value = message.arguments().value(2).value<QDBusVariant>().variant();
    if (const auto error = object.setValue(name, value))
        return failed(message, *error);
    return message.createReply();
}

/// Which signature a member of the properties' interface has; null for no member.
QString signatureOf(const QString &member)
{
    if (member == QLatin1String("Get"))
        return QStringLiteral("ss");
    if (member == QLatin1String("Set"))
        return QStringLiteral("ssv");
    return member == QLatin1String("GetAll") ? QStringLiteral("s") : QString();
}

QDBusMessage answerProperties(Object &object, const QDBusMessage &message)
{
    if (signatureOf(message.member()) != message.signature())
        return refuse(message, QDBusError::UnknownMethod,
                      QStringLiteral("There is no %1(%2)").arg(message.member(), message.signature()));
    const QString interface = message.arguments().first().toString();
    if (!interface.isEmpty() && interface != object.interface())
        return refuse(message, QDBusError::UnknownInterface,
                      QStringLiteral("There is no interface %1").arg(interface));
    if (message.member() == QLatin1String("GetAll"))
        return getAll(object, message);
    const QString name = message.arguments().at(1).toString();
    return message.member() == QLatin1String("Get") ? get(object, message, name) : set(object, message, name);
}

QString signatureOf(const Object::Method &method)
{
    QString signature;
    for (const Object::Argument &argument : method.arguments)
        if (!argument.isOut)
            signature += argument.type;
    return signature;
}

QDBusMessage answerCall(Object &object, const QDBusMessage &message)
{
    const std::vector<Object::Method> methods = object.methods();
    const bool isKnown = std::any_of(methods.begin(), methods.end(), [&](const Object::Method &method) {
        return method.name == message.member() && signatureOf(method) == message.signature();
    });
    if (!isKnown)
        return refuse(message, QDBusError::UnknownMethod,
                      QStringLiteral("There is no %1(%2)").arg(message.member(), message.signature()));
    QVariantList answer;
    if (const auto error = object.call(message.member(), message.arguments(), answer))
        return failed(message, *error);
    return message.createReply(answer);
}

} // namespace

ZELKScriptingTree::ZELKScriptingTree(ZELKScriptObjects::Subject subject)
    : m_subject(std::move(subject))
{
}

QString ZELKScriptingTree::introspect(const QString &path) const
{
    QString xml;
    zelkGuard([&] {
        if (const auto object = ZELKScriptObjects::objectAtPath(m_subject, path))
            xml = object->introspection();
    });
    return xml;
}

bool ZELKScriptingTree::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    QDBusMessage reply;
    const bool succeeded = zelkGuard([&] {
        if (const auto object = ZELKScriptObjects::objectAtPath(m_subject, message.path()))
            reply = answer(*object, message);
    });
    if (!succeeded)
        reply = refuse(message, QDBusError::InternalError, QStringLiteral("The request failed"));
    if (reply.type() == QDBusMessage::InvalidMessage)
        return false;
    return !message.isReplyRequired() || connection.send(reply);
}

QDBusMessage ZELKScriptingTree::answer(ZELKScriptObject &object, const QDBusMessage &message) const
{
    if (message.interface() == propertiesInterface)
        return answerProperties(object, message);
    if (message.interface().isEmpty() || message.interface() == object.interface())
        return answerCall(object, message);
    return {};
}
