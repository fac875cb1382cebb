#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKLWAAgent.h"
#include "ZELKLWAOptions.h"
#include "ZELKTerminationSignals.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <cstdio>

namespace {

constexpr int failure = 1;
constexpr int wrongArguments = 2;

int run(const std::shared_ptr<const ZELKBundle> &bundle, const ZELKLWAOptions &options)
{
    ZELKTerminationSignals termination;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        ZELKConsole::log(QStringLiteral("There is no session bus: %1").arg(bus.lastError().message()));
        return failure;
    }
    ZELKLWAAgent agent(bundle, bus, options);
    QObject::connect(&termination, &ZELKTerminationSignals::received, &agent, &ZELKLWAAgent::terminate);
    QObject::connect(&agent, &ZELKLWAAgent::finished, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    return agent.start() ? QCoreApplication::exec() : failure;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const auto bundle = std::make_shared<const ZELKBundle>(QCoreApplication::applicationDirPath());
    const auto parsed = ZELKLWAOptions::parse(
        QCoreApplication::arguments(),
        bundle->objectForInfoDictionaryKey(QStringLiteral("CFBundleVersion")).toString());
    if (parsed.outcome == ZELKLWAOptions::Outcome::Run)
        return run(bundle, parsed.options);
    const bool wrong = parsed.outcome == ZELKLWAOptions::Outcome::Wrong;
    std::fputs(qPrintable(wrong ? parsed.text + QLatin1Char('\n') : parsed.text), wrong ? stderr : stdout);
    return wrong ? wrongArguments : 0;
}
