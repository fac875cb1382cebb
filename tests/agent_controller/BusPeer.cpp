#include "BusPeer.h"

#include "ZELKValue.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QString describe(const QVariant &value)
{
    QStringList items;
    if (value.canConvert<QDBusArgument>() &&
        value.value<QDBusArgument>().currentType() != QDBusArgument::MapType) {
        for (const QVariant &item : qdbus_cast<QVariantList>(value))
            items.append(describe(item));
        return u'(' + items.join(u' ') + u')';
    }
    if (!value.canConvert<QDBusArgument>() && value.metaType() != QMetaType::fromType<QVariantMap>())
        return ZELKValue::description(value);
    const QVariantMap map = qdbus_cast<QVariantMap>(value);
    for (auto item = map.begin(); item != map.end(); ++item)
        items.append(item.key() + u'=' + describe(item.value()));
    return u'{' + items.join(u' ') + u'}';
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
        if (message.member() == "setDefaultsWithDictionary"_L1)
            tell(describe(message.arguments().constFirst()));
        else if (kind == "unit"_L1)
            bus.send(message.createReply(managersAnswer(message)));
        else if (kind == "text"_L1)
            bus.send(message.createReply(m_behaviour[1]));
        else if (kind == "number"_L1)
            bus.send(message.createReply(7));
        else if (kind == "nothing"_L1)
            bus.send(message.createReply());
        else if (kind == "error"_L1)
            bus.send(message.createErrorReply(QDBusError::Failed, u"out of order"_s));
        else if (kind == "leave"_L1)
            std::_Exit(0);
        return true;
    }

private:
    QVariant managersAnswer(const QDBusMessage &message) const
    {
        if (message.member() == "LoadUnit"_L1) {
            const bool isKnown = message.arguments() == QVariantList{m_behaviour[1]};
            return QVariant::fromValue(QDBusObjectPath(isKnown ? u"/unit/known"_s : u"/unit/other"_s));
        }
        const bool isKnown = message.path() == "/unit/known"_L1;
        return QVariantMap{{u"LoadState"_s, isKnown ? m_behaviour[2] : u"not-found"_s},
                           {u"ActiveState"_s, isKnown ? m_behaviour[3] : u"inactive"_s}};
    }

    QStringList m_behaviour;
};

} // namespace

BusPeer::BusPeer(const QStringList &description)
{
    m_process.start(QCoreApplication::applicationFilePath(), QStringList{u"--peer"_s} + description);
    if (nextLine() != "ready"_L1)
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
    QDBusConnection bus =
        description[0] == "system"_L1 ? QDBusConnection::systemBus() : QDBusConnection::sessionBus();
    Peer peer(description.mid(2));
    if (!bus.registerVirtualObject(u"/"_s, &peer, QDBusConnection::SubPath) ||
        !bus.registerService(description[1]))
        return 1;
    tell(u"ready"_s);
    return QCoreApplication::exec();
}
