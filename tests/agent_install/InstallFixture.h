#pragma once

#include "FakeSystem.h"
#include "FakeWorkspace.h"
#include "Files.h"
#include "ZELKAgentController.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"
#include "ZELKPropertyList.h"

#include <QTemporaryDir>
#include <QTest>

const QString agentName = u"org.test.agent"_s;

/// A main bundle that carries an agent, and folders of a user of its own.
struct InstallFixture
{
    InstallFixture()
    {
        info = {{u"CFBundleName"_s, u"Test"_s},
                {u"CFBundleIdentifier"_s, u"org.test"_s},
                {u"CFBundleVersion"_s, u"1.0"_s},
                {u"ZELKAgentControllerAgentName"_s, agentName},
                {u"ZELKAgentControllerAgentFolder"_s, u"agents"_s},
                {u"ZELKAgentControllerLaunchAgentsFolder"_s, u"launch"_s}};
        writeList(u"agents/org.test.agent.app/Info.plist"_s,
                  {{u"CFBundleIdentifier"_s, agentName}, {u"CFBundleExecutable"_s, u"agent"_s}});
        writeFile(path(u"agents/org.test.agent.app/agent"_s), "#!/bin/sh\n");
        writeList(u"agent.plist"_s, {{u"Label"_s, u"template"_s}, {u"RunAtLoad"_s, true}});
        useInfo();
    }

    QString path(const QString &name) const { return folder.filePath(name); }
    void writeList(const QString &name, const ZELKDictionary &list) const
    {
        writeFile(path(name), ZELKPropertyList::writeXml(QVariant::fromValue(list)).bytes);
    }
    void useInfo()
    {
        scope.reset();
        writeList(u"Info.plist"_s, info);
        ZELKEnvironment environment = ZELKEnvironment::system();
        environment.mainBundle = std::make_shared<ZELKBundle>(folder.path());
        scope.emplace(environment);
    }
    ZELKAgentPorts ports() const
    {
        return {system, workspace, system, {}, system, {path(u"data"_s), path(u"config"_s)}};
    }

    QTemporaryDir folder;
    ZELKDictionary info;
    std::optional<ZELKEnvironmentScope> scope;
    std::shared_ptr<FakeSystem> system = std::make_shared<FakeSystem>();
    std::shared_ptr<FakeWorkspace> workspace = std::make_shared<FakeWorkspace>();
};
