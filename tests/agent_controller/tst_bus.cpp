#include "BusPeer.h"
#include "FakeWorkspace.h"
#include "TestBundle.h"
#include "ZELKAgentController.h"
#include "ZELKBusAgentLookup.h"
#include "ZELKDate.h"
#include "ZELKServiceNames.h"
#include "ZELKSystemdServiceManagement.h"

#include <QDBusMessage>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString agentName = QStringLiteral("org.test.agent");
const QString service = QStringLiteral("org.test.agent._service");
const QString manager = QStringLiteral("org.freedesktop.systemd1");
const QString session = QStringLiteral("session");
const QString systemWide = QStringLiteral("system");
constexpr int shortLimit = 200; // milliseconds

QDBusConnection noBus()
{
    return QDBusConnection(QStringLiteral("no such connection"));
}

ZELKBusAgentLookup bothBuses(int limit = ZELKServiceNames::callTimeoutMilliseconds)
{
    return ZELKBusAgentLookup({QDBusConnection::systemBus(), QDBusConnection::sessionBus()}, limit);
}

ZELKSystemdServiceManagement bothManagers(int limit = ZELKServiceNames::callTimeoutMilliseconds)
{
    return ZELKSystemdServiceManagement(QDBusConnection::systemBus(), QDBusConnection::sessionBus(), limit);
}

} // namespace

class AgentControllerBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionOfAPeer_data();
    void versionOfAPeer();
    void noServiceIsNoConnection();
    void systemBusGoesFirst();
    void questionsDieWithTheirContext();
    void servicesAreNeverStarted();
    void defaultsTravel();
    void jobOfAUnit_data();
    void jobOfAUnit();
    void troubledManagerHasNoJobs_data();
    void troubledManagerHasNoJobs();
    void stateOverRealBuses_data();
    void stateOverRealBuses();
    void hungAgentDoesNotHoldTheWatch();
};

void AgentControllerBus::versionOfAPeer_data()
{
    QTest::addColumn<QStringList>("behaviour");
    QTest::addColumn<std::optional<QString>>("version");
    using Version = std::optional<QString>;
    const auto kind = [](const char *name) { return QStringList{QLatin1String(name)}; };
    QTest::newRow("a text") << (kind("text") << QStringLiteral("1.2")) << Version(QStringLiteral("1.2"));
    QTest::newRow("a number") << kind("number") << Version();
    QTest::newRow("no value") << kind("nothing") << Version();
    QTest::newRow("an error") << kind("error") << Version();
    QTest::newRow("silence") << kind("silent") << Version();
    QTest::newRow("gone meanwhile") << kind("leave") << Version();
}

void AgentControllerBus::versionOfAPeer()
{
    QFETCH(QStringList, behaviour);
    QFETCH(std::optional<QString>, version);
    const QStringList description = QStringList{session, service} + behaviour;
    const int limit = behaviour.first() == QLatin1String("silent") ? shortLimit : 5000;
    QElapsedTimer time;
    {
        const BusPeer peer(description);
        const auto connection = bothBuses(limit).connectionWithServiceName(service);
        QVERIFY(connection);
        time.start();
        QVERIFY(connection->version() == version);
    }
    const BusPeer peer(description);
    QObject context;
    std::vector<std::optional<QString>> answers;
    bothBuses(limit).connectionWithServiceName(service)->requestVersion(
        &context, [&](const std::optional<QString> &answer) { answers.push_back(answer); });
    QVERIFY(answers.empty());
    QTRY_COMPARE(answers.size(), 1U);
    QVERIFY(answers.front() == version);
    QVERIFY(time.elapsed() < 4500); // neither form waited for a longer limit than its own
}

void AgentControllerBus::noServiceIsNoConnection()
{
    QVERIFY(!bothBuses().connectionWithServiceName(service));
    QVERIFY(!bothBuses().connectionWithServiceName(QStringLiteral("not a bus name")));
    QVERIFY(!ZELKBusAgentLookup({noBus()}).connectionWithServiceName(service));
    QVERIFY(!ZELKBusAgentLookup({}).connectionWithServiceName(service));
}

void AgentControllerBus::systemBusGoesFirst()
{
    const BusPeer inSession({session, service, QStringLiteral("text"), QStringLiteral("session's")});
    ZELKBusAgentLookup lookup = bothBuses();
    QCOMPARE(lookup.connectionWithServiceName(service)->version(), QStringLiteral("session's"));
    const BusPeer inSystem({systemWide, service, QStringLiteral("text"), QStringLiteral("system's")});
    QCOMPARE(lookup.connectionWithServiceName(service)->version(), QStringLiteral("system's"));
}

void AgentControllerBus::questionsDieWithTheirContext()
{
    const BusPeer peer({session, service, QStringLiteral("text"), QStringLiteral("1")});
    int answers = 0;
    const auto count = [&](const std::optional<QString> &) { ++answers; };
    const auto connection = bothBuses().connectionWithServiceName(service);
    auto context = std::make_unique<QObject>();
    connection->requestVersion(context.get(), count);
    context.reset();
    QObject lasting;
    connection->requestVersion(&lasting, count);
    QTRY_VERIFY(answers > 0);
    QCOMPARE(answers, 1); // answers come in the order of the questions
}

void AgentControllerBus::servicesAreNeverStarted()
{
    const QTemporaryDir folder;
    const QString started = folder.filePath(QStringLiteral("started"));
    writeTestFile(qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/dbus-1/services/test.service"),
                  QStringLiteral("[D-BUS Service]\nName=%1\nExec=/bin/sh -c \"/bin/touch %2; exit 1\"\n")
                      .arg(service, started)
                      .toUtf8());
    const QDBusConnection bus = QDBusConnection::sessionBus();
    bus.call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ReloadConfig")));

    QVERIFY(!bothBuses().connectionWithServiceName(service));
    std::unique_ptr<ZELKAgentConnection> connection;
    {
        const BusPeer peer({session, service, QStringLiteral("text"), QStringLiteral("1")});
        connection = bothBuses().connectionWithServiceName(service);
        QVERIFY(connection->version());
    }
    QTRY_VERIFY(!bothBuses().connectionWithServiceName(service));
    QVERIFY(!connection->version());
    connection->setDefaultsWithDictionary({{QStringLiteral("a"), 1}});
    // The answer to a question sent after them tells that the daemon has dealt with those calls.
    QVERIFY(!bothBuses().connectionWithServiceName(service));
    QVERIFY(!QFile::exists(started));
    // It would have started it for others.
    bus.call(QDBusMessage::createMethodCall(service, QStringLiteral("/"), QString(), QStringLiteral("x")));
    QVERIFY(QFile::exists(started));
}

void AgentControllerBus::defaultsTravel()
{
    BusPeer peer({session, service, QStringLiteral("silent")});
    const auto connection = bothBuses().connectionWithServiceName(service);
    const ZELKDictionary inner{{QStringLiteral("x"), true}};
    QVERIFY(!connection->setDefaultsWithDictionary(
        {{QStringLiteral("n"), qlonglong(1) << 40},
         {QStringLiteral("t"), QStringLiteral("text")},
         {QStringLiteral("l"), QVariantList{1.5, QVariant::fromValue(inner)}},
         {QStringLiteral("d"), QVariant::fromValue(inner)}}));
    QCOMPARE(peer.nextLine(), QStringLiteral("{d={x=1} l=(1.5 {x=1}) n=1099511627776 t=text}"));

    const auto problem =
        connection->setDefaultsWithDictionary({{QStringLiteral("d"), QVariant::fromValue(ZELKDate())}});
    QVERIFY(problem && !problem->isEmpty());
}

void AgentControllerBus::jobOfAUnit_data()
{
    QTest::addColumn<QString>("loadState");
    QTest::addColumn<QString>("activeState");
    QTest::addColumn<bool>("isJob");
    const auto row = [](const char *name, const char *load, const char *active, bool isJob) {
        QTest::newRow(name) << QString::fromLatin1(load) << QString::fromLatin1(active) << isJob;
    };
    row("runs", "loaded", "active", true);
    row("stopped", "loaded", "inactive", true);
    row("failed", "loaded", "failed", true);
    row("no such unit", "not-found", "inactive", false);
    row("file removed, runs", "not-found", "active", true);
    row("file removed, stops", "not-found", "deactivating", true);
    row("file removed, failed", "not-found", "failed", false);
    row("masked", "masked", "inactive", false);
    row("file is faulty", "bad-setting", "inactive", false);
}

void AgentControllerBus::jobOfAUnit()
{
    QFETCH(QString, loadState);
    QFETCH(QString, activeState);
    QFETCH(bool, isJob);
    const BusPeer peer({session, manager, QStringLiteral("unit"), agentName + QStringLiteral(".service"),
                        loadState, activeState});
    QCOMPARE(bothManagers().hasJob(agentName, ZELKServiceDomain::User), isJob);
    QVERIFY(!bothManagers().hasJob(agentName, ZELKServiceDomain::System));
    QVERIFY(!bothManagers().hasJob(QStringLiteral("org.test"), ZELKServiceDomain::User));
}

void AgentControllerBus::troubledManagerHasNoJobs_data()
{
    QTest::addColumn<QString>("behaviour");
    for (const char *name : {"error", "nothing", "number", "silent", "leave"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void AgentControllerBus::troubledManagerHasNoJobs()
{
    QFETCH(QString, behaviour);
    const BusPeer peer({systemWide, manager, behaviour});
    QVERIFY(!bothManagers(shortLimit).hasJob(agentName, ZELKServiceDomain::System));
    QVERIFY(!ZELKSystemdServiceManagement(noBus(), noBus()).hasJob(agentName, ZELKServiceDomain::System));
}

void AgentControllerBus::stateOverRealBuses_data()
{
    QTest::addColumn<QString>("jobBus");
    QTest::addColumn<QString>("agentBus");
    QTest::addColumn<int>("state");
    QTest::newRow("system's job") << systemWide << systemWide << 2;
    QTest::newRow("user's job") << session << session << 3;
    QTest::newRow("service alone") << QString() << session << 6;
    QTest::newRow("job alone") << session << QString() << 6;
    QTest::newRow("neither") << QString() << QString() << 1;
}

void AgentControllerBus::stateOverRealBuses()
{
    QFETCH(QString, jobBus);
    QFETCH(QString, agentBus);
    std::unique_ptr<BusPeer> job;
    std::unique_ptr<BusPeer> agent;
    if (!jobBus.isEmpty())
        job = std::make_unique<BusPeer>(QStringList{jobBus, manager, QStringLiteral("unit"),
                                                    agentName + QStringLiteral(".service"),
                                                    QStringLiteral("loaded"), QStringLiteral("active")});
    if (!agentBus.isEmpty())
        agent = std::make_unique<BusPeer>(
            QStringList{agentBus, service, QStringLiteral("text"), QStringLiteral("3")});
    const ZELKAgentController controller(
        ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), QDBusConnection::sessionBus()), agentName);
    QTEST(controller.state(), "state");
    QCOMPARE(controller.agentVersion(), agent ? QStringLiteral("3") : QString());
}

void AgentControllerBus::hungAgentDoesNotHoldTheWatch()
{
    const auto workspace = std::make_shared<FakeWorkspace>();
    const ZELKAgentPorts ports{
        std::make_shared<ZELKSystemdServiceManagement>(noBus(), noBus()), workspace,
        std::make_shared<ZELKBusAgentLookup>(QList{QDBusConnection::sessionBus()}, 1000)};
    ZELKAgentController controller(ports, agentName);
    const BusPeer agent({session, service, QStringLiteral("silent")});
    workspace->instances[agentName] = 1;

    QElapsedTimer time;
    time.start();
    controller.expectStateChange();
    controller.checkForStateChange();
    QVERIFY(time.elapsed() < 900);
    QTest::ignoreMessage(QtInfoMsg,
                         "No agent version available"); // one question, though the watch looked often
    QTRY_COMPARE(controller.state(), 4);
    QCOMPARE(controller.agentVersion(), QStringLiteral("0"));
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 3 && arguments[1] == QLatin1String("--peer"))
        return runBusPeer(arguments.mid(2));
    AgentControllerBus test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_bus.moc"
