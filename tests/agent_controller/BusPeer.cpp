#include "BusPeer.h"

#include "ZELKDictionary.h"
#include "ZELKValue.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <cstdio>

namespace {

QString describe(const QVariant &value)
{
    if (value.canConvert<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        return describe(argument.currentType() == QDBusArgument::MapType
                            ? QVariant(qdbus_cast<QVariantMap>(argument))
                            : QVariant(qdbus_cast<QVariantList>(argument)));
    }
    QStringList items;
    if (value.metaType() == QMetaType::fromType<QVariantMap>()) {
        const QVariantMap map = value.toMap();
        for (auto item = map.begin(); item != map.end(); ++item)
            items.append(item.key() + QLatin1Char('=') + describe(item.value()));
        return QLatin1Char('{') + items.join(QLatin1Char(' ')) + QLatin1Char('}');
    }
    if (value.metaType() == QMetaType::fromType<QVariantList>()) {
        for (const QVariant &item : value.toList())
            items.append(describe(item));
        return QLatin1Char('(') + items.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    return ZELKValue::description(value);
}

void tell(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Peer final : public QDBusVirtualObject
{
public:
    explicit Peer(const QStringList &behaviour)
        : m_behaviour(behaviour)
    {
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        const QString kind = m_behaviour.first();
        if (message.member() == QLatin1String("setDefaultsWithDictionary"))
            tell(describe(message.arguments().constFirst()));
        else if (kind == QLatin1String("unit"))
            answerAsManager(message, bus);
        else if (kind == QLatin1String("text"))
            bus.send(message.createReply(m_behaviour[1]));
        else if (kind == QLatin1String("number"))
            bus.send(message.createReply(7));
        else if (kind == QLatin1String("nothing"))
            bus.send(message.createReply());
        else if (kind == QLatin1String("error"))
            bus.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("out of order")));
        else if (kind == QLatin1String("leave"))
            std::_Exit(0);
        return true;
    }

private:
    void answerAsManager(const QDBusMessage &message, const QDBusConnection &bus) const
    {
        const QString known = QStringLiteral("/unit/known");
        if (message.member() == QLatin1String("LoadUnit")) {
            const bool isKnown = message.arguments() == QVariantList{m_behaviour[1]};
            bus.send(message.createReply(
                QVariant::fromValue(QDBusObjectPath(isKnown ? known : QStringLiteral("/unit/other")))));
            return;
        }
        QVariantMap unit{{QStringLiteral("LoadState"), QStringLiteral("not-found")},
                         {QStringLiteral("ActiveState"), QStringLiteral("inactive")}};
        if (message.path() == known)
            unit = {{QStringLiteral("LoadState"), m_behaviour[2]},
                    {QStringLiteral("ActiveState"), m_behaviour[3]}};
        bus.send(message.createReply(unit));
    }

    QStringList m_behaviour;
};

} // namespace

BusPeer::BusPeer(const QStringList &description)
{
    m_process.start(QCoreApplication::applicationFilePath(),
                    QStringList{QStringLiteral("--peer")} + description);
    if (nextLine() != QLatin1String("ready"))
        qFatal("The peer did not come up");
}

BusPeer::~BusPeer()
{
    m_process.kill();
    m_process.waitForFinished();
}

QString BusPeer::nextLine()
{
    while (!m_process.canReadLine() && m_process.waitForReadyRead(10000)) {
    }
    return QString::fromUtf8(m_process.readLine()).trimmed();
}

int runBusPeer(const QStringList &description)
{
    QDBusConnection bus = description[0] == QLatin1String("system") ? QDBusConnection::systemBus()
                                                                    : QDBusConnection::sessionBus();
    Peer peer(description.mid(2));
    if (!bus.registerVirtualObject(QStringLiteral("/"), &peer, QDBusConnection::SubPath) ||
        !bus.registerService(description[1]))
        return 1;
    tell(QStringLiteral("ready"));
    return QCoreApplication::exec();
}
