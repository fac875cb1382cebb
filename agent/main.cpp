#include "ZELKBundle.h"
#include "ZELKConsole.h"
#include "ZELKJournalReader.h"
#include "ZELKLWAAgent.h"
#include "ZELKLWAOptions.h"
#include "ZELKLWAPast.h"
#include "ZELKSystemBus.h"
#include "ZELKTerminationSignals.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <cstdio>
#include <optional>

namespace {

constexpr int failure = 1;
constexpr int wrongArguments = 2;

std::optional<QDBusConnection> connected(const QDBusConnection &bus, const char *kind)
{
    if (bus.isConnected())
        return bus;
    ZELKConsole::log(
        QStringLiteral("There is no %1 bus: %2").arg(QString::fromLatin1(kind), bus.lastError().message()));
    return std::nullopt;
}

int record(const std::shared_ptr<const ZELKBundle> &bundle, const ZELKLWAOptions &options)
{
    ZELKTerminationSignals termination;
    std::optional<ZELKSystemBus> system; // a session can do without, and outlives it
    if (!options.forAllUsers)
        system.emplace(ZELKSystemBus::usualAddress());
    const auto bus = system ? connected(QDBusConnection::sessionBus(), "session")
                            : connected(QDBusConnection::systemBus(), "system");
    if (!bus)
        return failure;
    ZELKLWAAgent agent(bundle, {*bus, system ? system->connection() : *bus}, options);
    if (system)
        QObject::connect(&*system, &ZELKSystemBus::changed, &agent, &ZELKLWAAgent::setSystemBus);
    QObject::connect(&termination, &ZELKTerminationSignals::received, &agent, &ZELKLWAAgent::terminate);
    QObject::connect(&agent, &ZELKLWAAgent::finished, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    if (!agent.start())
        return failure;
    const int status = QCoreApplication::exec();
    // A session ends with its bus; what records for all users is to be started again.
    return options.forAllUsers && agent.hasLostBus() ? failure : status;
}

int readPast(const std::shared_ptr<const ZELKBundle> &bundle, const ZELKLWAOptions &options)
{
    ZELKLWAPast past(bundle, options);
    QObject::connect(&past, &ZELKLWAPast::finished, qApp, [](int told, int leftOut, bool complete) {
        std::printf("%d events of the past\n", told);
        if (leftOut > 0)
            std::printf("%d left out: an agent was recording at their time\n", leftOut);
        QCoreApplication::exit(complete ? 0 : failure);
    });
    past.start();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String(ZELKJournalReader::option))
        return ZELKJournalReader::run(arguments.mid(2));
    const auto bundle = std::make_shared<const ZELKBundle>(QCoreApplication::applicationDirPath());
    const auto parsed = ZELKLWAOptions::parse(
        arguments, bundle->objectForInfoDictionaryKey(QStringLiteral("CFBundleVersion")).toString());
    if (parsed.outcome == ZELKLWAOptions::Outcome::Run)
        return parsed.options.readsPastOnly() ? readPast(bundle, parsed.options)
                                              : record(bundle, parsed.options);
    const bool wrong = parsed.outcome == ZELKLWAOptions::Outcome::Wrong;
    std::fputs(qPrintable(wrong ? parsed.text + QLatin1Char('\n') : parsed.text), wrong ? stderr : stdout);
    return wrong ? wrongArguments : 0;
}
