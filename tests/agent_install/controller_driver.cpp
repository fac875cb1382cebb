// The agent controller from the command line.
//
//   controller-driver state | stop | start FORM | update
//
// Prints "state S error E: TEXT" when the state has settled; E is 0 and TEXT empty when all went well.
#include "ZELKAgentController.h"
#include "ZELKBundle.h"
#include "ZELKEnvironment.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.mainBundle = std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
    const ZELKEnvironmentScope scope(environment);
    ZELKAgentController controller(
        ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), QDBusConnection::sessionBus()));
    const QStringList words = QCoreApplication::arguments();
    std::optional<ZELKAgentError> error;
    QObject::connect(&controller, &ZELKAgentController::errorPresented,
                     [&](const ZELKAgentError &presented) { error = presented; });
    if (words.value(1) == "start"_L1)
        error = controller.startWithState(words.value(2).toInt());
    else if (words.value(1) == "stop"_L1)
        error = controller.stop();
    else if (words.value(1) == "update"_L1)
        controller.updateAgent();
    const QDeadlineTimer limit(10000);
    while (controller.isStateChangeExpected() && !limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("state %d error %d: %s\n", controller.state(), error ? error->code() : 0,
                error ? qPrintable(error->fullText()) : "");
    return 0;
}
