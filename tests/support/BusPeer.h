#pragma once

#include "AnsweringObject.h"

#include <QDBusArgument>
#include <QMap>
#include <QSemaphore>
#include <QThread>

using namespace Qt::StringLiterals;

/// Somebody on the other side of a bus, in a thread of its own: calls that block would wait for themselves
/// otherwise. It leaves the bus with the object.
class BusPeer final : public QThread
{
public:
    using Answer = AnsweringObject::Answer;

    BusPeer(QDBusConnection::BusType bus, const QString &name, const Answer &answer)
        : m_bus(bus)
        , m_name(name)
        , m_answer(answer)
    {
        start();
        m_ready.acquire();
    }
    ~BusPeer() override
    {
        quit();
        wait();
    }

    /// "text VERSION", "number", "nothing", "error" or "silent", to every call.
    static Answer saying(const QString &words)
    {
        return [words](const QDBusMessage &call) {
            if (words.startsWith("text "_L1))
                return call.createReply(words.mid(5));
            if (words == "error"_L1)
                return call.createErrorReply(QDBusError::Failed, u"out of order"_s);
            if (words == "silent"_L1)
                return QDBusMessage();
            return words == "number"_L1 ? call.createReply(7) : call.createReply();
        };
    }

    /// polkit's reply to a proper question.
    static QDBusMessage verdict(const QDBusMessage &question, bool isAuthorized, bool isChallenge = false,
                                const QString &detail = {})
    {
        if (question.signature() != "(sa{sv})sa{ss}us"_L1)
            return question.createErrorReply(QDBusError::InvalidSignature, question.signature());
        QDBusArgument answer; // (bba{ss})
        answer.beginStructure();
        answer << isAuthorized << isChallenge << QMap<QString, QString>{{detail, u"true"_s}};
        answer.endStructure();
        return question.createReply(QVariant::fromValue(answer));
    }

private:
    void run() override
    {
        AnsweringObject object(m_answer);
        const QString own = QString::number(quintptr(this));
        QDBusConnection connection = QDBusConnection::connectToBus(m_bus, own);
        if (!connection.registerVirtualObject(u"/"_s, &object, QDBusConnection::SubPath) ||
            !connection.registerService(m_name))
            qFatal("The peer did not come up");
        m_ready.release();
        exec();
        connection.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
        QDBusConnection::disconnectFromBus(own);
    }

    QDBusConnection::BusType m_bus;
    QString m_name;
    Answer m_answer;
    QSemaphore m_ready;
};
