#include "ZELKNoAgent.h"

#include "ZELKEnvironment.h"

#include <cerrno>

namespace {

class NoServiceManagement final : public ZELKServiceManagement
{
public:
    bool hasJob(const QString &, ZELKServiceDomain) const override { return false; }
};

class NoWorkspace final : public ZELKWorkspace
{
public:
    std::vector<ZELKRunningApplication>
    runningApplicationsWithBundleIdentifier(const QString &) const override
    {
        return {};
    }
    int registerBundle(const QUrl &) override { return ENOENT; }
    std::optional<ZELKAgentError> launchApplicationWithBundleIdentifier(const QString &,
                                                                        const QStringList &) override
    {
        return refusal();
    }
    std::optional<ZELKAgentError> launchApplicationAtURL(const QUrl &, const QStringList &) override
    {
        return refusal();
    }
    bool terminate(const ZELKRunningApplication &) override { return false; }

private:
    static ZELKAgentError refusal()
    {
        const QString text = ZELKEnvironment::current().mainBundle->localizedStringForKey(
            QStringLiteral("ZELKNoAgent.refusal"), {}, QStringLiteral("ZELKNoAgent"));
        return {QStringLiteral("ZELKNoAgent"), 1, text};
    }
};

class NoLookup final : public ZELKAgentLookup
{
public:
    std::unique_ptr<ZELKAgentConnection> connectionWithServiceName(const QString &) override
    {
        return nullptr;
    }
};

} // namespace

ZELKAgentPorts ZELKNoAgent::ports()
{
    return {std::make_shared<NoServiceManagement>(), std::make_shared<NoWorkspace>(),
            std::make_shared<NoLookup>()};
}

QDBusConnection ZELKNoAgent::bus()
{
    return QDBusConnection(QStringLiteral("ZELKNoAgent"));
}
