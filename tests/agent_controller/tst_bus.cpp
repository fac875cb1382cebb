#include "AgentFixture.h"
#include "BusPeer.h"
#include "ZELKBusAgentLookup.h"
#include "ZELKDate.h"
#include "ZELKServiceNames.h"
#include "ZELKSystemdServiceManagement.h"

#include <QDBusMessage>
#include <QElapsedTimer>

namespace {

const QString service = u"org.test.agent._service"_s;
const QString manager = u"org.freedesktop.systemd1"_s;
const QString unit = u"org.test.agent.service"_s;
const QString session = u"session"_s;
const QString systemWide = u"system"_s;
constexpr int shortLimit = 200; // milliseconds

QDBusConnection noBus()
{
    return QDBusConnection(u"no such connection"_s);
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
    void versionOfAPeer_data()
    {
        const Rows<QStringList, std::optional<QString>> row;
        row("a text", QStringList{u"text"_s, u"1.2"_s}, u"1.2"_s);
        for (const char *name : {"number", "nothing", "error", "silent", "leave"})
            row(name, QStringList{QString::fromLatin1(name)}, std::nullopt);
    }
    void versionOfAPeer()
    {
        const auto [behaviour, version] = Rows<QStringList, std::optional<QString>>::fetch();
        const QStringList description = QStringList{session, service} + behaviour;
        const int limit = behaviour.first() == "silent"_L1 ? shortLimit : 5000;
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

    void systemBusGoesFirst()
    {
        ZELKBusAgentLookup lookup = bothBuses();
        QVERIFY(!lookup.connectionWithServiceName(service));
        QVERIFY(!lookup.connectionWithServiceName(u"not a bus name"_s));
        QVERIFY(!ZELKBusAgentLookup({noBus()}).connectionWithServiceName(service));
        const BusPeer inSession({session, service, u"text"_s, u"session's"_s});
        QCOMPARE(lookup.connectionWithServiceName(service)->version(), u"session's"_s);
        const BusPeer inSystem({systemWide, service, u"text"_s, u"system's"_s});
        QCOMPARE(lookup.connectionWithServiceName(service)->version(), u"system's"_s);
    }

    void questionsDieWithTheirContext()
    {
        const BusPeer peer({session, service, u"text"_s, u"1"_s});
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

    void servicesAreNeverStarted()
    {
        const QTemporaryDir folder;
        const QString started = folder.filePath(u"started"_s);
        writeFile(
            qEnvironmentVariable("XDG_DATA_HOME") + u"/dbus-1/services/test.service"_s,
            u"[D-BUS Service]\nName=%1\nExec=/bin/sh -c \"/bin/touch %2; exit 1\"\n"_s.arg(service, started)
                .toUtf8());
        const QDBusConnection bus = QDBusConnection::sessionBus();
        const QString daemon = u"org.freedesktop.DBus"_s;
        bus.call(
            QDBusMessage::createMethodCall(daemon, u"/org/freedesktop/DBus"_s, daemon, u"ReloadConfig"_s));

        QVERIFY(!bothBuses().connectionWithServiceName(service));
        std::unique_ptr<ZELKAgentConnection> connection;
        {
            const BusPeer peer({session, service, u"text"_s, u"1"_s});
            connection = bothBuses().connectionWithServiceName(service);
            QVERIFY(connection->version());
        }
        QTRY_VERIFY(!bothBuses().connectionWithServiceName(service));
        QVERIFY(!connection->version());
        connection->setDefaultsWithDictionary({{u"a"_s, 1}});
        // The answer to a question sent after them tells that the daemon has dealt with those calls.
        QVERIFY(!bothBuses().connectionWithServiceName(service));
        QVERIFY(!QFile::exists(started));
        // It would have started it for others.
        bus.call(QDBusMessage::createMethodCall(service, u"/"_s, QString(), u"x"_s));
        QVERIFY(QFile::exists(started));
    }

    void defaultsTravel()
    {
        BusPeer peer({session, service, u"silent"_s});
        const auto connection = bothBuses().connectionWithServiceName(service);
        const ZELKDictionary inner{{u"x"_s, true}};
        QVERIFY(
            !connection->setDefaultsWithDictionary({{u"n"_s, qlonglong(1) << 40},
                                                    {u"t"_s, u"text"_s},
                                                    {u"l"_s, QVariantList{1.5, QVariant::fromValue(inner)}},
                                                    {u"d"_s, QVariant::fromValue(inner)}}));
        QCOMPARE(peer.nextLine(), u"{d={x=1} l=(1.5 {x=1}) n=1099511627776 t=text}"_s);
        const auto problem =
            connection->setDefaultsWithDictionary({{u"d"_s, QVariant::fromValue(ZELKDate())}});
        QVERIFY(problem && !problem->isEmpty());
    }

    void jobOfAUnit_data()
    {
        const Rows<QString, QString, bool> row;
        row("runs", "loaded", "active", true);
        row("failed", "loaded", "failed", true);
        row("no such unit", "not-found", "inactive", false);
        row("file removed, stops", "not-found", "deactivating", true);
        row("file removed, failed", "not-found", "failed", false);
        row("masked", "masked", "inactive", false);
    }
    void jobOfAUnit()
    {
        const auto [loadState, activeState, isJob] = Rows<QString, QString, bool>::fetch();
        const BusPeer peer({session, manager, u"unit"_s, unit, loadState, activeState});
        QCOMPARE(bothManagers().hasJob(agentName, ZELKServiceDomain::User), isJob);
        QVERIFY(!bothManagers().hasJob(agentName, ZELKServiceDomain::System));
        QVERIFY(!bothManagers().hasJob(u"org.test"_s, ZELKServiceDomain::User));
    }

    void troubledManagerHasNoJobs()
    {
        for (const QString &behaviour : {u"error"_s, u"nothing"_s, u"number"_s, u"silent"_s, u"leave"_s}) {
            const BusPeer peer({systemWide, manager, behaviour});
            QVERIFY(!bothManagers(shortLimit).hasJob(agentName, ZELKServiceDomain::System));
        }
        QVERIFY(!ZELKSystemdServiceManagement(noBus(), noBus()).hasJob(agentName, ZELKServiceDomain::System));
    }

    void stateOverRealBuses()
    {
        ZELKAgentController controller(
            ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), QDBusConnection::sessionBus()), agentName);
        QCOMPARE(controller.state(), 1);
        for (const QString &bus : {systemWide, session}) {
            const BusPeer job({bus, manager, u"unit"_s, unit, u"loaded"_s, u"active"_s});
            controller.updateState();
            QCOMPARE(controller.state(), 6);
            const BusPeer agent({bus, service, u"text"_s, u"3"_s});
            controller.updateState();
            QCOMPARE(controller.state(), bus == session ? 3 : 2);
            QCOMPARE(controller.agentVersion(), u"3"_s);
        }
    }

    void hungAgentDoesNotHoldTheWatch()
    {
        const auto workspace = std::make_shared<FakeWorkspace>();
        const ZELKAgentPorts ports{
            std::make_shared<ZELKSystemdServiceManagement>(noBus(), noBus()), workspace,
            std::make_shared<ZELKBusAgentLookup>(QList{QDBusConnection::sessionBus()}, 1000)};
        ZELKAgentController controller(ports, agentName);
        const BusPeer agent({session, service, u"silent"_s});
        workspace->instances[agentName] = 1;

        QElapsedTimer time;
        time.start();
        controller.expectStateChange();
        controller.checkForStateChange();
        QVERIFY(time.elapsed() < 900);
        // One question, though the watch looked often.
        QTest::ignoreMessage(QtInfoMsg, "No agent version available");
        QTRY_COMPARE(controller.state(), 4);
        QCOMPARE(controller.agentVersion(), u"0"_s);
    }
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 3 && arguments[1] == "--peer"_L1)
        return runBusPeer(arguments.mid(2));
    AgentControllerBus test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_bus.moc"
