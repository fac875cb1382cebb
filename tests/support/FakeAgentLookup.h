#pragma once

#include "ZELKAgentConnection.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <utility>

/// A control service as the test says. It outlives its connections, and the test reads what they were told.
class FakeAgentLookup final : public ZELKAgentLookup
{
public:
    QString serviceName;            ///< under which the service is registered; empty for none
    std::optional<QString> version; ///< nothing: the call fails
    /// Questions for the version that need not be waited for stay open until answerQuestions().
    bool isSlow = false;
    std::optional<QString> defaultsProblem;
    std::function<bool()> isThere; ///< else a service that has a name is
    /// Answers a removal of the agent's files, else the call fails.
    std::function<std::optional<bool>(const QByteArray &authorization, QString *reason)> removeFiles;

    int questions = 0; ///< for the version, of both kinds
    QList<ZELKDictionary> defaults;

    std::unique_ptr<ZELKAgentConnection> connectionWithServiceName(const QString &name) override
    {
        if (serviceName.isEmpty() || name != serviceName || (isThere && !isThere()))
            return nullptr;
        return std::make_unique<Connection>(*this);
    }

    void answerQuestions()
    {
        for (const auto &[context, answered] : std::exchange(m_open, {})) {
            if (context)
                answered(version);
        }
    }

private:
    class Connection final : public ZELKAgentConnection
    {
    public:
        explicit Connection(FakeAgentLookup &service)
            : m_service(service)
        {
        }

        std::optional<QString> version() override
        {
            ++m_service.questions;
            return m_service.version;
        }

        void requestVersion(QObject *context, const VersionHandler &answered) override
        {
            ++m_service.questions;
            m_service.m_open.append({context, answered});
            if (!m_service.isSlow)
                QTimer::singleShot(0, context, [&service = m_service] { service.answerQuestions(); });
        }

        std::optional<bool> removeAgentFiles(const QByteArray &authorization, QString *reason) override
        {
            return m_service.removeFiles ? m_service.removeFiles(authorization, reason) : std::nullopt;
        }

        std::optional<QString> setDefaultsWithDictionary(const ZELKDictionary &defaults) override
        {
            if (!m_service.defaultsProblem)
                m_service.defaults.append(defaults);
            return m_service.defaultsProblem;
        }

    private:
        FakeAgentLookup &m_service;
    };

    QList<std::pair<QPointer<QObject>, ZELKAgentConnection::VersionHandler>> m_open;
};
