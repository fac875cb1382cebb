#include "AgentFixture.h"
#include "BusClient.h"
#include "ZELKFailingSQLitePort.h"
#include "ZELKLWAAgent.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <csignal>
#include <limits>

using State = ZELKEventStreamReader::State;

namespace {

const QString storeName = QStringLiteral("org.zelk.lullwatch._store");

/// A connection that ends with its scope.
class Connection
{
public:
    explicit Connection(const char *name)
        : m_name(QString::fromLatin1(name))
        , bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_name))
    {
    }
    ~Connection() { close(); }
    void close()
    {
        bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(m_name);
    }

private:
    QString m_name;

public:
    QDBusConnection bus;
};

} // namespace

class TestServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsOnlyTheProtocols();
    void streamsInOrderAndWhole();
    void streamsAnyRange_data();
    void streamsAnyRange();
    void outlivesClientsThatHangUp();
    void limitsStreams();
    void givesUpAClientThatDoesNotRead();
    void breaksOffWhenTheRecordsCanNotBeRead();
    void answersTheControlService();
    void refusesTheNamesToASecondAgent();
    void tellsOfABurstOnce();
    void tellsOfTheEndAtOnce();
    void registersOwnedNamesOnly();
    void endsARegistration_data();
    void endsARegistration();

private:
    ZELKLWAOptions options() const;
    void fill(int count);
    bool start();
    QDBusUnixFileDescriptor ask(double from = 0, double to = 1e9)
    {
        const QDBusMessage answer =
            answerTo(m_client->bus, eventServiceCall("sortedEventsFromDate", {from, to}));
        return answer.arguments().value(0).value<QDBusUnixFileDescriptor>();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Connection> m_agentBus;
    std::unique_ptr<Connection> m_client;
    std::unique_ptr<ZELKLWAAgent> m_agent;
};

void TestServices::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_agentBus = std::make_unique<Connection>("agent");
    m_client = std::make_unique<Connection>("client");
    QVERIFY(m_client->bus.isConnected());
}

void TestServices::cleanup()
{
    m_agent.reset();
    m_client.reset();
    m_agentBus.reset();
}

ZELKLWAOptions TestServices::options() const
{
    ZELKLWAOptions options;
    options.database = m_folder->filePath(QStringLiteral("events.db"));
    options.settings = m_folder->filePath(QStringLiteral("settings.ini"));
    options.wtmp = m_folder->filePath(QStringLiteral("wtmp"));
    options.powerSupply = m_folder->filePath(QStringLiteral("power_supply"));
    return options;
}

/// One event a second from 0, in the records before the agent starts.
void TestServices::fill(int count)
{
    ZELKLWAEventStore store(options().database, agentBundle(), std::make_shared<ZELKSQLitePort>());
    std::vector<ZELKLWAEvent> events;
    for (int i = count; i-- > 0;)
        events.push_back({ZELKDate(i), QStringLiteral("event %1").arg(i), ZELKMonitorPowerSource,
                          QString(600, QLatin1Char('p'))});
    store.record(events);
}

bool TestServices::start()
{
    m_agent = std::make_unique<ZELKLWAAgent>(agentBundle(), m_agentBus->bus, options());
    return m_agent->start();
}

void TestServices::showsOnlyTheProtocols()
{
    QVERIFY(start());
    for (const QDBusMessage &call : {eventServiceCall("version"), controlServiceCall("version")}) {
        QCOMPARE(answerTo(m_client->bus, call).arguments().value(0).toString(),
                 agentBundle()->infoDictionary().string(QStringLiteral("CFBundleVersion")));
        QDBusMessage question = QDBusMessage::createMethodCall(
            call.service(), call.path(), QStringLiteral("org.freedesktop.DBus.Introspectable"),
            QStringLiteral("Introspect"));
        QString xml = answerTo(m_client->bus, question).arguments().value(0).toString();
        xml.remove(QLatin1String("interface name=\"org.freedesktop.DBus."));
        QCOMPARE(xml.count(QLatin1String("interface name=")), 1);
        QVERIFY(xml.contains(call.interface()));
    }
    for (const char *method : {"streams", "refuse", "deleteLater"})
        QCOMPARE(answerTo(m_client->bus, eventServiceCall(method)).type(), QDBusMessage::ErrorMessage);
}

void TestServices::streamsInOrderAndWhole()
{
    constexpr int count = 20000;
    fill(count);
    QVERIFY(start());
    const StreamedEvents found = readStream(ask());
    QCOMPARE(found.state, State::Complete);
    QCOMPARE(found.names.size(), count + 1);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(found.names.at(i), QStringLiteral("event %1").arg(i));
        QCOMPARE(found.dates.at(i), QStringLiteral("%1.000000").arg(i));
    }
    QCOMPARE(found.names.constLast(), QStringLiteral("Starting monitor"));
}

void TestServices::streamsAnyRange_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::addColumn<int>("count");
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("both ends belong to it") << 2.0 << 4.0 << 3;
    QTest::newRow("backwards") << 4.0 << 2.0 << 0;
    QTest::newRow("everything") << -infinity << infinity << 11;
    QTest::newRow("largest numbers") << -1e308 << 1e308 << 11;
    QTest::newRow("from nowhere") << nan << 100.0 << 0;
    QTest::newRow("to nowhere") << 0.0 << nan << 0;
    QTest::newRow("the distant bounds")
        << ZELKDate::distantPast().timeIntervalSinceReferenceDate() + 1.0 << 9.5 << 10;
}

void TestServices::streamsAnyRange()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(int, count);
    fill(10);
    QVERIFY(start());
    const StreamedEvents found = readStream(ask(from, to));
    QCOMPARE(found.state, State::Complete);
    QCOMPARE(found.names.size(), count);
}

void TestServices::outlivesClientsThatHangUp()
{
    fill(5000);
    QVERIFY(start());
    for (int i = 0; i < 40; ++i) {
        const QDBusUnixFileDescriptor descriptor = ask();
        QVERIFY(descriptor.isValid());
        char byte = 0;
        QCOMPARE(read(descriptor.fileDescriptor(), &byte, 1), ssize_t(1));
    }
    QCOMPARE(readStream(ask()).state, State::Complete);
}

void TestServices::limitsStreams()
{
    fill(5000);
    QVERIFY(start());
    QList<QDBusUnixFileDescriptor> open;
    for (int i = 0; i < ZELKLWAService::mostStreams; ++i)
        open.append(ask());
    QVERIFY(open.constLast().isValid());
    QCOMPARE(answerTo(m_client->bus, eventServiceCall("sortedEventsFromDate", {0.0, 1e9})).errorName(),
             QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded"));
    open.removeFirst();
    QTRY_VERIFY(ask().isValid());
}

void TestServices::givesUpAClientThatDoesNotRead()
{
    fill(5000);
    ConsoleLines console;
    ZELKLWAEventStore store(options().database, agentBundle(), std::make_shared<ZELKSQLitePort>());
    ZELKLWAEventPipe pipe(store, 0, 1e9, std::chrono::milliseconds(50));
    QSignalSpy finished(&pipe, &ZELKLWAEventPipe::finished);
    const QDBusUnixFileDescriptor end = pipe.takeReadingEnd();
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(console.lines(),
             QStringList(QStringLiteral("A client that did not read its events was given up.")));
    QCOMPARE(readStream(end).state, State::Reading);
}

void TestServices::breaksOffWhenTheRecordsCanNotBeRead()
{
    fill(5000);
    std::signal(SIGPIPE, SIG_IGN);
    const auto port = std::make_shared<ZELKFailingSQLitePort>();
    ZELKLWAEventStore store(options().database, agentBundle(), port);
    QVERIFY(store.database());
    ConsoleLines console;
    port->fail(ZELKFailingSQLitePort::Call::Step, SQLITE_ERROR, 1000, 1000000);
    ZELKLWAEventPipe pipe(store, 0, 1e9, std::chrono::seconds(60));
    const StreamedEvents found = readStream(pipe.takeReadingEnd());
    QCOMPARE(found.state, State::Reading);
    QVERIFY(found.names.size() > 500 && found.names.size() < 1000);
    QCOMPARE(console.lines().filter(QStringLiteral("Events can not be read")).size(), 1);
}

void TestServices::answersTheControlService()
{
    QVERIFY(start());
    const QByteArray authorization(32, 'a');
    const QDBusMessage removed =
        answerTo(m_client->bus, controlServiceCall("removeAgentFiles", {authorization}));
    QCOMPARE(removed.arguments(), QVariantList{false});

    ConsoleLines console;
    const auto send = [&](const QVariantMap &defaults) {
        answerTo(m_client->bus, controlServiceCall("setDefaultsWithDictionary", {defaults}));
        return ZELKUserDefaults(options().settings).integerForKey(QStringLiteral("powerSupplyInterval"));
    };
    const QString key = QStringLiteral("powerSupplyInterval");
    QCOMPARE(send({{key, 120}, {QStringLiteral("colour"), QStringLiteral("red")}}), 120);
    QCOMPARE(console.lines().size(), 1);
    for (const QVariant &wrong : {QVariant(9), QVariant(3601), QVariant(30.5), QVariant(QStringLiteral("30")),
                                  QVariant(true), QVariant(qulonglong(-1)), QVariant(QStringList{QString()})})
        QCOMPARE(send({{key, wrong}}), 120);
    QCOMPARE(console.lines().size(), 8);
}

void TestServices::refusesTheNamesToASecondAgent()
{
    for (const char *name : {"org.zelk.lullwatch.agent", "org.zelk.lullwatch.agent._service"}) {
        QVERIFY(m_client->bus.registerService(QString::fromLatin1(name)));
        ConsoleLines console;
        QVERIFY(!start());
        QCOMPARE(console.lines().size(), 1);
        QVERIFY(!QFile::exists(options().database));
        m_agent.reset();
        QVERIFY(m_client->bus.unregisterService(QString::fromLatin1(name)));
    }
    QVERIFY(start());
}

void TestServices::tellsOfABurstOnce()
{
    QVERIFY(m_client->bus.registerService(storeName));
    UpdateListener listener(m_client->bus);
    QVERIFY(start());
    for (int i = 0; i < 3; ++i)
        answerTo(m_client->bus, eventServiceCall("registerForEventUpdates", {storeName}));
    QTRY_COMPARE(listener.told, 1); // of the start
    QElapsedTimer elapsed;
    elapsed.start();
    writeFile(options().wtmp, readFile(testData("one-boot.wtmp")));
    QTRY_COMPARE(listener.told, 2);
    QVERIFY(elapsed.elapsed() >= ZELKLWAUpdateAnnouncer::millisecondsOfABurst);
    QCOMPARE(readStream(ask()).names.filter(QStringLiteral("accounting")).size(), 2);
}

void TestServices::tellsOfTheEndAtOnce()
{
    QVERIFY(m_client->bus.registerService(storeName));
    UpdateListener listener(m_client->bus);
    QVERIFY(start());
    answerTo(m_client->bus, eventServiceCall("registerForEventUpdates", {storeName}));
    QTRY_COMPARE(listener.told, 1);
    QSignalSpy finished(m_agent.get(), &ZELKLWAAgent::finished);
    m_agent->terminate();
    QTRY_COMPARE_WITH_TIMEOUT(listener.told, 2, 900);
    QCOMPARE(finished.size(), 0);
    QCOMPARE(readStream(ask()).names,
             QStringList({QStringLiteral("Starting monitor"), QStringLiteral("Stopping monitor")}));
    QTRY_COMPARE(finished.size(), 1);
}

void TestServices::registersOwnedNamesOnly()
{
    ZELKLWAUpdateAnnouncer announcer(m_agentBus->bus);
    ConsoleLines console;
    const QString caller = m_client->bus.baseService();
    const QStringList refused{storeName,
                              QString(),
                              QStringLiteral("x"),
                              QStringLiteral("a.b'"),
                              QStringLiteral("org..x"),
                              QString(300, QLatin1Char('a')) + QStringLiteral(".b")};
    for (const QString &name : refused)
        announcer.add(name, caller);
    QTRY_COMPARE(console.lines().size(), refused.size());
    QVERIFY(announcer.isEmpty());

    QVERIFY(m_client->bus.registerService(storeName));
    QSignalSpy changed(&announcer, &ZELKLWAUpdateAnnouncer::registrationsChanged);
    announcer.add(storeName, caller);
    QTRY_COMPARE(changed.size(), 1);
    announcer.remove(storeName, m_agentBus->bus.baseService());
    QVERIFY(!announcer.isEmpty());
    announcer.remove(storeName, caller);
    QVERIFY(announcer.isEmpty());
}

void TestServices::endsARegistration_data()
{
    QTest::addColumn<bool>("nameLeaves");
    QTest::newRow("with the name") << true;
    QTest::newRow("with the caller") << false;
}

void TestServices::endsARegistration()
{
    QFETCH(bool, nameLeaves);
    Connection caller("caller");
    QVERIFY(m_client->bus.registerService(storeName));
    ZELKLWAUpdateAnnouncer announcer(m_agentBus->bus);
    announcer.add(storeName, caller.bus.baseService());
    QTRY_VERIFY(!announcer.isEmpty());
    if (nameLeaves)
        m_client->bus.unregisterService(storeName);
    else
        caller.close();
    QTRY_VERIFY(announcer.isEmpty());
}

QTEST_GUILESS_MAIN(TestServices)
#include "tst_services.moc"
