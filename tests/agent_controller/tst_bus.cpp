#include "AgentFixture.h"
#include "BusPeer.h"
#include "ZELKBusAgentLookup.h"
#include "ZELKDate.h"
#include "ZELKServiceNames.h"
#include "ZELKSystemdServiceManagement.h"

#include <QDBusObjectPath>
#include <QElapsedTimer>

namespace {

const QString service = u"org.test.agent._service"_s;
const QString manager = u"org.freedesktop.systemd1"_s;
const QString unit = u"org.test.agent.service"_s;
constexpr auto session = QDBusConnection::SessionBus;
constexpr auto systemWide = QDBusConnection::SystemBus;
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

/// A manager that knows `unit`, in this state.
BusPeer::Answer managing(const QString &loadState, const QString &activeState)
{
    return [=](const QDBusMessage &call) {
        if (call.member() == "LoadUnit"_L1) {
            const bool isKnown = call.arguments() == QVariantList{unit};
            return call.createReply(
                QVariant::fromValue(QDBusObjectPath(isKnown ? u"/unit/known"_s : u"/unit/other"_s)));
        }
        const bool isKnown = call.path() == "/unit/known"_L1;
        return call.createReply(QVariantMap{{u"LoadState"_s, isKnown ? loadState : u"not-found"_s},
                                            {u"ActiveState"_s, isKnown ? activeState : u"inactive"_s}});
    };
}

} // namespace

class AgentControllerBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionOfAPeer_data()
    {
        const Rows<QString, std::optional<QString>> row;
        row("a text", "text 1.2", u"1.2"_s);
        for (const char *words : {"number", "nothing", "error", "silent"})
            row(words, words, std::nullopt);
    }
    void versionOfAPeer()
    {
        const auto [words, version] = Rows<QString, std::optional<QString>>::fetch();
        const BusPeer peer(session, service, BusPeer::saying(words));
        const auto connection =
            bothBuses(words == "silent"_L1 ? shortLimit : 5000).connectionWithServiceName(service);
        QElapsedTimer time;
        time.start();
        QVERIFY(connection && connection->version() == version);
        QObject context;
        std::vector<std::optional<QString>> answers;
        connection->requestVersion(&context,
                                   [&](const std::optional<QString> &answer) { answers.push_back(answer); });
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
        const BusPeer inSession(session, service, BusPeer::saying(u"text session's"_s));
        QCOMPARE(lookup.connectionWithServiceName(service)->version(), u"session's"_s);
        const BusPeer inSystem(systemWide, service, BusPeer::saying(u"text system's"_s));
        QCOMPARE(lookup.connectionWithServiceName(service)->version(), u"system's"_s);
    }

    void questionsDieWithTheirContext()
    {
        const BusPeer peer(session, service, BusPeer::saying(u"text 1"_s));
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
            const BusPeer peer(session, service, BusPeer::saying(u"text 1"_s));
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
        QString heard;
        const BusPeer peer(session, service, [&heard](const QDBusMessage &call) {
            if (call.member() == "setDefaultsWithDictionary"_L1)
                QDebug(&heard) << call;
            return call.createReply(u"1"_s);
        });
        const auto connection = bothBuses().connectionWithServiceName(service);
        const ZELKDictionary inner{{u"x"_s, true}};
        QVERIFY(
            !connection->setDefaultsWithDictionary({{u"n"_s, qlonglong(1) << 40},
                                                    {u"t"_s, u"text"_s},
                                                    {u"l"_s, QVariantList{1.5, QVariant::fromValue(inner)}},
                                                    {u"d"_s, QVariant::fromValue(inner)}}));
        QVERIFY(connection->version()); // by then they have arrived
        const QString inBus = uR"([Variant: [Argument: a{sv} {"x" = [Variant(bool): true]}]])"_s;
        const QString all =
            uR"({"d" = %1, "l" = [Variant: [Argument: av {[Variant(double): 1.5], %1}]], )"
            R"("n" = [Variant(qlonglong): 1099511627776], "t" = [Variant(QString): "text"]})"_s;
        QVERIFY2(heard.contains(all.arg(inBus)), qPrintable(heard));
        const auto problem =
            connection->setDefaultsWithDictionary({{u"d"_s, QVariant::fromValue(ZELKDate())}});
        QVERIFY(problem && !problem->isEmpty());
    }

    void jobOfAUnit_data()
    {
        const Rows<BusPeer::Answer, bool> row;
        row("runs", managing(u"loaded"_s, u"active"_s), true);
        row("failed", managing(u"loaded"_s, u"failed"_s), true);
        row("no such unit", managing(u"not-found"_s, u"inactive"_s), false);
        row("file removed, stops", managing(u"not-found"_s, u"deactivating"_s), true);
        row("file removed, failed", managing(u"not-found"_s, u"failed"_s), false);
        row("masked", managing(u"masked"_s, u"inactive"_s), false);
        for (const char *words : {"error", "nothing", "number", "silent"})
            row(words, BusPeer::saying(QString::fromLatin1(words)), false);
    }
    void jobOfAUnit()
    {
        const auto [answer, isJob] = Rows<BusPeer::Answer, bool>::fetch();
        const BusPeer peer(session, manager, answer);
        const bool isSilent = QLatin1String(QTest::currentDataTag()) == "silent"_L1;
        const auto services = bothManagers(isSilent ? shortLimit : 5000);
        QCOMPARE(services.hasJob(agentName, ZELKServiceDomain::User), isJob);
        QVERIFY(!services.hasJob(agentName, ZELKServiceDomain::System));
        QVERIFY(!services.hasJob(u"org.test"_s, ZELKServiceDomain::User));
        QVERIFY(!ZELKSystemdServiceManagement(noBus(), noBus()).hasJob(agentName, ZELKServiceDomain::User));
    }

    void stateOverRealBuses()
    {
        ZELKAgentController controller(
            ZELKAgentPorts::onBuses(QDBusConnection::systemBus(), QDBusConnection::sessionBus()), agentName);
        QCOMPARE(controller.state(), 1);
        for (const auto bus : {systemWide, session}) {
            const BusPeer job(bus, manager, managing(u"loaded"_s, u"active"_s));
            controller.updateState();
            QCOMPARE(controller.state(), 6);
            const BusPeer agent(bus, service, BusPeer::saying(u"text 3"_s));
            controller.updateState();
            QCOMPARE(controller.state(), bus == session ? 3 : 2);
            QCOMPARE(controller.agentVersion(), u"3"_s);
        }
    }
};

QTEST_GUILESS_MAIN(AgentControllerBus)
#include "tst_bus.moc"
