#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

using namespace Qt::StringLiterals;

/// A desktop on the session bus, on a connection of its own, that answers one question.
class FakeDesktop : public QDBusVirtualObject
{
public:
    FakeDesktop(const QString &service, const QString &path, const QString &question, const QVariant &answer)
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_s))
        , m_question(question)
        , m_answer(answer)
    {
        m_bus.registerVirtualObject(path, this);
        m_bus.registerService(service);
    }
    ~FakeDesktop() override { QDBusConnection::disconnectFromBus(u"desktop"_s); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        return message.member() == m_question && bus.send(message.createReply(m_answer));
    }

private:
    QDBusConnection m_bus;
    QString m_question;
    QVariant m_answer;
};
