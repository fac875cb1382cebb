#pragma once

#include "FakeAgentLookup.h"
#include "FakeServiceManagement.h"
#include "FakeWorkspace.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKAgentController.h"
#include "ZELKAgentPorts.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKPropertyList.h"

#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

const QString agentName = u"org.test.agent"_s;

inline void writeTestBundle(const QString &folder, const ZELKDictionary &info)
{
    writeFile(folder + u"/Info.plist"_s, ZELKPropertyList::writeXml(QVariant::fromValue(info)).bytes);
}

/// A main bundle of version "1.0" that carries the agent, and a world of fakes around it.
struct AgentFixture
{
    AgentFixture()
    {
        useBundle({{u"CFBundleName"_s, u"Test"_s},
                   {u"CFBundleVersion"_s, u"1.0"_s},
                   {u"ZELKAgentControllerAgentName"_s, agentName},
                   {u"ZELKAgentControllerAgentFolder"_s, u"agents"_s}});
        writeTestBundle(folder.filePath(u"agents/org.test.agent.app"_s),
                        {{u"CFBundleIdentifier"_s, agentName}});
    }

    void useBundle(const ZELKDictionary &info)
    {
        scope.reset();
        writeTestBundle(folder.path(), info);
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.mainBundle = std::make_shared<ZELKBundle>(folder.path());
        scope.emplace(environment);
    }

    ZELKAgentPorts ports() const { return {services, workspace, lookup, {u"--database=x"_s}}; }

    void agentAnswers(const QString &version = u"1.0"_s)
    {
        lookup->serviceName = agentName + u"._service"_s;
        lookup->version = version;
    }
    void agentRuns()
    {
        workspace->instances[agentName] = 1;
        agentAnswers();
    }

    static void expectLine(const QString &line) { QTest::ignoreMessage(QtInfoMsg, qPrintable(line)); }

    QTemporaryDir folder;
    std::optional<ZELKEnvironmentScope> scope;
    std::shared_ptr<FakeServiceManagement> services = std::make_shared<FakeServiceManagement>();
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    std::shared_ptr<FakeAgentLookup> lookup = std::make_shared<FakeAgentLookup>();
};
