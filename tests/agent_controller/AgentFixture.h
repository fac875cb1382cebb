#pragma once

#include "FakeAgentLookup.h"
#include "FakeServiceManagement.h"
#include "FakeWorkspace.h"
#include "TestBundle.h"
#include "ZELKAgentPorts.h"

#include <QTemporaryDir>
#include <QTest>

#include <optional>

/// A main bundle of version "1.0" that carries the agent "org.test.agent", and a world of fakes around it.
struct AgentFixture
{
    AgentFixture()
    {
        useBundle({{QStringLiteral("CFBundleName"), QStringLiteral("Test")},
                   {QStringLiteral("CFBundleVersion"), QStringLiteral("1.0")},
                   {QStringLiteral("ZELKAgentControllerAgentName"), agentName},
                   {QStringLiteral("ZELKAgentControllerAgentFolder"), QStringLiteral("agents")}});
        writeTestBundle(folder.filePath(QStringLiteral("agents/org.test.agent.app")),
                        {{QStringLiteral("CFBundleIdentifier"), agentName}});
    }

    void useBundle(const ZELKDictionary &info)
    {
        scope.reset();
        writeTestBundle(folder.path(), info);
        scope.emplace(testEnvironment(folder.path()));
    }

    ZELKAgentPorts ports() const { return {services, workspace, lookup, {QStringLiteral("--database=x")}}; }

    void agentAnswers(const QString &version = QStringLiteral("1.0"))
    {
        lookup->serviceName = agentName + QStringLiteral("._service");
        lookup->version = version;
    }
    void agentRuns()
    {
        workspace->instances[agentName] = 1;
        agentAnswers();
    }

    static void expectLine(const QString &line) { QTest::ignoreMessage(QtInfoMsg, qPrintable(line)); }

    QString agentName = QStringLiteral("org.test.agent");
    QTemporaryDir folder;
    std::optional<ZELKEnvironmentScope> scope;
    std::shared_ptr<FakeServiceManagement> services = std::make_shared<FakeServiceManagement>();
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    std::shared_ptr<FakeAgentLookup> lookup = std::make_shared<FakeAgentLookup>();
};
