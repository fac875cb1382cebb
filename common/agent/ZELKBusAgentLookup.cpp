#include "ZELKBusAgentLookup.h"

#include "ZELKAssertion.h"
#include "ZELKBusNames.h"
#include "ZELKValue.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QVariantMap>

namespace {

std::optional<QVariant> busValue(const QVariant &value);

/// Nothing when a value has no form on the bus: the bus library ends the process over such a message.
std::optional<QVariantMap> busDictionary(const ZELKDictionary &dictionary)
{
    QVariantMap map;
    for (const auto &[key, value] : dictionary) {
        const auto item = busValue(value);
        if (!item)
            return std::nullopt;
        map.insert(key, *item);
    }
    return map;
}

std::optional<QVariant> busList(const QVariantList &values)
{
    QVariantList list;
    for (const QVariant &value : values) {
        const auto item = busValue(value);
        if (!item)
            return std::nullopt;
        list.append(*item);
    }
    return list;
}

std::optional<QVariant> busValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return value;
    case QMetaType::QVariantList:
        return busList(value.toList());
    default:
        break;
    }
    if (value.metaType() == QMetaType::fromType<ZELKDictionary>())
        return busDictionary(value.value<ZELKDictionary>());
    return std::nullopt;
}

std::optional<QString> textOf(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("s"))
        return std::nullopt;
    return reply.arguments().constFirst().toString();
}

class BusAgentConnection final : public ZELKAgentConnection
{
public:
    BusAgentConnection(const QDBusConnection &bus, const QString &serviceName, int timeout)
        : m_bus(bus)
        , m_serviceName(serviceName)
        , m_timeout(timeout)
    {
    }

    std::optional<QString> version() override
    {
        return textOf(m_bus.call(call(QStringLiteral("version")), QDBus::Block, m_timeout));
    }

    void requestVersion(QObject *context, const VersionHandler &answered) override
    {
        auto *watcher =
            new QDBusPendingCallWatcher(m_bus.asyncCall(call(QStringLiteral("version")), m_timeout), context);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, answered] {
            zelkGuard([&] {
                watcher->deleteLater();
                answered(textOf(watcher->reply()));
            });
        });
    }

    std::optional<bool> removeAgentFiles(const QByteArray &authorization, QString *reason) override
    {
        QDBusMessage message = call(QStringLiteral("removeAgentFiles"));
        message << authorization;
        const QDBusReply<bool> reply = m_bus.call(message, QDBus::Block, m_timeout);
        if (reply.isValid())
            return reply.value();
        if (reason)
            *reason = reply.error().message();
        return std::nullopt;
    }

    std::optional<QString> setDefaultsWithDictionary(const ZELKDictionary &defaults) override
    {
        QDBusMessage message = call(QStringLiteral("setDefaultsWithDictionary"));
        const auto dictionary = busDictionary(defaults);
        if (!dictionary)
            return QStringLiteral("a value has no form on the bus: ") +
                   ZELKValue::description(QVariant::fromValue(defaults));
        message << *dictionary;
        if (m_bus.send(message))
            return std::nullopt;
        return m_bus.lastError().message();
    }

private:
    QDBusMessage call(const QString &method) const
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(m_serviceName, ZELKServiceNames::controlServicePath(),
                                           ZELKServiceNames::controlServiceInterface(), method);
        message.setAutoStartService(false);
        return message;
    }

    QDBusConnection m_bus;
    QString m_serviceName;
    int m_timeout;
};

} // namespace

ZELKBusAgentLookup::ZELKBusAgentLookup(const QList<QDBusConnection> &buses, int timeoutMilliseconds)
    : m_buses(buses)
    , m_timeout(timeoutMilliseconds)
{
}

std::unique_ptr<ZELKAgentConnection> ZELKBusAgentLookup::connectionWithServiceName(const QString &serviceName)
{
    for (const QDBusConnection &bus : m_buses) {
        if (ZELKBusNames::hasOwner(bus, serviceName, m_timeout))
            return std::make_unique<BusAgentConnection>(bus, serviceName, m_timeout);
    }
    return nullptr;
}
