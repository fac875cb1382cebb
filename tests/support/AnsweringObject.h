#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <functional>

/// What answers on a bus as the test says.
class AnsweringObject final : public QDBusVirtualObject
{
public:
    /// The reply to a call; an empty message for none.
    using Answer = std::function<QDBusMessage(const QDBusMessage &)>;

    explicit AnsweringObject(const Answer &answer)
        : m_answer(answer)
    {
    }
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &call, const QDBusConnection &bus) override
    {
        const QDBusMessage reply = m_answer(call);
        return reply.type() == QDBusMessage::InvalidMessage || bus.send(reply);
    }

private:
    Answer m_answer;
};
