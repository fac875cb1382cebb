#pragma once

#include "FakeAgentLookup.h"
#include "FakeSystem.h"
#include "FakeWorkspace.h"
#include "PropertyLists.h"
#include "Raised.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"

#include <QSignalSpy>
#include <QTemporaryDir>

/// A main bundle of version "1.0" that carries an agent, folders of a user of its own, and a world of fakes.
struct AgentFixture
{
    AgentFixture()
    {
        writeList(path(u"agents/org.test.agent.app/Info.plist"_s),
                  {{u"CFBundleIdentifier"_s, agentName}, {u"CFBundleExecutable"_s, u"agent"_s}});
        writeFile(path(u"agents/org.test.agent.app/agent"_s), "#!/bin/sh\n");
        writeList(path(u"agent.plist"_s), {{u"Label"_s, u"template"_s}, {u"RunAtLoad"_s, true}});
        useInfo();
        lookup->serviceName = agentName + u"._service"_s;
        lookup->version = u"1.0"_s;
        lookup->isThere = [jobs = system] { return jobs->systemJob || jobs->userJob; };
        lookup->removeFiles = [agent = system](const QByteArray &authorization, QString *reason) {
            return agent->removeFiles(authorization, reason);
        };
    }

    QString path(const QString &name) const { return folder.filePath(name); }
    /// Has the main bundle say what `info` says now.
    void useInfo()
    {
        scope.reset();
        writeList(path(u"Info.plist"_s), info);
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.mainBundle = std::make_shared<ZELKBundle>(folder.path());
        scope.emplace(environment);
    }
    ZELKAgentPorts ports() const
    {
        return {system, workspace, lookup, {u"--database=x"_s}, system, {path(u"data"_s), path(u"config"_s)}};
    }
    /// The controller, once everything around it is as it shall be.
    ZELKAgentController &create()
    {
        controller.emplace(ports());
        presented.emplace(&*controller, &ZELKAgentController::errorPresented);
        return *controller;
    }
    static void expectLine(const QString &line) { QTest::ignoreMessage(QtInfoMsg, qPrintable(line)); }

    QTemporaryDir folder;
    ZELKDictionary info{{u"CFBundleName"_s, u"Test"_s},
                        {u"CFBundleIdentifier"_s, u"org.test"_s},
                        {u"CFBundleVersion"_s, u"1.0"_s},
                        {u"ZELKAgentControllerAgentName"_s, agentName},
                        {u"ZELKAgentControllerAgentFolder"_s, u"agents"_s},
                        {u"ZELKAgentControllerLaunchAgentsFolder"_s, u"launch"_s}};
    std::optional<ZELKEnvironmentScope> scope;
    std::shared_ptr<FakeSystem> system = std::make_shared<FakeSystem>();
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
    /// Its service is there when a job is.
    std::shared_ptr<FakeAgentLookup> lookup = std::make_shared<FakeAgentLookup>();
    std::optional<ZELKAgentController> controller;
    std::optional<QSignalSpy> presented; ///< its errors
};
